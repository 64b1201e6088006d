#pragma once

#include <QByteArray>
#include <QString>
#include <QTimer>

#include "platform/termdev/LinePrinter.h"
#include "platform/termdev/PaperRoll.h"
#include "platform/termdev/PrintSpool.h"

namespace desk {

/// The paper roll as a printer that can be out of order. Jobs are kept meanwhile, on disk as a real printer's
/// are, and come out in their order when it works again or when the next desk opens. What the roll did not
/// take is tried again every few seconds.
class DeskPrinter : public platform::termdev::LinePrinter {
  public:
    /// `rollBytes` is where roll.txt turns over, `retry` the milliseconds until kept jobs are tried again.
    explicit DeskPrinter(qint64 rollBytes, int retry = 10000);

    /// What is wrong with the printer, for the log and by its kind; an empty text lets it work.
    void setFault(const QString& fault, platform::termdev::DeviceStatus::Cause cause =
                                            platform::termdev::DeviceStatus::Cause::None);

    platform::termdev::DeviceStatus status() const override;

  protected:
    bool putOut(const QList<platform::termdev::PaperLine>& lines) override;

  private:
    bool printOnRoll(const QByteArray& job);
    void printWaiting();
    bool keep(const QByteArray& job);

    platform::termdev::PaperRoll roll_;
    /// Apart from a real printer's jobs, which are its bytes and not text.
    platform::termdev::PrintSpool spool_{u"desk-spool"};
    QString fault_;
    platform::termdev::DeviceStatus::Cause cause_ = platform::termdev::DeviceStatus::Cause::None;
    QTimer retry_;
};

}  // namespace desk
