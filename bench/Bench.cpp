#include "Bench.h"

#include <time.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {
namespace {

double median(std::vector<double> values) {
    const auto middle = values.begin() + long(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

Result compare(int runs, const char* unit, const std::function<double()>& ours,
               const std::function<double()>& peer) {
    std::vector<double> oursEach;
    std::vector<double> peerEach;
    // Whatever else the machine does falls on both sides alike when they take turns.
    for (int run = 0; run <= runs; ++run) {
        const double oursNow = ours();
        const double peerNow = peer();
        if (run == 0) continue;
        oursEach.push_back(oursNow);
        peerEach.push_back(peerNow);
    }
    return {.ours = median(oursEach), .peer = median(peerEach), .unit = unit};
}

Result compareSums(int turns, const char* unit, const std::function<double(int)>& ours,
                   const std::function<double(int)>& peer) {
    Result sums{.unit = unit};
    for (const bool isCounted : {false, true}) {
        for (int turn = 0; turn < turns; ++turn) {
            const double oursNow = ours(turn);
            const double peerNow = peer(turn);
            if (!isCounted) continue;
            sums.ours += oursNow;
            sums.peer += peerNow;
        }
    }
    return sums;
}

double millisecondsOf(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double processorMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

}  // namespace bench
