#include "platform/termdev/PrinterLine.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QIODevice>
#include <QSocketNotifier>
#include <QThread>
#include <array>
#include <cerrno>
#include <csignal>

#include "platform/Address.h"
#include "platform/Lines.h"
#include "platform/SystemReason.h"
#include "platform/termdev/DeviceLine.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Unanswered repetitions of a segment, about ten seconds, after which a printer has left the network. One
/// that is out of paper answers.
constexpr int kLostRepetitions = 6;
/// Bytes of a printer's answers that are held before they are dropped.
constexpr qint64 kMostAnswers = 4096;

/// Bytes that wait below the descriptor, as `question` asks for them; -1 when the device is gone.
qsizetype bytesBelow(int line, unsigned long question) {
    int bytes = 0;
    if (::ioctl(line, question, &bytes) == 0) return bytes;
    return errno == EIO || errno == ENODEV ? -1 : 0;
}

/// The same, 1 in place of 0 for a device that takes no more for now.
qsizetype orBusy(qsizetype bytes, int line) {
    pollfd state{line, POLLOUT, 0};
    return bytes == 0 && (::poll(&state, 1, 0) != 1 || (state.revents & POLLOUT) == 0) ? 1 : bytes;
}

bool isBroken(int line) {
    pollfd state{line, 0, 0};
    return ::poll(&state, 1, 0) == 1;
}

/// A device that takes the bytes of a job as they are: a printer's own, a pipe, a file.
class FileLine : public PrinterLine {
  public:
    explicit FileLine(const QString& path) : path_(path) {
        // A printer that goes away while it is written to must not end the program.
        std::signal(SIGPIPE, SIG_IGN);
    }
    ~FileLine() override {
        writable_.reset();
        if (line_ >= 0) ::close(line_);
    }

    void send(const QByteArray& job) override {
        job_ = job;
        line_ = openDevice(path_, O_WRONLY | O_APPEND);
        if (line_ < 0) return fail(systemReason());
        writable_ = std::make_unique<QSocketNotifier>(line_, QSocketNotifier::Write);
        connect(writable_.get(), &QSocketNotifier::activated, this, &FileLine::write);
        write();
    }
    qsizetype untransmitted() const override {
        struct stat kind {};
        if (::fstat(line_, &kind) != 0 || S_ISREG(kind.st_mode)) return 0;
        // A pipe counts what its reader has not taken, a device what has not gone out.
        const qsizetype bytes = bytesBelow(line_, S_ISFIFO(kind.st_mode) ? FIONREAD : TIOCOUTQ);
        return bytes > 0 && isBroken(line_) ? -1 : orBusy(bytes, line_);
    }
    void work(int milliseconds) override {
        pollfd state{line_, short(isSent() ? 0 : POLLOUT), 0};
        if (::poll(&state, 1, milliseconds) == 1) write();
    }

  protected:
    qsizetype unsent() const override { return job_.size() - sent_; }

  private:
    void write() {
        while (sent_ < job_.size()) {
            const ssize_t count = ::write(line_, job_.constData() + sent_, size_t(job_.size() - sent_));
            if (count < 0 && errno != EAGAIN && errno != EINTR) fail(systemReason());
            if (count <= 0) break;
            sent_ += count;
        }
        writable_->setEnabled(!isSent() && failure().isEmpty());
        Q_EMIT changed();
    }

    const QString path_;
    int line_ = -1;
    qsizetype sent_ = 0;
    std::unique_ptr<QSocketNotifier> writable_;
};

class SerialPrinterLine : public PrinterLine {
  public:
    explicit SerialPrinterLine(const PrinterSettings& settings) : settings_(settings) {}
    ~SerialPrinterLine() override {
        if (!port_) return;
        port_->device()->disconnect(this);
        // What the line still holds would keep its closing waiting for the printer, half a minute under flow
        // control; the job is sent anew.
        if (port_->device()->isOpen() && (!isSent() || untransmitted() > 0)) port_->drop();
    }

    void send(const QByteArray& job) override {
        job_ = job;
        port_ = makeSerialLine(kMostAnswers);
        if (!port_) return fail(loadLines(), DeviceStatus::Cause::Incomplete);
        QIODevice* const device = port_->device();
        const QString reason = port_->open(settings_.device, settings_.line, [this, device] {
            fail(device->errorString());
            Q_EMIT changed();
        });
        if (!reason.isEmpty()) return fail(reason);
        connect(device, &QIODevice::bytesWritten, this, &SerialPrinterLine::changed);
        connect(device, &QIODevice::readyRead, this, [device] { device->readAll(); });
        device->write(job);
    }
    qsizetype untransmitted() const override {
        const int line = port_->descriptor();
        const qsizetype bytes = bytesBelow(line, TIOCOUTQ);
        unsigned int status = TIOCSER_TEMT;
        // The last bytes are in the line's own memory, where a printer that is not ready holds them as well.
        const bool isInMemory =
            bytes == 0 && ::ioctl(line, TIOCSERGETLSR, &status) == 0 && (status & TIOCSER_TEMT) == 0;
        return isInMemory ? 1 : orBusy(bytes, line);
    }
    void work(int milliseconds) override {
        isSent() ? QThread::msleep(unsigned(milliseconds))
                 : void(port_->device()->waitForBytesWritten(milliseconds));
    }

