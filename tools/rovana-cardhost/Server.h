#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>

#include "platform/message/Frame.h"
#include "rovana-cardhost/Faults.h"
#include "rovana-cardhost/Ledger.h"
#include "rovana-cardhost/RateLimit.h"

class QTcpSocket;
class QTimer;

namespace cardhost {

/// Listens on 127.0.0.1 and answers the requests of enrolled terminals from the ledger, many at once.
/// Whatever else connects gets no answer. What a connection sends or fails to read takes no more memory than
/// a few frames, and one that brings no terminal's request within ten seconds, or none for a minute, is
/// closed. When there are too many, the oldest that has brought none makes way. How often an address may
/// connect to no purpose and how often a terminal may ask are limited.
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
        platform::message::FrameReader reader;
        QTimer* idle = nullptr;
        QString address;
        quint64 order = 0;      ///< Of coming.
        bool isProven = false;  ///< It has brought a request that an enrolled terminal signed.
    };

    void accept();
    bool makeRoom();
    bool isFromTerminal(QTcpSocket* socket, const platform::message::OpenedRequest& request);
    void complain(const QString& text);
    void read(QTcpSocket* socket);
    void serve(QTcpSocket* socket, const platform::message::Frame& frame);
    void reply(QTcpSocket* socket, const platform::message::Frame& reply, const std::optional<Fault>& fault);

    Ledger& ledger_;
    const QString folder_;
    QList<Fault> faults_;
    QString silencer_;  ///< Empty for none.
    int requests_ = 0;
    quint64 connections_ = 0;
    RateLimit strangers_;   ///< By address.
    RateLimit requestsOf_;  ///< By terminal.
    RateLimit complaints_;
    QHash<QTcpSocket*, Terminal> terminals_;
    QTcpServer listener_;  ///< Last: its sockets tell when they go.
};

}  // namespace cardhost
