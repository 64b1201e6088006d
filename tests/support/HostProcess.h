#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include "common/Enrolment.h"
#include "platform/message/SavedValues.h"
#include "support/Pump.h"

namespace test {

/// The program rovana-cardhost with the demonstration's cards, on any free port, for as long as the object
/// lives. Its folder stays between starts.
class HostProcess {
  public:
    ~HostProcess() { stop(); }

    /// Starts the host, enters its key for the terminal and enrols the tests' terminals with the key of this
    /// one.
    void start(const QStringList& more = {}) {
        using namespace Qt::Literals::StringLiterals;
        needApplication();
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(program(), QStringList{u"--dir"_s, folder(), u"--demo"_s} + more);
        ASSERT_TRUE(process_.waitForStarted()) << program().toStdString();
        while (!process_.canReadLine()) ASSERT_TRUE(process_.waitForReadyRead(20'000));
        const QByteArray line = process_.readLine().trimmed();
        ASSERT_TRUE(line.startsWith("listening on 127.0.0.1:")) << line.constData();
        port_ = line.mid(line.lastIndexOf(':') + 1).toUShort();
        QFile key(folder() + u"/host.pub"_s);
        ASSERT_TRUE(key.open(QIODevice::ReadOnly));
        const auto parsed = platform::message::parsePublicKey(key.readAll());
        ASSERT_TRUE(parsed && platform::message::writeHostKey(*parsed));
        platform::message::SigningKey own;
        ASSERT_EQ(platform::message::makeSigningKey(&own), platform::message::kDone);
        for (const QString& number : {u"4711"_s, u"4712"_s, u"4713"_s, u"98"_s, u"99"_s, u"0000000001"_s})
            ASSERT_TRUE(cardhost::enrolTerminal(folder(), number, own.publicKey));
    }
    void stop() {
        if (process_.state() == QProcess::NotRunning) return;
        process_.kill();
        process_.waitForFinished();
    }

    quint16 port() const { return port_; }
    QString folder() const { return folder_.path(); }

    static QString program() {
        return QCoreApplication::applicationDirPath() + QStringLiteral("/rovana-cardhost");
    }

  private:
    QTemporaryDir folder_;
    QProcess process_;
    quint16 port_ = 0;
};

}  // namespace test