  protected:
    qsizetype unsent() const override {
        return port_ && port_->device()->isOpen() ? port_->device()->bytesToWrite() : job_.size();
    }

  private:
    const PrinterSettings settings_;
    std::unique_ptr<SerialLine> port_;
};

/// Qt connects and sends. The way to the end of the connection is its descriptor's alone: Qt cannot end one
/// side, and reports a broken connection as it does one that was ended.
class NetworkLine : public PrinterLine {
  public:
    explicit NetworkLine(const PrinterSettings& settings) : settings_(settings) {}
    ~NetworkLine() override {
        connection_.reset();
        readable_.reset();
        if (line_ >= 0) ::close(line_);
    }

    void send(const QByteArray& job) override {
        job_ = job;
        unsent_ = job.size();
        const std::optional<QString> address = parseAddress(settings_.address);
        if (!address) return fail(systemReason(EINVAL));
        connection_ = makeConnection(kMostAnswers);
        if (!connection_) return fail(loadLines(), DeviceStatus::Cause::Incomplete);
        QIODevice* const device = connection_->device();
        connect(device, &QIODevice::bytesWritten, this, &NetworkLine::written);
        connect(device, &QIODevice::readyRead, this, [device] { device->readAll(); });
        const auto fault = connection_->open(
            *address, quint16(settings_.port), [this, device] { device->write(job_); },
            [this](Connection::Fault of) { broken(of); });
        if (fault) fail(device->errorString());
    }
    qsizetype untransmitted() const override { return bytesBelow(line_, TIOCOUTQ); }
    bool isSilent() const override {
        const int line = line_ >= 0 || !connection_ ? line_ : connection_->descriptor();
        tcp_info info{};
        socklen_t size = sizeof info;
        ::getsockopt(line, IPPROTO_TCP, TCP_INFO, &info, &size);
        return sent() == 0 || info.tcpi_retransmits >= kLostRepetitions;
    }
    bool end() override {
        ::shutdown(line_, SHUT_WR);
        return true;
    }
    bool hasEnded() const override { return hasEnded_; }
    void work(int milliseconds) override {
        if (line_ < 0) {
            if (connection_) connection_->device()->waitForBytesWritten(milliseconds);
            return;
        }
        pollfd state{line_, short(hasEnded_ ? 0 : POLLIN), 0};
        if (::poll(&state, 1, milliseconds) == 1) readAnswers();
    }

  protected:
    qsizetype unsent() const override { return unsent_; }

  private:
    void written(qint64 bytes) {
        unsent_ -= bytes;
        if (unsent_ == 0) {
            line_ = ::fcntl(connection_->descriptor(), F_DUPFD_CLOEXEC, 0);
            if (line_ < 0) return fail(systemReason());
            connection_.reset();
            readable_ = std::make_unique<QSocketNotifier>(line_, QSocketNotifier::Read);
            connect(readable_.get(), &QSocketNotifier::activated, this, &NetworkLine::readAnswers);
        }
        Q_EMIT changed();
    }
    /// Throws away what the printer says: unread answers would break the connection at its end.
    void readAnswers() {
        std::array<char, 256> buffer;
        ssize_t received = 0;
        while ((received = ::recv(line_, buffer.data(), buffer.size(), 0)) > 0) {
        }
        hasEnded_ = received == 0;
        if (received < 0 && errno != EAGAIN && errno != EINTR) fail(systemReason());
        // The notifier would tell of an end for ever.
        readable_->setEnabled(!hasEnded_ && failure().isEmpty());
        Q_EMIT changed();
    }
    void broken(Connection::Fault fault) {
        // That of work(), while the connection stands.
        if (fault == Connection::Fault::TimedOut && connection_->isConnected()) return;
        fail(connection_->device()->errorString());
        Q_EMIT changed();
    }

    const PrinterSettings settings_;
    std::unique_ptr<Connection> connection_;
    int line_ = -1;  ///< The same connection, once all of the job is sent.
    std::unique_ptr<QSocketNotifier> readable_;
    qsizetype unsent_ = 0;
    bool hasEnded_ = false;
};

}  // namespace

std::unique_ptr<PrinterLine> PrinterLine::make(const PrinterSettings& settings) {
    switch (settings.kind) {
        case PrinterSettings::Kind::Serial: return std::make_unique<SerialPrinterLine>(settings);
        case PrinterSettings::Kind::Tcp: return std::make_unique<NetworkLine>(settings);
        case PrinterSettings::Kind::File:
        case PrinterSettings::Kind::Roll: break;
    }
    return std::make_unique<FileLine>(settings.device);
}

void PrinterLine::fail(const QString& reason, DeviceStatus::Cause cause) {
    if (!failure_.isEmpty()) return;
    failure_ = reason;
    cause_ = cause;
}

}  // namespace platform::termdev
