#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QLocalSocket>
#include <memory>
#include <vector>

#include "platform/termdev/CardReader.h"
#include "platform/termdev/CardReaderLine.h"
#include "platform/termdev/Devices.h"
#include "platform/termdev/Keystrokes.h"
#include "platform/termdev/Swipe.h"
#include "platform/termdev/SwipeSocket.h"
#include "platform/termdev/TermDev.h"
#include "support/MemorySearch.h"
#include "support/Pty.h"
#include "support/Pump.h"
#include "support/RecordedTraces.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;
using platform::ReaderSettings;

const QByteArray kTrack2 = ";9409110000000001=99121010000000000?";
const QByteArray kTrack3 = "+01" + QByteArray(102, '7') + '?';

std::string textOf(const platform::SecureBytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

/// The exclusive-or over a track's four-bit values, its start taken as 11.
QByteArray checkOf(const QByteArray& track) {
    int bits = 0xB;
    for (const char c : track.mid(1)) bits ^= c & 0xF;
    return QByteArray(1, char('0' + bits));
}

TEST(Swipe, OnlyWholeOnesAreRead) {
    QByteArray likeStart = ";1=0?";  // Its check character is ";", which also starts tracks.
    while (checkOf(likeStart) != ";") likeStart[3] = char(likeStart[3] + 1);
    const struct {
        const char* what;
        QByteArray text;
        bool isRead;
    } cases[] = {
        {"bare", kTrack2 + kTrack3, true},
        {"check characters", kTrack2 + checkOf(kTrack2) + kTrack3 + checkOf(kTrack3) + '\r', true},
        {"a check character like a start", likeStart + ';' + kTrack3, true},
        {"both start alike", kTrack2 + ';' + kTrack3.mid(1), true},
        {"another start", kTrack2 + '!' + kTrack3.mid(1), true},
        {"wrong check character", kTrack2 + checkOf(kTrack2 + '1') + kTrack3, false},
        {"wrong check at the end", kTrack2 + kTrack3 + checkOf(kTrack3 + '1'), false},
        {"one track", kTrack2, false},
        {"the other track", kTrack3, false},
        {"no end", kTrack2 + kTrack3.chopped(1), false},
        {"the first end lost", kTrack2.chopped(1) + kTrack3, false},
        {"an error mark", kTrack2 + "+E?", false},
        {"a parity mark", kTrack2 + "+0\xFF" + kTrack3.mid(2), false},
        {"an unknown start", kTrack2 + '%' + kTrack3.mid(1), false},
        {"track 3 too long", kTrack2 + "+0" + kTrack3.mid(1), false},
        {"track 2 too long", ";1=" + QByteArray(36, '1') + '?' + kTrack3, false},
        {"a long account number", ';' + QByteArray(20, '1') + "=1?" + kTrack3, false},
        {"an empty track", ";?" + kTrack3, false},
        {"a card and a half", kTrack2 + kTrack3 + kTrack2, false},
    };
    ReaderSettings settings;
    for (const auto& [what, text, isRead] : cases) {
        const auto swipe = readSwipe(text, settings);
        ASSERT_EQ(swipe.has_value(), isRead) << what;
        if (!swipe) continue;
        EXPECT_TRUE(textOf(swipe->track2).starts_with(';') && textOf(swipe->track2).ends_with('?')) << what;
        EXPECT_EQ(textOf(swipe->track3).substr(1), kTrack3.mid(1).toStdString()) << what;
    }
    settings.tracks = ReaderSettings::Tracks::Only3;
    EXPECT_TRUE(readSwipe(kTrack3, settings));
    settings.track3Starts = u"#"_s;
    EXPECT_FALSE(readSwipe(kTrack3, settings));
    EXPECT_TRUE(readSwipe('#' + kTrack3.mid(1), settings));
}

class Readers : public testing::Test {
  protected:
    Readers() {
        test::needApplication();
        CardReader::instance().setReceiver([this](int) { ++swipes_; });
        CardReader::instance().open();
        CardReader::instance().enable(true);
    }
    ~Readers() override {
        CardReader::instance().setReceiver({});
        CardReader::instance().close();
    }

    static QByteArray track(int number) {
        char buffer[kTrackBufferBytes];
        CardReader::instance().readTrack(number, buffer);
        return buffer;
    }
    void expectSwipe(int count) {
        EXPECT_TRUE(test::pump([&] { return swipes_ >= count; }));
        EXPECT_EQ(swipes_, count);
        EXPECT_EQ(track(2), kTrack2);
        EXPECT_EQ(track(3), kTrack3);
    }
    /// Lets the reader come to its word about what was sent, which it does not pass on.
    void expectDrop(test::RecordedTraces* traces) {
        const int before = swipes_;
        QString told;
        EXPECT_TRUE(test::pump([&] { return !(told = traces->take().join(u' ')).isEmpty(); }));
        EXPECT_TRUE(told.contains(u"dropped")) << told.toStdString();
        EXPECT_FALSE(told.contains(u"9409")) << "no digit of a card is told";
        EXPECT_EQ(swipes_, before);
    }

    test::TestDevice device_;
    int swipes_ = 0;
};

/// By ordinal, as the screens reach it.
template <typename... Arguments>
int call(int ordinal, Arguments... arguments) {
    return std::get<int (*)(Arguments...)>(operation(ordinal))(arguments...);
}

TEST_F(Readers, TheDeviceReadsOnlyWhileOpenAndEnabled) {
    CardReader& reader = CardReader::instance();
    call(2);
    call(7, 1);
    EXPECT_FALSE(reader.swipe("2", "3"));
    call(1);
    EXPECT_FALSE(reader.swipe("2", "3"));
    call(7, 1);
    EXPECT_TRUE(reader.swipe("22", "333"));
    EXPECT_EQ(swipes_, 1);
    // A print job inside opens and closes the device without closing the reader.
    call(1);
    call(2);
    EXPECT_EQ(track(1) + track(2) + track(3), "22333");
    reader.swipe("", QByteArray(600, '7'));
    EXPECT_EQ(track(3), QByteArray(511, '7')) << "cut to its buffer";
    call(7, 0);
    EXPECT_EQ(track(3), "");
}

TEST_F(Readers, SwipesGoToTheFirstTerminalOfAFolder) {
    const SwipeSocket first;
    // Those who wait there leave no place in the queue.
    std::vector<std::unique_ptr<QLocalSocket>> waiting;
    for (int i = 0; i < 4; ++i) {
        waiting.push_back(std::make_unique<QLocalSocket>());
        waiting.back()->connectToServer(device_.folder() + u"/card.socket"_s);
    }
    test::RecordedTraces traces;
    const SwipeSocket second;
    EXPECT_TRUE(traces.take().join(u' ').contains(u"another terminal on this device folder"));
}

TEST_F(Readers, ASerialReader) {
    test::Pty pty;
    ReaderSettings settings;
    settings.kind = ReaderSettings::Kind::Serial;
    settings.device = pty.name();
    test::RecordedTraces traces;
    const CardReaderLine line(settings, 20);
    EXPECT_EQ(CardReaderLine(settings, 20).status().fault, u"Device or resource busy"_s)
        << "one has the line";
    traces.take();
    pty.send("\x02" + kTrack2 + kTrack3 + "\r\x03");
    expectSwipe(1);
    pty.send(kTrack2 + kTrack3);  // Nothing ends it but the silence.
    expectSwipe(2);
    // Half a card, silence, the other half: neither is passed on.
    for (const QByteArray& text :
         {kTrack2 + kTrack3.first(50), kTrack3.mid(50) + '\r', QByteArray(2000, '1')}) {
        pty.send(text);
        expectDrop(&traces);
    }
    pty.send(kTrack2 + kTrack3 + '\r');
    expectSwipe(3);
    CardReader::instance().enable(false);
    pty.send(kTrack2 + kTrack3 + '\r');
    expectDrop(&traces);
    platform::Settings both;
    both.reader = settings;
    for (const auto kind : {ReaderSettings::Kind::Serial, ReaderSettings::Kind::None}) {
        both.reader.kind = kind;
        const Devices devices(both);
        EXPECT_EQ(readerStatus().fault.isEmpty(), kind == ReaderSettings::Kind::None) << "the line is taken";
    }
    pty.hangUp();
    EXPECT_TRUE(test::pump([&] { return line.status().state == DeviceStatus::State::Fault; }));
}

TEST_F(Readers, ASerialReaderLeavesNothingInMemory) {
    if (!test::kCanSearchMemory) GTEST_SKIP();
    test::Pty pty;
    ReaderSettings settings;
    settings.kind = ReaderSettings::Kind::Serial;
    settings.device = pty.name();
    settings.tracks = ReaderSettings::Tracks::Only3;
    const CardReaderLine line(settings);
    const auto send = [&](char character) { EXPECT_EQ(::write(pty.far(), &character, 1), 1); };
    send('+');
    for (std::size_t at = 0; at < test::kTrack.size; ++at) send(char(test::kTrack.character(at)));
    send('?');
    send('\r');
    EXPECT_TRUE(test::pump([&] { return swipes_ == 1; }));
    EXPECT_FALSE(test::kTrackPiece.places().empty()) << "the search finds what is there";
    CardReader::instance().enable(false);
    // What hands a swipe on goes with the event.
    QCoreApplication::processEvents();
    EXPECT_EQ(test::kTrackPiece.places(), std::vector<std::string>());
}

/// The events of keys that type the text, a millisecond apart from `moment` on.
QByteArray typed(const QByteArray& text, qint64 moment) {
    const QByteArray plain = "1234567890\r=;?+";
    const int codes[] = {KEY_1, KEY_2, KEY_3,     KEY_4,     KEY_5,         KEY_6,     KEY_7,    KEY_8,
                         KEY_9, KEY_0, KEY_ENTER, KEY_EQUAL, KEY_SEMICOLON, KEY_SLASH, KEY_EQUAL};
    QByteArray bytes;
    const auto add = [&](int type, int code, int value) {
        input_event event{};
        event.input_event_sec = moment / 1000;
        event.input_event_usec = moment % 1000 * 1000;
        event.type = static_cast<unsigned short>(type);
        event.code = static_cast<unsigned short>(code);
        event.value = value;
        bytes.append(reinterpret_cast<const char*>(&event), sizeof event);
    };
    for (const char c : text) {
        ++moment;
        const bool isShifted = c == '?' || c == '+';
        if (isShifted) add(EV_KEY, KEY_LEFTSHIFT, 1);
        for (const int isDown : {1, 0}) add(EV_KEY, codes[plain.indexOf(c)], isDown);
        if (isShifted) add(EV_KEY, KEY_LEFTSHIFT, 0);
        add(EV_SYN, SYN_REPORT, 0);
    }
    return bytes;
}

TEST_F(Readers, AKeyboardReader) {
    ReaderSettings settings;
    settings.kind = ReaderSettings::Kind::Evdev;
    settings.device = device_.folder() + u"/event"_s;
    test::RecordedTraces traces;
    const CardReaderLine line(settings, 20);
    EXPECT_EQ(line.status().state, DeviceStatus::State::Fault);
    ASSERT_EQ(::mkfifo(QFile::encodeName(settings.device).constData(), 0600), 0);
    const int keys = ::open(QFile::encodeName(settings.device).constData(), O_RDWR);
    const auto send = [&](const QByteArray& bytes) {
        EXPECT_EQ(::write(keys, bytes, size_t(bytes.size())), bytes.size());
    };
    send(typed(kTrack2 + '\r' + kTrack3 + '\r', 1'000'000));
    expectSwipe(1);
    traces.take();
    // By the keys' own times they pause in the middle, although all of them arrive at once.
    send(typed(kTrack2, 2'000'000) + typed(kTrack3 + '\r', 2'000'300));
    expectDrop(&traces);
    ::close(keys);
}

}  // namespace
