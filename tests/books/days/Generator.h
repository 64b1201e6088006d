#pragma once

#include <random>

#include "Terminal.h"

namespace days {

/// The hand of a random day: the same seed does the same.
class Generator {
  public:
    explicit Generator(unsigned seed) : engine_(seed) {}

    /// What the hand does next on this terminal. `hasFaults` false leaves the disk alone.
    Action next(const Terminal& terminal, bool hasFaults = true);

  private:
    std::mt19937 engine_;
};

}  // namespace days
