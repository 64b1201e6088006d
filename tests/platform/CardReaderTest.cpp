#include "platform/termdev/CardReader.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <array>
#include <atomic>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include "platform/Device.h"
#include "platform/termdev/SwipeSocket.h"
#include "platform/termdev/TermDev.h"
#include "support/Pump.h"
#include "support/TestDevice.h"

namespace {

using platform::termdev::CardReader;
using platform::termdev::SwipeSocket;

/// The reader as the screens reach it: by ordinal.
struct Reader {
    Reader() {
        CardReader::instance().setReceiver([this](int message) { messages.push_back(message); });
    }
    ~Reader() {
        CardReader::instance().setReceiver({});
        while (CardReader::instance().isReading()) close();
    }
    static void open() { std::get<int (*)()>(platform::termdev::operation(1))(); }
    static void close() { std::get<int (*)()>(platform::termdev::operation(2))(); }
    static void enable(int on) { std::get<int (*)(int)>(platform::termdev::operation(7))(on); }
    static QByteArray track(int number) {
        std::array<char, platform::termdev::kTrackBufferBytes> buffer;
        buffer.fill('x');
        std::get<int (*)(int, char*)>(platform::termdev::operation(6))(number, buffer.data());
        return QByteArray(buffer.data());
    }

    std::vector<int> messages;
};

TEST(CardReader, ReadsOnlyWhileOpenAndEnabled) {
    Reader reader;
    EXPECT_FALSE(CardReader::instance().swipe("2", "3"));
    Reader::enable(1);
    EXPECT_FALSE(CardReader::instance().swipe("2", "3"));
    Reader::open();
    Reader::enable(1);
    EXPECT_TRUE(CardReader::instance().swipe("22", "333"));
    EXPECT_EQ(reader.messages, std::vector<int>{0xA711});
    EXPECT_EQ(Reader::track(2), "22");
    EXPECT_EQ(Reader::track(3), "333");
    EXPECT_EQ(Reader::track(1), "");
    // A print job inside opens and closes the device without closing the reader.
    Reader::open();
    Reader::close();
    EXPECT_EQ(Reader::track(3), "333");
    CardReader::instance().swipe("", QByteArray(600, '7'));
    EXPECT_EQ(Reader::track(3), QByteArray(511, '7')) << "cut to its buffer";
    Reader::enable(0);
    EXPECT_EQ(Reader::track(3), "");
    Reader::close();
}

/// Sends from a second thread, as another program would, while this one's event loop runs.
SwipeSocket::Answer sendWhileRunning(const QByteArray& track2, const QByteArray& track3) {
    std::atomic<bool> isDone = false;
    SwipeSocket::Answer answer{};
    std::thread sender([&] {
        answer = SwipeSocket::send(track2, track3);
        isDone = true;
    });
    QElapsedTimer waited;
    waited.start();
    while (!isDone && waited.elapsed() < 10000) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    sender.join();
    QCoreApplication::processEvents();
    return answer;
}

TEST(SwipeSocket, PutsACardThroughARunningTerminal) {
    test::needApplication();
    const test::TestDevice device;
    EXPECT_EQ(SwipeSocket::send("2", "3"), SwipeSocket::Answer::NoTerminal);
    Reader reader;
    auto dead = std::make_unique<SwipeSocket>();
    EXPECT_EQ(SwipeSocket::send("2", "3", 50), SwipeSocket::Answer::NoAnswer) << "nobody serves it";
    const QByteArray path = QFile::encodeName(device.folder()) + "/card.socket";
    // One that was killed leaves its socket, which the next terminal takes over.
    ASSERT_EQ(::rename(path, path + ".kept"), 0);
    dead.reset();
    ASSERT_EQ(::rename(path + ".kept", path), 0);
    const SwipeSocket socket;
    // A second terminal leaves the first one its cards.
    std::make_unique<SwipeSocket>().reset();
    const QFileInfo file(device.folder() + QStringLiteral("/card.socket"));
    EXPECT_EQ(
        file.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
        QFile::Permissions());
    EXPECT_EQ(sendWhileRunning("2", "3"), SwipeSocket::Answer::NotReading);
    EXPECT_TRUE(reader.messages.empty());
    Reader::open();
    Reader::enable(1);
    EXPECT_EQ(sendWhileRunning("222", "33333"), SwipeSocket::Answer::Taken);
    EXPECT_EQ(Reader::track(2), "222");
    EXPECT_EQ(Reader::track(3), "33333");
    // A conversation that never ends in a card is dropped, and the next one works.
    EXPECT_EQ(sendWhileRunning(QByteArray(1100, '1'), "3"), SwipeSocket::Answer::NoTerminal);
    EXPECT_EQ(sendWhileRunning("4", "5"), SwipeSocket::Answer::Taken);
    EXPECT_EQ(reader.messages.size(), 2u);
    Reader::close();
}

}  // namespace
