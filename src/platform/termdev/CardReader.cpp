#include "platform/termdev/CardReader.h"

#include <algorithm>
#include <utility>

namespace platform::termdev {

CardReader& CardReader::instance() {
    static CardReader reader;
    return reader;
}

void CardReader::open() {
    ++openings_;
}

void CardReader::close() {
    openings_ = std::max(0, openings_ - 1);
    if (openings_ == 0) enable(false);
}

void CardReader::enable(bool isEnabled) {
    const bool wasEnabled = std::exchange(isEnabled_, isEnabled && openings_ > 0);
    if (!isEnabled_) forget();
    if (isEnabled_ && !wasEnabled && waker_) waker_();
}

int CardReader::readTrack(int track, char* buffer) const {
    const QStringView text = track == 2 ? track2_.view() : track == 3 ? track3_.view() : QStringView();
    const QStringView fitting = text.first(std::min(text.size(), qsizetype{kTrackBufferBytes - 1}));
    *std::transform(fitting.begin(), fitting.end(), buffer, [](QChar c) { return char(c.unicode()); }) = '\0';
    return fitting.isEmpty() ? 0 : 1;
}

bool CardReader::swipe(QByteArrayView track2, QByteArrayView track3) {
    if (!isEnabled_) return false;
    track2_.assign(track2);
    track3_.assign(track3);
    if (receiver_) receiver_(kCardSwiped);
    return true;
}

void CardReader::forget() {
    track2_.clear();
    track3_.clear();
}

}  // namespace platform::termdev
