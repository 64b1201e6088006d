#include "platform/termdev/PrintQueue.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "platform/Trace.h"
#include "platform/termdev/DeviceLine.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLongestPoll = 250;
constexpr int kShortestPoll = 5;
/// Unanswered repetitions of a segment, about ten seconds, after which a printer has left the network. One
/// that is out of paper answers.
constexpr int kLostRepetitions = 6;

QString errorText(int code) {
    return QString::fromLocal8Bit(std::strerror(code));
}

bool isPatient(int code) {
    return code == EAGAIN || code == EWOULDBLOCK || code == EINTR;
}

bool isReadyToWrite(int line) {
    pollfd state{line, POLLOUT, 0};
    return ::poll(&state, 1, 0) == 1 && (state.revents & POLLOUT) != 0;
}

bool isBroken(int line) {
    pollfd state{line, 0, 0};
    return ::poll(&state, 1, 0) == 1;
}

int openPrinter(const PrinterSettings& settings) {
    switch (settings.kind) {
        case PrinterSettings::Kind::File:
            return openDevice(settings.device, O_WRONLY | O_APPEND);
        case PrinterSettings::Kind::Serial:
            return openSerial(settings.device, settings.line);
        case PrinterSettings::Kind::Tcp:
            return connectTcp(settings.address, settings.port);
        case PrinterSettings::Kind::Roll:
            break;
    }
    errno = ENODEV;
    return -1;
}

}  // namespace

PrintQueue::PrintQueue(const PrinterSettings& settings, Times times) : settings_(settings), times_(times) {
    // A printer that goes away while it is written to must not end the program.
    std::signal(SIGPIPE, SIG_IGN);
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { phase_ == Phase::Idle ? proceed() : step(); });
    if (const int waiting = spool_.count(); waiting > 0) {
        trace(u"printer: %1 jobs wait from before"_s.arg(waiting));
        timer_.start(0);
    } else {
        timer_.start(times_.look);
    }
}

PrintQueue::~PrintQueue() {
    QElapsedTimer leaving;
    leaving.start();
    // A farewell has its own time: a job whose connection breaks only now is still kept.
    while (phase_ == Phase::Parting || (phase_ != Phase::Idle && leaving.elapsed() < times_.leaving)) {
        pollfd state{line_, short(phase_ == Phase::Sending ? POLLOUT : 0), 0};
        ::poll(&state, 1, kShortestPoll);
        step();
    }
    hangUp();
}

bool PrintQueue::add(const QByteArray& job) {
    if (!spool_.add(job)) return false;
    if (phase_ == Phase::Idle) {
        proceed();
    } else {
        statusChanged();
    }
    return true;
}

DeviceStatus PrintQueue::status() const {
    const int waiting = spool_.count();
    using State = DeviceStatus::State;
    const State state = !fault_.isEmpty() ? State::Fault : waiting > 0 ? State::Waiting : State::Ready;
    return {state, waiting, fault_};
}

void PrintQueue::proceed() {
    timer_.stop();
    if (out_) {
        // Sent again it must not be, so nothing is until the folder can be written.
        if (!spool_.remove(*out_)) return fail(u"a printed job cannot be removed from the spool"_s);
        out_.reset();
    }
    if (spool_.count() == 0) {
        spool_.unlock();
        timer_.start(times_.look);
        setFault({});
        statusChanged();
        return;
    }
    if (!spool_.lock()) {
        if (errno != EWOULDBLOCK) return fail(u"the spool cannot be locked: "_s + errorText(errno));
        // Another program on this device folder sends; it takes this job with its own.
        timer_.start(times_.retry);
        statusChanged();
        return;
    }
    job_ = spool_.oldest();
    if (!job_) return proceed();
    const std::optional<QByteArray> bytes = spool_.read(*job_);
    if (!bytes) return fail(u"a waiting job cannot be read"_s);
    sent_ = 0;
    line_ = openPrinter(settings_);
    if (line_ < 0) return fail(errorText(errno));

    // What the printer holds of the first try is ended, lest the command that follows be taken for its rest.
    bytes_ = job_->stage == PrintSpool::Stage::Begun ? '\n' + *bytes : *bytes;
    untransmitted_ = 0;
    hasPeerEnded_ = false;
    readFailure_.clear();
    phase_ = Phase::Sending;
    sinceProgress_.start();
    writable_ = std::make_unique<QSocketNotifier>(line_, QSocketNotifier::Write);
    connect(writable_.get(), &QSocketNotifier::activated, this, &PrintQueue::step);
    if (isTcp()) {
        readable_ = std::make_unique<QSocketNotifier>(line_, QSocketNotifier::Read);
        connect(readable_.get(), &QSocketNotifier::activated, this, &PrintQueue::step);
    }
    step();
}

void PrintQueue::step() {
    if (phase_ == Phase::Idle) return;
    if (isTcp()) readAnswers();
    if (!readFailure_.isEmpty()) {
        if (phase_ == Phase::Parting) spool_.mark(&*job_, PrintSpool::Stage::Begun);
        return fail(readFailure_);
    }
    if (phase_ == Phase::Sending) send();
    if (phase_ == Phase::Idle) return;
    if (phase_ == Phase::Draining) {
        const qsizetype left = untransmitted();
        if (left < 0 || (left > 0 && isBroken(line_))) return fail(u"the line broke"_s);
        if (left != untransmitted_) sinceProgress_.start();
        untransmitted_ = left;
        if (left == 0 && isReadyToWrite(line_)) {
            if (!isTcp()) return jobIsOut();
            // The printer has all of it. One that ends the connection in its turn has also worked through it;
            // one that breaks it has not.
            spool_.mark(&*job_, PrintSpool::Stage::Handed);
            ::shutdown(line_, SHUT_WR);
            phase_ = Phase::Parting;
            sinceProgress_.start();
        }
    }
    if (phase_ == Phase::Parting && (hasPeerEnded_ || sinceProgress_.elapsed() >= times_.parting))
        return jobIsOut();
    if (phase_ != Phase::Parting && isGone()) return;
    // Looked at often while the end is near, seldom while the printer rests.
    timer_.start(int(std::clamp<qint64>(sinceProgress_.elapsed() / 2, kShortestPoll, kLongestPoll)));
}

