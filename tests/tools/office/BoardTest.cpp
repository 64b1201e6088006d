#include <QRegularExpression>
#include <QStandardPaths>

#include "rovana-office/Board.h"
#include "rovana-office/Database.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

using platform::Won;

class BoardTest : public SyncTest {
  protected:
    office::Board board() const {
        pqxx::connection connected(connection().toStdString());
        return office::readBoard(connected, day_);
    }
    std::string page() {
        const Ended ended = run({u"board"_s, u"--date"_s, day_, u"--out"_s, path(u"board.html"_s)});
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return readFile(path(u"board.html"_s)).toStdString();
    }
};

TEST_F(BoardTest, WhoHasNotSentAndWhatTheCloseSaysAreNamed) {
    enrol(u"7"_s, {u"B"_s});
    enrol(u"8"_s, {u"C"_s});
    ASSERT_EQ(run({u"enrol"_s, u"8"_s, u"--withdraw"_s}).exitCode, 0);
    const TestDevice& terminal = enrol(u"1"_s, {u"A"_s, u"B"_s});
    sell(terminal, u"5001"_s, u"0001"_s, 10000);
    collect(terminal, u"5001"_s, u"0001"_s, 10000, 4000);
    const auto close = [&](const QString& user, const QString& counted) {
        on(terminal,
           uR"(INSERT INTO DAYCLOSE VALUES ('%1','%2','%1 18:05:00','%3','4000','4000','0','0','6000','0','0',
            '1','0','0','0','0','','{}','0',''))"_s.arg(day_, user, counted));
    };
    // The last close counts.
    close(u"A"_s, u"1"_s);
    close(u"A"_s, u"3500"_s);
    close(u"B"_s, u"4200"_s);
    synced(terminal);
    const office::Board board = this->board();
    ASSERT_EQ(board.salesmen.size(), 2);
    EXPECT_EQ(board.salesmen[0].over, Won(-500));
    EXPECT_EQ(board.salesmen[0].closedAt, u"18:05"_s);
    EXPECT_EQ(board.salesmen[1].over, Won(200));
    ASSERT_EQ(board.silent.lines.size(), 1);
    EXPECT_EQ(board.silent.lines[0], QStringList({u"7"_s, u"B"_s, u"없음"_s, u"없음"_s}));
    const std::string page = this->page();
    for (const char* each :
         {"부족 500", "과입 200", "부족 300", "보내지 않은 단말기 1대", "마감 뒤에 바뀐 것"})
        EXPECT_THAT(page, HasSubstr(each));

    day_ = u"2020-02-29"_s;
    EXPECT_THAT(this->page(), HasSubstr("이 날의 전표를 보낸 단말기가 없습니다."));
    EXPECT_THAT(run({u"board"_s, u"--out"_s, path(u"no/such/folder/x.html"_s)}).err,
                HasSubstr("cannot be written"));
}

TEST_F(BoardTest, AnOrderOnTwoTerminalsOfASalesmanIsNoNumberUsedTwice) {
    for (const QString& number : {u"1"_s, u"2"_s}) {
        const TestDevice& terminal = enrol(number);
        sell(terminal, u"0001"_s, u"0001"_s, 1000);
        on(terminal, u"UPDATE MTM SET WorkGubun = '미처리', DTime = ''"_s);
        if (number == u"1") sell(terminal, u"5001"_s, u"0001"_s, 1000);
        synced(terminal);
    }
    EXPECT_TRUE(board().remarks.isEmpty());
    EXPECT_EQ(board().salesmen.size(), 1);
}

/// A page whose every text tries to be more than a text, on which one salesman was busy.
office::Board hostileBoard() {
    const QString hostile = u"<img src=http://x/y onerror=alert(1)>\"'&%1</style><script>x()</script>"_s;
    office::Board board;
    board.day = u"2026-11-21"_s;
    board.madeAt = u"2026-11-21 18:00"_s;
    for (int i = 0; i < 3; ++i) {
        office::BoardSalesman each;
        each.terminal = u"1234567890"_s;
        each.userId = u"A"_s;
        each.name = i == 0 ? hostile : u"남궁아름다운이름"_s;
        each.slips = 120;
        each.sales = each.cash = each.card = each.unpaid = each.earlierPaid = each.recovery = Won(-123456789);
        each.cratesBack = each.bottlesBack = 99999;
        each.over = Won(i == 1 ? 987654321 : -987654321);
        each.closedAt = each.sentAt = u"11-21 18:05"_s;
        board.salesmen << each;
    }
    board.silent = {u"보내지 않은 단말기"_s, {u"단말기"_s, u"영업사원"_s}, {{u"9"_s, hostile}}, 0};
    board.disagreements = {u"점검"_s, {u"거래처"_s, u"금액"_s}, {{hostile, u"1,234,567"_s}}, 3};
    board.remarks = {{u"두 단말기가 함께 쓴 번호"_s, {u"사원"_s, u"전표"_s}, {{hostile, u"5001"_s}}, 0}};
    for (int hour = 0; hour < 24; ++hour)
        board.hours.append(
            {QString::number(hour).rightJustified(2, u'0'), u"전표 3장"_s, Won(hour * 12'345'678)});
    for (int i = 0; i < 13; ++i)
        board.products.append(
            {i == 0 ? hostile : u"이슬담소주 360ml"_s, u"1,200상자 30본"_s, Won(123456789 - i)});
    return board;
}

