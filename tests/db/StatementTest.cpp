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
static_assert(!std::invocable<Two, QStringView>);
static_assert(!std::invocable<Two, QStringView, int>);
static_assert(!std::invocable<Two, std::array<QStringView, 3>>);
static_assert(!std::convertible_to<QString, Sql>);

TEST(StatementTest, PutsItsValuesBetweenTheQuotesAsTheyAre) {
    EXPECT_EQ(kTwo(u"%s", u"쀍 😀").text(), u"DELETE TEMP WHERE PCode = '%s' AND Box='쀍 😀' "_s);
    for (const QStringView faulty : {u"'", u"2''", u"' OR '1'='1"}) {
        const Sql sql = kTwo(u"1", faulty);
        EXPECT_FALSE(sql.isWellFormed());
        EXPECT_EQ(sql.format(), u"DELETE TEMP WHERE PCode = '%s' AND Box='%s' ") << "safe to log";
    }
}

}  // namespace
}  // namespace db
