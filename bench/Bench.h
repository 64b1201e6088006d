#pragma once

#include <functional>
#include <string>

/// The measurements of rovana-bench: each runs what the system does beside what it is held against.
namespace bench {

/// The medians of both sides, in `unit`.
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

/// Milliseconds that `work` takes by the steady clock.
double millisecondsOf(const std::function<void()>& work);

// One function for each measurement, in a file of its own. They throw std::runtime_error, which says why,
// when a side cannot run or gives a wrong result.
Result measureImport();
/// A file of prices that is the same as last time against loading it.
Result measureImportAgain();
Result measurePrice();
Result measureStartup();
Result measureMemory();
Result measureList();
Result measureSlip();
/// How often a slip of ten lines waits for the disk, against once.
Result measureSyncs();
Result measureReport();
/// One approved payment of the terminal's component, seal to parsed reply, against the same bytes over a bare
/// socket and the bare cipher calls.
Result measureExchange();
/// What a short soak holds at most, in per cent of what it holds after 500 visits, and how fast it was.
Result measureSoak();
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
/// Resident memory after 1,000 payments against that after 100.
Result measurePayments();

}  // namespace bench
