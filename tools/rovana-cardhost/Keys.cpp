#include "rovana-cardhost/Keys.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "platform/WholeFile.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SecureBytes;
using platform::message::KeyPair;

constexpr std::size_t kDigestKeySize = crypto_generichash_KEYBYTES;
constexpr std::size_t kSecretSize = crypto_box_SECRETKEYBYTES + kDigestKeySize;

/// Both secrets as hexadecimal digits and a line end.
SecureBytes encode(const Keys& keys) {
    SecureBytes secrets = keys.box.secretKey;
    secrets.insert(secrets.end(), keys.digestKey.begin(), keys.digestKey.end());
    SecureBytes digits(2 * secrets.size() + 1);
    sodium_bin2hex(reinterpret_cast<char*>(digits.data()), digits.size(), secrets.data(), secrets.size());
    digits.back() = '\n';
    return digits;
}

std::optional<Keys> decode(const SecureBytes& digits) {
    SecureBytes secrets(kSecretSize);
    std::size_t size = 0;
    if (sodium_hex2bin(secrets.data(), secrets.size(), reinterpret_cast<const char*>(digits.data()),
                       digits.size(), "\r\n", &size, nullptr) != 0 ||
        size != kSecretSize) {
        return std::nullopt;
    }
    Keys keys;
    keys.box.secretKey.assign(secrets.begin(), secrets.begin() + crypto_box_SECRETKEYBYTES);
    keys.digestKey.assign(secrets.begin() + crypto_box_SECRETKEYBYTES, secrets.end());
    if (crypto_scalarmult_base(keys.box.publicKey.data(), keys.box.secretKey.data()) != 0)
        return std::nullopt;
    return keys;
}

std::optional<Keys> readKeys(const QString& path) {
    // Unbuffered, so that no copy of a secret stays behind.
    QFile file(path);
    SecureBytes digits(4 * kSecretSize);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return std::nullopt;
    const qint64 size = file.read(reinterpret_cast<char*>(digits.data()), qint64(digits.size()));
    digits.resize(std::size_t(std::max<qint64>(size, 0)));
    return decode(digits);
}

/// Makes the file with fresh secrets unless another program has made it by then.
bool makeKeys(const QString& path, QString* error) {
    Keys keys;
    keys.digestKey.resize(kDigestKeySize);
    randombytes_buf(keys.digestKey.data(), keys.digestKey.size());
    if (makeKeyPair(&keys.box) != platform::message::kDone) {
        *error = u"no keys can be made"_s;
        return false;
    }
    const SecureBytes digits = encode(keys);
    const QByteArrayView content(digits.data(), qsizetype(digits.size()));
    return platform::writeWholeFile(path, content, error, platform::WholeFile::IfThere::Keep) ||
           QFileInfo::exists(path);
}

/// Only a file that is not as it should be is written, so that a host with a full disk still starts.
bool writePublic(const QString& path, const Keys& keys, QString* error) {
    const QByteArray digits = QByteArrayView(keys.box.publicKey).toByteArray().toHex() + '\n';
    return platform::readWholeFile(path) == digits || platform::writeWholeFile(path, digits, error);
}

/// Both secrets, for the owner alone.
QString secretFile(const QString& folder) {
    return folder + u"/host.key"_s;
}

/// The public key, for the terminals.
QString publicFile(const QString& folder) {
    return folder + u"/host.pub"_s;
}

}  // namespace

std::optional<Keys> openKeys(const QString& folder, QString* error) {
    if (platform::message::startCipher() != platform::message::kDone) {
        *error = u"the cipher library does not start"_s;
        return std::nullopt;
    }
    const QString path = secretFile(folder);
    QString reason;
    if (!QFileInfo::exists(path) && !makeKeys(path, &reason)) {
        *error = u"%1 could not be written: %2"_s.arg(path, reason);
        return std::nullopt;
    }
    std::optional<Keys> keys = readKeys(path);
    if (!keys) {
        *error =
            u"%1 cannot be read or holds no keys; bring back a copy, or remove it for new keys, which "
            "every terminal then needs"_s.arg(path);
        return std::nullopt;
    }
    if (!writePublic(publicFile(folder), *keys, &reason)) {
        *error = u"%1 could not be written: %2"_s.arg(publicFile(folder), reason);
        return std::nullopt;
    }
    return keys;
}

}  // namespace cardhost
