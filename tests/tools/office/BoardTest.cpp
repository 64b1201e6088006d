#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include "platform/Csv.h"
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
    QString page() {
        const OfficeEnded ended = run({u"board"_s, u"--date"_s, day_, u"--out"_s, path(u"board.html"_s)});
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        QFile file(path(u"board.html"_s));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll());
    }

    /// What the strip of the salesman's day says, made from the same day by the terminal's own rules.
    std::map<QString, QString> strip(const QString& terminal, const QString& user) const {
        const OfficeEnded ended = run({u"day"_s, day_, u"--report"_s, u"close"_s, u"--csv"_s, u"--terminal"_s,
                                       terminal, u"--user"_s, user});
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        std::map<QString, QString> figures;
        for (const platform::CsvRecord& record :
             platform::parseCsv(QByteArray::fromStdString(ended.out)).records) {
            if (record.fields.size() > 2)
                figures.emplace(record.fields[0] + u' ' + record.fields[1], record.fields[2]);
        }
        return figures;
    }

    /// Rows of a day that no hand would write together, as the terminal keeps them.
    void writeOddDay(const TestDevice& terminal, unsigned seed) const {
        const auto any = [&](const QStringList& texts) {
            seed = seed * 1664525 + 1013904223;
            return texts[qsizetype(seed >> 16) % texts.size()];
        };
        const auto amount = [&] { return any({u"0"_s, u"1000"_s, u"2345"_s, u"-500"_s, u" 70"_s, u"x"_s}); };
        for (int i = 0; i < 12; ++i) {
            const QString number = QString::number(5001 + i);
            const QString customer = any({u"0001"_s, u"0002"_s});
            const QString user = any({u"A"_s, u"B"_s});
            for (int line = 0; line < 2; ++line) {
                on(terminal,
                   u"INSERT INTO MTM VALUES "
                   u"('%1','매출','%2','가게','%3','%4','P%5','소주','01','%6','%7','%8',"
                   "'%9','300','20','"_s.arg(day_, customer, number,
                                             any({u"미처리"_s, u"미발행"_s, u"발행"_s}),
                                             any({u"1"_s, u"2"_s}), amount(), amount(), amount(), amount()) +
                       user + u"','%1')"_s.arg(any({u""_s, u"09:10"_s, u"14:55"_s})));
            }
            if (i % 3 == 0) {
                on(terminal,
                   u"INSERT INTO YTM VALUES ('%1','%2','가게','%3','P1','소주','%4','%5','%6','100','50','0','0','%7')"_s
                       .arg(day_, customer, number, amount(), amount(), amount(), user));
            }
            if (i % 2 == 0) {
                on(terminal,
                   u"INSERT INTO MTMOK VALUES ('%1','%2','%3','가게','%4','10:01','"_s.arg(
                       day_, any({u"매출"_s, u"입금"_s, u"단순결제"_s}), customer, number) +
                       user +
                       u"','%1','0','0','0','0','320','0','%2','%3','%4','%5','%6','0','','T1')"_s.arg(
                           amount(), amount(), amount(), amount(), amount(), amount()));
            }
        }
    }
};

TEST_F(BoardTest, ASalesmansFiguresAreThoseOfHisTerminal) {
    sql(u"INSERT INTO office.master_pummok (first_version, row_number, pcode, pname, boxbonea, ttt) VALUES "
        "(1, 1, 'P1', '소주', '30', 'Y'), (1, 2, 'P2', '잔', '12', '')"_s);
    for (const QString& number : {u"1"_s, u"2"_s}) {
        TestDevice& terminal = enrol(number, {u"A"_s, u"B"_s});
        on(terminal,
           u"INSERT INTO PDAUSER (userID, userNAME, vatMode) VALUES ('A', '김', '2'), ('B', '이', '3')"_s);
        writeOddDay(terminal, number.toUInt());
        synced(terminal);
    }
    const office::Board board = this->board();
    ASSERT_EQ(board.salesmen.size(), 4);
    for (const office::BoardSalesman& each : board.salesmen) {
        std::map<QString, QString> expected = strip(each.terminal, each.userId);
        const auto of = [&](const QString& name) { return platform::parseWon(expected[name]); };
        EXPECT_EQ(each.sales, of(u"대조 판매·보증금"_s));
        EXPECT_EQ(each.cash, of(u"입금 현금"_s));
        EXPECT_EQ(each.unpaid, of(u"입금 외상(미결제)"_s));
        EXPECT_EQ(each.earlierPaid, of(u"입금 전미수입금"_s));
        EXPECT_EQ(each.recovery, of(u"입금 용공회수"_s));
        EXPECT_EQ(each.cratesBack, of(u"판매·회수 회수 상자"_s).value());
        EXPECT_EQ(each.bottlesBack, of(u"판매·회수 회수 공병"_s).value());
        EXPECT_EQ(each.name, each.userId == u"A" ? u"김"_s : u"이"_s);
        EXPECT_FALSE(each.sales.isZero()) << each.terminal.toStdString();
    }
    // The hours make the sales; the products make them without deposits and rounding.
    Won hours = board.untimed;
    for (const office::BoardBar& bar : board.hours) hours += bar.amount;
    Won sales;
    for (const office::BoardSalesman& each : board.salesmen) sales += each.sales;
    EXPECT_EQ(hours, sales);
    EXPECT_EQ(board.hours.first().label, u"09"_s);
    EXPECT_EQ(board.hours.last().label, u"14"_s);
    EXPECT_EQ(board.hours.size(), 6);
    EXPECT_EQ(board.disagreements.lines.size(),
              sql(u"SELECT FROM report.disagreements('%1', '%1')"_s.arg(day_)).size());
}

