#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <array>
#include <optional>

/// How a message travels over TCP. Shared by the terminal's component and the card host.
namespace platform::message {

inline constexpr qsizetype kFrameLimit = 64 * 1024;  ///< Bytes of a whole frame, its length included.
inline constexpr quint8 kFrameVersion = 2;

/// Tells a request from all others, of all terminals: 16 random bytes.
using MessageNumber = std::array<unsigned char, 16>;

/// The number as 32 lower-case hexadecimal digits.
QString toText(const MessageNumber& number);
/// The number that such digits, in either case, stand for; nothing for any other text.
std::optional<MessageNumber> parseMessageNumber(QStringView digits);

enum class FrameKind : quint8 { Request = 1, Reply = 2 };

struct Frame {
    FrameKind kind = FrameKind::Request;
    MessageNumber number{};
    QByteArray sealed;
};

/// The frame's bytes; empty when they would exceed kFrameLimit.
QByteArray encodeFrame(const Frame& frame);

/// Cuts a stream of bytes into frames, however they arrive.
class FrameReader {
  public:
    enum class Result {
        Incomplete,  ///< More bytes are needed.
        Complete,
        Oversized,       ///< Longer than kFrameLimit.
        TooShort,        ///< No room for what every frame has.
        UnknownVersion,  ///< Another version, or no frame at all.
        UnknownKind,     ///< Neither a request nor a reply.
    };

    void add(QByteArrayView bytes) { buffer_.append(bytes); }

    /// Takes the next frame. A fault is told as soon as its bytes are there and stays: nothing that follows
    /// it can be trusted.
    Result next(Frame* frame);

    /// Bytes held that belong to no frame yet.
    qsizetype pending() const { return buffer_.size(); }

  private:
    QByteArray buffer_;
};

/// A result in words, for the debug output.
QStringView describe(FrameReader::Result result);

}  // namespace platform::message
