#include "platform/message/Seal.h"

#include <algorithm>
#include <string_view>

namespace platform::message {
namespace {

constexpr std::size_t kNumberSize = sizeof(MessageNumber);
constexpr std::size_t kRequestPrefix = kNumberSize + crypto_box_PUBLICKEYBYTES + crypto_sign_BYTES;
/// Stands before what is signed, so that no signature made for anything else fits.
constexpr std::string_view kSignedAs = "rovana request 2";

unsigned char* bytes(QByteArray& array) {
    return reinterpret_cast<unsigned char*>(array.data());
}

const unsigned char* bytes(QByteArrayView view) {
    return reinterpret_cast<const unsigned char*>(view.data());
}

/// What a terminal signs. The host's key is part of it: what was signed for one host says nothing to another.
SecureBytes toBeSigned(const MessageNumber& number, const PublicKey& replyKey, const SecureBytes& fields,
                       const PublicKey& hostKey) {
    SecureBytes text(kSignedAs.size() + hostKey.size() + number.size() + replyKey.size() + fields.size());
    auto at = std::copy(kSignedAs.begin(), kSignedAs.end(), text.begin());
    at = std::copy(hostKey.begin(), hostKey.end(), at);
    at = std::copy(number.begin(), number.end(), at);
    at = std::copy(replyKey.begin(), replyKey.end(), at);
    std::copy(fields.begin(), fields.end(), at);
    return text;
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
    const SecureBytes text = toBeSigned(number, replyKey, fields, hostKey);
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

std::optional<OpenedRequest> openRequest(QByteArrayView sealed, const KeyPair& hostKey) {
    if (sealed.size() < qsizetype(crypto_box_SEALBYTES + kRequestPrefix)) return std::nullopt;
    SecureBytes plain(std::size_t(sealed.size()) - crypto_box_SEALBYTES);
    if (crypto_box_seal_open(plain.data(), bytes(sealed), std::size_t(sealed.size()),
                             hostKey.publicKey.data(), hostKey.secretKey.data()) != 0) {
        return std::nullopt;
    }
    OpenedRequest request;
    std::copy_n(plain.begin(), kNumberSize, request.number.begin());
    std::copy_n(plain.begin() + kNumberSize, request.replyKey.size(), request.replyKey.begin());
    std::copy_n(plain.begin() + kNumberSize + request.replyKey.size(), request.signature.size(),
                request.signature.begin());
    request.fields.assign(plain.begin() + kRequestPrefix, plain.end());
    return request;
}

bool isSignedBy(const OpenedRequest& request, const PublicKey& terminal, const PublicKey& hostKey) {
    const SecureBytes text = toBeSigned(request.number, request.replyKey, request.fields, hostKey);
    return crypto_sign_verify_detached(request.signature.data(), text.data(), text.size(), terminal.data()) ==
           0;
}

std::optional<QByteArray> sealReply(const MessageNumber& number, const SecureBytes& fields,
                                    const PublicKey& replyKey, const KeyPair& hostKey) {
    SecureBytes plain(kNumberSize + fields.size());
    std::copy(fields.begin(), fields.end(), std::copy(number.begin(), number.end(), plain.begin()));
    QByteArray sealed(qsizetype(crypto_box_NONCEBYTES + crypto_box_MACBYTES + plain.size()),
                      Qt::Uninitialized);
    unsigned char* const nonce = bytes(sealed);
    randombytes_buf(nonce, crypto_box_NONCEBYTES);
    if (crypto_box_easy(nonce + crypto_box_NONCEBYTES, plain.data(), plain.size(), nonce, replyKey.data(),
                        hostKey.secretKey.data()) != 0) {
        return std::nullopt;
    }
    return sealed;
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
