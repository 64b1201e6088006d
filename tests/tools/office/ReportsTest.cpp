#include <QDate>
#include <algorithm>
#include <random>

#include "db/Schema.h"
#include "rovanactl/Command.h"
#include "support/TestDevice.h"
#include "tools/office/OfficeTest.h"
#include "totals/DayClose.h"
#include "totals/VisitReport.h"

namespace test {
namespace {

const QString kDay = u"2026-11-21"_s;

class ReportsTest : public OfficeTest {
  protected:
    /// The terminal's tables, each row as it stands there.
    void send(TestDevice& device, const QString& terminal) {
        sql(u"INSERT INTO office.terminal (terminal, role_name, users) VALUES ('%1', 'terminal_%1', '{A,B}') "
            "ON CONFLICT DO NOTHING; INSERT INTO office.salesman SELECT '%1', u, '이름' || u, mode FROM "
            "unnest(ARRAY['A', 'B'], ARRAY['2', '3']) AS each (u, mode) ON CONFLICT DO NOTHING"_s.arg(
                terminal));
        const std::pair<QStringView, QStringView> kinds[] = {
            {u"MTM", u"sale"},           {u"YTM", u"containers"},  {u"MTMOK", u"collection"},
            {u"PAYJOURNAL", u"payment"}, {u"PRINTLOG", u"prints"}, {u"DELETED", u"deletion"},
            {u"DAYCLOSE", u"close"}};
        for (const auto& [table, kind] : kinds)
            send(device, terminal, *db::schema::findTable(table), kind.toString());
    }

    /// Runs rovanactl on the device folder.
    static QString totalsOf(const TestDevice& device, const QStringList& more) {
        QString input;
        QString out;
        QString err;
        QTextStream in(&input);
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        EXPECT_EQ(admin::run(QStringList{u"rovanactl"_s, u"totals"_s, u"--device"_s, device.folder(),
                                         u"--date"_s, kDay} +
                                 more,
                             in, outStream, errStream),
                  0)
            << err.toStdString();
        return out.remove(QChar(QChar::ByteOrderMark));
    }

    QString dayOf(const QStringList& more) const {
        const OfficeEnded ended = run(QStringList{u"day"_s, kDay} + more);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return QString::fromStdString(ended.out);
    }

    /// Customers 0001 to 0003 and two products, in the office and on the terminal.
    void loadMaster() {
        sql(u"INSERT INTO office.master_garae (first_version, row_number, gcode, gname, userid, cjmoney) "
            u"SELECT 1, n, "
            "'000' || n, '가게' || n, 'A', n * 1000 FROM generate_series(1, 3) AS n; "
            "INSERT INTO office.master_pummok (first_version, row_number, pcode, pname, boxbonea, ttt) "
            "VALUES "
            "(1, 1, 'P001', '소주', '30', 'Y'), (1, 2, 'P002', '잔', '12', '')"_s);
    }
    static void loadMaster(TestDevice& device) {
        for (const QString& user : {u"A"_s, u"B"_s})
            device.insert(u"PDAUSER", {{u"userID", user},
                                       {u"userNAME", QString(u"이름"_s + user)},
                                       {u"vatMode", user == u"A" ? u"2" : u"3"}});
        for (const QString& n : {u"1"_s, u"2"_s, u"3"_s}) {
            device.insert(u"GARAE", {{u"GCODE", QString(u"000"_s + n)},
                                     {u"GNAME", QString(u"가게"_s + n)},
                                     {u"USERID", u"A"},
                                     {u"CJMONEY", QString(n + u"000"_s)}});
        }
        device.insert(u"PUMMOK",
                      {{u"Pcode", u"P001"}, {u"Pname", u"소주"}, {u"BoxBonEa", u"30"}, {u"TTT", u"Y"}});
        device.insert(u"PUMMOK", {{u"Pcode", u"P002"}, {u"Pname", u"잔"}, {u"BoxBonEa", u"12"}});
    }

