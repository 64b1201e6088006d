#include "van/CardReaderPort.h"

#include <sodium.h>

#include <array>

#include "platform/termdev/CardReader.h"
#include "platform/termdev/TermDev.h"

namespace van {
namespace {

constexpr int kTrackOrdinal = 6;
constexpr int kEnableOrdinal = 7;

}  // namespace

void ReaderEnable(bool isEnabled) {
    const auto bound = platform::termdev::operation(kEnableOrdinal);
    if (const auto* enable = std::get_if<int (*)(int)>(&bound)) (*enable)(isEnabled ? 1 : 0);
}

void ReaderTrack(int track, platform::SecureText* text) {
    std::array<char, platform::termdev::kTrackBufferBytes> buffer{};
    const auto bound = platform::termdev::operation(kTrackOrdinal);
    if (const auto* read = std::get_if<int (*)(int, char*)>(&bound)) (*read)(track, buffer.data());
    text->assign(QByteArrayView(buffer.data()));
    sodium_memzero(buffer.data(), buffer.size());
}

}  // namespace van
