#include "db/Statement.h"

#include <gtest/gtest.h>

#include <concepts>

#include "support/PrintQt.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr Statement<u" SELECT * FROM TEMP "> kAll;
constexpr Statement<u"DELETE TEMP WHERE PCode = '%s' AND Box='%s' "> kTwo;

using All = decltype(kAll);
using Two = decltype(kTwo);

// What must not compile: another number of values, a figure in place of a text, a text that no Statement
// made.
static_assert(std::invocable<All>);
static_assert(!std::invocable<All, QStringView>);
static_assert(std::invocable<Two, QStringView, QString>);
static_assert(!std::invocable<Two, QStringView>);
static_assert(!std::invocable<Two, QStringView, QStringView, QStringView>);
static_assert(!std::invocable<Two, QStringView, int>);
static_assert(!std::invocable<Two, QStringView, const char*>);
static_assert(std::invocable<Two, std::array<QStringView, 2>>);
static_assert(!std::invocable<Two, std::array<QStringView, 3>>);
static_assert(!std::constructible_from<Sql, QString>);
static_assert(!std::constructible_from<Sql, QString, QStringView, bool>);
static_assert(!std::convertible_to<QString, Sql>);

TEST(StatementTest, PutsItsValuesBetweenTheQuotesAsTheyAre) {
    EXPECT_EQ(kAll().text(), u" SELECT * FROM TEMP "_s);
    struct Case {
        QStringView code;
        QStringView box;
        QString text;
        bool isWellFormed;
    };
    const Case cases[] = {
        {u"0001", u"-3", u"DELETE TEMP WHERE PCode = '0001' AND Box='-3' "_s, true},
        {u"", {}, u"DELETE TEMP WHERE PCode = '' AND Box='' "_s, true},
        {u"쀍 😀", u"\"%s\\", u"DELETE TEMP WHERE PCode = '쀍 😀' AND Box='\"%s\\' "_s, true},
        {u"%s", u"1", u"DELETE TEMP WHERE PCode = '%s' AND Box='1' "_s, true},
        {u"'", u"1", u"DELETE TEMP WHERE PCode = ''' AND Box='1' "_s, false},
        {u"1", u"2''", u"DELETE TEMP WHERE PCode = '1' AND Box='2''' "_s, false},
        {u"' OR '1'='1", u"", u"DELETE TEMP WHERE PCode = '' OR '1'='1' AND Box='' "_s, false},
    };
    for (const Case& c : cases) {
        const Sql sql = kTwo(c.code, c.box);
        EXPECT_EQ(sql.text(), c.text);
        EXPECT_EQ(sql.isWellFormed(), c.isWellFormed) << c.text.toStdString();
        EXPECT_EQ(sql.format().toString(), u"DELETE TEMP WHERE PCode = '%s' AND Box='%s' "_s);
        EXPECT_EQ(kTwo(std::array{c.code, c.box}).text(), c.text);
    }
}

}  // namespace
}  // namespace db
