#include "totals/DayClose.h"

#include <algorithm>
#include <array>

#include "books/CollectionSlip.h"
#include "books/PaymentJournal.h"
#include "books/UndeliveredOrders.h"
#include "db/Query.h"
#include "db/Transaction.h"
#include "platform/Clock.h"
#include "totals/DailyReports.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::parseInteger;
using platform::parseWon;
using platform::Won;

// An empty user leaves the condition on him out.
constexpr db::Statement<
    u"SELECT Box, Bon, DDate, JunNo, UserID FROM MTM WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') "
    u"AND (WorkGubun <> '%s' or WorkGubun <> '%s')">
    kSold;
constexpr db::Statement<
    u"SELECT COUNT(*) FROM (SELECT DISTINCT JunNo, UserID FROM MTM WHERE DDate = '%s' "
    u"AND ('%s' = '' OR UserID = '%s') AND NOT EXISTS (SELECT 1 FROM MTMOK WHERE MTMOK.DDate = MTM.DDate "
    u"AND MTMOK.JunNo = MTM.JunNo AND MTMOK.UserID = MTM.UserID))">
    kOpenSlips;
constexpr db::Statement<
    u"SELECT * FROM DAYCLOSE WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') ORDER BY UserID, rowid">
    kClosesOfDay;
constexpr db::Statement<
    u"INSERT INTO DAYCLOSE (DDate,UserID,ClosedAt,CountedCash,ExpectedCash,Cash,Card,Approvals,Unpaid,"
    u"EarlierPaid,Recovery,Boxes,Bottles,CratesBack,BottlesBack,OpenSlips) VALUES "
    u"('%s','%s','%s','%s','%s','%s','%s','%s',"
    u"'%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsert;

QString text(std::int64_t number) {
    return QString::number(number);
}

/// Sums of counts saturate as amounts do.
void add(std::int64_t* sum, std::int64_t count) {
    *sum = (Won(*sum) + Won(count)).value();
}

Cell count(std::int64_t number) {
    return Won(number);
}

/// The goods on the day's slips.
struct Goods {
    std::int64_t boxes = 0;
    std::int64_t bottles = 0;
    std::int64_t orderedBoxes = 0;  ///< On the office's orders that nobody has delivered.
    std::int64_t orderedBottles = 0;
    int orders = 0;  ///< Number of those.
};

/// Nothing when they could not be read to the end.
std::optional<Goods> goodsOfDay(QStringView date, QStringView userId) {
    const auto orders = books::UndeliveredOrders::ofDay(date, userId);
    if (!orders) return std::nullopt;
    Goods goods;
    goods.orders = orders->count();
    // True for every row: no text is both. So slips of every print state count.
    const int lines =
        db::forEachRow(kSold(date, userId, userId, u"미처리", u"미발행"), [&](db::CVORecordset& row) {
            const bool isOrdered =
                orders->contains(row.GetFieldString(2), row.GetFieldString(3), row.GetFieldString(4));
            add(isOrdered ? &goods.orderedBoxes : &goods.boxes, parseInteger(row.GetFieldString(0)));
            add(isOrdered ? &goods.orderedBottles : &goods.bottles, parseInteger(row.GetFieldString(1)));
        });
    return lines < 0 ? std::nullopt : std::optional(goods);
}

/// The card host's payments up to that day whose outcome is open, which no other figure counts.
QList<Row> unsettledRows(QStringView date, QStringView userId) {
    QList<Row> rows;
    for (const books::JournalPayment& payment : books::unsettledPayments()) {
        const books::CollectionSlip& slip = payment.slip;
        if (slip.DDate > date || !(userId.isEmpty() || slip.UserID == userId)) continue;
        const QString day = slip.DDate == date ? QString() : slip.DDate.mid(5) + u' ';
        rows.append({day + slip.JunNo + u' ' + slip.GName, payment.charged});
    }
    return rows;
}

