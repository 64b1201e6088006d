// How often a slip of ten lines waits for the disk, from the menu to its saving, beside the one time that it
// has to. What is counted are the system calls of this very process.

#include <sqlite3.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <stdexcept>

#include "Bench.h"
#include "Folder.h"
#include "app/Session.h"
#include "platform/adoce/DatabaseFile.h"
#include "sales/SlipLine.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"

namespace {

int syncs = 0;

}  // namespace

// The program's own definition comes before that of the C library.
extern "C" int fdatasync(int descriptor) {
    ++syncs;
    return int(::syscall(SYS_fdatasync, descriptor));
}

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLines = 10;
const QString kDay = u"2024-12-30"_s;
const QString kNumber = u"5001"_s;

void check(bool isDone) {
    if (!isDone) throw std::runtime_error("the slip was not written");
}

void writeSlip() {
    app::resetSession();
    check(sales::openSlip(u"A", kDay, kNumber).has_value());
    for (int i = 0; i < kLines; ++i) {
        sales::SlipLine line;
        line.DDate = kDay;
        line.GCode = u"C001"_s;
        line.JunNo = kNumber;
        line.PCode = u"P%1"_s.arg(i);
        line.Box = u"3"_s;
        check(sales::insertLine(line));
    }
    check(sales::saveSlip(u"A", kDay, kNumber) == sales::SaveOutcome::Saved);
}

}  // namespace

Result measureSyncs() {
    const Folder folder;
    writeSlip();
    QString error;
    const auto file = platform::adoce::DatabaseFile::shared(folder.databaseFile(), &error);
    int commits = 0;
    sqlite3_commit_hook(
        file->sqlite().handle(), [](void* count) { return ++*static_cast<int*>(count), 0; }, &commits);
    syncs = 0;
    writeSlip();
    sqlite3_commit_hook(file->sqlite().handle(), nullptr, nullptr);
    return {.ours = double(syncs),
            .peer = 1,
            .note = " (before: one for each of its " + std::to_string(commits) + " changes)"};
}

}  // namespace bench
