// rovana-bench [--terminals N] [NAME...]: runs the named measurements, or all, and writes one line for each:
// bench NAME ours=... peer=... ratio=... goal=...
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

namespace {

struct Measurement {
    std::string_view name;
    double goal;  ///< The highest ratio of ours to peer that is good enough.
    bench::Result (*run)();
};

constexpr std::array kMeasurements{
    Measurement{"import", 1.0, bench::measureImport},
    Measurement{"import-again", 0.3, bench::measureImportAgain},
    Measurement{"price", 3.0, bench::measurePrice},
    Measurement{"startup", 1.5, bench::measureStartup},
    Measurement{"memory", 1.5, bench::measureMemory},
    Measurement{"list", 1.5, bench::measureList},
    Measurement{"slip", 1.5, bench::measureSlip},
    Measurement{"syncs", 4.0, bench::measureSyncs},
    Measurement{"report", 1.5, bench::measureReport},
    Measurement{"exchange", 3.0, bench::measureExchange},
    Measurement{"payments", 1.05, bench::measurePayments},
    Measurement{"soak", 1.05, bench::measureSoak},
#ifdef ROVANA_OFFICE
    Measurement{"office-day", 2.0, bench::measureOfficeDay},
    Measurement{"office-idle", 1.0, bench::measureOfficeIdle},
    Measurement{"office-full", 1.1, bench::measureOfficeFull},
    Measurement{"office-morning", 2.0, bench::measureOfficeMorning},
#endif
};

bool runAndPrint(const Measurement& measurement) {
    const int nameLength = int(measurement.name.size());
    try {
        const bench::Result result = measurement.run();
        const double ratio = result.ours / result.peer;
        std::printf("bench %.*s ours=%.2f%s peer=%.2f%s ratio=%.2f goal=%.2f%s\n", nameLength,
                    measurement.name.data(), result.ours, result.unit, result.peer, result.unit, ratio,
                    measurement.goal, result.note.c_str());
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
