#include "platform/termdev/CardReader.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "platform/termdev/TermDev.h"

namespace {

using platform::termdev::CardReader;

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

}  // namespace
