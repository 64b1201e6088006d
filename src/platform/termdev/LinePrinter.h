#pragma once

#include <QList>

#include "platform/termdev/PaperLine.h"
#include "platform/termdev/Printer.h"

namespace platform::termdev {

/// A printer that gathers the lines of a job and puts them out when the device closes. A line longer than the
/// paper goes on in the next one. Conjoining jamo are composed into their syllables; the columns that this
/// frees become blanks further on, so that what follows stays where the layout put it.
class LinePrinter : public Printer {
  public:
    int open() override;
    int close() override;
    int initialise() override;
    int setSize(int mode) override;
    int print(QStringView text) override;
    int feed(int lines) override;

  protected:
    /// Takes the lines of a whole job, at least one; false, traced, when they could not be put out.
    virtual bool putOut(const QList<PaperLine>& lines) = 0;

  private:
    void endLine();

    bool isOpen_ = false;
    bool isEnlarged_ = false;
    PaperLine line_;
    QList<PaperLine> lines_;
};

}  // namespace platform::termdev
