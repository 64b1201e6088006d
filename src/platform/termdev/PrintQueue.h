#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>

#include "platform/Settings.h"
#include "platform/termdev/DeviceStatus.h"
#include "platform/termdev/PrintSpool.h"
#include "platform/termdev/PrinterLine.h"

namespace platform::termdev {

/// Sends print jobs to a printer from the event loop, without ever waiting for it. A job is in the spool
/// before any byte of it goes out, and leaves it when the printer has taken all of it; until then it is tried
/// again and again, before every later one, each time after twice the pause. A job of which the line broke is
/// sent anew as a whole.
class PrintQueue : public QObject {
    Q_OBJECT

  public:
    /// Milliseconds.
    struct Times {
        int retry = 2000;     ///< After a first try that failed.
        int longest = 60000;  ///< What the pauses grow to.
        int look = 10000;     ///< For jobs that another program has left, while there is nothing to do.
        int stall = 5000;     ///< Without any progress until it counts as a fault.
        int parting = 3000;   ///< For a network printer to end the connection after a job.
        int leaving = 1000;   ///< For a job to go out when the program ends; its parting not counted.
    };

    explicit PrintQueue(const PrinterSettings& settings, Times times);
    explicit PrintQueue(const PrinterSettings& settings) : PrintQueue(settings, Times()) {}
    ~PrintQueue() override;

    /// Keeps the job and starts to send it at once, whatever pause there is. False, traced, when it could not
    /// be kept.
    bool add(const QByteArray& job);

    DeviceStatus status() const;

  private:
    /// What of a job is still to come from the printer: taking its bytes, sending them on, ending the
    /// connection.
    enum class Phase { Idle, Sending, Draining, Parting };

    void proceed();
    void step();
    void takeNote();
    void drain();
    bool isGone();
    void jobIsOut();
    using Cause = DeviceStatus::Cause;
    void fail(const QString& reason, Cause cause = Cause::Away);
    void setFault(const QString& fault, Cause cause = Cause::None);
    void hangUp();

    const PrinterSettings settings_;
    const Times times_;
    PrintSpool spool_;
    QString fault_;
    Cause cause_ = Cause::None;
    QTimer timer_;

    std::unique_ptr<PrinterLine> line_;  ///< Null while there is no job under way.
    std::optional<PrintSpool::Entry> job_;
    std::optional<PrintSpool::Entry> out_;  ///< Printed, but still in the spool.
    qsizetype sent_ = 0;
    int absences_ = 0;  ///< Tries in a row that reached no printer.
    int breaks_ = 0;    ///< Tries of the job at hand that broke off in it.
    qsizetype untransmitted_ = 0;
    Phase phase_ = Phase::Idle;
    QElapsedTimer sinceProgress_;
};

}  // namespace platform::termdev
