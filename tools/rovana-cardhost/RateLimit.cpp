#include "rovana-cardhost/RateLimit.h"

#include <algorithm>

namespace cardhost {
namespace {

constexpr qsizetype kMostKept = 4096;

}  // namespace

bool RateLimit::take(const QString& who, Moment now) {
    if (allowances_.size() >= kMostKept && !allowances_.contains(who)) {
        // A full allowance says no more than none at all.
        allowances_.removeIf([&](auto each) { return leftAt(each.value(), now) >= burst_; });
    }
    const bool isKept = allowances_.size() < kMostKept || allowances_.contains(who);
    const QString key = isKept ? who : QString();
    if (!allowances_.contains(key)) allowances_.insert(key, {burst_, now});
    Allowance& allowance = allowances_[key];
    allowance = {leftAt(allowance, now), now};
    if (allowance.left < 1) return false;
    allowance.left -= 1;
    return true;
}

void RateLimit::giveBack(const QString& who) {
    const auto found = allowances_.find(who);
    if (found != allowances_.end()) found->left = std::min(burst_, found->left + 1);
}

double RateLimit::leftAt(const Allowance& allowance, Moment now) const {
    return std::min(burst_,
                    allowance.left + perSecond_ * std::chrono::duration<double>(now - allowance.at).count());
}

}  // namespace cardhost
