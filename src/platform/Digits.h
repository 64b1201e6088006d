#pragma once

#include <QStringView>
#include <algorithm>

namespace platform {

/// True for one or more digits, 0 to 9, and nothing else.
inline bool areDigits(QStringView text) {
    return !text.isEmpty() && std::ranges::all_of(text, [](QChar c) { return c >= u'0' && c <= u'9'; });
}

}  // namespace platform
