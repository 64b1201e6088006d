#include "desk/DeskPrinter.h"

#include <QStringTokenizer>

#include "platform/Trace.h"

namespace desk {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;

namespace {

constexpr int kNormalSize = 0;
constexpr int kTitleSize = 4;

}  // namespace

DeskPrinter::DeskPrinter(qint64 rollBytes, int retry) : roll_(rollBytes) {
    retry_.setSingleShot(true);
    retry_.setInterval(retry);
    QObject::connect(&retry_, &QTimer::timeout, [this] { printWaiting(); });
    printWaiting();
}

void DeskPrinter::setFault(const QString& fault, DeviceStatus::Cause cause) {
    if (fault == fault_) return;
    fault_ = fault;
    cause_ = cause;
    if (!fault.isEmpty()) {
        platform::trace(u"printer: %1; %2 jobs are kept"_s.arg(fault).arg(spool_.count()));
        return;
    }
    platform::trace(u"printer: it works again");
    printWaiting();
}

DeviceStatus DeskPrinter::status() const {
    using State = DeviceStatus::State;
    const int waiting = spool_.count();
    return {!fault_.isEmpty() ? State::Fault
            : waiting > 0     ? State::Waiting
                              : State::Ready,
            waiting, fault_, cause_};
}

bool DeskPrinter::putOut(const QList<PaperLine>& lines) {
    QByteArray job;
    for (const PaperLine& line : lines) job += paperText(line).toUtf8() + '\n';
    printWaiting();
    // Behind those that the roll did not take either.
    if (spool_.count() > 0 || !fault_.isEmpty()) return keep(job);
    return printOnRoll(job) || keep(job);
}

bool DeskPrinter::keep(const QByteArray& job) {
    retry_.start();
    return spool_.add(job);
}

bool DeskPrinter::printOnRoll(const QByteArray& job) {
    roll_.open();
    const QString text = QString::fromUtf8(job.chopped(1));
    for (const QStringView each : QStringTokenizer(text, u'\n')) {
        const PaperLine line = readPaperText(each);
        QString letters;
        for (const Glyph& glyph : line.glyphs) letters += QString::fromUcs4(&glyph.character, 1);
        roll_.setSize(line.isEnlarged() ? kTitleSize : kNormalSize);
        roll_.print(letters + u'\n');
    }
    return roll_.close() == 1;
}

void DeskPrinter::printWaiting() {
    // Out of order it waits for the end of that.
    if (!fault_.isEmpty() || spool_.count() == 0) return;
    retry_.start();
    if (!spool_.lock()) return;
    while (const auto entry = spool_.oldest()) {
        const auto job = spool_.read(*entry);
        // Removed after it is out: a program killed in between prints it again rather than never.
        if (!job || !printOnRoll(*job) || !spool_.remove(*entry)) break;
    }
    spool_.unlock();
    if (spool_.count() == 0) retry_.stop();
    statusChanged();
}

}  // namespace desk
