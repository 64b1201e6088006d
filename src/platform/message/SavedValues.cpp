#include "platform/message/SavedValues.h"

#include <QFile>
#include <QFileInfo>
#include <QStringBuilder>
#include <algorithm>
#include <utility>

#include "platform/Device.h"
#include "platform/Digits.h"
#include "platform/WholeFile.h"

namespace platform::message {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kLargestFile = 64 * 1024;

bool isKey(QStringView key) {
    return key.size() == 3 && areDigits(key);
}

bool isLineText(QStringView text) {
    return std::ranges::all_of(text, [](QChar c) { return c.unicode() >= 0x20; });
}

std::optional<QByteArray> readFile(QStringView handheldPath) {
    QFile file(device::path(handheldPath));
    // A directory opens on some systems and then gives nothing.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) return std::nullopt;
    QByteArray content = file.read(kLargestFile + 1);
    if (file.error() != QFile::NoError || content.size() > kLargestFile) return std::nullopt;
    return content;
}

/// The lines of the values; nothing when a key or value does not fit one.
std::optional<QByteArray> encode(const SavedValues& values) {
    QByteArray content;
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        if (!isKey(value.key()) || !isLineText(value.value())) return std::nullopt;
        content += QString(value.key() % u'=' % value.value() % u'\n').toUtf8();
    }
    return content;
}

QByteArray encode(const PublicKey& key) {
    return QByteArrayView(key).toByteArray().toHex() + '\n';
}

}  // namespace

Status readSavedValues(SavedValues* values) {
    values->clear();
    const std::optional<QByteArray> content = readFile(kSavedValuesFile);
    if (!content || !content->isValidUtf8()) return kSavedUnreadable;
    const QString text = QString::fromUtf8(*content);
    for (const QStringView line : QStringView(text).split(u'\n')) {
        const QStringView value = line.endsWith(u'\r') ? line.chopped(1) : line;
        if (value.isEmpty()) continue;
        if (value.size() < 4 || !isKey(value.first(3)) || value[3] != u'=' || !isLineText(value)) {
            values->clear();
            return kSavedUnreadable;
        }
        values->insert(value.first(3).toString(), value.sliced(4).toString());
    }
    return kDone;
}

Status readSavedValue(QStringView key, QString* value) {
    value->clear();
    if (!isKey(key)) return kBadInput;
    SavedValues values;
    if (const Status status = readSavedValues(&values); status != kDone) return status;
    const auto found = values.constFind(key.toString());
    if (found == values.constEnd()) return kSavedMissing;
    *value = *found;
    return kDone;
}

bool writeSavedValues(const SavedValues& values) {
    const std::optional<QByteArray> content = encode(values);
    return content && writeWholeFile(device::path(kSavedValuesFile), *content);
}

std::optional<PublicKey> parsePublicKey(QByteArrayView text) {
    return fromHexDigits<std::tuple_size_v<PublicKey>>(text.trimmed());
}

Status readHostKey(PublicKey* key) {
    if (!QFileInfo::exists(device::path(kHostKeyFile))) return kKeyFileMissing;
    const std::optional<QByteArray> content = readFile(kHostKeyFile);
    const std::optional<PublicKey> read = content ? parsePublicKey(*content) : std::nullopt;
    if (!read) return kKeyFileUnreadable;
    *key = *read;
    return kDone;
}

bool writeHostKey(const PublicKey& key) {
    return writeWholeFile(device::path(kHostKeyFile), encode(key));
}

bool writeCardHost(const SavedValues& values, const PublicKey& key, QString* error) {
    const std::optional<QByteArray> lines = encode(values);
    if (!lines) {
        *error = u"a value does not fit its line"_s;
        return false;
    }
    WholeFile keyFile(device::path(kHostKeyFile));
    WholeFile valuesFile(device::path(kSavedValuesFile));
    // Both are on the disk before either takes its name: an address goes with its host's key.
    for (const auto& [file, content] : {std::pair(&keyFile, encode(key)), std::pair(&valuesFile, *lines)}) {
        if (file->write(content)) continue;
        *error = file->errorText();
        return false;
    }
    for (WholeFile* file : {&keyFile, &valuesFile}) {
        if (file->takeName()) continue;
        *error = file->errorText();
        return false;
    }
    return true;
}

Status readSigningKey(SigningKey* key) {
    const QString path = device::path(kSigningKeyFile);
    if (!QFileInfo::exists(path)) return kKeyFileMissing;
    // Unbuffered, so that no copy of the secret stays behind.
    QFile file(path);
    SecureBytes digits(2 * crypto_sign_SEEDBYTES);
    SecureBytes seed(crypto_sign_SEEDBYTES);
    std::size_t size = 0;
    const auto text = reinterpret_cast<char*>(digits.data());
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ||
        file.read(text, qint64(digits.size())) != qint64(digits.size()) ||
        sodium_hex2bin(seed.data(), seed.size(), text, digits.size(), nullptr, &size, nullptr) != 0 ||
        size != seed.size()) {
        return kKeyFileUnreadable;
    }
    *key = signingKeyFrom(seed);
    return kDone;
}

Status makeSigningKey(SigningKey* key, QString* error) {
    if (const Status status = readSigningKey(key); status != kKeyFileMissing) return status;
    SecureBytes seed(crypto_sign_SEEDBYTES);
    randombytes_buf(seed.data(), seed.size());
    SecureBytes digits(2 * seed.size() + 1);
    sodium_bin2hex(reinterpret_cast<char*>(digits.data()), digits.size(), seed.data(), seed.size());
    digits.back() = '\n';
    // Another program may have made one meanwhile: then that is the terminal's.
    const QByteArrayView content(digits.data(), qsizetype(digits.size()));
    writeWholeFile(device::path(kSigningKeyFile), content, error, WholeFile::IfThere::Keep);
    const Status status = readSigningKey(key);
    return status == kKeyFileMissing ? kKeyFileUnreadable : status;
}

QString savedAddress(const QString& address) {
    if (address.contains(u':')) return address;
    QString digits;
    for (const QString& octet : address.split(u'.')) digits += octet.rightJustified(3, u'0');
    return digits;
}

}  // namespace platform::message
