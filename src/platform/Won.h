#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>

namespace platform {

/// A whole-won amount, or a product of one with a count of boxes or bottles. Arithmetic saturates at the
/// limits of 64 bits, so no keyed or imported figure, however long, can overflow.
class Won {
  public:
    constexpr Won() = default;
    constexpr explicit Won(std::int64_t won) : won_(won) {}

    constexpr std::int64_t value() const { return won_; }
    constexpr bool isZero() const { return won_ == 0; }

    Won operator-() const { return Won{} - *this; }
    friend Won operator+(Won a, Won b) {
        std::int64_t sum = 0;
        return __builtin_add_overflow(a.won_, b.won_, &sum) ? limit(b.won_ < 0) : Won(sum);
    }
    friend Won operator-(Won a, Won b) {
        std::int64_t difference = 0;
        return __builtin_sub_overflow(a.won_, b.won_, &difference) ? limit(b.won_ > 0) : Won(difference);
    }
    friend Won operator*(std::int64_t count, Won price) {
        std::int64_t product = 0;
        return __builtin_mul_overflow(count, price.won_, &product) ? limit((count < 0) != (price.won_ < 0))
                                                                   : Won(product);
    }
    Won& operator+=(Won other) { return *this = *this + other; }
    Won& operator-=(Won other) { return *this = *this - other; }
    friend constexpr auto operator<=>(Won, Won) = default;

  private:
    static Won limit(bool negative) { return Won(negative ? INT64_MIN : INT64_MAX); }

    std::int64_t won_ = 0;
};

/// Reads a whole number as the C library's decimal conversion does: leading blanks, one sign, digits up to
/// the first other character. Text without digits, the empty one included, reads as 0; too many digits read
/// as the limit of 64 bits.
std::int64_t parseInteger(QStringView text);

/// The amount in won that `text` holds, read by parseInteger.
Won parseWon(QStringView text);

/// The amount as "%d" writes it: digits with a leading minus, no separators.
QString formatWon(Won amount);

/// Thousands grouping of the keypad and the slip screens: "," before every third character from the right,
/// the sign counted as a character, so -100000 shows as -,100,000.
QString groupThousands(Won amount);

/// The same on a text, as the card screens and their documents group: a text of digits is grouped by
/// thousands, and a sign already in front counts as a character (-123 becomes -,123). They therefore group a
/// balance before they put its sign in front.
QString groupDigits(QStringView text);

}  // namespace platform