  private:
    void send(TestDevice& device, const QString& terminal, const db::schema::Table& table,
              const QString& kind) {
        pqxx::connection connected(connection().toStdString());
        pqxx::work work(connected);
        const auto at = [&](QStringView name) {
            const auto found = std::ranges::find_if(table.columns, [&](QStringView column) {
                return column.compare(name, Qt::CaseInsensitive) == 0;
            });
            return found == table.columns.end() ? -1 : int(found - table.columns.begin());
        };
        const int number = at(kind == u"payment" ? u"Number" : u"JunNo");
        std::map<QStringList, int> lines;
        for (const QStringList& row : device.rows(u"SELECT * FROM %1 ORDER BY rowid"_s.arg(table.name))) {
            const QStringList key{row[at(u"DDate")], number < 0 ? QString() : row[number],
                                  row[at(u"UserID")]};
            const std::string month = key[0].first(8).toStdString() + "01";
            work.exec_params("SELECT office.make_month($1::date)", month);
            std::string values;
            for (const QString& text : row) values += ", " + work.quote(text.toStdString());
            const pqxx::result document = work.exec_params(
                "INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest) VALUES "
                "($1::date, $2, $3, $4, $5, $6, '') ON CONFLICT (month, terminal, ddate, kind, number, "
                "userid) DO UPDATE SET digest = '' RETURNING id",
                month, terminal.toStdString(), kind.toStdString(), key[0].toStdString(), key[1].toStdString(),
                key[2].toStdString());
            if (kind == u"sale") values += std::string(", ") + document[0][0].c_str();
            work.exec("INSERT INTO office." + table.name.toString().toStdString() + " VALUES ('" + month +
                      "', '" + terminal.toStdString() + "', " + std::to_string(++lines[key]) + values + ")");
        }
        work.commit();
    }
};

/// Rows as no terminal would write them together: few numbers, customers and approvals, so that they meet.
class OddDay {
  public:
    OddDay(TestDevice& device, QString day, unsigned seed)
        : device_(device), day_(std::move(day)), random_(seed) {}

    void write() {
        for (int i = 0; i < 14; ++i) writeSale();
        for (int i = 0; i < 5; ++i) writeReturn();
        for (int i = 0; i < 9; ++i) writeCollection();
        for (int i = 0; i < 7; ++i) writePayment();
    }

  private:
    QString any(const QStringList& texts) { return texts[qsizetype(random_() % unsigned(texts.size()))]; }
    QString amount() {
        return any({u"0"_s, u"0"_s, u"1000"_s, u"2345"_s, u"-500"_s, u" 70"_s, u"x"_s, u""_s});
    }
    QString number() { return QString::number(1 + random_() % 9); }
    QString user() { return any({u"A"_s, u"A"_s, u"B"_s}); }
    QString customer() { return any({u"0001"_s, u"0002"_s, u"0003"_s, u"9999"_s}); }
    QString approval() { return any({u""_s, u""_s, u"T1"_s, u"T2"_s, u"T3"_s, u"T4"_s}); }

