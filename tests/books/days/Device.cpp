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

template <typename Row, typename Read>
std::vector<Row> Device::rows(const QByteArray& select, Read&& read) {
    std::vector<Row> found;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(reader_, select.constData(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(reader_);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        int column = 0;
        const auto next = [&] {
            const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(statement, column++));
            return std::string(value != nullptr ? value : "");
        };
        found.push_back(read(next));
    }
    sqlite3_finalize(statement);
    std::ranges::sort(found);
    return found;
}

namespace {

/// A salesman with his VAT mode and what follows his sales slips.
struct User {
    const char* id;
    const char* vatMode;
    const char* followOn;
};
constexpr User kUsers[] = {{"A", "1", ""}, {"B", "2", "Y"}, {"C", "3", "Y"}};

test::StorageFaultPlan thePlan;

Won won(const std::string& text) {
    return text.empty() ? 0 : std::stoll(text);
}

template <typename Next>
Visit readVisit(Next& next) {
    Visit visit;
    visit.key.date = next();
    visit.key.number = next();
    visit.key.user = next();
    visit.customer = next();
    return visit;
}

template <typename Next>
Goods readGoods(Next& next) {
    Goods line;
    line.visit = readVisit(next);
    line.product = next();
    line.boxes = int(won(next()));
    line.bottles = int(won(next()));
    for (Won* amount : {&line.supply, &line.vat, &line.crates, &line.deposit}) *amount = won(next());
    return line;
}

template <typename Next>
Empties readEmpties(Next& next) {
    Empties line;
    line.visit = readVisit(next);
    line.product = next();
    for (int* count : {&line.full, &line.mixed, &line.bottles}) *count = int(won(next()));
    for (Won* amount : {&line.crates, &line.deposit}) *amount = won(next());
    return line;
}

}  // namespace

const QStringList& users() {
    static const QStringList ids = [] {
        QStringList all;
        for (const User& user : kUsers) all << QString::fromLatin1(user.id);
        return all;
    }();
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
    std::map<std::string, std::string> modes;
    for (const User& user : kUsers) modes[user.id] = user.vatMode;
    return modes;
}

bool isFollowedByContainers(const QString& user) {
    const auto* const found =
        std::ranges::find_if(kUsers, [&](const User& each) { return user == QLatin1StringView(each.id); });
    return *found->followOn != '\0';
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
    for (int i = 0; i < products().size(); ++i) {
        // Odd prices: what is rounded shows.
        const auto won = [i](int base) { return QString::number(base + 37 * i); };
        device_.insert(u"PUMMOK", {{u"Pcode", products()[i]},
                                   {u"Pname", products()[i]},
                                   {u"BoxBonEa", u"20"},
                                   {u"ABoxMMoney", won(30000)},
                                   {u"ABoxBMoney", won(3000)},
                                   {u"ABonMMoney", won(1500)},
                                   {u"ABonBMoney", won(150)},
                                   {u"BBoxMMoney", won(31111)},
                                   {u"BBoxBMoney", won(3011)},
                                   {u"BBonMMoney", won(1601)},
                                   {u"BBonBMoney", won(161)},
                                   {u"YGMoney1", i % 2 == 0 ? u"4000" : u"0"},
                                   {u"YGMoney2", i % 2 == 0 ? u"2000" : u"0"},
                                   {u"GBoxMoney1", u"100"},
                                   {u"GBonMoney1", u"10"},
                                   {u"GBonMoney2", i % 2 == 0 ? u"100" : u"0"},
                                   {u"TTT", i % 2 == 0 ? u"Y" : u""}});
    }
    for (const User& user : kUsers) {
        device_.insert(u"PDAUSER", {{u"userID", QString::fromLatin1(user.id)},
                                    {u"userPASS", u"1"},
                                    {u"vatMode", QString::fromLatin1(user.vatMode)},
                                    {u"followOn", QString::fromLatin1(user.followOn)}});
    }
    for (const QString& customer : customers()) {
        device_.insert(u"GARAE", {{u"GCODE", customer},
                                  {u"GNAME", customer},
                                  {u"SEEK", u"ㄱ"},
                                  {u"GUBUN", customer == customers()[0] ? u"일반" : u"공용"}});
    }
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
    const auto words = [](const std::string& text) { return QString::fromStdString(text); };
    const auto number = [](Won won) { return QString::number(won); };
    device_.insert(u"MTM", {{u"DDate", words(order.visit.key.date)},
                            {u"JunNo", words(order.visit.key.number)},
                            {u"UserID", words(order.visit.key.user)},
                            {u"GCode", words(order.visit.customer)},
                            {u"WorkGubun", u"미처리"},
                            {u"PCode", words(order.product)},
                            {u"Box", number(order.boxes)},
                            {u"Bon", number(order.bottles)},
                            {u"MMoney", number(order.supply)},
                            {u"BMoney", number(order.vat)},
                            {u"YMoney", u"0"},
                            {u"GMoney", u"0"}});
}

Page Device::page(const char* paymentNumber) {
    Page page;
    page.goods = goods("UserID", "MTM");
    page.empties = empties("UserID", "YTM");
    page.collections = rows<Collection>(
        "SELECT DDate,JunNo,UserID,GCode,MMoney,PMoney,BMoney,GDMoney,YGMoney,YDMoney,CardMoney,WonMoney,"
        "UnderMoney,MisuInMoney,BANKTRANNO,Gubun FROM MTMOK",
        [](auto& next) {
            Collection row;
            row.visit = readVisit(next);
            Amounts& a = row.amounts;
            for (Won* amount : {&a.sales, &a.supply, &a.vat, &a.other, &a.deposits, &a.recovery, &a.card,
                                &a.cash, &a.unpaid, &a.earlier})
                *amount = won(next());
            row.approval = next();
            row.isSimple = next() == "단순결제";
            return row;
        });
    page.payments =
        rows<Payment>(QByteArray("SELECT ") + paymentNumber +
                          ",DDate,JunNo,UserID,GCode,State,Charged,BANKTRANNO FROM PAYJOURNAL AS sent "
                          "WHERE State <> 'prepared'",
                      [](auto& next) {
                          Payment payment;
                          payment.message = next();
                          payment.visit = readVisit(next);
                          payment.state = next();
                          payment.amount = won(next());
                          payment.approval = next();
                          return payment;
                      });
    for (const auto& [customer, debt] :
         rows<std::pair<std::string, Won>>("SELECT GCODE,CJMONEY FROM GARAE", [](auto& next) {
             std::pair<std::string, Won> balance;
             balance.first = next();
             balance.second = won(next());
             return balance;
         }))
        page.debt[customer] = debt;
    return page;
}

std::vector<Goods> Device::goods(const QByteArray& user, const QByteArray& table) {
    return rows<Goods>(
        "SELECT DDate,JunNo," + user + ",GCode,PCode,Box,Bon,MMoney,BMoney,YMoney,GMoney FROM " + table,
        [](auto& next) { return readGoods(next); });
}

std::vector<Empties> Device::empties(const QByteArray& user, const QByteArray& table) {
    return rows<Empties>(
        "SELECT DDate,JunNo," + user + ",GCode,PCode,FBox,NBox,Bon,YMONEY,GMONEY FROM " + table,
        [](auto& next) { return readEmpties(next); });
}

}  // namespace days
