#include "db/ImportFile.h"

#include <array>

#include "db/MasterImport.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

QString describe(db::ImportResult::Outcome outcome) {
    switch (outcome) {
        case db::ImportResult::Outcome::Loaded:
            return u"loaded"_s;
        case db::ImportResult::Outcome::AlreadyLoaded:
            return u"had been loaded before"_s;
        case db::ImportResult::Outcome::NotOpened:
            return u"could not be opened"_s;
        case db::ImportResult::Outcome::NotSaved:
            return u"not saved, the file stays"_s;
    }
    return {};
}

Outcome importWaitingFiles(const Invocation& call) {
    for (const QStringView table : {u"GARAE", u"PUMMOK", u"GARAEDANGA", u"GARAEMAJIN", u"MTM"}) {
        if (Outcome missing = requireTable(table); missing.exitCode != kSuccess) return missing;
    }
    QStringList faults;
    bool isAnyWaiting = false;
    for (const db::ImportFile& file : db::importFiles()) {
        const db::ImportSource source = db::findImportFile(file);
        if (source == db::ImportSource::None) continue;
        isAnyWaiting = true;
        const db::ImportResult result = db::importFile(file, source, {});
        call.out << file.fileName << u'\t' << result.lines << u'\t' << result.loaded << u'\t'
                 << result.rejected << u'\t' << describe(result.outcome) << u'\n';
        const QString path = db::importPath(file, source);
        if (result.outcome == db::ImportResult::Outcome::NotOpened ||
            result.outcome == db::ImportResult::Outcome::NotSaved) {
            faults
                << u"%1 was not loaded; see that the disk has room and no other program uses the database"_s
                       .arg(path);
        } else if (!result.isDeleted) {
            faults << u"%1 is loaded but could not be deleted; delete it"_s.arg(path);
        }
        if (result.rejected > 0) {
            faults << u"%1 lines were not taken; they lie in %2.rejected"_s.arg(result.rejected).arg(path);
        }
    }
    if (!isAnyWaiting) call.out << u"no import file is waiting\n"_s;
    return faults.isEmpty() ? Outcome{} : failure(faults.join(u"\nrovanactl: "_s));
}

}  // namespace

constinit const Command kImportCommand{
    u"import",
    u"",
    u"loads the waiting *.RVN files",
    u"Prints one line for each file that waits, tab-separated. Exits with 1 when a line was not taken.",
    0,
    0,
    nullptr,
    importWaitingFiles};

}  // namespace admin
