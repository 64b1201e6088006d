#include "rovana-cardhost/HostSeal.h"

#include <algorithm>

namespace cardhost {
namespace {

unsigned char* bytes(QByteArray& array) {
    return reinterpret_cast<unsigned char*>(array.data());
}

const unsigned char* bytes(QByteArrayView view) {
    return reinterpret_cast<const unsigned char*>(view.data());
}

}  // namespace

using platform::SecureBytes;
using platform::message::KeyPair;
using platform::message::kRequestPrefix;
using platform::message::MessageNumber;
using platform::message::PublicKey;

std::optional<OpenedRequest> openRequest(QByteArrayView sealed, const KeyPair& hostKey) {
    if (sealed.size() < qsizetype(crypto_box_SEALBYTES + kRequestPrefix)) return std::nullopt;
    SecureBytes plain(std::size_t(sealed.size()) - crypto_box_SEALBYTES);
    if (crypto_box_seal_open(plain.data(), bytes(sealed), std::size_t(sealed.size()),
                             hostKey.publicKey.data(), hostKey.secretKey.data()) != 0) {
        return std::nullopt;
    }
    OpenedRequest request;
    std::copy_n(plain.begin(), sizeof(MessageNumber), request.number.begin());
    std::copy_n(plain.begin() + sizeof(MessageNumber), request.replyKey.size(), request.replyKey.begin());
    std::copy_n(plain.begin() + sizeof(MessageNumber) + request.replyKey.size(), request.signature.size(),
                request.signature.begin());
    request.fields.assign(plain.begin() + kRequestPrefix, plain.end());
    return request;
}

bool isSignedBy(const OpenedRequest& request, const PublicKey& terminal, const PublicKey& hostKey) {
    const SecureBytes text =
        platform::message::signedText(request.number, request.replyKey, request.fields, hostKey);
    return crypto_sign_verify_detached(request.signature.data(), text.data(), text.size(), terminal.data()) ==
           0;
}

std::optional<QByteArray> sealReply(const MessageNumber& number, const SecureBytes& fields,
                                    const PublicKey& replyKey, const KeyPair& hostKey) {
    SecureBytes plain(sizeof(MessageNumber) + fields.size());
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

}  // namespace cardhost
