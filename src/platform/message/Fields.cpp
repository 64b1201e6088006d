#include "platform/message/Fields.h"

#include <QStringEncoder>
#include <QtEndian>
#include <algorithm>

namespace platform::message {
namespace {

constexpr std::size_t kPrefixSize = 4;  // number and length, two bytes each
constexpr std::size_t kLongestField = 0xFFFF;

}  // namespace

void FieldWriter::add(quint16 number, QStringView text) {
    QStringEncoder encoder(QStringEncoder::Utf8);
    const std::size_t start = bytes_.size();
    bytes_.resize(start + kPrefixSize + std::size_t(encoder.requiredSpace(text.size())));
    char* const content = reinterpret_cast<char*>(bytes_.data()) + start + kPrefixSize;
    const std::size_t size =
        std::min(std::size_t(encoder.appendToBuffer(content, text) - content), kLongestField);
    bytes_.resize(start + kPrefixSize + size);
    qToBigEndian(number, bytes_.data() + start);
    qToBigEndian(quint16(size), bytes_.data() + start + 2);
}

std::optional<Fields> Fields::parse(SecureBytes bytes) {
    Fields fields;
    std::size_t at = 0;
    while (at < bytes.size()) {
        if (bytes.size() - at < kPrefixSize) return std::nullopt;
        const auto number = qFromBigEndian<quint16>(bytes.data() + at);
        const std::size_t size = qFromBigEndian<quint16>(bytes.data() + at + 2);
        at += kPrefixSize;
        if (bytes.size() - at < size) return std::nullopt;
        if (!QByteArrayView(bytes.data() + at, qsizetype(size)).isValidUtf8()) return std::nullopt;
        if (std::ranges::find(fields.entries_, number, &Entry::number) != fields.entries_.end())
            return std::nullopt;
        fields.entries_.push_back({number, at, size});
        at += size;
    }
    fields.content_ = std::move(bytes);
    return fields;
}

std::optional<QByteArrayView> Fields::bytes(quint16 number) const {
    const auto found = std::ranges::find(entries_, number, &Entry::number);
    if (found == entries_.end()) return std::nullopt;
    return QByteArrayView(content_.data() + found->at, qsizetype(found->size));
}

QString Fields::text(quint16 number) const {
    return QString::fromUtf8(bytes(number).value_or(QByteArrayView()));
}

}  // namespace platform::message
