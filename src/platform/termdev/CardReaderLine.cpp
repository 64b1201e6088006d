#include "platform/termdev/CardReaderLine.h"

#include <fcntl.h>
#include <sodium.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QIODevice>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/SystemReason.h"
#include "platform/Trace.h"
#include "platform/termdev/CardReader.h"
#include "platform/termdev/DeviceLine.h"
#include "platform/termdev/Swipe.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLongestGap = 250;

/// Takes an input device for this program alone, so that its keys reach no screen. What is no device types
/// nothing anyway.
bool grab(int descriptor) {
    struct stat kind {};
    if (::fstat(descriptor, &kind) == 0 && !S_ISCHR(kind.st_mode)) return true;
    return ::ioctl(descriptor, EVIOCGRAB, 1) == 0;
}

/// The input device that the kernel makes of a hidraw keyboard; empty when it makes none.
QString siblingOf(const QString& hidraw) {
    const QString name = QFileInfo(QFileInfo(hidraw).canonicalFilePath()).fileName();
    const QDir inputs(u"/sys/class/hidraw/%1/device/input"_s.arg(name));
    for (const QString& input : inputs.entryList({u"input*"_s}, QDir::Dirs)) {
        const QStringList events = QDir(inputs.filePath(input)).entryList({u"event*"_s}, QDir::Dirs);
        if (!events.isEmpty()) return u"/dev/input/"_s + events.constFirst();
    }
    return {};
}

}  // namespace

CardReaderLine::CardReaderLine(const ReaderSettings& settings, int retry, int longest)
    : settings_(settings), retry_(retry), longest_(longest), pause_(retry) {
    opening_.setSingleShot(true);
    quiet_.setSingleShot(true);
    quiet_.setTimerType(Qt::PreciseTimer);
    connect(&opening_, &QTimer::timeout, this, &CardReaderLine::open);
    connect(&quiet_, &QTimer::timeout, this, [this] {
        // What came while the program was busy is no break.
        const auto before = received_.size();
        while (serial_ && serial_->device()->waitForReadyRead(0)) {
        }
        if (!serial_) read();
        if (received_.size() == before) swipeEnded(true);
    });
    CardReader::instance().setWaker([this] {
        if (!opening_.isActive()) return;
        // Not from within the operation that begins to read.
        pause_ = retry_;
        opening_.start(0);
    });
    open();
}

CardReaderLine::~CardReaderLine() {
    CardReader::instance().setWaker({});
    close();
}

DeviceStatus CardReaderLine::status() const {
    using State = DeviceStatus::State;
    return {fault_.isEmpty() ? State::Ready : State::Fault, 0, fault_};
}

/// Opens the device for this program alone. Why it cannot; empty when it can.
QString CardReaderLine::openAndTake() {
    if (settings_.kind == Kind::Serial) return openSerialLine();
    line_ = openDevice(settings_.device, O_RDONLY);
    if (line_ < 0) return systemReason();
    bool isTaken = true;
    if (settings_.kind == Kind::Evdev) {
        isTaken = grab(line_);
    } else if (const QString sibling = siblingOf(settings_.device); !sibling.isEmpty()) {
        sibling_ = openDevice(sibling, O_RDONLY);
        isTaken = sibling_ >= 0 && grab(sibling_);
    }
    // Better no reader than one that types card tracks into the screens.
    if (!isTaken) return systemReason();
    keystrokes_.reset();
    readable_ = std::make_unique<QSocketNotifier>(line_, QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, &CardReaderLine::read);
    return {};
}

QString CardReaderLine::openSerialLine() {
    // Qt does not wipe its buffer. So it never holds more than one character, which the next one overwrites.
    serial_ = makeSerialLine(1);
    if (!serial_) return loadLines();
    connect(serial_->device(), &QIODevice::readyRead, this, &CardReaderLine::readSerial);
    return serial_->open(settings_.device, settings_.line, [this] { lose(u"it was taken away"_s); });
}

void CardReaderLine::open() {
    const QString fault = openAndTake();
    if (!fault.isEmpty()) return lose(fault);
    pause_ = retry_;
    setFault({});
}

void CardReaderLine::lose(const QString& fault) {
    close();
    setFault(fault);
    opening_.start(pause_);
    // While a screen waits for a card somebody may be plugging the reader in.
    if (!CardReader::instance().isReading()) pause_ = std::min(2 * pause_, longest_);
}

