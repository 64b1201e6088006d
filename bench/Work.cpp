#include "Work.h"

#include <linux/perf_event.h>
#include <sqlite3.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"

namespace bench {
namespace {

/// The steps of all statements since the last call.
double takeSteps(sqlite3* database) {
    double steps = 0;
    for (sqlite3_stmt* each = nullptr; (each = sqlite3_next_stmt(database, each)) != nullptr;)
        steps += sqlite3_stmt_status(each, SQLITE_STMTSTATUS_VM_STEP, 1);
    return steps;
}

}  // namespace

InstructionCounter::InstructionCounter() {
    perf_event_attr what{};
    what.size = sizeof what;
    what.type = PERF_TYPE_HARDWARE;
    what.config = PERF_COUNT_HW_INSTRUCTIONS;
    what.exclude_kernel = 1;
    what.exclude_hv = 1;
    what.inherit = 1;
    descriptor_ = int(::syscall(SYS_perf_event_open, &what, 0, -1, -1, PERF_FLAG_FD_CLOEXEC));
}

InstructionCounter::~InstructionCounter() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::optional<double> InstructionCounter::count() const {
    std::uint64_t instructions = 0;
    // A virtual machine may offer a counter that counts nothing.
    if (descriptor_ < 0 || ::read(descriptor_, &instructions, sizeof instructions) != sizeof instructions ||
        instructions == 0) {
        return std::nullopt;
    }
    return double(instructions);
}

Work workOf(const std::function<void()>& work, const std::function<void()>& undo) {
    platform::adoce::DatabaseFile::forgetAll();
    work();
    undo();
    QString error;
    const auto file = platform::adoce::DatabaseFile::shared(
        platform::device::path(platform::device::kDatabaseFile), &error);
    if (!file) throw std::runtime_error(error.toStdString());
    takeSteps(file->sqlite().handle());
    const InstructionCounter counter;
    const auto before = counter.count();
    work();
    const auto after = counter.count();
    Work done{takeSteps(file->sqlite().handle()), std::nullopt};
    if (before && after) done.instructions = *after - *before;
    undo();
    return done;
}

Result compareWork(int runs, const std::function<Work()>& ours, const std::function<Work()>& peer) {
    std::vector<double> steps[2];
    bool isCounted = true;
    const auto side = [&](const std::function<Work()>& run, std::vector<double>* stepsOfIt) {
        return [&run, stepsOfIt, &isCounted] {
            const Work done = run();
            stepsOfIt->push_back(done.steps);
            isCounted = isCounted && done.instructions;
            return done.instructions.value_or(0) / 1000;
        };
    };
    const Result instructions = compare(runs, "k instructions", side(ours, &steps[0]), side(peer, &steps[1]));
    const Result inSteps{.ours = steps[0].back(), .peer = steps[1].back(), .unit = " steps"};
    if (!isCounted) return inSteps;
    char note[80];
    std::snprintf(note, sizeof note, " steps=%.0f:%.0f=%.3f", inSteps.ours, inSteps.peer,
                  inSteps.ours / inSteps.peer);
    Result result = instructions;
    result.note = note;
    return result;
}

Result compareCounted(int runs, const char* unit, const std::function<double()>& ours,
                      const std::function<double()>& peer) {
    Result result = compare(runs, unit, ours, peer);
    // Afterwards: a counter follows every process and thread that begins, which takes time of its own.
    const InstructionCounter counter;
    const auto counted = [&](const std::function<double()>& side) {
        const double before = counter.count().value_or(0);
        side();
        return counter.count().value_or(0) - before;
    };
    const double oursCounted = counted(ours);
    const double peerCounted = counted(peer);
    if (peerCounted > 0)
        result.note =
            QString::asprintf(" (%.2f of its instructions)", oursCounted / peerCounted).toStdString();
    return result;
}

}  // namespace bench
