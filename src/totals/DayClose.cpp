#include "totals/DayClose.h"

#include <algorithm>
#include <array>

#include "db/Query.h"
#include "db/Transaction.h"
#include "platform/Clock.h"
#include "totals/CloseStrip.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::parseInteger;
using platform::parseWon;
using platform::Won;

QString text(std::int64_t number) {
    return QString::number(number);
}

QString now() {
    return platform::clock::now().toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

QString titleOf(qsizetype number) {
    return number > 1 ? u"%1차 마감"_s.arg(number) : u"일마감"_s;
}

DayClose closeOf(db::CVORecordset& row) {
    const auto won = [&](int column) { return parseWon(row.GetFieldString(column)); };
    const auto number = [&](int column) { return parseInteger(row.GetFieldString(column)); };
    DayClose close{.userId = row.GetFieldString(1),
                   .closedAt = row.GetFieldString(2),
                   .counted = won(3),
                   .figures = {.cash = won(5),
                               .card = won(6),
                               .approvals = number(7),
                               .unpaid = won(8),
                               .earlierPaid = won(9),
                               .recovery = won(10),
                               .boxes = number(11),
                               .bottles = number(12),
                               .back = {number(13), number(14)},
                               .openSlips = number(15),
                               .expectedCash = won(4)},
                   .strip = {},
                   .visits = {},
                   .printedAt = {}};
    // A database of an older terminal keeps the figures alone.
    if (row.m_nFieldCount < 20) return close;
    close.strip = row.GetFieldString(16);
    close.visits = row.GetFieldString(17);
    close.deletions = number(18);
    close.printedAt = row.GetFieldString(19);
    return close;
}

bool insert(db::Transaction& transaction, QStringView date, const DayClose& close) {
    static constexpr db::Statement<
        u"INSERT INTO DAYCLOSE (DDate,UserID,ClosedAt,CountedCash,ExpectedCash,Cash,Card,Approvals,Unpaid,"
        u"EarlierPaid,Recovery,Boxes,Bottles,CratesBack,BottlesBack,OpenSlips,Strip,Visits,Deletions,"
        u"PrintedAt) VALUES ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s',"
        u"'%s','%s','%s','%s','')">
        kInsert;
    const DayFigures& day = close.figures;
    const std::array<QString, decltype(kInsert)::kValues> texts{date.toString(),
                                                                close.userId,
                                                                close.closedAt,
                                                                formatWon(close.counted),
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
                                                                text(day.openSlips),
                                                                close.strip,
                                                                close.visits,
                                                                text(close.deletions)};
    std::array<QStringView, texts.size()> values;
    std::ranges::copy(texts, values.begin());
    return transaction.run(kInsert(values));
}

}  // namespace

std::optional<QList<DayClose>> closesOfDay(QStringView date, QStringView userId) {
    // An empty user leaves the condition on him out.
    static constexpr db::Statement<
        u"SELECT * FROM DAYCLOSE WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') ORDER BY UserID, rowid">
        kClosesOfDay;
    QList<DayClose> closes;
    const int rows = db::forEachRow(kClosesOfDay(date, userId, userId),
                                    [&](db::CVORecordset& row) { closes << closeOf(row); });
    return rows < 0 ? std::nullopt : std::optional(closes);
}

std::optional<QList<DayClose>> closeDay(QStringView date, QStringView userId, Won counted) {
    db::Transaction transaction;
    const auto day = readDay(date, userId);
    const auto before = closesOfDay(date, userId);
    if (!day || !before) return std::nullopt;
    DayClose close{.userId = userId.toString(),
                   .closedAt = now(),
                   .counted = counted,
                   .figures = day->figures,
                   .strip = {},
                   .visits = fingerprint(day->visits),
                   .deletions = day->deletions.size(),
                   .printedAt = {}};
    Report strip = dayStrip(titleOf(before->size() + 1), *day);
    addCount(&strip, date, *before, close);
    close.strip = toText(strip);
    if (!insert(transaction, date, close)) return std::nullopt;
    // What is shown is what was kept.
    auto closes = closesOfDay(date, userId);
    const bool isKept = closes && *closes == *before + QList<DayClose>{close};
    return isKept && transaction.commit() ? closes : std::nullopt;
}

std::optional<QList<Row>> changesAfterClose(QStringView date, const QList<DayClose>& closes) {
    // What an older terminal closed cannot be compared.
    if (closes.isEmpty() || closes.last().visits.isEmpty()) return QList<Row>();
    const auto day = readDay(date, closes.last().userId);
    if (!day) return std::nullopt;
    return changesSince(closes.last().visits, closes.last().deletions, *day);
}

Report dayCloseReport(QStringView date, const QList<DayClose>& closes, const QList<Row>& changes) {
    const DayClose& close = closes.last();
    auto strip = fromText(close.strip, date);
    if (!strip) {
        strip = stripOfFigures(titleOf(closes.size()), date, close.userId, close.figures);
        addCount(&*strip, date, closes.first(closes.size() - 1), close);
    }
    if (!changes.isEmpty()) strip->sections.prepend({u"마감 후 변경 %1건"_s.arg(changes.size()), changes});
    return *strip;
}

void noteStripPrinted(QStringView date, QStringView userId) {
    static constexpr db::Statement<
        u"UPDATE DAYCLOSE SET PrintedAt = '%s' WHERE rowid = (SELECT MAX(rowid) FROM DAYCLOSE "
        u"WHERE DDate = '%s' AND UserID = '%s')">
        kNotePrint;
    db::execute(kNotePrint(now(), date, userId));
}

std::optional<QList<Report>> dayCloseReports(QStringView date, QStringView userId) {
    const auto closes = closesOfDay(date, userId);
    if (!closes) return std::nullopt;
    if (closes->isEmpty()) {
        const auto day = readDay(date, userId);
        return day ? std::optional(QList<Report>{dayStrip(u"마감전 집계", *day)}) : std::nullopt;
    }
    QList<Report> reports;
    QList<DayClose> ofUser;
    for (qsizetype i = 0; i < closes->size(); ++i) {
        const DayClose& close = closes->at(i);
        if (!ofUser.isEmpty() && ofUser.last().userId != close.userId) ofUser.clear();
        ofUser << close;
        const bool isLast = i + 1 == closes->size() || closes->at(i + 1).userId != close.userId;
        const auto changes = isLast ? changesAfterClose(date, ofUser) : QList<Row>();
        if (!changes) return std::nullopt;
        reports << dayCloseReport(date, ofUser, *changes);
    }
    return reports;
}

}  // namespace totals
