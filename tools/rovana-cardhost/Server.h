#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>

#include "platform/message/Frame.h"
#include "rovana-cardhost/Faults.h"
#include "rovana-cardhost/Ledger.h"
#include "rovana-cardhost/RequestReader.h"

class QTcpSocket;
class QTimer;

namespace cardhost {

/// Listens on 127.0.0.1 and answers the requests of enrolled terminals from the ledger, some at once.
/// Whatever else connects gets no answer. What a connection sends or fails to read takes no more memory than
/// a few frames; one that brings no terminal's request within ten seconds, or none for a minute, is closed,
/// and so is one too many.
class Server : public QObject {
    Q_OBJECT

  public:
    /// `folder` is the host's, with the enrolled terminals.
    Server(Ledger& ledger, QString folder, QList<Fault> faults, QObject* parent = nullptr);

    /// While a file of that name exists, no request is answered.
    void setSilencer(const QString& file) { silencer_ = file; }

    /// Listens on the port, on any free one for 0. False, with the reason in errorText(), when that fails.
    bool listen(quint16 port);
    quint16 port() const { return listener_.serverPort(); }
    QString errorText() const { return listener_.errorString(); }

  private:
    struct Terminal {
        RequestReader reader;
        QTimer* idle = nullptr;
    };

    void accept();
    void admit(QTcpSocket* socket);
    void read(QTcpSocket* socket);
    void serve(QTcpSocket* socket, const OpenedRequest& request);
    void reply(QTcpSocket* socket, const platform::message::Frame& reply, const std::optional<Fault>& fault);
    static void replyWrongly(QTcpSocket* socket, const platform::message::Frame& reply, const Fault& fault);

    Ledger& ledger_;
    const QString folder_;
    QList<Fault> faults_;
    QString silencer_;  ///< Empty for none.
    int requests_ = 0;
    QHash<QTcpSocket*, Terminal> terminals_;
    QTcpServer listener_;  ///< Last: its sockets tell when they go.
};

}  // namespace cardhost
