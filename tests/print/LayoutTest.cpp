#include "print/Layout.h"

#include <gtest/gtest.h>

#include "print/Document.h"

namespace {

using namespace Qt::Literals::StringLiterals;

struct Case {
    QString text;
    int width;
    QString field;
};

TEST(Layout, BlocksFillThePaper) {
    print::Document document(u"제목");
    EXPECT_EQ(document.title(), u"      제목\n"_s) << "centred in the 16 columns of the enlarged size";
    const auto added = [&](auto&& block) {
        const qsizetype before = document.lines().size();
        block();
        return document.lines().sliced(before).join(QString());
    };
    const platform::Won wide(INT64_MIN);
    const Case cases[] = {
        {added([&] { document.labelAmount(u"합계", platform::Won(-1200)); }), 32,
         u"합계                     -1200원\n"_s},
        {added([&] { document.labelAmount(u"열두글자나되는긴라벨임다", wide); }), 0,
         u"열두글자나되는긴라벨임다\n          -9223372036854775808원\n"_s},
        {added([&] { document.labelText(u"주소", u" 서울시 중구 을지로입a 12길 34 "); }), 0,
         u"주소       서울시 중구 을지로입a\n           12길 34\n"_s},  // a blank after a full line ends it
        {added([&] { document.itemName(u"a참이슬후레쉬오리지널진로이즈백소주", {}); }), 31,
         u"a참이슬후레쉬오리지널진로이즈백\n"_s},
        {added([&] {
             document.row({print::name(u"소주병", 5), print::number(u"12", 4)});
         }),
         0, u"소주  12\n"_s},  // the short field shifts the number one column left
        {added([&] {
             document.row({print::number(u"12345", 5), print::number(u"999", 5),
                           print::number(u"-12345678", 9), print::number(u"12", 10)});
         }),
         29, u"12345  999 -12345678       12\n"_s},  // the blank comes off those that follow
        {added([&] {
             document.row({print::number(u"12345", 5), print::number(u"12345", 5),
                           print::number(u"123456789012", 12), print::number(u"1234567890", 10)});
         }),
         0, u"12345 12345 123456789012\n                      1234567890\n"_s},
    };
    for (const Case& entry : cases) {
        EXPECT_EQ(entry.text.toStdString(), entry.field.toStdString());
        if (entry.width == 0) continue;
        EXPECT_EQ(print::displayWidth(entry.text.chopped(1)), entry.width);
    }
}

}  // namespace
