#pragma once

#include <QByteArrayView>
#include <QStringView>
#include <array>

namespace platform {

/// A short 8-bit text that must leave no trace: a card track or a password. It lives in this object alone, is
/// overwritten before it changes or ends, and is never copied.
class SecureText {
  public:
    /// The reader's buffer; longer text is cut.
    static constexpr qsizetype kCapacity = 512;

    SecureText() = default;
    ~SecureText() { clear(); }
    SecureText(const SecureText&) = delete;
    SecureText& operator=(const SecureText&) = delete;

    void assign(QByteArrayView text);
    /// Takes the text's characters below 128; others become "?".
    void assign(QStringView text);
    void clear();

    qsizetype size() const { return size_; }
    bool isEmpty() const { return size_ == 0; }
    QByteArrayView view() const { return {characters_.data(), size_}; }

    /// Part of the text: from `position` on, at most `length` characters. Empty beyond the end.
    QByteArrayView mid(qsizetype position, qsizetype length) const;

  private:
    std::array<char, kCapacity> characters_{};
    qsizetype size_ = 0;
};

}  // namespace platform
