#pragma once

#include <QByteArrayView>
#include <functional>

#include "platform/SecureBytes.h"

namespace platform::termdev {

/// Message number by which the device library announces a swiped card.
inline constexpr int kCardSwiped = 0xA711;

/// Bytes of the buffer that a track is read into, its terminating zero included.
inline constexpr int kTrackBufferBytes = 512;

/// The magnetic card reader behind the device library: holds the tracks of the last card that was swiped
/// while reading was enabled, and forgets them when reading is disabled or the device is closed.
class CardReader {
  public:
    /// The process's reader.
    static CardReader& instance();

    /// Openings are counted: a print job opens and closes the device while a card screen holds it open.
    void open();
    void close();

    void enable(bool isEnabled);
    bool isReading() const { return isEnabled_; }

    /// Copies track 2 or 3 with a terminating zero into `buffer` of kTrackBufferBytes. 1 when the track is
    /// there, 0 (and an empty text) when it is not.
    int readTrack(int track, char* buffer) const;

    /// A card went through the slot. False, and nothing is kept, while the reader is closed or disabled.
    /// Tracks are cut to what the buffer takes.
    bool swipe(QByteArrayView track2, QByteArrayView track3);

    /// Where the message kCardSwiped goes; an empty function ends that.
    void setReceiver(std::function<void(int message)> receiver) { receiver_ = std::move(receiver); }

    /// Called when a screen begins to read cards; an empty function ends that.
    void setWaker(std::function<void()> waker) { waker_ = std::move(waker); }

  private:
    void forget();

    int openings_ = 0;
    bool isEnabled_ = false;
    SecureText track2_;
    SecureText track3_;
    std::function<void(int)> receiver_;
    std::function<void()> waker_;
};

}  // namespace platform::termdev
