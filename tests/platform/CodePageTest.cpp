#include "platform/CodePage.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"

namespace platform::codepage {
namespace {

TEST(CodePageTest, ConvertsBothWays) {
    struct Case {
        const char16_t* text;
        QByteArray bytes;
    };
    const Case cases[] = {
        {u"", ""},           {u"A1~\\|", "A1~\\|"},
        {u"가", "\xB0\xA1"}, {u"참이슬 360ml", "\xC2\xFC\xC0\xCC\xBD\xBD 360ml"},
        {u"쀍", "\x97\xCD"},  // other tables give a private character here
        {u"똠", "\x8C\x63"},  // not in the older standard that many printers hold
        {u"힣", "\xC6\x52"}, {u"￦", "\xA3\xDC"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(encode(c.text), c.bytes);
        EXPECT_EQ(decode(c.bytes), QString::fromUtf16(c.text));
    }
}

TEST(CodePageTest, RefusesBytesThatAreNoText) {
    const QByteArray broken[] = {
        "\xB0",              // ends in the middle of a character
        "\xB0 ",             // a blank is no trail byte
        "\xB0|",             // nor is the separator of the import files
        "\xB0\n",            // nor a line end
        "\x81\x5B",          // between the ranges of trail bytes
        "\x80",              // no lead byte
        "\xC6\x53",          // past the last syllable
        "\xEA\xB0\x80\xEB",  // UTF-8, cut off
    };
    for (const QByteArray& bytes : broken)
        EXPECT_EQ(decode(bytes), std::nullopt) << bytes.toHex().constData();
}

TEST(CodePageTest, RefusesCharactersOutside) {
    const char16_t* const outside[] = {u"₩",      u"é", u"–",     u"•", u"한글 ©", u"\u1100\u1161",
                                       u"\uFFFD", u"😀", u"\xD800"};
    for (const char16_t* text : outside)
        EXPECT_EQ(encode(text), std::nullopt) << QString::fromUtf16(text).toStdString();
}

}  // namespace
}  // namespace platform::codepage