/// The strip's two columns: what, and how much.
Report strip(QStringView title, QStringView date, QStringView userId, const DayFigures& figures) {
    Report report = reportHead(title, date, userId);
    report.columns = {{.title = u"항목"_s, .pixels = 124, .paper = 18},
                      {.title = u"금액/수량"_s, .kind = Kind::Amount, .pixels = 96, .paper = 14}};
    report.sections = {{u"입금"_s,
                        {{u"현금"_s, figures.cash},
                         {u"카드(승인%1건)"_s.arg(figures.approvals), figures.card},
                         {u"외상(미결제)"_s, figures.unpaid},
                         {u"전미수입금"_s, figures.earlierPaid},
                         {u"용공회수"_s, figures.recovery}}},
                       {u"판매·회수"_s,
                        {{u"판매 상자"_s, count(figures.boxes)},
                         {u"판매 본"_s, count(figures.bottles)},
                         {u"회수 상자"_s, count(figures.back.crates)},
                         {u"회수 공병"_s, count(figures.back.bottles)}}},
                       {u"현금"_s, {}}};
    // Their goods are among those sold, and no money above stands for them.
    if (figures.openSlips != 0)
        report.sections[1].rows.append({u"수금없는 전표"_s, count(figures.openSlips)});
    // What is still on the van or in the store is not sold.
    if (const auto goods = goodsOfDay(date, userId); goods && goods->orders != 0) {
        report.sections[1].rows.append({u"미배송 주문 전표"_s, count(goods->orders)});
        report.sections[1].rows.append({u"미배송 주문 상자"_s, count(goods->orderedBoxes)});
        report.sections[1].rows.append({u"미배송 주문 본"_s, count(goods->orderedBottles)});
    }
    QList<Row>& cash = report.sections.last().rows;
    // What makes the expected cash less than cash and earlier receivables together.
    const Won unmoved = figures.expectedCash - figures.cash - figures.earlierPaid;
    if (!unmoved.isZero()) cash.append({u"용공상계 전미수"_s, unmoved});
    cash.append({u"예상현금"_s, figures.expectedCash});
    const QList<Row> unsettled = unsettledRows(date, userId);
    if (!unsettled.isEmpty()) report.sections.insert(0, {u"카드결제 결과 미확인"_s, unsettled});
    return report;
}

}  // namespace

std::optional<DayFigures> dayFigures(QStringView date, QStringView userId) {
    DayFigures figures;
    const auto slips = books::slipsOfDay(date, userId);
    if (!slips) return std::nullopt;
    for (const books::CollectionSlip& slip : *slips) {
        figures.cash += slip.WonMoney;
        figures.card += slip.CardMoney;
        figures.approvals += slip.isApproved() && slip.CardMoney > Won();
        figures.unpaid += slip.UnderMoney;
        figures.earlierPaid += slip.MisuInMoney;
        figures.recovery += slip.YDMoney;
        figures.expectedCash += slip.cashTaken();
    }
    const auto goods = goodsOfDay(date, userId);
    const auto back = books::containersTakenBack(date, userId);
    const auto open = db::firstRow(kOpenSlips(date, userId, userId));
    if (!goods || !back || !open) return std::nullopt;
    figures.boxes = goods->boxes;
    figures.bottles = goods->bottles;
    figures.back = *back;
    figures.openSlips = parseInteger(open->first()) - goods->orders;
    return figures;
}

std::optional<QList<DayClose>> closesOfDay(QStringView date, QStringView userId) {
    QList<DayClose> closes;
    const int rows = db::forEachRow(kClosesOfDay(date, userId, userId), [&](db::CVORecordset& row) {
        const auto won = [&](int column) { return parseWon(row.GetFieldString(column)); };
        const auto number = [&](int column) { return parseInteger(row.GetFieldString(column)); };
        closes.append({row.GetFieldString(1),
                       row.GetFieldString(2),
                       won(3),
                       {.cash = won(5),
                        .card = won(6),
                        .approvals = number(7),
                        .unpaid = won(8),
                        .earlierPaid = won(9),
                        .recovery = won(10),
                        .boxes = number(11),
                        .bottles = number(12),
                        .back = {number(13), number(14)},
                        .openSlips = number(15),
                        .expectedCash = won(4)}});
    });
    return rows < 0 ? std::nullopt : std::optional(closes);
}

