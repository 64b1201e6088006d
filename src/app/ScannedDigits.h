#pragma once

#include <QString>

namespace app {

/// The digits that a bar code reader types as a keyboard does: they come at once.
class ScannedDigits {
  public:
    /// Takes a digit that came at that moment, in milliseconds of any clock. After a pause it is the first:
    /// true.
    bool add(QChar digit, qint64 now);

    /// What was read when Enter comes at that moment, used up; empty when the digits are too few for a code,
    /// or came too long ago.
    QString take(qint64 now);

  private:
    QString digits_;
    qint64 last_ = 0;
};

}  // namespace app
