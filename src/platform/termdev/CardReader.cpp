#include "platform/termdev/CardReader.h"

#include <algorithm>

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
    isEnabled_ = isEnabled && openings_ > 0;
    if (!isEnabled_) forget();
}

int CardReader::readTrack(int track, char* buffer) const {
    const SecureText* text = track == 2 ? &track2_ : track == 3 ? &track3_ : nullptr;
    const QByteArrayView content =
        text ? text->view().first(std::min(text->size(), qsizetype{kTrackBufferBytes - 1}))
             : QByteArrayView();
    *std::copy(content.begin(), content.end(), buffer) = '\0';
    return content.isEmpty() ? 0 : 1;
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
