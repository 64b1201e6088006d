#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <optional>

#include "platform/message/Seal.h"

/// The card host's half of the seal: it opens requests and seals replies.
namespace cardhost {

/// A request as the host opens it.
struct OpenedRequest {
    platform::message::MessageNumber number{};
    platform::message::PublicKey replyKey{};
    platform::message::Signature signature{};
    platform::SecureBytes fields;
};

/// Nothing when the content was not sealed to this key or was changed.
std::optional<OpenedRequest> openRequest(QByteArrayView sealed, const platform::message::KeyPair& hostKey);

/// Whether the terminal with that public key has signed the request, and for this host.
bool isSignedBy(const OpenedRequest& request, const platform::message::PublicKey& terminal,
                const platform::message::PublicKey& hostKey);

/// The sealed content of a reply's frame; nothing when the reply key is none.
std::optional<QByteArray> sealReply(const platform::message::MessageNumber& number,
                                    const platform::SecureBytes& fields,
                                    const platform::message::PublicKey& replyKey,
                                    const platform::message::KeyPair& hostKey);

}  // namespace cardhost
