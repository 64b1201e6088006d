#include "db/ImportFile.h"

#include "db/MasterImport.h"
#include "platform/Device.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

QString describe(db::ImportResult::Outcome outcome) {
    switch (outcome) {
        case db::ImportResult::Outcome::Loaded: return u"loaded"_s;
        case db::ImportResult::Outcome::Unchanged: return u"the same as loaded before"_s;
        case db::ImportResult::Outcome::BeingWritten:
            return u"being written by another program, the file stays"_s;
        case db::ImportResult::Outcome::AlreadyLoaded: return u"had been loaded before"_s;
        case db::ImportResult::Outcome::NotOpened: return u"could not be opened"_s;
        case db::ImportResult::Outcome::NotSaved: return u"not saved, the file stays"_s;
    }
    return {};
}

/// What the administrator has to see to after a file; nothing when all is in order.
QStringList faultsOf(const QString& path, const db::ImportResult& result) {
    QStringList faults;
    if (result.outcome == db::ImportResult::Outcome::BeingWritten) {
        faults << u"%1 waits until the program that writes it has closed it; then import again"_s.arg(path);
    } else if (!result.isInTable()) {
        faults << u"%1 was not loaded; see that the disk has room and no other program uses the database"_s
                      .arg(path);
    } else if (!result.isDeleted) {
        faults << u"%1 is loaded but could not be deleted; delete it"_s.arg(path);
    }
    if (result.isLastLineCut)
        faults << u"the last line of %1 was cut; it is loaded as far as it came"_s.arg(path);
    if (result.isInTable() && result.rejected > 0) {
        const bool isInTable = result.keptIn == db::RejectedLines::kTable;
        faults << u"%1 lines were not taken; they lie in %2%3"_s.arg(result.rejected)
                      .arg(isInTable ? u"the database's table "_s : QString(), result.keptIn);
    }
    return faults;
}

Outcome importWaitingFiles(const Invocation& call) {
    for (const QStringView table : {u"GARAE", u"PUMMOK", u"GARAEDANGA", u"GARAEMAJIN", u"MTM"}) {
        if (Outcome missing = requireTable(table); missing.exitCode != kSuccess) return missing;
    }
    const db::ImportLock lock;
    if (lock.isTaken()) {
        return failure(
            u"a terminal, or another import, loads the files of %1 now; try again when it is done"_s.arg(
                platform::device::folder()));
    }
    QStringList faults;
    bool isAnyWaiting = false;
    for (const db::ImportFile& file : db::importFiles()) {
        const db::ImportSource source = db::findImportFile(file);
        if (source == db::ImportSource::None) continue;
        isAnyWaiting = true;
        const std::optional<db::Shrinkage> shrinkage = db::findShrinkage(file, source);
        const db::ImportResult result = db::importFile(file, source, {});
        call.out << file.fileName << u'\t' << result.lines << u'\t' << result.loaded << u'\t'
                 << result.rejected << u'\t' << describe(result.outcome) << u'\n';
        if (shrinkage && result.isInTable()) {
            call.err << u"rovanactl: note: the table of %1 had %2 rows\n"_s.arg(file.fileName)
                            .arg(shrinkage->rows);
        }
        faults << faultsOf(db::importPath(file, source), result);
    }
    if (!isAnyWaiting) call.out << u"no import file is waiting\n"_s;
    return faults.isEmpty() ? Outcome{} : failure(faults.join(u"\nrovanactl: "_s));
}

}  // namespace

constinit const Command kImportCommand{
    u"import",
    u"",
    u"loads the waiting *.RVN files",
    u"Prints one line for each file that waits, tab-separated. Exits with 1 when a line was not taken, when "
    u"a\n"
    u"file is being written by another program, and when a terminal loads the files itself.",
    0,
    0,
    nullptr,
    importWaitingFiles};

}  // namespace admin
