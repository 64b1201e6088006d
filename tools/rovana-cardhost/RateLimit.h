#pragma once

#include <QHash>
#include <QString>
#include <chrono>

namespace cardhost {

/// How often somebody may do something: `burst` times at once, then `perSecond` times a second. What it keeps
/// of all who ever came is bounded; when there are too many, newcomers share one allowance.
class RateLimit {
  public:
    using Moment = std::chrono::steady_clock::time_point;

    RateLimit(double burst, double perSecond) : burst_(burst), perSecond_(perSecond) {}

    /// Takes one from the allowance of `who`; false when there is none left.
    bool take(const QString& who, Moment now = std::chrono::steady_clock::now());
    /// Gives one back, for what turned out to be welcome.
    void giveBack(const QString& who);

  private:
    struct Allowance {
        double left = 0;
        Moment at;
    };

    double leftAt(const Allowance& allowance, Moment now) const;

    const double burst_;
    const double perSecond_;
    QHash<QString, Allowance> allowances_;
};

}  // namespace cardhost
