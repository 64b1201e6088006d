#pragma once

#include <QByteArrayView>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <memory>

#include "platform/SecureBytes.h"

namespace platform::termdev {

/// Lets another program of the same user put a card through the reader of a running terminal: a socket in the
/// device folder that takes "track 2, line end, track 3, line end" and answers "ok" or "off".
class SwipeSocket : public QObject {
    Q_OBJECT

  public:
    /// Listens in the device folder. A socket that cannot be made, or that another terminal has, is traced;
    /// the terminal then runs without.
    SwipeSocket();
    ~SwipeSocket() override;

    enum class Answer {
        Taken,       ///< The terminal read the card.
        NotReading,  ///< The terminal runs, but its reader is not enabled.
        NoTerminal,  ///< No terminal runs on this device folder.
        NoAnswer,    ///< One has the socket, but did not answer in time; it may read the card yet.
    };

    /// Sends a card to the terminal that runs on the device folder, which has that many milliseconds for each
    /// step of its answer.
    static Answer send(QByteArrayView track2, QByteArrayView track3, int timeOut = 5000);

  private:
    void accept();
    void read();
    void answer(bool isReading);
    void endConversation();

    QString path_;
    int listener_ = -1;
    int conversation_ = -1;
    SecureBytes received_;  ///< What has come of a card so far.
    std::unique_ptr<QSocketNotifier> listening_;
    std::unique_ptr<QSocketNotifier> reading_;
};

}  // namespace platform::termdev
