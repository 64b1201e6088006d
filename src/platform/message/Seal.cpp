#include "platform/message/Seal.h"

#include <algorithm>
#include <string_view>

namespace platform::message {
namespace {

constexpr std::size_t kNumberSize = sizeof(MessageNumber);
/// Stands before what is signed, so that no signature made for anything else fits.
constexpr std::string_view kSignedAs = "rovana request 2";

unsigned char* bytes(QByteArray& array) {
    return reinterpret_cast<unsigned char*>(array.data());
}

const unsigned char* bytes(QByteArrayView view) {
    return reinterpret_cast<const unsigned char*>(view.data());
}

}  // namespace

Status startCipher() {
    if (sodium_init() < 0) return kCipherFailed;
    std::array<unsigned char, 32> first;
    std::array<unsigned char, 32> second;
    randombytes_buf(first.data(), first.size());
    randombytes_buf(second.data(), second.size());
    return first == second ? kCipherFailed : kDone;
}

Status makeKeyPair(KeyPair* pair) {
    static PublicKey before{};
    pair->secretKey.resize(crypto_box_SECRETKEYBYTES);
    if (crypto_box_keypair(pair->publicKey.data(), pair->secretKey.data()) != 0) return kMessageKeyFailed;
    // A random source that starts over would give every message the same key.
    if (pair->publicKey == before) return kMessageKeyFailed;
    before = pair->publicKey;
    return kDone;
}

MessageNumber makeMessageNumber() {
    MessageNumber number;
    randombytes_buf(number.data(), number.size());
    return number;
}

SigningKey signingKeyFrom(const SecureBytes& seed) {
    SigningKey key;
    if (seed.size() != crypto_sign_SEEDBYTES) return key;
    key.secretKey.resize(crypto_sign_SECRETKEYBYTES);
    crypto_sign_seed_keypair(key.publicKey.data(), key.secretKey.data(), seed.data());
    return key;
}

std::optional<QByteArray> sealRequest(const MessageNumber& number, const PublicKey& replyKey,
                                      const SecureBytes& fields, const PublicKey& hostKey,
                                      const SigningKey& terminal) {
    if (terminal.secretKey.size() != crypto_sign_SECRETKEYBYTES) return std::nullopt;
    Signature signature;
    const SecureBytes text = signedText(number, replyKey, fields, hostKey);
    crypto_sign_detached(signature.data(), nullptr, text.data(), text.size(), terminal.secretKey.data());
    SecureBytes plain(kRequestPrefix + fields.size());
    auto at = std::copy(number.begin(), number.end(), plain.begin());
    at = std::copy(replyKey.begin(), replyKey.end(), at);
    at = std::copy(signature.begin(), signature.end(), at);
    std::copy(fields.begin(), fields.end(), at);
    QByteArray sealed(qsizetype(crypto_box_SEALBYTES + plain.size()), Qt::Uninitialized);
    if (crypto_box_seal(bytes(sealed), plain.data(), plain.size(), hostKey.data()) != 0) return std::nullopt;
    return sealed;
}

SecureBytes signedText(const MessageNumber& number, const PublicKey& replyKey, const SecureBytes& fields,
                       const PublicKey& hostKey) {
    SecureBytes text(kSignedAs.size() + hostKey.size() + number.size() + replyKey.size() + fields.size());
    auto at = std::copy(kSignedAs.begin(), kSignedAs.end(), text.begin());
    at = std::copy(hostKey.begin(), hostKey.end(), at);
    at = std::copy(number.begin(), number.end(), at);
    at = std::copy(replyKey.begin(), replyKey.end(), at);
    std::copy(fields.begin(), fields.end(), at);
    return text;
}

std::optional<SecureBytes> openReply(QByteArrayView sealed, const MessageNumber& number,
                                     const PublicKey& hostKey, const SecureBytes& replySecretKey) {
    constexpr std::size_t kOverhead = crypto_box_NONCEBYTES + crypto_box_MACBYTES;
    const std::size_t size = std::size_t(sealed.size());
    if (size < kOverhead + kNumberSize) return std::nullopt;
    SecureBytes plain(size - kOverhead);
    if (crypto_box_open_easy(plain.data(), bytes(sealed) + crypto_box_NONCEBYTES,
                             size - crypto_box_NONCEBYTES, bytes(sealed), hostKey.data(),
                             replySecretKey.data()) != 0) {
        return std::nullopt;
    }
    if (!std::equal(number.begin(), number.end(), plain.begin())) return std::nullopt;
    return SecureBytes(plain.begin() + kNumberSize, plain.end());
}

}  // namespace platform::message
