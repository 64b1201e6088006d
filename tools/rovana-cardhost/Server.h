#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QTimer>
#include <chrono>

#include "platform/message/Frame.h"
#include "rovana-cardhost/Faults.h"
#include "rovana-cardhost/Ledger.h"
#include "rovana-cardhost/RateLimit.h"
#include "rovana-cardhost/RequestReader.h"

class QTcpSocket;

namespace cardhost {

/// Listens on 127.0.0.1 and answers the requests of enrolled terminals from the ledger, many at once.
/// Whatever else connects gets no answer. What a connection sends or fails to read takes no more memory than
/// a few frames, and one that brings no terminal's request within ten seconds, or none for a minute, is
/// closed. When there are too many, one that has brought none makes way, and first one of an address that
/// connects too often to no purpose. How often a terminal may ask is limited.
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
    using Moment = std::chrono::steady_clock::time_point;

    struct Terminal {
        RequestReader reader;
        QTimer* idle = nullptr;
        QString address;
        Moment since;              ///< Of coming, or of the last request.
        bool isProven = false;     ///< It has brought a request that an enrolled terminal signed.
        bool isUnwelcome = false;  ///< Its address had used up its allowance when it came.
    };

    /// Takes connections in bounded heaps, so that those that are there are read in between.
    class Listener : public QTcpServer {
      public:
        Listener();

      protected:
        void incomingConnection(qintptr descriptor) override;
    };

    void accept();
    void admit(QTcpSocket* socket);
    bool makeRoom();
    void complain(const QString& text);
    void read(QTcpSocket* socket);
    void serve(QTcpSocket* socket, const platform::message::OpenedRequest& request);
    void reply(QTcpSocket* socket, const platform::message::Frame& reply, const std::optional<Fault>& fault);

    Ledger& ledger_;
    const QString folder_;
    QList<Fault> faults_;
    QString silencer_;  ///< Empty for none.
    int requests_ = 0;
    const qsizetype mostTerminals_;
    RateLimit connections_;  ///< By address.
    RateLimit requestsOf_;   ///< By terminal.
    RateLimit complaints_;
    QHash<QTcpSocket*, Terminal> terminals_;
    QTimer again_;       ///< Until there may be room.
    Listener listener_;  ///< Last: its sockets tell when they go.
};

}  // namespace cardhost
