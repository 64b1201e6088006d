// Reads the tables past the code under test.
#include "Device.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"
#include "support/PrintQt.h"

namespace days {

using namespace Qt::Literals::StringLiterals;

namespace {

test::StorageFaultPlan thePlan;

/// The columns of a row, from the left.
class Columns {
  public:
    explicit Columns(sqlite3_stmt* row) : row_(row) {}
    Columns& operator>>(std::string& text) {
        const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(row_, at_++));
        text = value != nullptr ? value : "";
        return *this;
    }
    template <std::integral Number>
    Columns& operator>>(Number& number) {
        std::string text;
        *this >> text;
        number = text.empty() ? 0 : Number(std::stoll(text));
        return *this;
    }
    Columns& operator>>(Visit& visit) {
        return *this >> visit.key.date >> visit.key.number >> visit.key.user >> visit.customer;
    }

  private:
    sqlite3_stmt* row_;
    int at_ = 0;
};

}  // namespace

template <typename Row, typename Read>
std::vector<Row> Device::rows(const QByteArray& select, Read&& read) {
    std::vector<Row> found;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(reader_, select.constData(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(reader_);
    while (sqlite3_step(statement) == SQLITE_ROW) read(Columns(statement), found.emplace_back());
    sqlite3_finalize(statement);
    std::ranges::sort(found);
    return found;
}

const QStringList& users() {
    static const QStringList ids{u"A"_s, u"B"_s, u"C"_s};
    return ids;
}

const QStringList& customers() {
    static const QStringList codes{u"0001"_s, u"0002"_s, u"0003"_s};
    return codes;
}

const QStringList& products() {
    static const QStringList codes{u"1001"_s, u"1002"_s, u"1003"_s, u"1004"_s};
    return codes;
}

std::map<std::string, std::string> vatModes() {
    return {{"A", "1"}, {"B", "2"}, {"C", "3"}};
}

bool isFollowedByContainers(const QString& user) {
    return user != users().first();
}

test::StorageFaultPlan& Device::faults() {
    return thePlan;
}

Device::Device() {
    thePlan.skipsSync = true;
    thePlan.disarm();
    test::putFaultsBelowSqlite(&thePlan);
    EXPECT_EQ(sqlite3_open_v2(device_.databaseFile().toUtf8().constData(), &reader_, SQLITE_OPEN_READWRITE,
                              nullptr),
              SQLITE_OK);
    for (const QString& code : products())
        device_.insert(u"PUMMOK", {{u"Pcode", code}, {u"Pname", code}, {u"BoxBonEa", u"20"}});
    for (const QString& code : customers())
        device_.insert(u"GARAE", {{u"GCODE", code}, {u"GNAME", code}, {u"SEEK", u"ㄱ"}, {u"GUBUN", u"공용"}});
    for (const QString& id : users()) device_.insert(u"PDAUSER", {{u"userID", id}, {u"userPASS", u"1"}});
    // Odd prices: what is rounded shows. Every other product has deposits.
    device_.execute(
        uR"(
        UPDATE PUMMOK SET ABoxMMoney = 30000 + odd, ABoxBMoney = 3000 + odd, ABonMMoney = 1500 + odd,
            ABonBMoney = 150 + odd, BBoxMMoney = 31111 + odd, BBoxBMoney = 3011 + odd, BBonMMoney = 1601 + odd,
            BBonBMoney = 161 + odd, YGMoney1 = 4000 * has, YGMoney2 = 2000 * has, GBoxMoney1 = 100, GBonMoney1 = 10,
            GBonMoney2 = 100 * has, TTT = iif(has, 'Y', '')
            FROM (SELECT Pcode AS code, 37 * (Pcode - 1001) AS odd, Pcode % 2 AS has FROM PUMMOK) WHERE Pcode = code;
        UPDATE GARAE SET GUBUN = '일반' WHERE GCODE = '0001';
        UPDATE PDAUSER SET vatMode = iif(userID = 'A', 1, iif(userID = 'B', 2, 3)),
            followOn = iif(userID = 'A', '', 'Y'))"_s);
}

Device::~Device() {
    thePlan.disarm();
    thePlan.skipsSync = false;
    sqlite3_close(reader_);
    platform::clock::set({});
}

void Device::use() const {
    platform::device::setFolder(device_.folder());
}

void Device::clear() {
    thePlan.disarm();
    platform::adoce::DatabaseFile::forgetAll();
    execute(
        "BEGIN; DELETE FROM MTM; DELETE FROM MTMOK; DELETE FROM YTM; DELETE FROM TEMP; DELETE FROM "
        "YTEMP; DELETE FROM PAYJOURNAL; DELETE FROM PRINTLOG; DELETE FROM DAYCLOSE; DELETE FROM DELETED; "
        "UPDATE GARAE SET CJMONEY = '100000'; COMMIT");
}

void Device::execute(const char* statements) {
    // The armed storage may refuse it.
    sqlite3_exec(reader_, statements, nullptr, nullptr, nullptr);
}

void Device::addOrder(const Goods& order) {
    const auto& [date, number, user] = order.visit.key;
    const std::string values = date + "','" + number + "','" + user + "','" + order.visit.customer + "','" +
                               order.product + "'," + std::to_string(order.boxes) + "," +
                               std::to_string(order.supply) + "," + std::to_string(order.vat);
    device_.execute(
        u"INSERT INTO MTM (DDate,JunNo,UserID,GCode,PCode,Box,MMoney,BMoney,WorkGubun,Bon,YMoney,GMoney) "
        "VALUES ('%1,'미처리','0','0','0')"_s.arg(QString::fromStdString(values)));
}

Page Device::page(const char* paymentNumber) {
    Page page;
    page.goods = goods("UserID", "MTM");
    page.empties = empties("UserID", "YTM");
    page.collections = rows<Collection>(
        "SELECT DDate,JunNo,UserID,GCode,MMoney,PMoney,BMoney,GDMoney,YGMoney,YDMoney,CardMoney,WonMoney,"
        "UnderMoney,MisuInMoney,BANKTRANNO,Gubun = '단순결제',YMoney + GMoney = YGMoney AND WonMoney + "
        "CardMoney = InMoney FROM MTMOK",
        [](Columns columns, Collection& row) {
            auto& [visit, a, approval, isSimple, isSum] = row;
            columns >> visit >> a.sales >> a.supply >> a.vat >> a.other >> a.deposits >> a.recovery >>
                a.card >> a.cash >> a.unpaid >> a.earlier >> approval >> isSimple >> isSum;
        });
    page.payments =
        rows<Payment>(QByteArray("SELECT ") + paymentNumber +
                          ",DDate,JunNo,UserID,GCode,State,Charged,BANKTRANNO FROM PAYJOURNAL AS sent WHERE "
                          "State <> 'prepared'",
                      [](Columns columns, Payment& row) {
                          columns >> row.message >> row.visit >> row.state >> row.amount >> row.approval;
                      });
    using Balance = std::pair<std::string, Won>;
    const auto read = [](Columns columns, Balance& row) { columns >> row.first >> row.second; };
    for (const auto& [customer, debt] : rows<Balance>("SELECT GCODE,CJMONEY FROM GARAE", read))
        page.debt[customer] = debt;
    return page;
}

std::vector<Goods> Device::goods(const QByteArray& user, const QByteArray& table) {
    return rows<Goods>(
        "SELECT DDate,JunNo," + user + ",GCode,PCode,Box,Bon,MMoney,BMoney,YMoney,GMoney FROM " + table,
        [](Columns columns, Goods& row) {
            columns >> row.visit >> row.product >> row.boxes >> row.bottles >> row.supply >> row.vat >>
                row.crates >> row.deposit;
        });
}

std::vector<Empties> Device::empties(const QByteArray& user, const QByteArray& table) {
    return rows<Empties>(
        "SELECT DDate,JunNo," + user + ",GCode,PCode,FBox,NBox,Bon,YMONEY,GMONEY FROM " + table,
        [](Columns columns, Empties& row) {
            columns >> row.visit >> row.product >> row.full >> row.mixed >> row.bottles >> row.crates >>
                row.deposit;
        });
}

}  // namespace days
