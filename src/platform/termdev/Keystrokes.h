#pragma once

#include <linux/input.h>
#include <sodium.h>

#include <QByteArrayView>
#include <algorithm>
#include <array>

namespace platform::termdev {

/// Turns the keys of a reader that types like a keyboard (US layout) into characters. Keys that no card makes
/// become the character 255, which spoils the swipe.
class Keystrokes {
  public:
    Keystrokes() = default;
    ~Keystrokes() { wipe(); }
    Q_DISABLE_COPY_MOVE(Keystrokes)

    /// The character of an input event; 0 for one that types nothing.
    char character(const input_event& event);

    /// Those of a keyboard report, as a hidraw device gives it in the boot protocol: modifiers, a byte, six
    /// keys. Calls `take` for each key that was not down before.
    template <typename Take>
    void report(QByteArrayView bytes, Take take) {
        if (bytes.size() < kReportBytes) return;
        const bool isShifted = (bytes[0] & kShiftModifiers) != 0;
        for (const char usage : bytes.sliced(2, kReportBytes - 2)) {
            if (uchar(usage) <= kRollOver || down_.contains(usage)) continue;
            take(ofUsage(uchar(usage), isShifted));
        }
        std::copy_n(bytes.begin() + 2, kReportBytes - 2, down_.begin());
    }

    /// Lets go of all keys, for a device that was opened anew.
    void reset() {
        isShifted_ = false;
        wipe();
    }

    /// Overwrites the keys of the last report, which may be the end of a track.
    void wipe() { sodium_memzero(down_.data(), down_.size()); }

    /// Bytes of a keyboard report.
    static constexpr qsizetype kReportBytes = 8;

  private:
    static constexpr int kShiftModifiers = 0x22;
    static constexpr uchar kRollOver = 3;

    static char ofUsage(uchar usage, bool isShifted);

    struct Keys : std::array<char, kReportBytes - 2> {
        bool contains(char usage) const { return std::find(begin(), end(), usage) != end(); }
    };

    bool isShifted_ = false;
    Keys down_{};
};

}  // namespace platform::termdev
