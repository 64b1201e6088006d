#include "rovana-cardhost/StartedHost.h"

#include <QCoreApplication>

#include "common/Enrolment.h"
#include "platform/WholeFile.h"
#include "platform/message/SavedValues.h"
#include "platform/message/Seal.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;

constexpr int kPatienceMs = 20'000;

}  // namespace

QString StartedHost::start(const QString& folder, const QStringList& options) {
    end();
    folder_ = folder;
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(program(), QStringList{u"--dir"_s, folder, u"--demo"_s} + options);
    while (!process_.canReadLine()) {
        if (!process_.waitForReadyRead(kPatienceMs))
            return u"the card host does not start: "_s + process_.errorString();
    }
    const QString line = QString::fromUtf8(process_.readLine()).trimmed();
    constexpr QStringView kListening = u"listening on 127.0.0.1:";
    port_ = line.startsWith(kListening) ? line.mid(kListening.size()).toUShort() : quint16(0);
    return port_ == 0 ? u"the card host says \"%1\""_s.arg(line) : QString();
}

QString StartedHost::enrol(const QStringList& terminals) const {
    const auto content = platform::readWholeFile(folder_ + u"/host.pub"_s);
    const auto key = content ? parsePublicKey(*content) : std::nullopt;
    if (!key || startCipher() != kDone) return u"the card host has no public key"_s;
    SigningKey own;
    bool isTold = writeHostKey(*key) && makeSigningKey(&own) == kDone;
    for (const QString& terminal : terminals)
        isTold = isTold && enrolTerminal(folder_, terminal, own.publicKey);
    return isTold ? QString() : u"the keys of terminal and card host could not be written"_s;
}

void StartedHost::end() {
    if (!isRunning()) return;
    process_.terminate();
    if (!process_.waitForFinished(kPatienceMs)) kill();
}

void StartedHost::kill() {
    if (!isRunning()) return;
    process_.kill();
    process_.waitForFinished();
}

QString StartedHost::program() {
    return QCoreApplication::applicationDirPath() + u"/rovana-cardhost"_s;
}

}  // namespace cardhost
