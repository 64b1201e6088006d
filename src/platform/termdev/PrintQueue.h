#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>
#include <optional>

#include "platform/Settings.h"
#include "platform/termdev/DeviceStatus.h"
#include "platform/termdev/PrintSpool.h"

namespace platform::termdev {

/// Sends print jobs to a printer from the event loop, without ever waiting for it. A job is in the spool
/// before any byte of it goes out, and leaves it when the printer has taken all of it; until then it is tried
/// again and again, before every later one. A job of which the line broke is sent anew as a whole, each time
/// after twice the pause.
class PrintQueue : public QObject {
    Q_OBJECT

  public:
    /// Milliseconds.
    struct Times {
        int retry = 2000;     ///< Between two tries to reach a printer.
        int longest = 60000;  ///< Between two tries of a job in which the printer breaks off again and again.
        int look = 10000;     ///< For jobs that another program has left, while there is nothing to do.
        int stall = 5000;     ///< Without any progress until it counts as a fault.
        int parting = 3000;   ///< For a network printer to end the connection after a job.
        int leaving = 1000;   ///< For a job to go out when the program ends; its parting not counted.
    };

    explicit PrintQueue(const PrinterSettings& settings, Times times);
    explicit PrintQueue(const PrinterSettings& settings) : PrintQueue(settings, Times()) {}
    ~PrintQueue() override;

    /// Keeps the job and starts to send it. False, traced, when it could not be kept.
    bool add(const QByteArray& job);

    DeviceStatus status() const;

  private:
    /// What of a job is still to come from the printer: taking its bytes, sending them on, ending the
    /// connection.
    enum class Phase { Idle, Sending, Draining, Parting };

    bool isTcp() const { return settings_.kind == PrinterSettings::Kind::Tcp; }
    void proceed();
    void step();
    void send();
    bool isGone();
    void readAnswers();
    qsizetype untransmitted() const;
    void jobIsOut();
    void fail(const QString& reason);
    void setFault(const QString& fault);
    void hangUp();

    const PrinterSettings settings_;
    const Times times_;
    PrintSpool spool_;
    QString fault_;
    QTimer timer_;

    int line_ = -1;
    std::unique_ptr<QSocketNotifier> writable_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::optional<PrintSpool::Entry> job_;
    std::optional<PrintSpool::Entry> out_;  ///< Printed, but still in the spool.
    QByteArray bytes_;
    qsizetype sent_ = 0;
    int breaks_ = 0;  ///< Tries of the job at hand that broke off in it.
    qsizetype untransmitted_ = 0;
    Phase phase_ = Phase::Idle;
    bool hasPeerEnded_ = false;
    QString readFailure_;
    QElapsedTimer sinceProgress_;
};

}  // namespace platform::termdev
