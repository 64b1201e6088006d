#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "platform/SecureBytes.h"

namespace test {

/// A text that this process's memory is searched for: character `at` of `size` is `character(at)`, so that
/// the search itself never keeps them in a row.
struct Secret {
    char16_t (*character)(std::size_t at);
    std::size_t size;

    platform::SecureText make() const {
        std::array<char16_t, 128> characters;
        for (std::size_t i = 0; i < size; ++i) characters[i] = character(i);
        platform::SecureText text(QStringView(characters.data(), qsizetype(size)));
        sodium_memzero(characters.data(), sizeof characters);
        return text;
    }

    /// The parts of the writable memory, as /proc/self/maps has them, that hold the text in UTF-8 or UTF-16.
    std::vector<std::string> places() const {
        std::vector<std::string> found;
        QFile maps(QStringLiteral("/proc/self/maps"));
        EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
        const QByteArrayList lines = maps.readAll().split('\n');
        const int memory = ::open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
        EXPECT_GE(memory, 0);
        static std::array<char, 1 << 20> window;
        constexpr std::size_t kOverlap = 256;
        for (const QByteArray& line : lines) {
            const qsizetype dash = line.indexOf('-');
            const qsizetype blank = line.indexOf(' ');
            if (dash < 0 || line.mid(blank + 1, 2) != "rw") continue;
            const quint64 begin = line.first(dash).toULongLong(nullptr, 16);
            const quint64 end = line.mid(dash + 1, blank - dash - 1).toULongLong(nullptr, 16);
            for (quint64 at = begin; at < end; at += window.size() - kOverlap) {
                const ssize_t read =
                    ::pread(memory, window.data(), std::min<quint64>(window.size(), end - at), off_t(at));
                if (read <= 0) break;
                if (isIn({window.data(), std::size_t(read)})) {
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

  private:
    bool isIn(std::string_view memory) const {
        for (std::size_t start = 0; start < memory.size(); ++start) {
            if (startsHere(memory.substr(start), false) || startsHere(memory.substr(start), true))
                return true;
        }
        return false;
    }
    bool startsHere(std::string_view memory, bool isUtf16) const {
        std::size_t at = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const char16_t unit = character(i);
            const char utf16[] = {char(unit & 0xFF), char(unit >> 8)};
            const char utf8[] = {char(0xE0 | unit >> 12), char(0x80 | (unit >> 6 & 0x3F)),
                                 char(0x80 | (unit & 0x3F))};
            const char ascii[] = {char(unit)};
            const std::string_view wanted = isUtf16       ? std::string_view(utf16, 2)
                                            : unit < 0x80 ? std::string_view(ascii, 1)
                                                          : std::string_view(utf8, 3);
            if (memory.substr(at, wanted.size()) != wanted) return false;
            at += wanted.size();
        }
        return true;
    }
};

/// A track: characters that are in no other order anywhere.
inline constexpr Secret kTrack{
    [](std::size_t at) { return char16_t(u'0' + (at * at * 7 + at * 3 + at / 5) % 10); }, 104};

/// A piece from its middle: the heap writes over the beginning of what it takes back.
inline constexpr Secret kTrackPiece{[](std::size_t at) { return kTrack.character(at + 40); }, 24};

/// A password of four characters that nothing else has in a row, each of three bytes in UTF-8.
inline constexpr Secret kRarePassword{[](std::size_t at) { return char16_t(0xB3C9 + at * 1237); }, 4};

/// AddressSanitizer maps more memory than can be searched.
inline constexpr bool kCanSearchMemory =
#ifdef __SANITIZE_ADDRESS__
    false;
#else
    true;
#endif

}  // namespace test
