#include "Generator.h"

#include <array>

namespace days {
namespace {

/// How often the hand does what, in the order of the taps.
constexpr double kWeights[] = {
    // The menu.
    12, 5, 4, 3, 1, 0.1, 2.5, 0.7, 0.4, 0.3, 0.5,
    // The lists.
    8, 4, 3, 3, 5, 4, 1.5, 3, 4, 1.5,
    // The sales slip, the container slip.
    6, 2, 2, 1, 1.5, 5, 4, 1, 1, 1, 5,
    // The collection, the card, the simple payment.
    0.6, 0.4, 0.4, 0.4, 2, 1, 4, 3, 3, 0.5, 6, 4, 2, 1, 3, 3,
    // 이전.
    2.5};
static_assert(std::size(kWeights) == std::size_t(Tap::Count));

}  // namespace

Action Generator::next(const Terminal& terminal, bool hasFaults) {
    std::array<double, std::size(kWeights)> weights;
    double total = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const bool canBe = terminal.can(Tap(i)) && (hasFaults || Tap(i) != Tap::Fault);
        total += weights[i] = canBe ? kWeights[i] : 0;
    }
    // Drawn by hand: the library's distributions differ between its versions.
    double at = double(engine_()) / 4294967296.0 * total;
    std::size_t tap = 0;
    while (tap + 1 < weights.size() && (at -= weights[tap]) >= 0) ++tap;
    const unsigned pick = engine_() % 9973U;
    return Action{Tap(tap), pick, unsigned(engine_() % 9967U)};
}

}  // namespace days
