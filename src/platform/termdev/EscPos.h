#pragma once

#include <QByteArray>
#include <QList>

#include "platform/Settings.h"
#include "platform/termdev/LinePrinter.h"
#include "platform/termdev/PrintQueue.h"

namespace platform::termdev {

/// The ESC/POS bytes of a job: initialise and Korean double-byte mode, the lines in code page 949, and the
/// cut that the settings ask for. A line with a character that the printer lacks becomes a raster picture of
/// the whole line, for a picture cannot share its line with text; without fonts such a character becomes □.
QByteArray escPosJob(const QList<PaperLine>& lines, const PrinterSettings& settings);

/// A printer that speaks ESC/POS, by way of a queue.
class EscPosPrinter : public LinePrinter {
  public:
    explicit EscPosPrinter(const PrinterSettings& settings) : settings_(settings), queue_(settings) {}

    DeviceStatus status() const override { return queue_.status(); }

  protected:
    bool putOut(const QList<PaperLine>& lines) override { return queue_.add(escPosJob(lines, settings_)); }

  private:
    const PrinterSettings settings_;
    PrintQueue queue_;
};

}  // namespace platform::termdev
