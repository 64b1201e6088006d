// The way of one sales slip through the stores, among 100,000 saved slips of a year beside among 1,000: its
// number, opening it, ten priced lines, saving, reopening and the list of the day. Both devices hold the same
// customers and products, and the salesman has saved as many slips on the day.

#include <QDate>
#include <stdexcept>

#include "Bench.h"
#include "Folder.h"
#include "Work.h"
#include "books/Customer.h"
#include "books/SlipNumbers.h"
#include "platform/Sqlite.h"
#include "sales/Pricing.h"
#include "sales/ProductQuery.h"
#include "sales/SlipLine.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 5;
constexpr int kFewSlips = 1'000;
constexpr int kManySlips = 100'000;
constexpr int kSlipsOfTheDay = 40;
constexpr int kDaysOfTheYear = 300;  ///< Days on which slips are written.
constexpr int kCustomers = 500;
constexpr int kProducts = 400;
constexpr int kLines = 10;
constexpr int kSalesWork = 1;
constexpr QStringView kSalesman = u"A";
constexpr QStringView kDay = u"2024-12-30";
const QDate kFirstDay(2024, 1, 2);

QString customerCode(int number) {
    return u"C%1"_s.arg(number, 3, 10, QChar(u'0'));
}

QString productCode(int number) {
    return u"P%1"_s.arg(number, 3, 10, QChar(u'0'));
}

/// Runs an INSERT once more with these values.
void add(platform::SqliteStatement& insert, const QStringList& values) {
    insert.rewind();
    for (const QString& value : values) insert.bind(value);
    insert.step();
}

void fill(platform::SqliteFile& file, int slips) {
    platform::SqliteTransaction transaction(file);
    auto customer = file.statement(
        "INSERT INTO GARAE (GCODE,GNAME,MAJIN,CJMONEY,GUBUN) VALUES (?,?,'0','150000','일반')");
    for (int i = 0; i < kCustomers; ++i) add(customer, {customerCode(i), u"가람상회 %1호점"_s.arg(i)});
    auto product = file.statement(
        "INSERT INTO PUMMOK (Pcode,Pname,JGubun,ABoxMMoney,ABoxBMoney,ABonMMoney,ABonBMoney,"
        "YGMoney1,YGMoney2) VALUES (?,?,'01','21000','2100','1100','110','1000','2000')");
    for (int i = 0; i < kProducts; ++i) add(product, {productCode(i), u"소주 %1"_s.arg(i)});

    // The salesman's own slips of the day; all others are spread over the year and four salesmen.
    auto line = file.statement(
        "INSERT INTO MTM VALUES (?,'매출',?,?,?,'미발행',?,?,'01','3','5','68500','6850','3000',"
        "'6000',?,'10:30')");
    const auto addSlip = [&](const QString& day, int number, int of, QStringView user) {
        add(line, {day, customerCode(of % kCustomers), u"가람상회 %1호점"_s.arg(of % kCustomers),
                   QString::number(5001 + number), productCode(of % kProducts),
                   u"소주 %1"_s.arg(of % kProducts), user.toString()});
    };
    for (int i = 0; i < slips - kSlipsOfTheDay; ++i) {
        const QDate day = kFirstDay.addDays(i % kDaysOfTheYear);
        addSlip(day.toString(Qt::ISODate), i / kDaysOfTheYear, i, QString(QChar(u'A' + i % 4)));
    }
    for (int i = 0; i < kSlipsOfTheDay; ++i) addSlip(kDay.toString(), i, i, kSalesman);
    transaction.commit();
}

void check(bool isRight, const char* what) {
    if (!isRight) throw std::runtime_error(what);
}

/// One visit to a customer without a slip on the day; the number of the slip that it leaves.
QString writeSlip() {
    const QString gcode = customerCode(kCustomers - 1);
    check(!books::customerHasSlip(kDay, gcode), "the customer has a slip already");
    const QString junNo = books::nextSlipNumber(kSalesWork, kDay).value_or(QString());
    check(sales::openSlip(kSalesman, kDay, junNo).value().lines.isEmpty(), "a new slip is not empty");
    const QString kind = books::slipCustomer(gcode).value().Gubun;
    for (int i = 0; i < kLines; ++i) {
        sales::SlipLine line;
        line.PCode = productCode(i * 31);
        const auto product = sales::productName(line.PCode);
        check(product.has_value(), "a product is missing");
        line.DDate = kDay.toString();
        line.GCode = gcode;
        line.GName = u"가람상회"_s;
        line.JunNo = junNo;
        line.PName = product->Pname;
        line.JGubun = product->JGubun;
        line.Box = u"3"_s;
        line.Bon = QString::number(i);
        line.setAmounts(sales::priceLine(gcode, kind, line.PCode, 3, i).amounts);
        check(sales::insertLine(line), "a line was not taken");
    }
    check(sales::saveSlip(kSalesman, kDay, junNo) == sales::SaveOutcome::Saved, "the slip was not saved");
    check(sales::openSlip(kSalesman, kDay, junNo).value().lines.count() == kLines,
          "the slip is not complete");
    check(sales::slipsOfDay(kSalesman, kDay).slips.count() == kSlipsOfTheDay + 1, "the list is not complete");
    return junNo;
}

Work workOfSlip(const Folder& folder) {
    folder.use();
    QString junNo;
    return workOf(
        [&] { junNo = writeSlip(); },
        [&] { check(sales::deleteSlip(kDay, junNo, true, kSalesman), "the slip was not deleted"); });
}

}  // namespace

Result measureSlip() {
    const Folder many;
    const Folder few;
    for (const auto& [folder, slips] : {std::pair(&many, kManySlips), std::pair(&few, kFewSlips)}) {
        folder->use();
        platform::SqliteFile file(folder->databaseFile(), platform::SqliteFile::Mode::Existing);
        fill(file, slips);
    }
    return compareWork(
        kRuns, [&] { return workOfSlip(many); }, [&] { return workOfSlip(few); });
}

}  // namespace bench
