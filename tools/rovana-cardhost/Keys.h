#pragma once

#include <QString>
#include <optional>

#include "platform/SecureBytes.h"
#include "platform/message/Seal.h"

namespace cardhost {

/// What the host keeps to itself: its key pair, and the key under which it digests tracks, passwords and
/// requests, so that its database alone gives none of them away.
struct Keys {
    platform::message::KeyPair box;
    platform::SecureBytes digestKey;
};

/// Reads the keys of the folder, or makes them and both files when there are none. A file that is there is
/// never replaced: terminals hold its public half. Nothing, with the reason in `error`, when that fails.
std::optional<Keys> openKeys(const QString& folder, QString* error);

}  // namespace cardhost