    void writeSale() {
        device_.insert(u"MTM", {{u"DDate", day_},
                                {u"GCode", customer()},
                                {u"GName", u"가게"},
                                {u"JunNo", number()},
                                {u"WorkGubun", any({u"미처리"_s, u"미발행"_s, u"발행"_s})},
                                {u"PCode", any({u"P001"_s, u"P002"_s, u"P003"_s})},
                                {u"PName", u"상품"},
                                {u"Box", amount()},
                                {u"Bon", amount()},
                                {u"MMoney", amount()},
                                {u"BMoney", amount()},
                                {u"YMoney", amount()},
                                {u"GMoney", amount()},
                                {u"UserID", user()},
                                {u"DTime", any({u""_s, u"09:10"_s})}});
    }
    void writeReturn() {
        device_.insert(u"YTM", {{u"DDate", day_},
                                {u"GCode", customer()},
                                {u"GName", u"가게"},
                                {u"JunNo", number()},
                                {u"PCode", any({u"P001"_s, u"P002"_s})},
                                {u"PName", u"병"},
                                {u"FBox", amount()},
                                {u"NBox", amount()},
                                {u"Bon", amount()},
                                {u"YMONEY", amount()},
                                {u"GMONEY", amount()},
                                {u"YSAMT", amount()},
                                {u"UserID", user()}});
    }
    void writeCollection() {
        collections_.append({customer(), number(), user(), approval()});
        const QStringList& slip = collections_.last();
        device_.insert(u"MTMOK", {{u"DDate", day_},
                                  {u"Gubun", any({u"매출"_s, u"매출"_s, u"입금"_s, u"단순결제"_s})},
                                  {u"GCode", slip[0]},
                                  {u"GName", u"가게"},
                                  {u"JunNo", slip[1]},
                                  {u"UserID", slip[2]},
                                  {u"MMoney", amount()},
                                  {u"YGMoney", amount()},
                                  {u"InMoney", amount()},
                                  {u"WonMoney", amount()},
                                  {u"CardMoney", amount()},
                                  {u"MisuInMoney", amount()},
                                  {u"UnderMoney", amount()},
                                  {u"YDMoney", amount()},
                                  {u"GDMoney", amount()},
                                  {u"BANKTRANNO", slip[3]}});
    }
    /// Of a collection, or of nothing that is there.
    void writePayment() {
        const QStringList slip = random_() % 2 == 0
                                     ? collections_[qsizetype(random_() % unsigned(collections_.size()))]
                                     : QStringList{customer(), number(), user(), approval()};
        device_.insert(u"PAYJOURNAL", {{u"Number", QString::number(random_())},
                                       {u"State", any({u"approved"_s, u"approved"_s, u"sent"_s, u"refused"_s,
                                                       u"unknown"_s, u"released"_s, u"prepared"_s, u"?"_s})},
                                       {u"Kind", any({u"card"_s, u"card"_s, u"cash"_s})},
                                       {u"Charged", amount()},
                                       {u"DDate", day_},
                                       {u"GCode", slip[0]},
                                       {u"GName", u"가게"},
                                       {u"JunNo", slip[1]},
                                       {u"UserID", slip[2]},
                                       {u"BANKTRANNO", slip[3]}});
    }

