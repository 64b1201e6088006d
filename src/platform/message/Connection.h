#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QStringView>
#include <memory>
#include <optional>

namespace platform::message {

/// The address in network byte order that four dotted numbers name; nothing for any other text and for
/// 0.0.0.0.
std::optional<quint32> parseAddress(QStringView text);

/// A TCP connection from the event loop. The card host has an address of numbers and seals its messages
/// itself, so neither names nor encryption are looked after, and the terminal starts without the libraries
/// that a general one brings. No signal is emitted from within an operation; a receiver may close or delete
/// the connection.
class Connection : public QObject {
    Q_OBJECT

  public:
    enum class Start { UnderWay, Failed, NoSocket };

    using QObject::QObject;
    ~Connection() override { close(); }

    /// Begins to connect; `connected` or `lost` follows. Failed when no way leads to the address, NoSocket
    /// when the system gives no socket for it.
    Start open(quint32 address, quint16 port);

    /// Sends the bytes as the other side takes them; `written` follows when all are on their way.
    void write(const QByteArray& bytes);

    /// What has come since the last call, at most kFrameLimit bytes; empty when nothing has.
    QByteArray read();

    /// Ends the connection at once, without a signal.
    void close();

  Q_SIGNALS:
    void connected();
    void written();
    void readyRead();
    /// The connection could not be made, was broken or was closed by the other side. What came before that
    /// can still be read.
    void lost();

  private:
    void readable();
    void writable();
    void lose();

    int socket_ = -1;
    bool isConnected_ = false;
    bool isOver_ = false;  ///< The other side sends nothing more.
    QByteArray unsent_;
    std::unique_ptr<QSocketNotifier> onReadable_;
    std::unique_ptr<QSocketNotifier> onWritable_;
};

}  // namespace platform::message