void CardReaderLine::close() {
    quiet_.stop();
    forget();
    if (readable_) {  // It may be the one that is being served.
        readable_->setEnabled(false);
        readable_.release()->deleteLater();
    }
    serial_.reset();
    for (int* descriptor : {&line_, &sibling_}) {
        if (*descriptor >= 0) ::close(std::exchange(*descriptor, -1));
    }
}

void CardReaderLine::readSerial() {
    // Asked for more than there is, the port goes on to the next character.
    std::array<char, 2> buffer;
    const qint64 count = serial_->device()->read(buffer.data(), qint64(buffer.size()));
    for (qint64 at = 0; at < count; ++at) take(buffer[size_t(at)]);
    sodium_memzero(buffer.data(), buffer.size());
}

void CardReaderLine::read() {
    // A whole number of input events and of keyboard reports.
    std::array<char, 32 * sizeof(input_event)> buffer;
    const size_t most = settings_.kind == Kind::Hidraw ? Keystrokes::kReportBytes : buffer.size();
    const ssize_t count = line_ < 0 ? -1 : ::read(line_, buffer.data(), most);
    const int reason = errno;
    if (count > 0) {
        const QByteArrayView bytes(buffer.data(), count);
        if (settings_.kind == Kind::Hidraw) {
            keystrokes_.report(bytes, [this](char character) { take(character); });
        } else {
            for (size_t at = 0; at + sizeof(input_event) <= size_t(count); at += sizeof(input_event)) {
                input_event event{};
                std::memcpy(&event, buffer.data() + at, sizeof event);
                takeEvent(event);
                sodium_memzero(&event, sizeof event);
            }
        }
    }
    sodium_memzero(buffer.data(), buffer.size());
    const bool isWaiting = count < 0 && (reason == EAGAIN || reason == EINTR);
    if (count > 0 || isWaiting || line_ < 0) return;
    lose(count == 0 ? u"it was taken away"_s : systemReason(reason));
}

void CardReaderLine::takeEvent(const input_event& event) {
    // The kernel had to throw keys away.
    if (event.type == EV_SYN && event.code == SYN_DROPPED) isSpoilt_ = true;
    const char character = keystrokes_.character(event);
    if (character == 0) return;
    // The kernel's own time of the key: right however busy this program was.
    const qint64 moment = qint64(event.input_event_sec) * 1000 + event.input_event_usec / 1000;
    const qint64 gap = moment - std::exchange(lastEvent_, moment);
    if (gap > kLongestGap && !received_.empty()) swipeEnded(true);
    take(character);
}

void CardReaderLine::take(char character) {
    if (received_.size() >= size_t(kLongestSwipe)) {
        isSpoilt_ = true;
    } else {
        received_.push_back(static_cast<unsigned char>(character));
    }
    quiet_.start(kLongestGap);
    // The end of a line may also stand between the tracks: what is not whole yet goes on.
    if (character == '\r' || character == '\n' || character == '\x03') swipeEnded(false);
}

void CardReaderLine::swipeEnded(bool isQuiet) {
    const QByteArrayView text(reinterpret_cast<const char*>(received_.data()), qsizetype(received_.size()));
    const std::optional<Swipe> swipe = isSpoilt_ ? std::nullopt : readSwipe(text, settings_);
    if (!swipe && !isQuiet) return;
    const bool isFramingOnly = text.trimmed().isEmpty() || text == QByteArrayView("\x03");
    forget();
    if (!swipe) {
        if (!isFramingOnly) trace(u"card reader: a partial or damaged swipe is dropped");
        return;
    }
    // Handed on from the event loop, because the password keypad may hold it for long.
    QTimer::singleShot(0, this, [taken = std::make_shared<const Swipe>(*swipe)] {
        const auto view = [](const SecureBytes& bytes) {
            return QByteArrayView(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
        };
        if (!CardReader::instance().swipe(view(taken->track2), view(taken->track3)))
            trace(u"card reader: a swipe is dropped; no screen reads cards now");
    });
}

void CardReaderLine::forget() {
    quiet_.stop();
    SecureBytes().swap(received_);
    keystrokes_.wipe();
    isSpoilt_ = false;
}

void CardReaderLine::setFault(const QString& fault) {
    if (fault == fault_) return;
    fault_ = fault;
    trace(fault.isEmpty() ? u"card reader: it works again"_s : u"card reader: "_s + fault);
    statusChanged();
}

}  // namespace platform::termdev
