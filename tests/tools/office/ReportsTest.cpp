#include <QSet>
#include <random>

#include "platform/Csv.h"
#include "rovana-office/Board.h"
#include "rovana-office/Database.h"
#include "tools/office/SyncTest.h"
#include "totals/DayClose.h"
#include "totals/VisitReport.h"

namespace test {
namespace {

using platform::Won;

class ReportsTest : public SyncTest {
  protected:
    /// Customers 0001 to 0003 and two products, in the office; `enrolWithMaster` has them on the terminal.
    ReportsTest() {
        sql(uR"(INSERT INTO office.master_garae (first_version, row_number, gcode, gname, userid, cjmoney)
                SELECT 1, n, '000' || n, '가게' || n, 'A', n * 1000 FROM generate_series(1, 3) AS n;
            INSERT INTO office.master_pummok (first_version, row_number, pcode, pname, boxbonea, ttt)
                VALUES (1, 1, '1001', '소주', '30', 'Y'), (1, 2, '1002', '잔', '12', ''))"_s);
    }
    const TestDevice& enrolWithMaster(const QString& number) {
        const TestDevice& terminal = enrol(number, {u"A"_s, u"B"_s});
        on(terminal,
           uR"(INSERT INTO PDAUSER (userID, userNAME, vatMode) VALUES ('A', '이름A', '2'), ('B', '이름B', '3');
            INSERT INTO GARAE (GCODE, GNAME, USERID, CJMONEY)
                VALUES ('0001', '가게1', 'A', '1000'), ('0002', '가게2', 'A', '2000'), ('0003', '가게3', 'A', '3000');
            INSERT INTO PUMMOK (Pcode, Pname, BoxBonEa, TTT)
                VALUES ('1001', '소주', '30', 'Y'), ('1002', '잔', '12', ''))"_s);
        return terminal;
    }

    /// Rows as no terminal would write them together: few numbers, customers and approvals, so that they
    /// meet.
    void writeOddDay(const TestDevice& terminal, const QString& day, unsigned seed) {
        random_.seed(seed);
        const auto add = [&](const QString& table, const QStringList& values) {
            on(terminal, u"INSERT INTO %1 VALUES ('%2')"_s.arg(table, values.join(u"','")));
        };
        QList<QStringList> slips;
        for (int i = 0; i < 14; ++i) {
            add(u"MTM"_s,
                QStringList{day, u"매출"_s, customer(), u"가게"_s, number(),
                            any({u"미처리"_s, u"미발행"_s, u"발행"_s}), product(), u"상품"_s, u"01"_s} +
                    amounts(6) + QStringList{user(), any({u""_s, u"09:10"_s, u"14:55"_s})});
        }
        for (int i = 0; i < 5; ++i) {
            add(u"YTM"_s, QStringList{day, customer(), u"가게"_s, number(), product(), u"병"_s} + amounts(7) +
                              QStringList(user()));
        }
        for (int i = 0; i < 9; ++i) {
            slips.append({customer(), number(), user(), approval()});
            add(u"MTMOK"_s,
                QStringList{day, any({u"매출"_s, u"매출"_s, u"입금"_s, u"단순결제"_s}), slips.last()[0],
                            u"가게"_s, slips.last()[1], u"10:01"_s, slips.last()[2]} +
                    amounts(13) + QStringList{u""_s, slips.last()[3]});
        }
        // A payment is of a collection, or of nothing that is there.
        for (int i = 0; i < 7; ++i) {
            const QStringList slip = random_() % 2 == 0
                                         ? slips[qsizetype(random_() % unsigned(slips.size()))]
                                         : QStringList{customer(), number(), user(), approval()};
            add(u"PAYJOURNAL"_s,
                QStringList{QString::number(random_()),
                            any({u"approved"_s, u"approved"_s, u"sent"_s, u"refused"_s, u"unknown"_s,
                                 u"released"_s, u"?"_s}),
                            any({u"card"_s, u"card"_s, u"cash"_s}), amounts(1)[0], u""_s, day, u""_s, slip[0],
                            u"가게"_s, slip[1], u""_s, slip[2]} +
                    QStringList(13) +
                    QStringList{QString(day).remove(u'-') + u"0900%1"_s.arg(10 + i), slip[3], u""_s, u""_s});
        }
    }

