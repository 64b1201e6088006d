#include "platform/termdev/Swipe.h"

#include <QString>

namespace platform::termdev {
namespace {

constexpr qsizetype kLongestTrack2 = 37;
constexpr qsizetype kLongestTrack3 = 104;
constexpr qsizetype kLongestAccount = 19;
constexpr char kEndSentinel = '?';
constexpr char kSeparator = '=';
constexpr int kStartValue = 0xB;  // On the card, whatever the reader sends for it.

/// A track's characters carry four bits each.
bool isTrackCharacter(char c) {
    return c >= '0' && c <= '?';
}

bool isFraming(char c) {
    return c == '\x02' || c == '\x03' || c == '\r' || c == '\n';
}

bool starts(char c, const QString& startCharacters) {
    return startCharacters.contains(QLatin1Char(c));
}

/// The check character over start, data and end.
char checkCharacter(QByteArrayView data) {
    int bits = kStartValue ^ (kEndSentinel & 0xF);
    for (const char c : data) bits ^= c & 0xF;
    return char('0' + bits);
}

bool isTrack2(QByteArrayView data) {
    const qsizetype account = data.indexOf(kSeparator);
    if (data.size() > kLongestTrack2 || account < 1 || account > kLongestAccount) return false;
    for (const char c : data.first(account)) {
        if (c < '0' || c > '9') return false;
    }
    return true;
}

SecureBytes secured(QByteArrayView text) {
    return {text.begin(), text.end()};
}

}  // namespace

std::optional<Swipe> readSwipe(QByteArrayView text, const ReaderSettings& settings) {
    Swipe swipe;
    qsizetype at = 0;
    while (at < text.size()) {
        if (isFraming(text[at])) {
            ++at;
            continue;
        }
        const qsizetype end = text.indexOf(kEndSentinel, at);
        if (end <= at) return std::nullopt;  // None, or one in place of a start.
        const QByteArrayView data = text.sliced(at + 1, end - at - 1);
        for (const char c : data) {
            // A start inside is the next track's: the end of this one was lost.
            if (!isTrackCharacter(c) || c == ';') return std::nullopt;
        }
        const bool isFirst = swipe.track2.empty() && swipe.track3.empty();
        const bool mayBe2 = isFirst && starts(text[at], settings.track2Starts) && isTrack2(data);
        const bool mayBe3 = swipe.track3.empty() && starts(text[at], settings.track3Starts) &&
                            !data.isEmpty() && data.size() <= kLongestTrack3;
        if (!mayBe2 && !mayBe3) return std::nullopt;
        (mayBe2 ? swipe.track2 : swipe.track3) = secured(text.sliced(at, end + 1 - at));
        at = end + 1;

        if (at >= text.size() || isFraming(text[at])) continue;
        // The check character may look like the start of a track, so it is one only before another start or
        // the end.
        const bool isLast = at + 1 >= text.size() || isFraming(text[at + 1]);
        const bool isBeforeStart =
            !isLast && (starts(text[at + 1], settings.track3Starts) && text.indexOf(kEndSentinel, at) > 0);
        const bool isCheck = text[at] == checkCharacter(data) && (isLast || isBeforeStart);
        if (isCheck) {
            ++at;
        } else if (isLast || !starts(text[at], settings.track3Starts)) {
            return std::nullopt;
        }
    }
    using Tracks = ReaderSettings::Tracks;
    const bool isLacking2 = settings.tracks != Tracks::Only3 && swipe.track2.empty();
    const bool isLacking3 = settings.tracks != Tracks::Only2 && swipe.track3.empty();
    if (isLacking2 || isLacking3) return std::nullopt;
    return swipe;
}

}  // namespace platform::termdev
