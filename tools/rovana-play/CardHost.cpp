#include "rovana-play/CardHost.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QHostAddress>

#include "common/Enrolment.h"
#include "platform/Device.h"
#include "platform/message/SavedValues.h"
#include "platform/message/Seal.h"

namespace pilot {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;

constexpr int kStartMs = 20000;
/// The visits' terminal at the host.
constexpr QStringView kTerminal = u"0000000001";

QString tellTerminal(const QString& keyFile, quint16 port) {
    QFile file(keyFile);
    const auto key = file.open(QIODevice::ReadOnly) ? parsePublicKey(file.readAll()) : std::nullopt;
    if (!key || startCipher() != kDone) return u"the card host has no public key"_s;
    const SavedValues values{
        {kHostAddressKey.toString(), savedAddress(QHostAddress(QHostAddress::LocalHost))},
        {kHostPortKey.toString(), QString::number(port)},
        {kTerminalKey.toString(), kTerminal.toString()}};
    SigningKey own;
    const bool isTold =
        writeHostKey(*key) && writeSavedValues(values) && makeSigningKey(&own) == kDone &&
        cardhost::enrolTerminal(QFileInfo(keyFile).path(), kTerminal.toString(), own.publicKey);
    return isTold ? QString() : u"the saved values could not be written"_s;
}

}  // namespace

CardHost::~CardHost() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.terminate();
    if (!process_.waitForFinished(kStartMs)) process_.kill();
}

QString CardHost::start(const QStringList& options) {
    if (process_.state() != QProcess::NotRunning) {
        process_.terminate();
        process_.waitForFinished(kStartMs);
    }
    const QString folder = platform::device::folder() + u"/cardhost"_s;
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(QCoreApplication::applicationDirPath() + u"/rovana-cardhost"_s,
                   QStringList{u"--dir"_s, folder, u"--port"_s, u"0"_s, u"--demo"_s} + options);
    while (!process_.canReadLine()) {
        if (!process_.waitForReadyRead(kStartMs))
            return u"the card host does not start: "_s + process_.errorString();
    }
    const QString line = QString::fromUtf8(process_.readLine()).trimmed();
    const quint16 port = line.mid(line.lastIndexOf(u':') + 1).toUShort();
    if (port == 0) return u"the card host says \"%1\""_s.arg(line);
    return tellTerminal(folder + u"/host.pub"_s, port);
}

}  // namespace pilot
