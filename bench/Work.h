#pragma once

#include <QtGlobal>
#include <functional>
#include <optional>

#include "Bench.h"

namespace bench {

/// Counts the instructions of the thread that makes it, and of all threads that this one begins later,
/// outside of the kernel. Unlike time they are the same whatever else the machine does.
class InstructionCounter {
  public:
    InstructionCounter();
    ~InstructionCounter();
    Q_DISABLE_COPY_MOVE(InstructionCounter)

    /// So far; nothing where the kernel or the processor does not count them.
    std::optional<double> count() const;

  private:
    int descriptor_;
};

/// What one side has done.
struct Work {
    double steps = 0;                    ///< Of SQLite's machine, in the terminal's statements.
    std::optional<double> instructions;  ///< Of this thread.
};

/// What `work` does with the database of the process's device folder, which `undo` takes back. It is done
/// once before, over a connection that is new each time: its statements are there then, and what SQLite keeps
/// lies alike on both sides, which was 3 per cent of a report.
Work workOf(
    const std::function<void()>& work, const std::function<void()>& undo = [] {});

/// Runs both sides in turn as compare() does. In thousands of instructions, where these are not counted in
/// steps; the note has the steps.
Result compareWork(int runs, const std::function<Work()>& ours, const std::function<Work()>& peer);

/// Compares what the sides return as compare() does; the note says how many of the peer's instructions ours
/// take, those of programs included that a side runs to their end.
Result compareCounted(int runs, const char* unit, const std::function<double()>& ours,
                      const std::function<double()>& peer);

}  // namespace bench
