#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <optional>

/// Code page 949, the terminal's 8-bit code page, converted strictly: a byte sequence or a character that the
/// code page does not hold is an error, never a replacement character.
namespace platform::codepage {

/// The text of `bytes`; nothing when they are not code page 949.
std::optional<QString> decode(QByteArrayView bytes);

/// The bytes of `text`; nothing when it holds a character outside code page 949.
std::optional<QByteArray> encode(QStringView text);

}  // namespace platform::codepage
