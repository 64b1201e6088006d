#include "platform/CardNumber.h"

namespace platform {
namespace {

constexpr qsizetype kShownInFront = 6;
constexpr qsizetype kShownBehind = 4;
constexpr qsizetype kFewestDigits = 13;  ///< A shorter number would show too much of itself.

/// Copies no more of the text than may be shown.
template <typename View>
QString mask(View text) {
    const auto isDigit = [&](qsizetype at) { return QChar(text[at]) >= u'0' && QChar(text[at]) <= u'9'; };
    qsizetype begin = 0;
    while (begin < text.size() && !isDigit(begin)) ++begin;
    qsizetype end = begin;
    while (end < text.size() && isDigit(end)) ++end;
    QString masked(end - begin, u'*');
    if (masked.size() < kFewestDigits) return masked;
    for (qsizetype at = begin; at < end; ++at) {
        if (at < begin + kShownInFront || at >= end - kShownBehind) masked[at - begin] = QChar(text[at]);
    }
    return masked;
}

}  // namespace

QString maskedCardNumber(QStringView track2) {
    return mask(track2);
}

QString maskedCardNumber(QLatin1StringView track2) {
    return mask(track2);
}

}  // namespace platform
