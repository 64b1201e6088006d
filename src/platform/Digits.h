#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>
#include <algorithm>
#include <optional>

namespace platform {

/// True for one or more digits, 0 to 9, and nothing else.
inline bool areDigits(QStringView text) {
    return !text.isEmpty() && std::ranges::all_of(text, [](QChar c) { return c >= u'0' && c <= u'9'; });
}

/// The bytes that these hexadecimal digits stand for, two for each; nothing for a text that is not `bytes`
/// long.
inline std::optional<QByteArray> fromHexDigits(QByteArrayView digits, qsizetype bytes) {
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    };
    if (digits.size() != 2 * bytes || !std::ranges::all_of(digits, isDigit)) return std::nullopt;
    return QByteArray::fromHex(digits.toByteArray());
}

}  // namespace platform
