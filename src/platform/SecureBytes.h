#pragma once

#include <sodium.h>

#include <QByteArrayView>
#include <QStringView>
#include <cstddef>
#include <new>
#include <vector>

namespace platform {

/// Overwrites memory before it goes back to the heap. A growing container leaves nothing behind either.
template <typename T>
struct WipingAllocator {
    using value_type = T;

    WipingAllocator() = default;
    template <typename Other>
    WipingAllocator(const WipingAllocator<Other>&) {}

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t count) {
        sodium_memzero(memory, count * sizeof(T));
        ::operator delete(memory);
    }
    friend bool operator==(const WipingAllocator&, const WipingAllocator&) { return true; }
};

/// Bytes that must not stay in memory: passwords, card tracks and keys.
using SecureBytes = std::vector<unsigned char, WipingAllocator<unsigned char>>;

/// A text that must not stay in memory. Unlike a QString it never shares its characters.
class SecureText {
  public:
    SecureText() = default;
    explicit SecureText(QStringView text) { assign(text); }

    void assign(QStringView text) {
        clear();
        units_.assign(text.utf16(), text.utf16() + text.size());
    }
    /// Takes 8-bit text, as the card reader gives it, one character for each byte.
    void assign(QByteArrayView text) {
        clear();
        units_.reserve(size_t(text.size()));
        for (const char byte : text) units_.push_back(static_cast<unsigned char>(byte));
    }
    /// Empties the text and overwrites its characters.
    void clear() { std::vector<char16_t, WipingAllocator<char16_t>>().swap(units_); }

    QStringView view() const { return {units_.data(), size()}; }
    qsizetype size() const { return qsizetype(units_.size()); }
    bool isEmpty() const { return units_.empty(); }

  private:
    std::vector<char16_t, WipingAllocator<char16_t>> units_;
};

}  // namespace platform
