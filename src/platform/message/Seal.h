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
/// terminal signs what it asks with a key of its own, by which the host knows it. This is the terminal's
/// half.
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
/// Bytes before the fields of a request: message number, reply key and signature.
inline constexpr std::size_t kRequestPrefix = sizeof(MessageNumber) + sizeof(PublicKey) + sizeof(Signature);
static_assert(sizeof(PublicKey) == crypto_sign_PUBLICKEYBYTES);

/// Starts the cipher library and checks that its random source moves: kDone or kCipherFailed.
Status startCipher();

/// Makes a key pair: kDone, or kMessageKeyFailed when it is the one made before.
Status makeKeyPair(KeyPair* pair);

MessageNumber makeMessageNumber();

/// The signing key pair that comes from these random bytes.
SigningKey signingKeyFrom(const SecureBytes& seed);

/// The sealed content of a request's frame; nothing when the host's key is none or the signing key lacks.
std::optional<QByteArray> sealRequest(const MessageNumber& number, const PublicKey& replyKey,
                                      const SecureBytes& fields, const PublicKey& hostKey,
                                      const SigningKey& terminal);
/// What a terminal signs of a request. The host's key is part of it: what was signed for one host says
/// nothing to another.
SecureBytes signedText(const MessageNumber& number, const PublicKey& replyKey, const SecureBytes& fields,
                       const PublicKey& hostKey);

/// The fields of a reply; nothing when the host did not write it for this request.
std::optional<SecureBytes> openReply(QByteArrayView sealed, const MessageNumber& number,
                                     const PublicKey& hostKey, const SecureBytes& replySecretKey);

}  // namespace platform::message