    QString dayOf(const QStringList& more) const {
        const Ended ended = run(QStringList{u"day"_s, day_} + more);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return QString::fromStdString(ended.out);
    }
    QString totalsOf(const TestDevice& terminal, const QStringList& more) const {
        const Ended ended =
            runProgram(u"rovanactl"_s,
                       QStringList{u"totals"_s, u"--device"_s, terminal.folder(), u"--date"_s, day_} + more);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return QString::fromStdString(ended.out).remove(QChar(QChar::ByteOrderMark));
    }

    /// The board's figures against the salesman's strip, and its hours against its salesmen.
    void expectBoardOfStrips() const {
        pqxx::connection connected(connection().toStdString());
        const office::Board board = office::readBoard(connected, day_);
        ASSERT_EQ(board.salesmen.size(), 4);
        Won sales;
        for (const office::BoardSalesman& each : board.salesmen) {
            std::map<QString, QString> strip;
            const QString printed = dayOf({u"--report"_s, u"close"_s, u"--csv"_s, u"--terminal"_s,
                                           each.terminal, u"--user"_s, each.userId});
            for (const platform::CsvRecord& record : platform::parseCsv(printed.toUtf8()).records) {
                if (record.fields.size() > 2)
                    strip.emplace(record.fields[0] + u' ' + record.fields[1], record.fields[2]);
            }
            const std::pair<QString, Won> figures[] = {{u"대조 판매·보증금"_s, each.sales},
                                                       {u"입금 현금"_s, each.cash},
                                                       {u"입금 외상(미결제)"_s, each.unpaid},
                                                       {u"입금 전미수입금"_s, each.earlierPaid},
                                                       {u"입금 용공회수"_s, each.recovery},
                                                       {u"판매·회수 회수 상자"_s, Won(each.cratesBack)},
                                                       {u"판매·회수 회수 공병"_s, Won(each.bottlesBack)}};
            for (const auto& [name, figure] : figures)
                EXPECT_EQ(figure, platform::parseWon(strip[name])) << name.toStdString();
            sales += each.sales;
        }
        Won hours = board.untimed;
        for (const office::BoardBar& bar : board.hours) hours += bar.amount;
        EXPECT_EQ(hours, sales);
        EXPECT_EQ(board.hours.first().label + board.hours.last().label, u"0914"_s);
        EXPECT_EQ(board.disagreements.lines.size(),
                  sql(u"SELECT FROM report.disagreements('%1', '%1')"_s.arg(day_)).size());
    }

  private:
    QString any(const QStringList& texts) { return texts[qsizetype(random_() % unsigned(texts.size()))]; }
    QStringList amounts(int count) {
        QStringList all;
        while (all.size() < count)
            all << any({u"0"_s, u"0"_s, u"1000"_s, u"2345"_s, u"-500"_s, u" 70"_s, u"x"_s, u""_s});
        return all;
    }
    QString number() { return QString::number(1 + random_() % 9); }
    QString user() { return any({u"A"_s, u"A"_s, u"B"_s}); }
    QString customer() { return any({u"0001"_s, u"0002"_s, u"0003"_s, u"9999"_s}); }
    QString product() { return any({u"1001"_s, u"1002"_s, u"1003"_s}); }
    QString approval() { return any({u""_s, u""_s, u"T1"_s, u"T2"_s, u"T3"_s, u"T4"_s}); }

