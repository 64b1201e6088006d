#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <array>
#include <vector>

#include "platform/SecureBytes.h"
#include "platform/message/Component.h"
#include "platform/message/SavedValues.h"
#include "support/Exchange.h"
#include "support/HostProcess.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;
using platform::SecureText;

constexpr std::size_t kTrackSize = 104;
constexpr std::size_t kEnough = 24;  // characters in a row that are no coincidence

/// The track's characters, never kept in a row by the search itself.
char trackCharacter(std::size_t at) {
    return char('0' + (at * at * 7 + at * 3 + at / 5) % 10);
}

bool holdsTrack(const char* memory, std::size_t size, std::size_t characterSize) {
    for (std::size_t start = 0; start + kEnough * characterSize <= size; ++start) {
        std::size_t length = 0;
        while (length < kEnough) {
            const char* const character = memory + start + length * characterSize;
            if (*character != trackCharacter(length) || (characterSize == 2 && character[1] != 0)) break;
            ++length;
        }
        if (length == kEnough) return true;
    }
    return false;
}

/// The parts of this process's writable memory that hold the beginning of the track, as /proc/self/maps has
/// them.
std::vector<std::string> whereTheTrackIs() {
    std::vector<std::string> found;
    QFile maps(u"/proc/self/maps"_s);
    EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
    const QByteArrayList lines = maps.readAll().split('\n');
    const int memory = ::open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    EXPECT_GE(memory, 0);
    static std::array<char, 1 << 20> window;
    constexpr std::size_t kOverlap = 4 * kEnough;
    for (const QByteArray& line : lines) {
        const qsizetype dash = line.indexOf('-');
        const qsizetype blank = line.indexOf(' ');
        if (dash < 0 || line.mid(blank + 1, 2) != "rw") continue;
        const quint64 begin = line.first(dash).toULongLong(nullptr, 16);
        const quint64 end = line.mid(dash + 1, blank - dash - 1).toULongLong(nullptr, 16);
        for (quint64 at = begin; at < end; at += window.size() - kOverlap) {
            const ssize_t size =
                ::pread(memory, window.data(), std::min<quint64>(window.size(), end - at), off_t(at));
            if (size <= 0) break;
            if (holdsTrack(window.data(), std::size_t(size), 1) ||
                holdsTrack(window.data(), std::size_t(size), 2)) {
                found.push_back(line.toStdString());
                break;
            }
        }
        // What the window saw is itself memory of this process.
        window.fill(0);
    }
    ::close(memory);
    return found;
}

SecureText makeTrack() {
    std::array<char16_t, kTrackSize> characters;
    for (std::size_t i = 0; i < characters.size(); ++i) characters[i] = char16_t(trackCharacter(i));
    SecureText track(QStringView(characters.data(), kTrackSize));
    sodium_memzero(characters.data(), sizeof characters);
    return track;
}

class MemoryTest : public ::testing::Test {
  protected:
    void SetUp() override {
#ifdef __SANITIZE_ADDRESS__
        GTEST_SKIP() << "AddressSanitizer maps more memory than can be searched";
#endif
    }
};

TEST_F(MemoryTest, NothingOfACardIsLeftAfterAPayment) {
    const TestDevice device;
    ASSERT_TRUE(writeSavedValues({{u"101"_s, u"4711"_s}}));
    HostProcess host;
    host.start();
    Exchange terminal;
    SecureText track = makeTrack();
    ASSERT_FALSE(whereTheTrackIs().empty()) << "the search finds what is there";
    ASSERT_EQ(terminal.payment(track.view(), u"1234"), kDone);
    ASSERT_EQ(terminal.run(host.port()), u"communicating sent receiving ended");
    ASSERT_EQ(terminal.balance(track.view(), u"1234"), kDone);
    track.clear();
    EXPECT_EQ(whereTheTrackIs(), std::vector<std::string>()) << "a sealed request keeps no track";
    ASSERT_EQ(terminal.run(host.port()), u"communicating sent receiving ended");
    EXPECT_EQ(terminal.field(1102), u"0011");
    EXPECT_EQ(whereTheTrackIs(), std::vector<std::string>());
}

// The host opens requests with the same codec; here in this process.
TEST_F(MemoryTest, NothingOfACardIsLeftAfterARequestWasOpened) {
    KeyPair host;
    KeyPair terminal;
    ASSERT_EQ(startCipher(), kDone);
    ASSERT_EQ(makeKeyPair(&host), kDone);
    ASSERT_EQ(makeKeyPair(&terminal), kDone);
    const MessageNumber number = makeMessageNumber();
    QByteArray sealed;
    {
        SecureText track = makeTrack();
        FieldWriter fields;
        for (quint16 field = 1; field < 50; ++field) fields.add(field, track.view());
        sealed = *sealRequest(number, terminal.publicKey, fields.bytes(), host.publicKey);
    }
    EXPECT_EQ(whereTheTrackIs(), std::vector<std::string>());
    {
        const auto opened = openRequest(sealed, host);
        ASSERT_TRUE(opened);
        const auto fields = Fields::parse(opened->fields);
        ASSERT_TRUE(fields && fields->bytes(49)->size() == qsizetype(kTrackSize));
        EXPECT_FALSE(whereTheTrackIs().empty());
    }
    EXPECT_EQ(whereTheTrackIs(), std::vector<std::string>());
}

}  // namespace
}  // namespace test
