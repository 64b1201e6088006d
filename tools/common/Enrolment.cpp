#include "common/Enrolment.h"

#include <QDir>
#include <QFile>
#include <QStringBuilder>

#include "platform/Digits.h"
#include "platform/Sync.h"
#include "platform/WholeFile.h"
#include "platform/message/SavedValues.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;

using platform::message::PublicKey;

constexpr qsizetype kMostDigits = 10;
constexpr qint64 kLargestFile = 1024;
constexpr QStringView kSuffix = u".pub";

QString terminalsFolder(const QString& hostFolder) {
    return hostFolder + u"/terminals"_s;
}

QString keyFile(const QString& hostFolder, const QString& number) {
    return terminalsFolder(hostFolder) % u'/' % number % kSuffix;
}

}  // namespace

bool isTerminalNumber(QStringView text) {
    return text.size() <= kMostDigits && platform::areDigits(text);
}

bool enrolTerminal(const QString& hostFolder, const QString& number, const PublicKey& key, QString* error) {
    if (!isTerminalNumber(number)) return false;
    if (!platform::makeFolder(terminalsFolder(hostFolder))) {
        if (error != nullptr) *error = u"its folder \"terminals\" cannot be made"_s;
        return false;
    }
    return platform::writeWholeFile(keyFile(hostFolder, number),
                                    QByteArrayView(key).toByteArray().toHex() + '\n', error);
}

bool removeTerminal(const QString& hostFolder, const QString& number) {
    return isTerminalNumber(number) && QFile::remove(keyFile(hostFolder, number)) &&
           platform::syncToDisk(terminalsFolder(hostFolder));
}

std::optional<PublicKey> enrolledKey(const QString& hostFolder, const QString& number) {
    if (!isTerminalNumber(number)) return std::nullopt;
    QFile file(keyFile(hostFolder, number));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return platform::message::parsePublicKey(file.read(kLargestFile));
}

QStringList enrolledTerminals(const QString& hostFolder) {
    QStringList numbers;
    const QDir folder(terminalsFolder(hostFolder));
    for (const QString& name : folder.entryList({u'*' + kSuffix.toString()}, QDir::Files, QDir::Name)) {
        const QString number = name.chopped(kSuffix.size());
        if (isTerminalNumber(number)) numbers << number;
    }
    return numbers;
}

}  // namespace cardhost
