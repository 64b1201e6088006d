// rovana-bench [--terminals N] [NAME...]: runs the named measurements, or all, and writes one line for each:
// bench NAME ours=... peer=... ratio=... goal=... and what the peer is.
// The exit code is 1 when a measurement could not run or missed its goal, 2 for an unknown name.

#include <QApplication>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <vector>

#include "Bench.h"
#include "platform/Clock.h"
#include "ui/FontList.h"

namespace {

struct Measurement {
    std::string_view name;
    double goal;  ///< The highest ratio of ours to peer that is good enough.
    bench::Result (*run)();
    std::string_view peer = {};  ///< What it is held against, and why that.
};

constexpr std::array kMeasurements{
    Measurement{"import", 0.8, bench::measureImport,
                "sqlite3's .import of the same rows: the quickest loader at hand, a statement a row too"},
    Measurement{
        "import-again", 1.3, bench::measureImportAgain,
        "the file read, its digest and the time noted, the file deleted, both for good: the least it takes"},
    Measurement{
        "price", 1.1, bench::measurePrice,
        "the price's look-ups as prepared statements of bare SQLite, and its sums: what any program needs"},
    Measurement{
        "startup", 1.1, bench::measureStartup,
        "a dialog of Qt alone that fills the display, twelve buttons: the least that shows something"},
    Measurement{"memory", 1.15, bench::measureMemory,
                "a bare Qt table with the 50,000 products in the same font: what such a list takes anywhere"},
    Measurement{"list", 1.05, bench::measureList,
                "a bare Qt table filled by a statement of bare SQLite: the same rows, read and painted"},
    Measurement{"tap", 1.0, bench::measureTap, "a frame of 16 ms: what takes no longer is not felt"},
    Measurement{"tap-growth", 1.1, bench::measureTapGrowth,
                "the same visit among 1,000 slips instead of 100,000: a year must not show"},
    Measurement{"wakeups", 0.0, bench::measureWakeups, "one a second: a handheld that nobody touches sleeps"},
    Measurement{"wakeups-desk", 1.0, bench::measureDeskWakeups,
                "one a second: its lamps show what other programs do"},
    Measurement{"slip", 1.02, bench::measureSlip,
                "the same slip among 1,000 saved ones instead of 100,000: a year must not show"},
    Measurement{"syncs", 4.0, bench::measureSyncs,
                "one wait for the disk: what was saved must outlast a loss of power"},
    Measurement{"bytes", 4.0, bench::measureBytes,
                "the ten rows in one transaction of bare SQLite: what has to reach the flash"},
    Measurement{"report", 1.02, bench::measureReport,
                "the same reports among 1,000 rows a table instead of 100,000: a year must not show"},
    Measurement{"exchange", 1.25, bench::measureExchange,
                "bare sockets and libsodium with the same bytes: any payment needs these"},
    Measurement{"payments", 1.05, bench::measurePayments,
                "what 100 payments left in memory: the 900 that follow must leave nothing"},
    Measurement{"soak", 1.05, bench::measureSoak,
                "what it held after 500 visits: 1,000 more must leave nothing"},
    Measurement{"taps", 1.0, bench::measureTaps,
                "16 touches: a customer's five usual products paid by card, written with one touch"},
#ifdef ROVANA_OFFICE
    Measurement{
        "office-day", 2.0, bench::measureOfficeDay,
        "bare COPY of the same rows, read from the terminal's database, over connections of the same kind"},
    Measurement{"office-idle", 1.0, bench::measureOfficeIdle,
                "one round trip after the connection: nothing less can tell that nothing changed"},
    Measurement{"office-full", 1.1, bench::measureOfficeFull,
                "the same day sent to an empty office: a year must not show"},
    Measurement{
        "office-morning", 2.0, bench::measureOfficeMorning,
        "bare COPY TO of the same rows into files that outlive a loss of power: what no fetch is without"},
#endif
};

bool runAndPrint(const Measurement& measurement) {
    const int nameLength = int(measurement.name.size());
    // A visit that was played has set its own day; an office serves today's terminals only.
    platform::clock::set({});
    try {
        const bench::Result result = measurement.run();
        const double ratio = result.ours / result.peer;
        std::printf("bench %.*s ours=%.2f%s peer=%.2f%s ratio=%.3g goal=%.3g%s%s%.*s\n", nameLength,
                    measurement.name.data(), result.ours, result.unit, result.peer, result.unit, ratio,
                    measurement.goal, result.note.c_str(),
                    measurement.peer.empty() ? "" : "; peer: ", int(measurement.peer.size()),
                    measurement.peer.data());
        std::fflush(stdout);
        return ratio <= measurement.goal;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "rovana-bench: %.*s: %s\n", nameLength, measurement.name.data(), error.what());
        return false;
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ui::useOwnFontList();
    QApplication application(argc, argv);

    std::vector<std::string_view> names(argv + 1, argv + argc);
#ifdef ROVANA_OFFICE
    if (names.size() > 1 && names[0] == "--terminals") {
        bench::officeTerminals = std::atoi(argv[2]);
        names.erase(names.begin(), names.begin() + 2);
    }
#endif
    for (const std::string_view name : names) {
        if (std::ranges::find(kMeasurements, name, &Measurement::name) != kMeasurements.end()) continue;
        std::fprintf(stderr, "rovana-bench: no such measurement: %.*s; there are:", int(name.size()),
                     name.data());
        for (const Measurement& known : kMeasurements) {
            std::fprintf(stderr, " %.*s", int(known.name.size()), known.name.data());
        }
        std::fputc('\n', stderr);
        return 2;
    }
    bool allGood = true;
    for (const Measurement& measurement : kMeasurements) {
        const bool isWanted = names.empty() || std::ranges::count(names, measurement.name) > 0;
        if (isWanted) allGood = runAndPrint(measurement) && allGood;
    }
    return allGood ? 0 : 1;
}
