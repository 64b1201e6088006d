#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>

#include "platform/Lines.h"
#include "platform/SecureBytes.h"
#include "platform/Settings.h"
#include "platform/termdev/DeviceStatus.h"
#include "platform/termdev/Keystrokes.h"

namespace platform::termdev {

/// The card reader that the settings name: takes its device for itself, gathers what a swipe sends and puts
/// whole ones through CardReader. Anything else is dropped: a swipe that breaks off for longer than 250 ms,
/// that is damaged, or that comes while no screen reads cards. Tracks are in wiped memory only, and never in
/// the log. A device that is away is looked for again and again, each time after twice the pause, at once
/// when a screen begins to read cards and often while it does.
class CardReaderLine : public QObject {
    Q_OBJECT

  public:
    /// The pauses are milliseconds between two tries to open the device: the first, and what they grow to.
    explicit CardReaderLine(const ReaderSettings& settings, int retry = 2000, int longest = 60'000);
    ~CardReaderLine() override;

    /// Ready or a fault; no job ever waits.
    DeviceStatus status() const;

  private:
    using Kind = ReaderSettings::Kind;

    void open();
    void close();
    QString openAndTake();
    QString openSerialLine();
    void read();
    void readSerial();
    void lose(const QString& fault);
    void take(char character);
    void takeEvent(const input_event& event);
    void swipeEnded(bool isQuiet);
    void forget();
    void setFault(const QString& fault);

    const ReaderSettings settings_;
    const int retry_;
    const int longest_;
    int pause_;
    QString fault_;
    QTimer opening_;
    QTimer quiet_;
    std::unique_ptr<SerialLine> serial_;
    int line_ = -1;     ///< A device that is no serial line.
    int sibling_ = -1;  ///< The input device of a hidraw keyboard, held so that its keys reach nobody.
    std::unique_ptr<QSocketNotifier> readable_;
    Keystrokes keystrokes_;
    qint64 lastEvent_ = 0;  ///< Milliseconds of the clock that stamps input events.
    SecureBytes received_;
    bool isSpoilt_ = false;
};

}  // namespace platform::termdev
