#pragma once

#include <QList>
#include <QString>

#include "platform/termdev/PaperLine.h"
#include "platform/termdev/Printer.h"

namespace platform::termdev {

inline constexpr int kRollDots = 20000;  ///< roll.png keeps this much of the paper's end, about 2.5 m.

/// The printer of a machine without one: the paper goes on in two files of the device folder, roll.txt and
/// roll.png, both written when the device closes. The picture needs a QGuiApplication; without one there is
/// only the text.
///
/// A line longer than the paper goes on in the next one.
class PaperRoll : public Printer {
  public:
    int open() override;
    int close() override;
    int initialise() override;
    int setSize(int mode) override;
    int print(QStringView text) override;
    int feed(int lines) override;

  private:
    void endLine();
    bool writeText() const;
    bool writePicture() const;

    bool isOpen_ = false;
    bool isEnlarged_ = false;
    PaperLine line_;
    QList<PaperLine> lines_;
};

/// The paper printed so far, as text; empty for none.
QString rollText();

/// Tears the paper off: removes roll.txt and roll.png.
void resetRoll();

}  // namespace platform::termdev
