#include "platform/CodePage.h"

#include "fuzz/Target.h"
#include "platform/Hangul.h"

using fuzz::require;
namespace codepage = platform::codepage;

FUZZ_TARGET(CodePage, input) {
    if (const std::optional<QString> text = codepage::decode(input)) {
        require(text->size() <= input.size(), "a byte gives at most one character");
        require(!text->contains(QChar::ReplacementCharacter), "nothing is replaced");
        const std::optional<QByteArray> bytes = codepage::encode(*text);
        require(bytes && *bytes == input, "what was decoded encodes to the same bytes");
        require(platform::hangul::matches(*text, *text), "a name is found by itself");
        require(platform::hangul::continues(*text, *text), "a name goes on with itself");
    }
    // The same bytes as UTF-16, whose every second unit may be a lone surrogate.
    QString text(input.size() / 2, Qt::Uninitialized);
    memcpy(text.data(), input.data(), size_t(text.size()) * sizeof(QChar));
    if (const std::optional<QByteArray> bytes = codepage::encode(text)) {
        require(codepage::decode(*bytes) == text, "what was encoded decodes to the same text");
    }
}
