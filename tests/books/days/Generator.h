#pragma once

#include <random>

#include "Terminal.h"

namespace days {

/// The hand of a random day: the same seed does the same.
class Generator {
  public:
    explicit Generator(unsigned seed) : engine_(seed) {}

    /// What the hand does next on this terminal. `hasFaults` false leaves the disk alone.
    Action next(const Terminal& terminal, bool hasFaults = true) {
        double weights[std::size_t(Tap::Count)];
        double total = 0;
        for (std::size_t i = 0; i < std::size(weights); ++i) {
            const bool canBe = terminal.can(Tap(i)) && (hasFaults || Tap(i) != Tap::Fault);
            total += weights[i] = canBe ? stepOf(Tap(i)).weight : 0;
        }
        // Drawn by hand: the library's distributions differ between its versions.
        double at = double(engine_()) / 4294967296.0 * total;
        std::size_t tap = 0;
        while (tap + 1 < std::size(weights) && (at -= weights[tap]) >= 0) ++tap;
        const unsigned pick = engine_() % 9973U;
        return Action{Tap(tap), pick, unsigned(engine_() % 9967U)};
    }

  private:
    std::mt19937 engine_;
};

}  // namespace days
