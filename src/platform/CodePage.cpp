#include "platform/CodePage.h"

#include <iconv.h>

namespace platform::codepage {
namespace {

/// One open conversion of the C library. Its CP949 table is strict and complete, unlike Qt's converters:
/// "CP949" there is another vendor's table, and "windows-949" lets broken bytes through.
class Converter {
  public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (isOpen()) iconv_close(handle_);
    }
    Q_DISABLE_COPY_MOVE(Converter)

    /// Number of bytes written to `out`, or -1 when the input does not convert whole.
    qsizetype convert(const char* in, qsizetype inBytes, char* out, qsizetype outBytes) {
        if (!isOpen()) return -1;
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        char* source = const_cast<char*>(in);
        char* target = out;
        size_t sourceLeft = static_cast<size_t>(inBytes);
        size_t targetLeft = static_cast<size_t>(outBytes);
        const size_t result = iconv(handle_, &source, &sourceLeft, &target, &targetLeft);
        if (result != 0 || sourceLeft != 0) return -1;
        return target - out;
    }

  private:
    bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    iconv_t handle_;
};

constexpr const char* kUtf16 = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "UTF-16LE" : "UTF-16BE";

}  // namespace

std::optional<QString> decode(QByteArrayView bytes) {
    // Price files are plain ASCII; skipping the converter for them is what makes loading them quick.
    if (QtPrivate::isAscii(QLatin1StringView(bytes)) && !bytes.contains('\0'))
        return QString::fromLatin1(bytes);
    thread_local Converter converter(kUtf16, "CP949");
    // Every byte gives at most one UTF-16 unit.
    QString text(bytes.size(), Qt::Uninitialized);
    const qsizetype written =
        converter.convert(bytes.data(), bytes.size(), reinterpret_cast<char*>(text.data()),
                          text.size() * qsizetype{sizeof(QChar)});
    if (written < 0) return std::nullopt;
    text.truncate(written / qsizetype{sizeof(QChar)});
    return text;
}

std::optional<QByteArray> encode(QStringView text) {
    thread_local Converter converter("CP949", kUtf16);
    QByteArray bytes(text.size() * 2, Qt::Uninitialized);
    const qsizetype written =
        converter.convert(reinterpret_cast<const char*>(text.utf16()), text.size() * qsizetype{sizeof(QChar)},
                          bytes.data(), bytes.size());
    if (written < 0) return std::nullopt;
    bytes.truncate(written);
    return bytes;
}

}  // namespace platform::codepage