TEST(BoardPage, NothingOnItIsMoreThanAText) {
    const QString page = QString::fromUtf8(office::boardPage(hostileBoard()));
    const QRegularExpression forbidden(
        u"<script|<img|<link|<iframe|@import|url\\(|\\bsrc=http://x/y onerror=[^&]*>|(href|src)=\"[^#]|\\son[a-z]+=\""_s,
        QRegularExpression::CaseInsensitiveOption);
    EXPECT_FALSE(page.contains(forbidden)) << forbidden.match(page).captured().toStdString();
    EXPECT_EQ(page.count(u"&lt;script&gt;x()&lt;/script&gt;"), page.count(u"&lt;img"));
    EXPECT_GE(page.count(u"&lt;img"), 5);
    EXPECT_EQ(page.count(u"</style>"), 1);
}

TEST_F(BoardTest, ABrowserShowsAllOfThePageAtAnyWidth) {
    const QString chromium = QStandardPaths::findExecutable(u"chromium"_s);
    if (chromium.isEmpty()) GTEST_SKIP() << "there is no Chromium here (Debian's package chromium)";
    // Measured within frames of those widths by a script of the test's own; a text beside its box, two texts
    // of a chart on each other and a page that is wider than its frame are told.
    QString page = QString::fromUtf8(office::boardPage(hostileBoard()));
    page.replace(u"</body>"_s,
                 uR"(<script>
addEventListener('load', () => {
  const told = [], width = document.documentElement.clientWidth;
  if (document.documentElement.scrollWidth > width) told.push('the page is ' + document.documentElement.scrollWidth);
  for (const each of document.querySelectorAll('td, dd, h2, li, svg.chart > g > text')) {
    const box = each.getBoundingClientRect();
    if (box.width > 0 && (box.left < -1 || box.right > width + 1 || (!each.ownerSVGElement && each.scrollWidth > each.clientWidth + 1)))
      told.push(each.tagName + ' sticks out: ' + each.textContent.slice(0, 30));
  }
  const texts = [...document.querySelectorAll('.label')].map(each => each.getBoundingClientRect()).filter(each => each.width > 0);
  for (let i = 1; i < texts.length; ++i) if (texts[i].left < texts[i - 1].right) told.push('labels touch');
  for (const group of document.querySelectorAll('svg.chart > g')) {
    const [bar] = [...group.querySelectorAll('.bar')].map(each => each.getBoundingClientRect());
    for (const text of group.querySelectorAll('text')) {
      const box = text.getBoundingClientRect();
      if (box.width > 0 && bar.height > 0 && box.bottom > bar.top + 2 && box.top < bar.bottom - 2 && box.left < bar.right)
        told.push('a bar lies on ' + text.textContent.slice(0, 30));
    }
  }
  parent.postMessage(width + ': ' + document.querySelectorAll('svg .bar').length + ' bars; ' + told.join('; '), '*');
});
</script></body>)"_s);
    writeFile(u"page.html"_s, page.toUtf8());
    // As wide as paper between its margins.
    page.replace(u"@media screen and"_s, u"@media not all and"_s)
        .replace(u"@media print"_s, u"@media screen"_s);
    writeFile(u"paper.html"_s, page.toUtf8());
    const QString frames = writeFile(u"frames.html"_s, R"(<body><pre></pre><script>
addEventListener('message', e => document.querySelector('pre').append('[' + e.data + ']'));
for (const width of [1280, 1000, 1030, 700, 360, 320]) {
  const frame = document.createElement('iframe');
  frame.style = 'border:0;height:900px;width:' + width + 'px';
  frame.src = width == 1030 ? 'paper.html' : 'page.html';
  document.body.append(frame);
}
</script></body>)");
    const Ended browser =
        runProgram(chromium, {u"--headless"_s, u"--no-sandbox"_s, u"--hide-scrollbars"_s, u"--disable-gpu"_s,
                              u"--disable-dev-shm-usage"_s, u"--user-data-dir="_s + path(u"profile"_s),
                              u"--virtual-time-budget=10000"_s, u"--dump-dom"_s, u"file://"_s + frames});
    for (const char* width : {"1280", "1000", "1030", "700", "360", "320"})
        EXPECT_THAT(browser.out, HasSubstr("[" + std::string(width) + ": 37 bars; ]")) << browser.err;
}

}  // namespace
}  // namespace test
