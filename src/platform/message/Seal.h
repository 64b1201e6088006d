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
/// the host's key to that one, so only the host can have written it and only the asker can read it.
namespace platform::message {

using PublicKey = std::array<unsigned char, crypto_box_PUBLICKEYBYTES>;

struct KeyPair {
    PublicKey publicKey{};
    SecureBytes secretKey;
};

/// Starts the cipher library and checks that its random source moves: kDone or kCipherFailed.
Status startCipher();

/// Makes a key pair: kDone, or kMessageKeyFailed when it is the one made before.
Status makeKeyPair(KeyPair* pair);

MessageNumber makeMessageNumber();

/// A request as the host opens it.
struct OpenedRequest {
    MessageNumber number{};
    PublicKey replyKey{};
    SecureBytes fields;
};

/// The sealed content of a request's frame; nothing when the host's key is none.
std::optional<QByteArray> sealRequest(const MessageNumber& number, const PublicKey& replyKey,
                                      const SecureBytes& fields, const PublicKey& hostKey);
/// Nothing when the content was not sealed to this key or was changed.
std::optional<OpenedRequest> openRequest(QByteArrayView sealed, const KeyPair& hostKey);

/// The sealed content of a reply's frame; nothing when the reply key is none.
std::optional<QByteArray> sealReply(const MessageNumber& number, const SecureBytes& fields,
                                    const PublicKey& replyKey, const KeyPair& hostKey);
/// The fields of a reply; nothing when the host did not write it for this request.
std::optional<SecureBytes> openReply(QByteArrayView sealed, const MessageNumber& number,
                                     const PublicKey& hostKey, const SecureBytes& replySecretKey);

}  // namespace platform::message