std::optional<QList<DayClose>> closeDay(QStringView date, QStringView userId, Won counted) {
    db::Transaction transaction;
    const auto figures = dayFigures(date, userId);
    const auto before = closesOfDay(date, userId);
    if (!figures || !before) return std::nullopt;
    const QString now = platform::clock::now().toString(u"yyyy-MM-dd HH:mm:ss"_s);
    const DayFigures& day = *figures;
    const std::array<QString, decltype(kInsert)::kValues> texts{date.toString(),
                                                                userId.toString(),
                                                                now,
                                                                formatWon(counted),
                                                                formatWon(day.expectedCash),
                                                                formatWon(day.cash),
                                                                formatWon(day.card),
                                                                text(day.approvals),
                                                                formatWon(day.unpaid),
                                                                formatWon(day.earlierPaid),
                                                                formatWon(day.recovery),
                                                                text(day.boxes),
                                                                text(day.bottles),
                                                                text(day.back.crates),
                                                                text(day.back.bottles),
                                                                text(day.openSlips)};
    std::array<QStringView, texts.size()> values;
    std::ranges::copy(texts, values.begin());
    if (!transaction.run(kInsert(values))) return std::nullopt;
    // What is shown is what was kept.
    auto closes = closesOfDay(date, userId);
    const bool isKept =
        closes && *closes == *before + QList<DayClose>{{userId.toString(), now, counted, day}};
    return isKept && transaction.commit() ? closes : std::nullopt;
}

Report dayCloseReport(QStringView date, const QList<DayClose>& closes) {
    const DayClose& close = closes.last();
    const qsizetype number = closes.size();
    Report report =
        strip(number > 1 ? u"%1차 마감"_s.arg(number) : u"일마감"_s, date, close.userId, close.figures);
    const Won over = close.counted - close.figures.expectedCash;
    const QString verdict = over > Won() ? u"과입"_s : over < Won() ? u"부족"_s : u"과부족"_s;
    const Won difference = over < Won() ? -over : over;
    QList<Row>& cash = report.sections.last().rows;
    cash.append({u"현금시재"_s, close.counted});
    cash.append({verdict, difference});
    for (qsizetype i = 0; i + 1 < number; ++i)
        cash.append({u"%1차 현금시재"_s.arg(i + 1), closes[i].counted});
    // A day that is closed after midnight, or under another work date, says on which date that was.
    const QString time =
        close.closedAt.startsWith(date) ? close.closedAt.mid(11, 5) : close.closedAt.mid(5, 11);
    // The table for the office has no head that would say whose close it is.
    cash.append({u"마감 %1 (%2)"_s.arg(time, close.userId), Cell(QString())});
    report.results = {
        {u"예상현금"_s, close.figures.expectedCash}, {u"현금시재"_s, close.counted}, {verdict, difference}};
    return report;
}

std::optional<QList<Report>> dayCloseReports(QStringView date, QStringView userId) {
    const auto closes = closesOfDay(date, userId);
    if (!closes) return std::nullopt;
    if (closes->isEmpty()) {
        const auto figures = dayFigures(date, userId);
        return figures ? std::optional(QList<Report>{strip(u"마감전 집계", date, userId, *figures)})
                       : std::nullopt;
    }
    QList<Report> reports;
    QList<DayClose> ofUser;
    for (const DayClose& close : *closes) {
        if (!ofUser.isEmpty() && ofUser.last().userId != close.userId) ofUser.clear();
        ofUser << close;
        reports << dayCloseReport(date, ofUser);
    }
    return reports;
}

}  // namespace totals
