#include "totals/DailyReports.h"

#include <QMap>
#include <functional>

#include "books/UndeliveredOrders.h"
#include "db/Query.h"
#include "print/SlipBlocks.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::parseWon;
using platform::Won;

/// Rows of a code, a name and numbers, one for each code, in order of the codes.
class RowsByCode {
  public:
    void add(const QString& code, const QString& name, const QList<Won>& numbers) {
        Row& row = rows_[code];
        if (row.isEmpty()) {
            row = {code, name};
            for (const Won number : numbers) row << number;
            return;
        }
        qsizetype column = 2;
        for (const Won number : numbers) {
            row[column] = row[column].number() + number;
            ++column;
        }
    }

    QList<Row> rows() const { return rows_.values(); }

  private:
    QMap<QString, Row> rows_;
};

Won won(db::CVORecordset& row, int column) {
    return parseWon(row.GetFieldString(column));
}

/// The report with a row for each code of the SELECT, whose first columns are code and name; nothing when it
/// could not be read to the end.
std::optional<Report> byCode(Report report, const db::Sql& select,
                             const std::function<QList<Won>(db::CVORecordset&)>& numbersOf) {
    RowsByCode rows;
    const int count = db::forEachRow(select, [&](db::CVORecordset& row) {
        rows.add(row.GetFieldString(0), row.GetFieldString(1), numbersOf(row));
    });
    if (count < 0) return std::nullopt;
    report.sections = {{{}, rows.rows()}};
    return report;
}

const Column kCode{.title = u"코드"_s};

constexpr bool kNewLine = true;

/// Counts with their sum; `startsLine` puts them into a new line of the paper.
Column counts(const QString& title, int pixels, int paper, bool startsLine = false) {
    return {title, Kind::Count, pixels, paper, startsLine, true};
}

/// Amounts with their sum.
Column amounts(const QString& title, int paper, bool startsLine = false) {
    return {title, Kind::Amount, 72, paper, startsLine, true};
}

std::optional<Report> sales(QStringView date, QStringView user) {
    // An empty user leaves the condition on him out.
    static constexpr db::Statement<
        u"SELECT PCode, PName, Box, Bon, MMoney, BMoney, YMoney, GMoney, DDate, JunNo, UserID FROM MTM "
        u"WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') AND (WorkGubun <> '%s' or WorkGubun <> '%s') "
        u"ORDER BY JunNo">
        kSales;
    Report report = reportHead(u"상품별 매출집계", date, user);
    report.columns = {kCode,
                      {.title = u"상품명"_s, .pixels = 92, .paper = 20},
                      counts(u"상자"_s, 36, 6),
                      counts(u"본"_s, 32, 6),
                      amounts(u"공급가"_s, 12, kNewLine),
                      amounts(u"부가세"_s, 10),
                      amounts(u"보증금"_s, 10)};
    const auto orders = books::UndeliveredOrders::ofDay(date, user);
    if (!orders) return std::nullopt;
    RowsByCode rows;
    RowsByCode ordered;
    // True for every row: no text is both. So the totals hold the slips of every print state, and the
    // office's orders that nobody has delivered in rows of their own.
    const int count =
        db::forEachRow(kSales(date, user, user, u"미처리", u"미발행"), [&](db::CVORecordset& row) {
            const bool isOrdered =
                orders->contains(row.GetFieldString(8), row.GetFieldString(9), row.GetFieldString(10));
            const QString name = row.GetFieldString(1);
            (isOrdered ? ordered : rows)
                .add(row.GetFieldString(0), isOrdered ? u"미배송 "_s + name : name,
                     {won(row, 2), won(row, 3), won(row, 4), won(row, 5), won(row, 6) + won(row, 7)});
        });
    if (count < 0) return std::nullopt;
    report.sections = {{{}, rows.rows() + ordered.rows()}};
    return report;
}

std::optional<Report> containers(QStringView date, QStringView user) {
    static constexpr db::Statement<
        u"SELECT PCode, PName, FBox, NBox, Bon, YMONEY, GMONEY, YSAMT, GSAMT FROM YTM "
        u"WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') ORDER BY JunNo">
        kContainers;
    Report report = reportHead(u"용공 회수집계", date, user);
    report.columns = {kCode,
                      {.title = u"상품명"_s, .pixels = 86, .paper = 32},
                      counts(u"공상자"_s, 46, 10, kNewLine),
                      counts(u"입상자"_s, 46, 11),
                      counts(u"공병"_s, 46, 11),
                      amounts(u"회수금액"_s, 16, kNewLine),
                      amounts(u"수수료"_s, 16)};
    return byCode(report, kContainers(date, user, user), [](db::CVORecordset& row) -> QList<Won> {
        return {won(row, 2), won(row, 3), won(row, 4), won(row, 5) + won(row, 6), won(row, 7) + won(row, 8)};
    });
}