    TestDevice& device_;
    QString day_;
    std::mt19937 random_;
    QList<QStringList> collections_;  ///< Customer, number, user and approval.
};

TEST_F(ReportsTest, WhatDisagreesIsWhatTheTerminalsName) {
    loadMaster();
    const QDate first(2026, 11, 21);
    constexpr int kDays = 12;
    QStringList expected;
    for (const QString& terminal : {u"1"_s, u"2"_s}) {
        TestDevice device;
        loadMaster(device);
        QStringList days;
        for (int i = 0; i < kDays; ++i) {
            days << first.addDays(i).toString(Qt::ISODate);
            OddDay(device, days.last(), 100 * terminal.toUInt() + unsigned(i)).write();
            const auto check = totals::checkDays({days.last()}, {});
            ASSERT_TRUE(check);
            for (const totals::Section& section : check->report.sections) {
                for (const totals::Row& row : section.rows)
                    expected << QStringList{terminal, days.last(), row[0].text(), row[2].text(),
                                            row[3].text()}
                                    .join(u'|');
            }
        }
        send(device, terminal);
    }
    QStringList named =
        sql(u"SELECT terminal, day, userid || ' ' || number, reason, amount FROM "
            "report.disagreements('%1', '%2')"_s.arg(first.toString(Qt::ISODate),
                                                     first.addDays(kDays - 1).toString(Qt::ISODate)));
    EXPECT_GT(named.size(), 300);
    QSet<QString> reasons;
    for (const QString& each : named) reasons << each.section(u'|', 3, 3);
    EXPECT_EQ(reasons.size(), 13) << QStringList(reasons.values()).join(u'\n').toStdString();
    const auto without = [](QStringList all, const QStringList& others) {
        for (const QString& each : others) all.removeOne(each);
        return all;
    };
    EXPECT_EQ(without(named, expected), QStringList());
    EXPECT_EQ(without(expected, named), QStringList());
}

TEST_F(ReportsTest, ADayOfOneTerminalIsWhatThatTerminalPrints) {
    loadMaster();
    const QList<QStringList> forms{{}, {u"--csv"_s}};
    for (const QString& terminal : {u"1"_s, u"2"_s}) {
        TestDevice device;
        loadMaster(device);
        OddDay(device, kDay, 7 + terminal.toUInt()).write();
        ASSERT_TRUE(totals::closeDay(kDay, u"A", platform::Won(12345)));
        device.insert(u"MTM", {{u"DDate", kDay},
                               {u"GCode", u"0002"},
                               {u"GName", u"가게2"},
                               {u"JunNo", u"77"},
                               {u"UserID", u"A"},
                               {u"MMoney", u"100"},
                               {u"DTime", u"19:00"}});
        send(device, terminal);
        // Balances move with what is sent; on these terminals they do not.
        sql(u"DELETE FROM office.movement"_s);
        for (const QStringList& form : forms) {
            const QString reports = dayOf(form + QStringList{u"--terminal"_s, terminal});
            const QString printed = totalsOf(device, form);
            EXPECT_EQ(reports.first(printed.size()), printed);
            EXPECT_TRUE(reports.contains(totalsOf(device, form + QStringList{u"--report"_s, u"close"_s})))
                << reports.toStdString();
        }
    }
    const QString closes = dayOf({u"--report"_s, u"close"_s});
    EXPECT_EQ(closes.count(u"마감 후 변경 1건"), 2);
    EXPECT_EQ(closes.count(u"마감전 집계"), 2) << "who has not closed";
    EXPECT_EQ(sql(u"SELECT terminal, number, kind, change FROM report.change_after_close ORDER BY 1"_s),
              QStringList({u"1|77|sale|added"_s, u"2|77|sale|added"_s}));
}

TEST_F(ReportsTest, TwoTerminalsWithOneNumberAreKeptApart) {
    loadMaster();
    for (const QString& terminal : {u"1"_s, u"2"_s}) {
        TestDevice device;
        loadMaster(device);
        const QString customer = u"000"_s + terminal;
        device.insert(u"MTM", {{u"DDate", kDay},
                               {u"GCode", customer},
                               {u"GName", u"가게"},
                               {u"JunNo", u"5"},
                               {u"UserID", u"A"},
                               {u"PCode", u"P001"},
                               {u"PName", u"소주"},
                               {u"Box", u"2"},
                               {u"MMoney", u"1000"},
                               {u"DTime", u"10:00"}});
        if (terminal == u"1") {
            device.insert(u"MTMOK", {{u"DDate", kDay},
                                     {u"Gubun", u"매출"},
                                     {u"GCode", customer},
                                     {u"GName", u"가게"},
                                     {u"JunNo", u"5"},
                                     {u"UserID", u"A"},
                                     {u"MMoney", u"1100"},
                                     {u"UnderMoney", u"1100"}});
        } else {
            device.insert(u"YTM", {{u"DDate", kDay},
                                   {u"GCode", u"0001"},
                                   {u"GName", u"가게"},
                                   {u"JunNo", u"6"},
                                   {u"UserID", u"A"},
                                   {u"PCode", u"P001"},
                                   {u"PName", u"소주"},
                                   {u"NBox", u"1"},
                                   {u"Bon", u"3"}});
        }
        send(device, terminal);
    }
    // The second terminal's slip has no collection, and the first one's is not its.
    const QString check = dayOf({u"--report"_s, u"check"_s, u"--csv"_s});
    EXPECT_TRUE(check.contains(u"A@2 5")) << check.toStdString();
    EXPECT_TRUE(check.contains(u"수금없는 판매"));
    EXPECT_FALSE(check.contains(u"A@1")) << check.toStdString();
    EXPECT_FALSE(check.contains(u"번호에 다른"));
    EXPECT_TRUE(dayOf({u"--report"_s, u"sales"_s, u"--csv"_s}).contains(u"P001,소주,4,0,2000"));
    EXPECT_EQ(run({u"day"_s, kDay, u"--user"_s, u"A"_s}).exitCode, 2);
    EXPECT_EQ(sql(u"SELECT day, kind, number, userid, terminals FROM report.number_conflict"_s),
              QStringList(kDay + u"|sale|5|A|{1,2}"_s));
    // Over the fleet: two boxes each, and of the first customer's the other terminal took one back.
    EXPECT_EQ(sql(u"SELECT gcode, pcode, crates, bottles FROM report.empties ORDER BY gcode"_s),
              QStringList({u"0001|P001|1|27"_s, u"0002|P001|2|60"_s}));
    EXPECT_EQ(sql(u"SELECT gcode, loaded, moved, balance FROM report.receivable WHERE moved <> 0"_s),
              QStringList(u"0001|1000|1100|2100"_s));
    const OfficeEnded status = run({u"status"_s});
    EXPECT_EQ(status.exitCode, 0);
    EXPECT_NE(status.out.find("numbers used twice"), std::string::npos) << status.out;
}

TEST_F(ReportsTest, TheHostsListIsSetAgainstTheApprovals) {
    TestDevice device;
    loadMaster(device);
    const auto approve = [&](const QString& junNo, const QString& number, const QString& amount,
                             const QString& sent) {
        device.insert(u"MTMOK", {{u"DDate", kDay},
                                 {u"GCode", u"0001"},
                                 {u"GName", u"가게1"},
                                 {u"JunNo", junNo},
                                 {u"UserID", u"A"},
                                 {u"CardMoney", amount},
                                 {u"BANKTRANNO", number},
                                 {u"MSGSENDTIME", sent}});
    };
    approve(u"1"_s, u"T1"_s, u"1000"_s, u"20261121090000"_s);
    approve(u"2"_s, u"T2"_s, u"2000"_s, u"20261121100000"_s);
    approve(u"3"_s, u"T3"_s, u"3000"_s, u"20261121110000"_s);
    device.insert(u"PAYJOURNAL", {{u"Number", u"n4"},
                                  {u"State", u"approved"},
                                  {u"Kind", u"card"},
                                  {u"Charged", u"4000"},
                                  {u"DDate", kDay},
                                  {u"JunNo", u"4"},
                                  {u"UserID", u"A"},
                                  {u"BANKTRANNO", u"T4"},
                                  {u"MSGSENDTIME", u"20261121120000"}});
    send(device, u"1"_s);
    const auto findings = [&] {
        return sql(
            u"SELECT number, amount, host_amount, finding FROM report.approvals('2026-11-21', '2026-11-21')"_s);
    };
    EXPECT_EQ(findings(), QStringList({u"T1|1000||목록 없음"_s, u"T2|2000||목록 없음"_s,
                                       u"T3|3000||목록 없음"_s, u"T4|||목록 없음"_s}));

    const QString list = writeFile(
        u"list.csv"_s, "number,time,amount\nT1,090001,1000\nT2,100001,2500\nT4,120001,4000\nT5,130000,500\n");
    ASSERT_EQ(run({u"host-list"_s, kDay, list}).exitCode, 0);
    EXPECT_EQ(findings(),
              QStringList({u"T1|1000|1000|"_s, u"T2|2000|2500|금액 다름"_s, u"T3|3000||호스트에 없음"_s,
                           u"T4||4000|전표에 없음"_s, u"T5||500|전표에 없음"_s}));
    const QString report = dayOf({u"--report"_s, u"host"_s, u"--csv"_s});
    for (const QString& each : {u"금액 다름"_s, u"호스트에 없음"_s, u"전표에 없음"_s})
        EXPECT_TRUE(report.contains(each)) << report.toStdString();

    for (const QByteArray& wrong :
         {QByteArray("number,time,amount\nT1,9,1\n"), QByteArray("number,time,amount\nT1,,x\n"),
          QByteArray("number,time,amount\nT1,,1\nT1,,1\n"), QByteArray("number,amount\n")})
        EXPECT_EQ(run({u"host-list"_s, kDay, writeFile(u"wrong.csv"_s, wrong)}).exitCode, 1)
            << wrong.toStdString();
    EXPECT_EQ(findings().size(), 5);
}

}  // namespace
}  // namespace test
