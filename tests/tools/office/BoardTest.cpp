#include <QRegularExpression>
#include <QStandardPaths>

#include "rovana-office/Board.h"
#include "rovana-office/Database.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

using platform::Won;

class BoardTest : public SyncTest {};

TEST_F(BoardTest, ThreeTerminalsPlayAndThePageTellsOfThem) {
    const Ended ended = runProgram(u"rovana-office"_s, {u"demo"_s, path(u"demo"_s)});
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr("보내지 않은 단말기: 4 (D)"));
    const std::string page = readFile(path(u"demo/board.html"_s)).toStdString();
    // A card, a debt and empties; short, over and not closed; what 점검 names and what came after a close.
    for (const char* each :
         {"190,956", "481,480", "85,960", "부족 111", "과입 500", "마감 전", "수금없는 판매", "추가"})
        EXPECT_THAT(page, HasSubstr(each));
    // What lies in a folder is not touched.
    EXPECT_EQ(runProgram(u"rovana-office"_s, {u"demo"_s, path(u"demo"_s)}).exitCode, 1);
}

TEST_F(BoardTest, TheLastCloseCountsAndWhoHasNotSentIsNamed) {
    enrol(u"7"_s, {u"B"_s});
    enrol(u"8"_s, {u"C"_s});
    ASSERT_EQ(run({u"enrol"_s, u"8"_s, u"--withdraw"_s}).exitCode, 0);
    const TestDevice& terminal = enrol();
    collect(terminal, u"5001"_s, u"0001"_s, 10000, 4000);
    for (const QString& counted : {u"1"_s, u"3500"_s})
        on(terminal,
           uR"(INSERT INTO DAYCLOSE VALUES ('%1','A','%1 18:05:00','%2','4000','4000','0','0','6000','0','0',
            '1','0','0','0','0','','{}','0',''))"_s.arg(day_, counted));
    synced(terminal);
    pqxx::connection connected(connection().toStdString());
    const office::Board board = office::readBoard(connected, day_);
    ASSERT_EQ(board.salesmen.size(), 1);
    EXPECT_EQ(board.salesmen[0].over, Won(-500));
    EXPECT_EQ(board.silent.lines, QList<QStringList>({{u"7"_s, u"B"_s, u"없음"_s, u"없음"_s}}));
}

TEST_F(BoardTest, NothingOnThePageIsMoreThanATextAndABrowserShowsAllOfIt) {
    const QString hostile = u"<img src=http://x/y onerror=alert(1)>\"'&%1</style><script>x()</script>"_s;
    office::Board board;
    board.day = u"2026-11-21"_s;
    EXPECT_TRUE(office::boardPage(board).contains("이 날의 전표를 보낸 단말기가 없습니다."));
    board.salesmen.resize(2);
    board.salesmen[0].name = hostile;
    board.salesmen[1].over = board.salesmen[1].sales = Won(-123456789);
    board.silent = {u"보내지 않은 단말기"_s, {u"단말기"_s, u"영업사원"_s}, {{u"9"_s, hostile}}, 0};
    board.disagreements = {u"점검"_s, {u"거래처"_s, u"금액"_s}, {{hostile, u"1,234,567"_s}}, 3};
    board.remarks = {{u"두 단말기가 함께 쓴 번호"_s, {u"사원"_s, u"전표"_s}, {{hostile, u"5001"_s}}, 0}};
    for (int hour = 0; hour < 24; ++hour)
        board.hours.append({QString::number(10 + hour), u"전표 3장"_s, Won(hour * 12'345'678)});
    for (int i = 0; i < 13; ++i) board.products.append({hostile, u"1,200상자 30본"_s, Won(123456789 - i)});
    const QByteArray html = office::boardPage(board);
    const QString page = QString::fromUtf8(html);
    const QRegularExpression forbidden(
        u"<script|<img|<link|<iframe|@import|url\\(|\\bsrc=http://x/y onerror=[^&]*>|(href|src)=\"[^#]|\\son[a-z]+=\""_s,
        QRegularExpression::CaseInsensitiveOption);
    EXPECT_FALSE(page.contains(forbidden)) << forbidden.match(page).captured().toStdString();
    EXPECT_EQ(page.count(u"&lt;script&gt;x()&lt;/script&gt;"), page.count(u"&lt;img"));
    EXPECT_GE(page.count(u"&lt;img"), 5);
    EXPECT_EQ(page.count(u"</style>"), 1);

    const QString chromium = QStandardPaths::findExecutable(u"chromium"_s);
    if (chromium.isEmpty()) GTEST_SKIP() << "there is no Chromium here (Debian's package chromium)";
    // What a script of the test's own finds: the bars, and whether the page is as narrow as its window.
    const QString file = writeFile(u"page.html"_s, html + R"(<script>
const page = document.documentElement;
page.append(`[${document.querySelectorAll('svg .bar').length} ${page.scrollWidth <= page.clientWidth}]`);
</script>)");
    for (const QString& width : {u"1280"_s, u"360"_s}) {
        const Ended browser = runProgram(
            chromium, {u"--headless"_s, u"--no-sandbox"_s, u"--disable-gpu"_s, u"--disable-dev-shm-usage"_s,
                       u"--user-data-dir="_s + path(u"profile"_s), u"--enable-logging=stderr"_s,
                       u"--window-size=%1,900"_s.arg(width), u"--dump-dom"_s, u"file://"_s + file});
        EXPECT_NE(browser.out.find("[37 true]"), std::string::npos) << browser.err;
        EXPECT_THAT(browser.err, Not(HasSubstr("CONSOLE")));
    }
}

}  // namespace
}  // namespace test
