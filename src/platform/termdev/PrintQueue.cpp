#include "platform/termdev/PrintQueue.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/SystemReason.h"
#include "platform/Trace.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLongestPoll = 250;
constexpr int kShortestPoll = 5;
}  // namespace

PrintQueue::PrintQueue(const PrinterSettings& settings, Times times) : settings_(settings), times_(times) {
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
        const auto left = int(std::max<qint64>(1, times_.leaving - leaving.elapsed()));
        line_->work(phase_ == Phase::Sending ? left : kShortestPoll);
        step();
    }
    hangUp();
}

bool PrintQueue::add(const QByteArray& job) {
    if (!spool_.add(job)) return false;
    if (phase_ == Phase::Idle) {
        absences_ = 0;
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
    return {state, waiting, fault_, cause_};
}

void PrintQueue::proceed() {
    timer_.stop();
    if (out_) {
        // Sent again it must not be, so nothing is until the folder can be written.
        if (!spool_.remove(*out_))
            return fail(u"a printed job cannot be removed from the spool"_s, Cause::NoRoom);
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
        if (errno != EWOULDBLOCK)
            return fail(u"the spool cannot be locked: "_s + systemReason(), Cause::NoRoom);
        // Another program on this device folder sends; it takes this job with its own.
        timer_.start(times_.retry);
        statusChanged();
        return;
    }
    job_ = spool_.oldest();
    if (!job_) return proceed();
    const std::optional<QByteArray> bytes = spool_.read(*job_);
    if (!bytes) return fail(u"a waiting job cannot be read"_s, Cause::NoRoom);
    sent_ = 0;
    untransmitted_ = 0;
    phase_ = Phase::Sending;
    sinceProgress_.start();
    line_ = PrinterLine::make(settings_);
    // That it has begun is noted at once, lest a kill come first.
    connect(line_.get(), &PrinterLine::changed, this, &PrintQueue::takeNote);
    connect(line_.get(), &PrinterLine::changed, this, &PrintQueue::step, Qt::QueuedConnection);
    // What the printer holds of the first try is ended, lest the command that follows be taken for its rest.
    line_->send(job_->stage == PrintSpool::Stage::Begun ? '\n' + *bytes : *bytes);
    step();
}

void PrintQueue::step() {
    if (phase_ == Phase::Idle) return;
    takeNote();
    if (!line_->failure().isEmpty()) {
        if (phase_ == Phase::Parting) spool_.mark(&*job_, PrintSpool::Stage::Begun);
        return fail(line_->failure(), line_->cause());
    }
    if (phase_ == Phase::Sending && line_->isSent()) {
        untransmitted_ = line_->untransmitted();
        phase_ = Phase::Draining;
    }
    if (phase_ == Phase::Draining) drain();
    if (phase_ == Phase::Parting && (line_->hasEnded() || sinceProgress_.elapsed() >= times_.parting))
        return jobIsOut();
    if (phase_ == Phase::Idle || (phase_ != Phase::Parting && isGone())) return;
    // Looked at often while the end is near, seldom while the printer rests.
    timer_.start(int(std::clamp<qint64>(sinceProgress_.elapsed() / 2, kShortestPoll, kLongestPoll)));
}

/// Notes what has left since the last look.
void PrintQueue::takeNote() {
    if (line_->sent() == sent_) return;
    if (sent_ == 0) spool_.mark(&*job_, PrintSpool::Stage::Begun);
    sent_ = line_->sent();
    absences_ = 0;
    sinceProgress_.start();
    setFault({});
}

/// Waits until the printer has all that the system has taken.
void PrintQueue::drain() {
    const qsizetype left = line_->untransmitted();
    if (left < 0) return fail(u"the line broke"_s);
    if (left != untransmitted_) sinceProgress_.start();
    untransmitted_ = left;
    if (left > 0) return;
    if (!line_->end()) return jobIsOut();
    // The printer has all of it. One that ends the connection in its turn has also worked through it; one
    // that breaks it has not.
    spool_.mark(&*job_, PrintSpool::Stage::Handed);
    phase_ = Phase::Parting;
    sinceProgress_.start();
}

/// Looks at a printer that has taken nothing for long. True when the connection is given up.
bool PrintQueue::isGone() {
    if (sinceProgress_.elapsed() < times_.stall) return false;
    if (line_->isSilent()) {
        fail(u"no answer from "_s + settings_.address);
        return true;
    }
    setFault(u"it takes no data (out of paper, open, or switched off)"_s, Cause::TakesNothing);
    return false;
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

void PrintQueue::fail(const QString& reason, Cause cause) {
    hangUp();
    setFault(reason, cause);
    // One that breaks off puts the job's start on paper with each try, so its pause starts anew with the next
    // job alone; that of one that is away does with every try the user makes.
    int& tries = sent_ > 0 ? breaks_ : absences_;
    int pause = times_.retry;
    for (int doubled = 0; doubled < tries && pause < times_.longest; ++doubled) pause *= 2;
    ++tries;
    timer_.start(std::min(pause, times_.longest));
}

void PrintQueue::setFault(const QString& fault, Cause cause) {
    if (fault == fault_) return;
    fault_ = fault;
    cause_ = cause;
    if (fault.isEmpty()) {
        trace(u"printer: it works again");
    } else {
        trace(u"printer: %1; %2 jobs are kept"_s.arg(fault).arg(spool_.count()));
    }
    statusChanged();
}

void PrintQueue::hangUp() {
    line_.reset();
    phase_ = Phase::Idle;
}

}  // namespace platform::termdev
