#pragma once

#include <QByteArrayView>
#include <optional>

#include "platform/SecureBytes.h"
#include "platform/Settings.h"

namespace platform::termdev {

/// Characters that one swipe may have at most, framing included; more is no swipe.
inline constexpr int kLongestSwipe = 256;

/// The tracks of one card, sentinels included, as the reader sent them; empty for one that did not come.
struct Swipe {
    SecureBytes track2;
    SecureBytes track3;
};

/// Reads a whole swipe: optional framing (STX, CR, LF, ETX), then up to two tracks, each a start character of
/// the settings, data, "?" and perhaps the check character. Nothing when a track that the settings ask for is
/// missing or anything in it is wrong: a character that no track has, a length, a check character, an account
/// number of more than 19 digits.
std::optional<Swipe> readSwipe(QByteArrayView text, const ReaderSettings& settings);

}  // namespace platform::termdev