    std::mt19937 random_;
};

TEST_F(ReportsTest, OddDaysAreWhatTheTerminalsNameAndPrint) {
    constexpr int kDays = 12;
    const auto day = [](int i) { return QDate::currentDate().addDays(i - kDays).toString(Qt::ISODate); };
    QStringList expected;
    QList<const TestDevice*> terminals;
    for (const QString& number : {u"1"_s, u"2"_s}) {
        terminals << &enrolWithMaster(number);
        for (int i = 0; i <= kDays; ++i) {
            writeOddDay(*terminals.last(), day(i), 100 * number.toUInt() + unsigned(i));
            const auto check = totals::checkDays({day(i)}, {});
            ASSERT_TRUE(check);
            for (const totals::Section& section : check->report.sections) {
                for (const totals::Row& row : section.rows)
                    expected << QStringList{number, day(i), row[0].text(), row[2].text(), row[3].text()}.join(
                        u'|');
            }
        }
        synced(*terminals.last());
        expectSameRows(terminals.last()->folder(), number);
    }
    QStringList named =
        sql(u"SELECT terminal, day, userid || ' ' || number, reason, amount FROM "
            "report.disagreements('%1', '%2')"_s.arg(day(0), day(kDays)));
    EXPECT_GT(named.size(), 300);
    QSet<QString> reasons;
    for (const QString& each : named) reasons << each.section(u'|', 3, 3);
    EXPECT_EQ(reasons.size(), 13) << QStringList(reasons.values()).join(u'\n').toStdString();
    named.sort();
    expected.sort();
    EXPECT_EQ(named, expected);

    expectBoardOfStrips();
    for (const QString& number : {u"1"_s, u"2"_s}) {
        const TestDevice& terminal = *terminals[number.toInt() - 1];
        platform::device::setFolder(terminal.folder());
        ASSERT_TRUE(totals::closeDay(day_, u"A", Won(12345)));
        sell(terminal, u"77"_s, u"0002"_s, 100);
        synced(terminal);
        // Balances move with what is sent; on these terminals they do not.
        sql(u"DELETE FROM office.movement"_s);
        for (const QStringList& form : {QStringList(), QStringList(u"--csv"_s)}) {
            const QString reports = dayOf(form + QStringList{u"--terminal"_s, number});
            const QString printed = totalsOf(terminal, form);
            EXPECT_EQ(reports.first(printed.size()), printed);
            for (const QString& user : {u"A"_s, u"B"_s}) {
                const QString closed =
                    totalsOf(terminal, form + QStringList{u"--report"_s, u"close"_s, u"--user"_s, user});
                EXPECT_TRUE(reports.contains(closed)) << closed.toStdString();
            }
        }
    }
    const QString closes = dayOf({u"--report"_s, u"close"_s});
    EXPECT_EQ(closes.count(u"마감 후 변경 1건"), 2);
    EXPECT_EQ(closes.count(u"마감전 집계"), 2) << "who has not closed";
    EXPECT_EQ(sql(u"SELECT terminal, number, kind, change FROM report.change_after_close ORDER BY 1"_s),
              QStringList({u"1|77|sale|added"_s, u"2|77|sale|added"_s}));
}

TEST_F(ReportsTest, TwoTerminalsWithOneUserAndNumberAreKeptApart) {
    const TestDevice& one = enrolWithMaster(u"1"_s);
    const TestDevice& other = enrolWithMaster(u"2"_s);
    // An order that both have been given is no number used twice.
    for (const TestDevice* each : {&one, &other}) {
        sell(*each, u"3"_s, u"0003"_s, 1000);
        on(*each, u"UPDATE MTM SET WorkGubun = '미처리', DTime = ''"_s);
    }
    sell(one, u"5"_s, u"0001"_s, 1000);
    collect(one, u"5"_s, u"0001"_s, 1100);
    sell(other, u"5"_s, u"0002"_s, 1000);
    on(other,
       u"INSERT INTO YTM VALUES ('%1','0001','가게','6','1001','소주','0','1','3','','','','','A')"_s.arg(
           day_));
    for (const TestDevice* each : {&one, &other, &one}) synced(*each);
    expectSameRows(one.folder(), u"1"_s);
    expectSameRows(other.folder(), u"2"_s);
    // The second terminal's slip has no collection, and the first one's is not its.
    const QString check = dayOf({u"--report"_s, u"check"_s, u"--csv"_s});
    EXPECT_TRUE(check.contains(u"A@2 5") && check.contains(u"수금없는 판매")) << check.toStdString();
    EXPECT_FALSE(check.contains(u"A@1") || check.contains(u"번호에 다른")) << check.toStdString();
    EXPECT_TRUE(dayOf({u"--report"_s, u"sales"_s, u"--csv"_s}).contains(u"1001,맥주,2,0,2000"));
    EXPECT_EQ(sql(u"SELECT day, kind, number, userid, terminals FROM report.number_conflict"_s),
              QStringList(day_ + u"|sale|5|A|{1,2}"_s));
    // Over the fleet: a box each, and of the first customer's the other terminal took one back.
    EXPECT_EQ(sql(u"SELECT gcode, pcode, crates, bottles FROM report.empties ORDER BY gcode"_s),
              QStringList({u"0001|1001|0|-3"_s, u"0002|1001|1|30"_s}));
    EXPECT_EQ(sql(u"SELECT gcode, loaded, moved, balance FROM report.receivable WHERE moved <> 0"_s),
              QStringList(u"0001|1000|1100|2100"_s));
    // A slip that stands aside under the number makes no third terminal of it.
    on(one, u"UPDATE MTM SET GCode = '0003' WHERE JunNo = '5'"_s);
    synced(one);
    EXPECT_EQ(sql(u"SELECT terminals FROM report.number_conflict"_s), QStringList(u"{1,2}"_s));
    EXPECT_THAT(run({u"status"_s}).out, HasSubstr("numbers used twice"));
}

TEST_F(ReportsTest, TheHostsListIsSetAgainstTheApprovals) {
    const TestDevice& terminal = enrolWithMaster(u"1"_s);
    for (const QString& n : {u"1"_s, u"2"_s, u"3"_s}) collect(terminal, n, u"0001"_s, 0);
    on(terminal,
       uR"(UPDATE MTMOK SET CardMoney = JunNo || '000', BANKTRANNO = 'T' || JunNo, MSGSENDTIME = '%1' || '090000';
        INSERT INTO PAYJOURNAL (Number, State, Kind, Charged, DDate, JunNo, UserID, BANKTRANNO, MSGSENDTIME)
            VALUES ('n4', 'approved', 'card', '4000', '%2', '4', 'A', 'T4', '%1' || '120000'))"_s.arg(
           QString(day_).remove(u'-'), day_));
    synced(terminal);
    const auto findings = [&] {
        return sql(
            u"SELECT number, amount, host_amount, finding FROM report.approvals('%1', '%1')"_s.arg(day_));
    };
    EXPECT_EQ(findings(), QStringList({u"T1|1000||목록 없음"_s, u"T2|2000||목록 없음"_s,
                                       u"T3|3000||목록 없음"_s, u"T4|||목록 없음"_s}));
    const auto load = [&](const QByteArray& list) {
        return run({u"host-list"_s, day_, writeFile(u"list.csv"_s, list)}).exitCode;
    };
    ASSERT_EQ(load("number,time,amount\nT1,090001,1000\nT2,100001,2500\nT4,120001,4000\nT5,130000,500\n"), 0);
    EXPECT_EQ(findings(),
              QStringList({u"T1|1000|1000|"_s, u"T2|2000|2500|금액 다름"_s, u"T3|3000||호스트에 없음"_s,
                           u"T4||4000|전표에 없음"_s, u"T5||500|전표에 없음"_s}));
    const std::string report = dayOf({u"--report"_s, u"host"_s, u"--csv"_s}).toStdString();
    for (const char* each : {"금액 다름", "호스트에 없음", "전표에 없음"})
        EXPECT_THAT(report, HasSubstr(each));
    for (const char* wrong : {"number,time,amount\nT1,,x\n", "number,time,amount\nT1,,1\nT1,,1\n"})
        EXPECT_EQ(load(wrong), 1) << wrong;
    EXPECT_EQ(findings().size(), 5);
}

}  // namespace
}  // namespace test