TEST_F(BoardTest, WhoHasNotSentAndWhatTheCloseSaysAreNamed) {
    enrol(u"7"_s, {u"B"_s});
    enrol(u"8"_s, {u"C"_s});
    ASSERT_EQ(run({u"enrol"_s, u"8"_s, u"--withdraw"_s}).exitCode, 0);
    TestDevice& terminal = enrol(u"1"_s, {u"A"_s, u"B"_s});
    sell(terminal, u"5001"_s, u"0001"_s, 10000);
    collect(terminal, u"5001"_s, u"0001"_s, 10000, 4000);
    const auto close = [&](const QString& user, const QString& counted) {
        on(terminal,
           u"INSERT INTO DAYCLOSE VALUES ('%1','%2','%1 "
           u"18:05:00','%3','4000','4000','0','0','6000','0','0','1','0',"
           "'0','0','0','','{}','0','')"_s.arg(day_, user, counted));
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
    const QString page = this->page();
    for (const QString& each :
         {u"부족 500"_s, u"과입 200"_s, u"부족 300"_s, u"보내지 않은 단말기 1대"_s, u"마감 뒤에 바뀐 것"_s})
        EXPECT_TRUE(page.contains(each)) << each.toStdString();

    // A day that nobody has sent, and wrong calls.
    day_ = u"2020-02-29"_s;
    EXPECT_TRUE(this->page().contains(u"이 날의 전표를 보낸 단말기가 없습니다."));
    EXPECT_EQ(run({u"board"_s, u"--date"_s, u"2026-02-30"_s}).exitCode, 2);
    const OfficeEnded nowhere = run({u"board"_s, u"--out"_s, path(u"no/such/folder/x.html"_s)});
    EXPECT_EQ(nowhere.exitCode, 1);
    EXPECT_NE(nowhere.err.find("cannot be written"), std::string::npos) << nowhere.err;
}

TEST_F(BoardTest, AnOrderOnTwoTerminalsOfASalesmanIsNoNumberUsedTwice) {
    for (const QString& number : {u"1"_s, u"2"_s}) {
        TestDevice& terminal = enrol(number);
        sell(terminal, u"0001"_s, u"0001"_s, 1000);
        on(terminal, u"UPDATE MTM SET WorkGubun = '미처리', DTime = ''"_s);
        if (number == u"1") sell(terminal, u"5001"_s, u"0001"_s, 1000);
        synced(terminal);
    }
    EXPECT_TRUE(board().remarks.isEmpty());
    EXPECT_EQ(board().salesmen.size(), 1);
}

class BoardPageTest : public BoardTest {
  protected:
    /// A page whose every text tries to be more than a text, on which one salesman was busy.
    office::Board hostileBoard() const {
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
            each.sales = each.cash = each.card = each.unpaid = each.earlierPaid = each.recovery =
                Won(-123456789);
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

    static QString chromium() {
        for (const QString& name : {u"chromium"_s, u"chromium-browser"_s, u"google-chrome"_s}) {
            const QString found = QStandardPaths::findExecutable(name);
            if (!found.isEmpty()) return found;
        }
        return {};
    }
    /// What the browser wrote to its standard output.
    QByteArray browse(const QStringList& arguments) {
        QProcess process;
        process.start(chromium(), QStringList{u"--headless"_s, u"--no-sandbox"_s, u"--hide-scrollbars"_s,
                                              u"--disable-gpu"_s, u"--disable-dev-shm-usage"_s,
                                              u"--user-data-dir="_s + path(u"profile"_s)} +
                                      arguments);
        EXPECT_TRUE(process.waitForFinished(120'000) && process.exitCode() == 0)
            << process.readAllStandardError().toStdString();
        return process.readAllStandardOutput();
    }
};

TEST_F(BoardPageTest, NothingOnItIsMoreThanAText) {
    const QString page = QString::fromUtf8(office::boardPage(hostileBoard()));
    const QRegularExpression forbidden(
        u"<script|<img|<link|<iframe|@import|url\\(|\\bsrc=http://x/y onerror=[^&]*>|(href|src)=\"[^#]|\\son[a-z]+=\""_s,
        QRegularExpression::CaseInsensitiveOption);
    EXPECT_FALSE(page.contains(forbidden)) << forbidden.match(page).captured().toStdString();
    EXPECT_EQ(page.count(u"&lt;script&gt;x()&lt;/script&gt;"), page.count(u"&lt;img"));
    EXPECT_GE(page.count(u"&lt;img"), 5);
    EXPECT_EQ(page.count(u"</style>"), 1);
}

TEST_F(BoardPageTest, ABrowserShowsAllOfItAtAnyWidth) {
    if (chromium().isEmpty()) GTEST_SKIP() << "there is no Chromium here (Debian's package chromium)";
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
    const QString told =
        QString::fromUtf8(browse({u"--virtual-time-budget=10000"_s, u"--dump-dom"_s, u"file://"_s + frames}));
    for (const QString& width : {u"1280"_s, u"1000"_s, u"1030"_s, u"700"_s, u"360"_s, u"320"_s})
        EXPECT_TRUE(told.contains(u"[%1: 37 bars; ]"_s.arg(width))) << told.toStdString();

    // On paper as well, on a few sheets.
    browse({u"--no-pdf-header-footer"_s, u"--print-to-pdf="_s + path(u"page.pdf"_s),
            u"file://"_s + writeFile(u"page.html"_s, office::boardPage(hostileBoard()))});
    QFile pdf(path(u"page.pdf"_s));
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const qsizetype sheets =
        QString::fromLatin1(pdf.readAll()).count(QRegularExpression(u"/Type /Page\\b"_s));
    EXPECT_GE(sheets, 1);
    EXPECT_LE(sheets, 3);
}

}  // namespace
}  // namespace test
