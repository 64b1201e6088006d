#include "tools/office/LineCutter.h"

#include <gtest/gtest.h>

#include <QTcpSocket>
#include <memory>

namespace test {

LineCutter::LineCutter(int serverPort) : serverPort_(serverPort) {
    EXPECT_TRUE(listener_.listen(QHostAddress::LocalHost));
    QObject::connect(&listener_, &QTcpServer::newConnection, &listener_, [this] { connectThrough(); });
}

void LineCutter::connectThrough() {
    QTcpSocket* const terminal = listener_.nextPendingConnection();
    auto* const server = new QTcpSocket(terminal);
    const auto left = std::make_shared<qint64>(limit_);
    const auto pass = [=](QTcpSocket* from, QTcpSocket* to) {
        QByteArray bytes = from->readAll();
        if (*left >= 0) {
            bytes.truncate(*left);
            *left -= bytes.size();
        }
        if (to->state() != QAbstractSocket::UnconnectedState) to->write(bytes);
        if (*left != 0) return;
        // What was let through arrives; then nobody hears of the other.
        if (to->state() == QAbstractSocket::ConnectedState) to->flush();
        terminal->abort();
        server->abort();
    };
    QObject::connect(terminal, &QTcpSocket::readyRead, server, [=] { pass(terminal, server); });
    QObject::connect(server, &QTcpSocket::readyRead, terminal, [=] { pass(server, terminal); });
    QObject::connect(terminal, &QTcpSocket::disconnected, server, [=] {
        server->disconnectFromHost();
        terminal->deleteLater();
    });
    QObject::connect(server, &QTcpSocket::disconnected, terminal, [=] { terminal->disconnectFromHost(); });
    // A server that is not there is one that has gone.
    QObject::connect(server, &QTcpSocket::errorOccurred, terminal, [=] { terminal->abort(); });
    server->connectToHost(QStringLiteral("localhost"), quint16(serverPort_));
}

}  // namespace test
