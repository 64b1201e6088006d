#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>
#include <algorithm>
#include <array>
#include <optional>

namespace platform {

/// True for one or more digits, 0 to 9, and nothing else.
inline bool areDigits(QStringView text) {
    return !text.isEmpty() && std::ranges::all_of(text, [](QChar c) { return c >= u'0' && c <= u'9'; });
}

/// The bytes that these hexadecimal digits stand for, two for each; nothing for a text of another length.
template <std::size_t Size>
std::optional<std::array<unsigned char, Size>> fromHexDigits(QByteArrayView digits) {
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    };
    if (digits.size() != qsizetype(2 * Size) || !std::ranges::all_of(digits, isDigit)) return std::nullopt;
    std::array<unsigned char, Size> bytes;
    std::ranges::copy(QByteArray::fromHex(digits.toByteArray()), bytes.begin());
    return bytes;
}

}  // namespace platform