std::optional<Report> receivables(QStringView date, QStringView user) {
    static constexpr db::Statement<
        u"SELECT GCode, GName, CJMoney FROM GARAE WHERE USERID = '%s' AND CJMoney <> '%s' ORDER BY GCode">
        kReceivablesOfUser;
    static constexpr db::Statement<
        u"SELECT GCode, GName, CJMoney FROM GARAE WHERE CJMoney <> '%s' ORDER BY GCode">
        kReceivables;
    Report report = reportHead(u"채권 집계", date, user);
    report.columns = {
        {.title = u"코드"_s, .pixels = 40, .paper = 5},
        {.title = u"거래처명"_s, .pixels = 92, .paper = 15},
        {.title = u"채권잔액"_s, .kind = Kind::Amount, .pixels = 92, .paper = 12, .isSummed = true}};
    QList<Row> rows;
    const auto add = [&](db::CVORecordset& row) {
        // The statement compares texts, so balances such as "" and "00" come through it.
        const Won balance = won(row, 2);
        if (!balance.isZero()) rows << Row{row.GetFieldString(0), row.GetFieldString(1), balance};
    };
    const int count = user.isEmpty() ? db::forEachRow(kReceivables(u"0"), add)
                                     : db::forEachRow(kReceivablesOfUser(user, u"0"), add);
    if (count < 0) return std::nullopt;
    report.sections = {{{}, rows}};
    return report;
}

std::optional<Report> cards(QStringView date, QStringView user) {
    static constexpr db::Statement<
        u"SELECT GCode, GName, CardMoney FROM BankMoney WHERE DDate = '%s' ORDER BY GCode">
        kBankMoney;
    static constexpr db::Statement<
        u"SELECT GCode, GName, CardMoney, JunNo, BANKTRANNO FROM MTMOK "
        u"WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') ORDER BY JunNo">
        kCardPayments;
    Report report = reportHead(u"카드입금 집계", date, user);
    report.columns = {
        kCode,
        {.title = u"거래처명"_s, .pixels = 96, .paper = 20},
        {.title = u"카드금액"_s, .kind = Kind::Amount, .pixels = 84, .paper = 12, .isSummed = true},
        {.title = u"전표"_s, .pixels = 44, .paper = 6, .startsLine = true},
        {.title = u"거래번호"_s, .pixels = 104, .paper = 26}};
    QList<Row> banked;
    QList<Row> approved;
    QList<Row> unapproved;
    // The bank's payments name no salesman, so every salesman sees those of the day.
    const int bankedRows = db::forEachRow(kBankMoney(date), [&](db::CVORecordset& row) {
        banked << Row{row.GetFieldString(0), row.GetFieldString(1), won(row, 2), QString(), QString()};
    });
    const int slips = db::forEachRow(kCardPayments(date, user, user), [&](db::CVORecordset& row) {
        // A cash payment that the host approved carries a transaction number, too.
        if (won(row, 2) < Won(1)) return;
        (row.GetFieldString(4).isEmpty() ? unapproved : approved)
            << Row{row.GetFieldString(0), row.GetFieldString(1), won(row, 2), row.GetFieldString(3),
                   row.GetFieldString(4)};
    });
    if (bankedRows < 0 || slips < 0) return std::nullopt;
    report.sections = {{u"은행입금"_s, banked}, {u"카드승인"_s, approved}};
    // Money without a sale is taken by card without asking the host; the close counts it among the cards.
    if (!unapproved.isEmpty()) report.sections.append({u"카드미승인"_s, unapproved});
    return report;
}

std::optional<Report> collections(QStringView date, QStringView user) {
    static constexpr db::Statement<
        u"SELECT GCode, GName, WonMoney, CardMoney, MisuInMoney, YDMoney, UnderMoney FROM MTMOK "
        u"WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') ORDER BY JunNo">
        kCollections;
    Report report = reportHead(u"거래처별 수금", date, user);
    report.columns = {kCode,
                      {.title = u"거래처명"_s, .pixels = 80, .paper = 20},
                      amounts(u"현금"_s, 12),
                      amounts(u"카드"_s, 16, kNewLine),
                      amounts(u"전미수"_s, 16),
                      amounts(u"용공회수"_s, 16, kNewLine),
                      amounts(u"미결제"_s, 16)};
    return byCode(report, kCollections(date, user, user), [](db::CVORecordset& row) -> QList<Won> {
        return {won(row, 2), won(row, 3), won(row, 4), won(row, 5), won(row, 6)};
    });
}

constexpr DailyReport kReports[] = {
    {u"sales", u"상품별매출", 1004, sales},
    {u"containers", u"용공회수", 1005, containers},
    {u"receivables", u"채권잔액", 1006, receivables},
    {u"cards", u"카드입금", 1007, cards},
    {u"collections", u"거래처별수금", 1008, collections},
};

}  // namespace

std::span<const DailyReport> dailyReports() {
    return kReports;
}

Report reportHead(QStringView title, QStringView date, QStringView user) {
    Report report;
    report.title = title.toString();
    report.date = date.toString();
    report.salesman = user.isEmpty() ? u"전체"_s : print::salesman(user).name;
    if (report.salesman.isEmpty()) report.salesman = user.toString();
    return report;
}

}  // namespace totals
