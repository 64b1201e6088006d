#pragma once

#include <functional>
#include <string>

/// The measurements of rovana-bench: each runs what the system does beside what it is held against.
namespace bench {

/// What both sides took, in `unit`.
struct Result {
    double ours = 0;
    double peer = 0;
    const char* unit = "";
    std::string note = {};  ///< What else is printed behind the line.
};

/// Runs both sides in turn, `runs` times each after one run of each that does not count, and gives the median
/// of what they return. An even number of runs takes the upper middle one.
Result compare(int runs, const char* unit, const std::function<double()>& ours,
               const std::function<double()>& peer);

/// The sums over `turns` of both sides, which take turns, after a pass over all turns that does not count.
Result compareSums(int turns, const char* unit, const std::function<double(int turn)>& ours,
                   const std::function<double(int turn)>& peer);

/// Milliseconds that `work` takes by the steady clock.
double millisecondsOf(const std::function<void()>& work);

/// Milliseconds of the processor that all threads of this process have taken so far. For work that waits for
/// nothing: whatever else runs does not count.
double processorMilliseconds();

// One function for each measurement, in a file of its own. They throw std::runtime_error, which says why,
// when a side cannot run or gives a wrong result.
Result measureImport();
/// A file of prices that is the same as last time against the least that it takes to know that.
Result measureImportAgain();
Result measurePrice();
/// The terminal's start with --fullscreen against that of a bare dialog that fills the display.
Result measureStartup();
/// What the terminal holds for itself after the commonest visit among 50,000 products, against a bare list of
/// them.
Result measureMemory();
/// A list of 50,000 rows, read and painted, against a bare table view.
Result measureList();
/// The longest tap of the commonest visit, or what it lets the next one wait, against one frame of the
/// display.
Result measureTap();
/// That visit among 100,000 slips against the same among 1,000.
Result measureTapGrowth();
/// How often the idle terminal wakes in a second, against once; and on its desk.
Result measureWakeups();
Result measureDeskWakeups();
Result measureSlip();
/// How often the change of a visit that waits most for the disk does, against once.
Result measureSyncs();
/// The bytes that such a slip writes, against its rows alone in one transaction.
Result measureBytes();
Result measureReport();
/// One approved payment of the terminal's component, seal to parsed reply, against the same bytes over a bare
/// socket and the bare cipher calls.
Result measureExchange();
/// What a short soak holds at most, in per cent of what it holds after 500 visits, and how fast it was.
Result measureSoak();
/// Touches of a usual order against the most that it may take.
Result measureTaps();
/// A full day sent by 200 terminals against bare COPY of its rows over connections of the same kind.
Result measureOfficeDay();
/// The round trips of a sync that finds nothing changed, after the connection, against one.
Result measureOfficeIdle();
/// A day sent to an office that has the terminal's year against an empty one.
Result measureOfficeFull();
/// 1,000 terminals that fetch their master data against COPY of the same rows.
Result measureOfficeMorning();
/// How many terminals those have; 0 for their own numbers.
extern int officeTerminals;
/// What 1,000 payments leave in memory against what 100 do.
Result measurePayments();

}  // namespace bench
