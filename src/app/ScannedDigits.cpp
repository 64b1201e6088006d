#include "app/ScannedDigits.h"

#include <utility>

namespace app {
namespace {

/// A reader leaves a few milliseconds between two digits. Who keys a code by hand, briskly, is heard as well.
constexpr qint64 kLongestPauseMs = 1000;
constexpr qsizetype kFewestDigits = 4;

}  // namespace

bool ScannedDigits::add(QChar digit, qint64 now) {
    if (now - last_ > kLongestPauseMs) digits_.clear();
    digits_ += digit;
    last_ = now;
    return digits_.size() == 1;
}

QString ScannedDigits::take(qint64 now) {
    const QString digits = std::exchange(digits_, {});
    return now - last_ <= kLongestPauseMs && digits.size() >= kFewestDigits ? digits : QString();
}

}  // namespace app
