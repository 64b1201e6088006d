#include "platform/message/Frame.h"

#include <QtEndian>
#include <algorithm>

#include "platform/Digits.h"

namespace platform::message {
namespace {

constexpr qsizetype kLengthSize = 4;
constexpr qsizetype kVersionAt = 4;
constexpr qsizetype kKindAt = 5;
constexpr qsizetype kNumberAt = 6;
constexpr qsizetype kSealedAt = kNumberAt + qsizetype(sizeof(MessageNumber));

}  // namespace

QString toText(const MessageNumber& number) {
    return QString::fromLatin1(QByteArrayView(number).toByteArray().toHex());
}

std::optional<MessageNumber> parseMessageNumber(QStringView digits) {
    return fromHexDigits<std::tuple_size_v<MessageNumber>>(digits.toLatin1());
}

QByteArray encodeFrame(const Frame& frame) {
    const qsizetype size = kSealedAt + frame.sealed.size();
    if (size > kFrameLimit) return {};
    QByteArray bytes(kSealedAt, Qt::Uninitialized);
    bytes.reserve(size);
    qToBigEndian(quint32(size - kLengthSize), bytes.data());
    bytes[kVersionAt] = char(kFrameVersion);
    bytes[kKindAt] = char(frame.kind);
    std::copy(frame.number.begin(), frame.number.end(), bytes.data() + kNumberAt);
    return bytes += frame.sealed;
}

FrameReader::Result FrameReader::next(Frame* frame) {
    if (buffer_.size() < kLengthSize) return Result::Incomplete;
    const quint32 length = qFromBigEndian<quint32>(buffer_.constData());
    if (length > quint32(kFrameLimit - kLengthSize)) return Result::Oversized;
    if (length < quint32(kSealedAt - kLengthSize)) return Result::TooShort;
    if (buffer_.size() <= kVersionAt) return Result::Incomplete;
    if (quint8(buffer_[kVersionAt]) != kFrameVersion) return Result::UnknownVersion;
    if (buffer_.size() <= kKindAt) return Result::Incomplete;
    const auto kind = FrameKind(quint8(buffer_[kKindAt]));
    if (kind != FrameKind::Request && kind != FrameKind::Reply) return Result::UnknownKind;
    const qsizetype size = kLengthSize + qsizetype(length);
    if (buffer_.size() < size) return Result::Incomplete;
    frame->kind = kind;
    std::copy_n(buffer_.constData() + kNumberAt, frame->number.size(), frame->number.begin());
    frame->sealed = buffer_.sliced(kSealedAt, size - kSealedAt);
    buffer_.remove(0, size);
    return Result::Complete;
}

QStringView describe(FrameReader::Result result) {
    switch (result) {
        case FrameReader::Result::Incomplete: return u"the frame is not complete";
        case FrameReader::Result::Complete: return u"the frame is complete";
        case FrameReader::Result::Oversized: return u"the frame exceeds 64 KiB";
        case FrameReader::Result::TooShort: return u"the frame is too short";
        case FrameReader::Result::UnknownVersion: return u"the frame is of another version";
        case FrameReader::Result::UnknownKind: return u"the frame is neither request nor reply";
    }
    return {};
}

}  // namespace platform::message
