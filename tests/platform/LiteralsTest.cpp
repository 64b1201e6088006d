#include "platform/adoce/Literals.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <optional>

#include "support/PrintQt.h"

namespace platform::adoce {
namespace {

using namespace Qt::Literals::StringLiterals;

struct Taken {
    QByteArray text;
    QStringList values;
    friend bool operator==(const Taken&, const Taken&) = default;
};

void PrintTo(const Taken& taken, std::ostream* out) {
    *out << taken.text.constData() << " with " << taken.values.join(u" / "_s).toStdString();
}

// One object serves every text in turn, as it does in a recordset: what a text leaves behind must not show in
// the next one.
TEST(LiteralsTest, TakesTextsApartOneAfterAnother) {
    struct Case {
        const char16_t* sql;
        std::optional<Taken> taken;
    };
    const Case cases[] = {
        {u"", Taken{"", {}}},
        {u"DELETE TEMP ", Taken{"DELETE TEMP ", {}}},
        {u"DELETE TEMP ", Taken{"DELETE TEMP ", {}}},
        {u"I ('a','b')", Taken{"I (?,?)", {u"a"_s, u"b"_s}}},
        {u"I ('진로','쀍')", Taken{"I (?,?)", {u"진로"_s, u"쀍"_s}}},
        {u"I ('a','b')", Taken{"I (?,?)", {u"a"_s, u"b"_s}}},
        {u"I ('a','b', 'c')", Taken{"I (?,?, ?)", {u"a"_s, u"b"_s, u"c"_s}}},
        {u"I ('a','b')", Taken{"I (?,?)", {u"a"_s, u"b"_s}}},
        {u"I ('a','b", std::nullopt},
        {u"I ('a','b')", Taken{"I (?,?)", {u"a"_s, u"b"_s}}},
        {u"I ('a''b','c')", std::nullopt},
        {u"I ('a','b''')", std::nullopt},
        {u"'", std::nullopt},
        {u"'y'z", Taken{"?z", {u"y"_s}}},
        {u"WHERE 성명 = '😀'", Taken{"WHERE 성명 = ?", {u"😀"_s}}},
    };
    ParsedStatement parsed;
    for (const Case& c : cases) {
        std::optional<Taken> taken;
        if (parseStatement(c.sql, &parsed)) {
            taken = Taken{parsed.text, {}};
            int begin = 0;
            for (const int end : parsed.ends) {
                taken->values << QString::fromUtf8(parsed.values.sliced(begin, end - begin));
                begin = end;
            }
            EXPECT_EQ(begin, parsed.values.size());
        }
        EXPECT_EQ(taken, c.taken) << QString::fromUtf16(c.sql).toStdString();
    }
}

}  // namespace
}  // namespace platform::adoce