void PrintQueue::send() {
    while (sent_ < bytes_.size()) {
        const ssize_t written = ::write(line_, bytes_.constData() + sent_, size_t(bytes_.size() - sent_));
        if (written < 0 && !isPatient(errno)) return fail(errorText(errno));
        if (written <= 0) return;
        if (sent_ == 0) spool_.mark(&*job_, PrintSpool::Stage::Begun);
        sent_ += written;
        sinceProgress_.start();
        setFault({});
    }
    writable_->setEnabled(false);
    untransmitted_ = untransmitted();
    phase_ = Phase::Draining;
}

/// Looks at a printer that has taken nothing for long. True when the connection is given up.
bool PrintQueue::isGone() {
    if (sinceProgress_.elapsed() < times_.stall) return false;
    if (isTcp()) {
        tcp_info info{};
        socklen_t size = sizeof info;
        ::getsockopt(line_, IPPROTO_TCP, TCP_INFO, &info, &size);
        if (sent_ == 0 || info.tcpi_retransmits >= kLostRepetitions) {
            fail(u"no answer from "_s + settings_.address);
            return true;
        }
    }
    setFault(u"it takes no data (out of paper, open, or switched off)"_s);
    return false;
}

/// Throws away what a network printer says: unread answers would break the connection at its end.
void PrintQueue::readAnswers() {
    std::array<char, 256> buffer;
    ssize_t received = 0;
    while ((received = ::recv(line_, buffer.data(), buffer.size(), 0)) > 0) {
    }
    if (received == 0 && phase_ == Phase::Parting) hasPeerEnded_ = true;
    // An end before the job's last byte shows when writing fails. The notifier would tell of it for ever.
    if (received == 0 && readable_) readable_->setEnabled(false);
    if (received < 0 && !isPatient(errno) && errno != ENOTCONN) readFailure_ = errorText(errno);
}

/// Bytes that the system has taken but not the device; -1 when the line is gone.
qsizetype PrintQueue::untransmitted() const {
    struct stat kind {};
    int bytes = 0;
    if (::fstat(line_, &kind) != 0 || S_ISREG(kind.st_mode)) return 0;
    // A pipe counts what its reader has not taken, a terminal line or a socket what has not gone out.
    const unsigned long question = S_ISFIFO(kind.st_mode) ? FIONREAD : TIOCOUTQ;
    unsigned int lineStatus = TIOCSER_TEMT;
    if (::ioctl(line_, question, &bytes) == 0) {
        // The last bytes are in the line's own memory, where a printer that is not ready holds them as well.
        const bool isInMemory = bytes == 0 && S_ISCHR(kind.st_mode) &&
                                ::ioctl(line_, TIOCSERGETLSR, &lineStatus) == 0 &&
                                (lineStatus & TIOCSER_TEMT) == 0;
        return isInMemory ? 1 : bytes;
    }
    return errno == EIO || errno == ENODEV ? -1 : 0;
}

void PrintQueue::jobIsOut() {
    hangUp();
    breaks_ = 0;
    out_ = std::exchange(job_, std::nullopt);
    if (spool_.remove(*out_)) out_.reset();
    timer_.start(0);
    setFault({});
    statusChanged();
}

void PrintQueue::fail(const QString& reason) {
    hangUp();
    setFault(reason);
    // Each try puts the job's start on paper once more.
    int pause = times_.retry;
    if (sent_ > 0) {
        for (int doubled = 0; doubled < breaks_ && pause < times_.longest; ++doubled) pause *= 2;
        ++breaks_;
    }
    timer_.start(std::min(pause, times_.longest));
}

void PrintQueue::setFault(const QString& fault) {
    if (fault == fault_) return;
    fault_ = fault;
    if (fault.isEmpty()) {
        trace(u"printer: it works again");
    } else {
        trace(u"printer: %1; %2 jobs are kept"_s.arg(fault).arg(spool_.count()));
    }
    statusChanged();
}

void PrintQueue::hangUp() {
    // The notifiers may be those that are being served.
    for (auto* notifier : {&writable_, &readable_}) {
        if (!*notifier) continue;
        (*notifier)->setEnabled(false);
        notifier->release()->deleteLater();
    }
    // What a serial line still holds would keep close() waiting for the printer, half a minute under flow
    // control; the job is sent anew.
    if (line_ >= 0 && untransmitted() > 0 && ::isatty(line_) == 1) {
        ::tcflush(line_, TCOFLUSH);
        termios settings{};
        ::tcgetattr(line_, &settings);
        settings.c_cflag &= ~tcflag_t(CRTSCTS);
        ::tcsetattr(line_, TCSANOW, &settings);
    }
    if (line_ >= 0) ::close(line_);
    line_ = -1;
    phase_ = Phase::Idle;
}

}  // namespace platform::termdev
