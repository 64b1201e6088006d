#pragma once

#include <QList>
#include <QString>

#include "platform/termdev/LinePrinter.h"

namespace platform::termdev {

inline constexpr qint64 kRollBytes = 1024 * 1024;
inline constexpr int kRollDots = 20000;  ///< roll.png keeps this much of the paper's end, about 2.5 m.

/// The printer of a machine without one: the paper goes on in two files of the device folder, roll.txt and
/// roll.png, both written when the device closes. The picture needs a QGuiApplication; without one there is
/// only the text.
class PaperRoll : public LinePrinter {
  public:
    /// roll.txt is kept under `limitBytes`: a full one becomes roll.txt.1, replacing the one before.
    explicit PaperRoll(qint64 limitBytes = kRollBytes) : limit_(limitBytes) {}

  protected:
    bool putOut(const QList<PaperLine>& lines) override;

  private:
    qint64 limit_;
};

/// The paper printed so far, as text; empty for none.
QString rollText();

/// Tears the paper off: removes roll.txt, the one before it, and roll.png.
void resetRoll();

}  // namespace platform::termdev
