#include "platform/SecureText.h"

#include <sodium.h>

#include <algorithm>

namespace platform {

void SecureText::assign(QByteArrayView text) {
    clear();
    size_ = std::min(text.size(), kCapacity);
    std::copy_n(text.data(), size_, characters_.data());
}

void SecureText::assign(QStringView text) {
    clear();
    size_ = std::min(text.size(), kCapacity);
    std::transform(text.begin(), text.begin() + size_, characters_.begin(),
                   [](QChar c) { return c.unicode() < 128 ? char(c.unicode()) : '?'; });
}

void SecureText::clear() {
    sodium_memzero(characters_.data(), characters_.size());
    size_ = 0;
}

QByteArrayView SecureText::mid(qsizetype position, qsizetype length) const {
    if (position >= size_) return {};
    return view().sliced(position, std::min(length, size_ - position));
}

}  // namespace platform
