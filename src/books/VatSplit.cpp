#include "books/VatSplit.h"

#include <cstdint>

namespace books {

VatSplit splitVat(platform::Won amount) {
    // Without leaving 64 bits on the way.
    const std::int64_t elevenths = amount.value() / 11;
    const std::int64_t rest = amount.value() % 11;
    const platform::Won supply(elevenths * 10 + (rest * 20 + (rest < 0 ? -11 : 11)) / 22);
    return {supply, amount - supply};
}

}  // namespace books
