#include "platform/termdev/Swipe.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <array>

#include "fuzz/Target.h"
#include "platform/termdev/CardReader.h"
#include "platform/termdev/CardReaderLine.h"
#include "platform/termdev/Keystrokes.h"

using namespace platform::termdev;
using fuzz::require;
using platform::ReaderSettings;

namespace {

QByteArray bytesOf(const platform::SecureBytes& track) {
    return {reinterpret_cast<const char*>(track.data()), qsizetype(track.size())};
}

void checkTrack(const QByteArray& track, const QString& starts, int longest) {
    if (track.isEmpty()) return;
    require(track.size() >= 3 && track.size() <= longest + 2, "a track has its length");
    require(starts.contains(QLatin1Char(track.front())) && track.indexOf('?') == track.size() - 1,
            "a track stands between its sentinels");
    for (const char c : track.mid(1)) require(c >= '0' && c <= '?', "a track has its characters only");
}

/// Reads the text as one swipe. True when it is one, which then reads again from its tracks alone.
bool isSwipe(QByteArrayView text, const ReaderSettings& settings) {
    const auto swipe = readSwipe(text, settings);
    if (!swipe) return false;
    const QByteArray track2 = bytesOf(swipe->track2);
    const QByteArray track3 = bytesOf(swipe->track3);
    require(text.contains(track2) && text.contains(track3), "tracks are as the reader sent them");
    checkTrack(track2, settings.track2Starts, 37);
    checkTrack(track3, settings.track3Starts, 104);
    using Tracks = ReaderSettings::Tracks;
    require(!track2.isEmpty() || settings.tracks == Tracks::Only3, "track 2 is there where it is asked for");
    require(!track3.isEmpty() || settings.tracks == Tracks::Only2, "track 3 is there where it is asked for");
    require(track2.isEmpty() || (track2.indexOf('=') >= 2 && track2.indexOf('=') <= 20),
            "an account has 19 digits");
    const auto again = readSwipe(track2 + '\r' + track3 + '\r', settings);
    require(again && bytesOf(again->track2) == track2 && bytesOf(again->track3) == track3,
            "the tracks of a swipe are that swipe");
    return true;
}

QByteArray heldTrack(int number) {
    std::array<char, kTrackBufferBytes> buffer{};
    const int has = CardReader::instance().readTrack(number, buffer.data());
    const QByteArray track(buffer.data());
    require(has == int(!track.isEmpty()), "a track that is there has a text");
    return track;
}

/// Plays what a device sends to the reader that the settings name, and checks what reaches the screens.
void send(QByteArrayView bytes, const ReaderSettings& settings) {
    fuzz::needEventLoop();
    const QByteArray path = QFile::encodeName(settings.device);
    static const bool isMade = ::mkfifo(path.constData(), 0600) == 0;
    require(isMade, "there is a device");
    CardReader& reader = CardReader::instance();
    int swipes = 0;
    reader.setReceiver([&](int) {
        ++swipes;
        const QByteArray track2 = heldTrack(2);
        const QByteArray track3 = heldTrack(3);
        require(isSwipe(track2 + '\r' + track3, settings), "only whole swipes reach the screens");
    });
    reader.open();
    reader.enable(true);
    {
        const int keys = ::open(path.constData(), O_RDWR | O_NONBLOCK);
        const CardReaderLine line(settings, 20);
        int left = int(::write(keys, bytes.data(), size_t(std::min<qsizetype>(bytes.size(), 32'768))));
        while (left > 0) {
            QCoreApplication::processEvents();
            ::ioctl(keys, FIONREAD, &left);
        }
        fuzz::settle();  // Swipes are handed on.
        ::close(keys);
    }
    fuzz::settle();
    reader.close();
    reader.setReceiver({});
    require(heldTrack(2).isEmpty() && heldTrack(3).isEmpty(), "a closed reader holds no card");
}

/// Keys from two bytes each: what happens to a key, and which.
QByteArray events(QByteArrayView pairs) {
    QByteArray bytes;
    qint64 moment = 1'000'000;
    for (qsizetype i = 0; i + 1 < pairs.size(); i += 2) {
        input_event event{};
        moment += pairs[i] & 0x40 ? 200 : 1;
        event.input_event_sec = moment / 1000;
        event.input_event_usec = moment % 1000 * 1000;
        event.type = pairs[i] & 0x20 ? EV_SYN : EV_KEY;
        event.code = uchar(pairs[i + 1]);
        event.value = pairs[i] & 0x03;
        bytes.append(reinterpret_cast<const char*>(&event), sizeof event);
    }
    return bytes;
}

}  // namespace

FUZZ_TARGET(Swipe, input) {
    using Kind = ReaderSettings::Kind;
    using Tracks = ReaderSettings::Tracks;
    ReaderSettings settings;
    const int source = fuzz::choose(&input, 3);
    settings.tracks = std::array{Tracks::Both, Tracks::Only2, Tracks::Only3}[size_t(fuzz::choose(&input, 3))];
    if (fuzz::choose(&input, 2) == 1) settings.track2Starts = settings.track3Starts = QStringLiteral("%;");
    settings.device = fuzz::device().folder() + QStringLiteral("/keys");
    if (source == 0) {
        isSwipe(input, settings);
    } else {
        settings.kind = source == 1 ? Kind::Evdev : Kind::Hidraw;
        // As many reports as a card has, since each is read by itself.
        constexpr qsizetype kMost = 200 * Keystrokes::kReportBytes;
        send(source == 1 ? events(input) : input.first(std::min(kMost, input.size())).toByteArray(),
             settings);
    }
}
