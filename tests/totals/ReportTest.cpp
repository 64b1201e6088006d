#include "totals/Report.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "totals/DailyReports.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

QStringList bodyOf(const Report& report) {
    return document(report).lines().mid(4);
}

/// A code for the office alone, a name, an amount, and a remark on a line of its own.
Report sample(const QList<Section>& sections) {
    Report report;
    report.title = u"표"_s;
    report.columns = {{.title = u"코드"_s},
                      {.title = u"이름"_s, .pixels = 80, .paper = 12},
                      {.title = u"금액"_s, .kind = Kind::Amount, .pixels = 80, .paper = 8, .isSummed = true},
                      {.title = u"비고"_s, .paper = 20, .startsLine = true}};
    report.sections = sections;
    return report;
}

TEST(Report, MakesListPaperAndTableOfTheSameRows) {
    const QString thin = u"--------------------------------\n"_s;
    const QString wide = u"다섯글자를넘는상호"_s;
    const Won limit(INT64_MAX);
    const struct {
        const char* what;
        QList<Section> sections;
        QStringList list;   ///< Cells of two columns.
        QStringList paper;  ///< Below the column titles, to the sums.
        QStringList sums;   ///< Label and value.
        QStringList table;  ///< Lines below the titles.
    } cases[] = {
        {"no row", {{}}, {}, {thin, u"합계               0\n"_s}, {u"금액 0"_s}, {}},
        {"a text wider than its column, a number as wide as its own, an empty remark",
         {{{}, {{u"1"_s, wide, Won(12345678), u""_s}, {u"2"_s, u"끝"_s, Won(-100000), u"주의"_s}}}},
         {wide, u"12,345,678"_s, u"끝"_s, u"-,100,000"_s},
         {thin, wide + u'\n', u"             12345678\n"_s, u"끝           -100000\n"_s, u"주의\n"_s, thin,
          u"합계         12245678\n"_s},
         {u"금액 12245678"_s},
         {u"1/"_s + wide + u"/12345678/"_s, u"2/끝/-100000/주의"_s}},
        {"sections, of which one is empty; a sum beyond 64 bits",
         {{u"갑"_s, {{u"1"_s, u"a"_s, limit, u""_s}, {u"1"_s, u"b"_s, Won(1), u""_s}}}, {u"을"_s, {}}},
         {u"[갑]"_s, u""_s, u"a"_s, u"9,223,372,036,854,775,807"_s, u"b"_s, u"1"_s},
         {thin, u"[갑]\n"_s, u"a            9223372036854775807\n"_s, u"b                  1\n"_s, thin,
          u"소계         9223372036854775807\n"_s},
         {u"갑 9223372036854775807"_s, u"을 0"_s},
         {u"갑/1/a/9223372036854775807/"_s, u"갑/1/b/1/"_s}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const Report report = sample(c.sections);
        EXPECT_EQ(listRows(report).cells, c.list);
        const QStringList body = bodyOf(report);
        EXPECT_EQ(body.mid(2, body.size() - 4), c.paper);
        QStringList figures;
        for (const Sum& sum : sums(report)) figures << sum.label + u' ' + platform::formatWon(sum.value);
        EXPECT_EQ(figures, c.sums);
        QStringList lines;
        for (const QStringList& line : table(report).mid(1)) lines << line.join(u'/');
        EXPECT_EQ(lines, c.table);
    }
}

TEST(DailyReports, AreOfOneUserOrEverybodyAndNeverShort) {
    test::TestDevice device;
    device.execute(
        uR"(
        INSERT INTO GARAE (GCODE, USERID, CJMONEY) VALUES ('A', 'A', '5'), ('B', 'B', '5');
        INSERT INTO MTM (DDate, UserID, PCode, MMoney, WorkGubun) SELECT '2024-03-29', USERID, '1', '5', '발행' FROM
            GARAE;
        INSERT INTO YTM (DDate, UserID, PCode, FBox) SELECT '2024-03-29', USERID, '1', '5' FROM GARAE;
        INSERT INTO MTMOK (DDate, UserID, GCode, CardMoney, BANKTRANNO) SELECT '2024-03-29', USERID, '1', '5', '9' FROM
            GARAE)"_s);
    const auto sumOf = [](const DailyReport& daily, QStringView user) {
        Won sum;
        for (const Sum& each : sums(daily.make(u"2024-03-29", user).value_or(Report()))) sum += each.value;
        return sum.value();
    };
    for (const DailyReport& daily : dailyReports()) {
        SCOPED_TRACE(daily.name.toUtf8().toStdString());
        EXPECT_EQ(sumOf(daily, u"A"), 5);
        EXPECT_EQ(sumOf(daily, u""), 10);
        EXPECT_EQ(sumOf(daily, u"C"), 0);
    }
    device.execute(u"DROP TABLE MTM; DROP TABLE YTM; DROP TABLE MTMOK; DROP TABLE GARAE"_s);
    for (const DailyReport& daily : dailyReports()) EXPECT_FALSE(daily.make(u"2024-03-29", u"A"));
}

}  // namespace
}  // namespace totals
