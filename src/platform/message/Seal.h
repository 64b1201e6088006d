#pragma once

#include <sodium.h>

#include <QByteArray>
#include <QByteArrayView>
#include <array>
#include <optional>

#include "platform/SecureBytes.h"
#include "platform/message/Frame.h"
#include "platform/message/Status.h"

/// Enciphering of messages, by libsodium's own constructions. A request is a sealed box to the host's public
/// key. It carries the public half of a key pair made for it alone; the reply is an authenticated box from
/// the host's key to that one, so only the host can have written it and only the asker can read it. The
/// terminal signs what it asks with a key of its own, by which the host knows it.
namespace platform::message {

using PublicKey = std::array<unsigned char, crypto_box_PUBLICKEYBYTES>;

struct KeyPair {
    PublicKey publicKey{};
    SecureBytes secretKey;
};

/// The key pair with which a terminal signs; its halves are of another kind than those of KeyPair.
struct SigningKey {
    PublicKey publicKey{};
    SecureBytes secretKey;
};
using Signature = std::array<unsigned char, crypto_sign_BYTES>;
static_assert(sizeof(PublicKey) == crypto_sign_PUBLICKEYBYTES);

/// Starts the cipher library and checks that its random source moves: kDone or kCipherFailed.
Status startCipher();

/// Makes a key pair: kDone, or kMessageKeyFailed when it is the one made before.
Status makeKeyPair(KeyPair* pair);

MessageNumber makeMessageNumber();

/// The signing key pair that comes from these random bytes.
SigningKey signingKeyFrom(const SecureBytes& seed);

/// A request as the host opens it.
struct OpenedRequest {
    MessageNumber number{};
    PublicKey replyKey{};
    Signature signature{};
    SecureBytes fields;
};

/// The sealed content of a request's frame; nothing when the host's key is none or the signing key lacks.
std::optional<QByteArray> sealRequest(const MessageNumber& number, const PublicKey& replyKey,
                                      const SecureBytes& fields, const PublicKey& hostKey,
                                      const SigningKey& terminal);
/// Nothing when the content was not sealed to this key or was changed.
std::optional<OpenedRequest> openRequest(QByteArrayView sealed, const KeyPair& hostKey);

/// Whether the terminal with that public key has signed the request, and for this host.
bool isSignedBy(const OpenedRequest& request, const PublicKey& terminal, const PublicKey& hostKey);

/// The sealed content of a reply's frame; nothing when the reply key is none.
std::optional<QByteArray> sealReply(const MessageNumber& number, const SecureBytes& fields,
                                    const PublicKey& replyKey, const KeyPair& hostKey);
/// The fields of a reply; nothing when the host did not write it for this request.
std::optional<SecureBytes> openReply(QByteArrayView sealed, const MessageNumber& number,
                                     const PublicKey& hostKey, const SecureBytes& replySecretKey);

}  // namespace platform::message
