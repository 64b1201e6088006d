#include "platform/Won.h"

namespace platform {

std::int64_t parseInteger(QStringView text) {
    qsizetype at = 0;
    while (at < text.size() && text[at].isSpace()) ++at;
    bool negative = false;
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) negative = text[at++] == u'-';
    // Accumulating downwards reaches INT64_MIN without overflow on the way.
    std::int64_t number = 0;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
        const int digit = text[at].unicode() - u'0';
        if (__builtin_mul_overflow(number, std::int64_t{10}, &number) ||
            __builtin_sub_overflow(number, std::int64_t{digit}, &number)) {
            return negative ? INT64_MIN : INT64_MAX;
        }
    }
    if (negative) return number;
    return number == INT64_MIN ? INT64_MAX : -number;
}

Won parseWon(QStringView text) {
    return Won(parseInteger(text));
}

QString formatWon(Won amount) {
    return QString::number(amount.value());
}

QString groupThousands(Won amount) {
    return groupDigits(formatWon(amount));
}

QString groupDigits(QStringView text) {
    QString grouped;
    grouped.reserve(text.size() + text.size() / 3);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (i > 0 && (text.size() - i) % 3 == 0) grouped.append(u',');
        grouped.append(text[i]);
    }
    return grouped;
}

}  // namespace platform
