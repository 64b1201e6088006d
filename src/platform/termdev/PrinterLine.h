#pragma once

#include <QByteArray>
#include <QObject>
#include <memory>

#include "platform/Settings.h"
#include "platform/termdev/DeviceStatus.h"

namespace platform::termdev {

/// The way to a printer for one job, driven by the event loop. What becomes of the job shows in the figures
/// here; `changed` says that one of them may be another. A receiver that may let the line go is connected by
/// a queue.
class PrinterLine : public QObject {
    Q_OBJECT

  public:
    /// A way to the printer that the settings name.
    static std::unique_ptr<PrinterLine> make(const PrinterSettings& settings);

    /// Opens the line and sends the job as fast as the printer takes it.
    virtual void send(const QByteArray& job) = 0;
    /// Why the line is of no use any more; empty while it is.
    QString failure() const { return failure_; }
    /// What kind of failure it is.
    DeviceStatus::Cause cause() const { return cause_; }
    /// Bytes of the job that have left this program. None has while this is 0.
    qsizetype sent() const { return job_.size() - unsent(); }
    bool isSent() const { return unsent() == 0; }
    /// Bytes that the system has taken but not the printer; -1 when the line is gone.
    virtual qsizetype untransmitted() const = 0;
    /// True when the printer does not answer at all; one that only takes no data does.
    virtual bool isSilent() const { return false; }
    /// Ends the job when all of it is sent. True when the printer ends it in its turn, see hasEnded().
    virtual bool end() { return false; }
    virtual bool hasEnded() const { return false; }
    /// Lets the line work for so many milliseconds at most, for a program whose event loop is over.
    virtual void work(int milliseconds) = 0;

  Q_SIGNALS:
    void changed();

  protected:
    /// Bytes of the job that are still in this program.
    virtual qsizetype unsent() const = 0;
    void fail(const QString& reason, DeviceStatus::Cause cause = DeviceStatus::Cause::Away);

    QByteArray job_;

  private:
    QString failure_;
    DeviceStatus::Cause cause_ = DeviceStatus::Cause::None;
};

}  // namespace platform::termdev
