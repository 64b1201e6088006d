#include "totals/CloseStrip.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <algorithm>

#include "books/ContainerBalance.h"
#include "books/VisitChecks.h"
#include "platform/Sha256.h"
#include "totals/DailyReports.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using books::CollectionSlip;
using books::Visit;
using platform::Won;

Cell count(std::int64_t number) {
    return Won(number);
}

QString nameOf(const Visit& visit) {
    return visit.junNo + u' ' + visit.gName;
}

/// Sums of counts saturate as amounts do.
void add(std::int64_t* sum, std::int64_t number) {
    *sum = (Won(*sum) + Won(number)).value();
}

/// Card amounts of the day that the host has not approved, by whether that is still open.
struct UnapprovedCards {
    Won open;
    Won refused;
};

UnapprovedCards unapprovedCards(const QList<Visit>& visits) {
    UnapprovedCards cards;
    for (const Visit& visit : visits) {
        for (const CollectionSlip& slip : visit.collections) {
            if (!slip.isApproved()) (visit.hasOpenPayment() ? cards.open : cards.refused) += slip.CardMoney;
        }
    }
    return cards;
}

DayFigures figuresOf(const QList<Visit>& visits, books::Containers back) {
    DayFigures figures;
    figures.back = back;
    for (const Visit& visit : visits) {
        if (visit.isUndelivered) continue;
        figures.openSlips += !visit.goods.isEmpty() && visit.collection() == nullptr;
        for (const books::SoldLine& line : visit.goods) {
            add(&figures.boxes, line.boxes);
            add(&figures.bottles, line.bottles);
        }
        for (const CollectionSlip& slip : visit.collections) {
            figures.cash += slip.WonMoney;
            figures.card += slip.CardMoney;
            figures.approvals += slip.isApproved() && slip.CardMoney > Won();
            figures.unpaid += slip.UnderMoney;
            figures.earlierPaid += slip.MisuInMoney;
            figures.recovery += slip.YDMoney;
            figures.expectedCash += slip.cashTaken();
        }
    }
    return figures;
}

Report emptyStrip(QStringView title, QStringView date, QStringView userId) {
    Report report = reportHead(title, date, userId);
    report.columns = {{.title = u"항목"_s, .pixels = 124, .paper = 18},
                      {.title = u"금액/수량"_s, .kind = Kind::Amount, .pixels = 96, .paper = 14}};
    return report;
}

Section receipts(const DayFigures& figures, const UnapprovedCards& unapproved) {
    Section section{
        u"입금"_s,
        {{u"현금"_s, figures.cash},
         {u"카드(승인%1건)"_s.arg(figures.approvals), figures.card - unapproved.open - unapproved.refused}}};
    if (!unapproved.refused.isZero()) section.rows.append({u"카드미승인"_s, unapproved.refused});
    if (!unapproved.open.isZero()) section.rows.append({u"카드확인중"_s, unapproved.open});
    section.rows.append({u"외상(미결제)"_s, figures.unpaid});
    section.rows.append({u"전미수입금"_s, figures.earlierPaid});
    section.rows.append({u"용공회수"_s, figures.recovery});
    return section;
}

Section movements(const DayFigures& figures) {
    return {u"판매·회수"_s,
            {{u"판매 상자"_s, count(figures.boxes)},
             {u"판매 본"_s, count(figures.bottles)},
             {u"회수 상자"_s, count(figures.back.crates)},
             {u"회수 공병"_s, count(figures.back.bottles)}}};
}

Section expectedCash(const DayFigures& figures) {
    Section section{u"현금"_s, {}};
    // What makes the expected cash less than cash and earlier receivables together.
    const Won unmoved = figures.expectedCash - figures.cash - figures.earlierPaid;
    if (!unmoved.isZero()) section.rows.append({u"용공상계 전미수"_s, unmoved});
    section.rows.append({u"예상현금"_s, figures.expectedCash});
    return section;
}

Section crossFooting(const QList<Visit>& visits) {
    const books::CrossFoot foot = books::crossFoot(visits);
    Section section{u"대조"_s, {{u"판매·보증금"_s, foot.sales}}};
    const auto addPart = [&](const QString& label, Won amount) {
        if (!amount.isZero()) section.rows.append({label, amount});
    };
    addPart(u"수금없는 판매"_s, -foot.uncollected);
    addPart(u"전표없는 매출"_s, foot.keyedSales);
    addPart(u"매출없는 입금"_s, foot.receivedWithoutSale);
    addPart(u"용공초과 상계"_s, foot.creditedExcess);
    section.rows.append({u"수금·외상·회수"_s, foot.settled()});
    section.rows.append({u"차액"_s, foot.difference()});
    return section;
}

void addOpenPayments(Report* report, const Day& day) {
    Section section{u"카드결제 결과 미확인"_s, {}};
    for (const books::JournalPayment& payment : day.openPayments) {
        const CollectionSlip& slip = payment.slip;
        const QString date = slip.DDate == day.date ? QString() : slip.DDate.mid(5) + u' ';
        section.rows.append({date + slip.JunNo + u' ' + slip.GName, payment.charged});
    }
    if (!section.rows.isEmpty()) report->sections.append(section);
}

/// The visits whose goods or containers stand without a collection, by name.
void addUncollected(Report* report, const QList<Visit>& visits) {
    Section sales{u"수금없는 판매"_s, {}};
    Section containers{u"입금없는 용공"_s, {}};
    for (const Visit& visit : visits) {
        if (visit.collection() != nullptr || visit.isUndelivered) continue;
        if (!visit.goods.isEmpty()) sales.rows.append({nameOf(visit), visit.goodsTotal()});
        if (!visit.containers.isEmpty()) containers.rows.append({nameOf(visit), visit.containerWorth()});
    }
    for (const Section& section : {sales, containers}) {
        if (!section.rows.isEmpty()) report->sections.append(section);
    }
}

/// The approvals that no slip shows, by name: the customer was charged, and no part of the day has the money.
void addLostApprovals(Report* report, const QList<Visit>& visits) {
    Section section{books::reasonOf(books::DifferenceKind::ApprovalNotShown).toString(), {}};
    for (const books::CheckedVisit& checked : books::checkVisits(visits)) {
        for (const books::VisitDifference& each : checked.differences) {
            if (each.kind == books::DifferenceKind::ApprovalNotShown)
                section.rows.append({nameOf(checked.visit), each.amount});
        }
    }
    if (!section.rows.isEmpty()) report->sections.append(section);
}

/// How many slips were deleted: one that took its followers along counts once.
std::int64_t countDeletions(const QList<books::Deletion>& deletions) {
    QSet<QString> acts;
    for (const books::Deletion& each : deletions)
        acts << QStringList{each.junNo, each.userId, each.gCode, each.deletedAt}.join(u'|');
    return acts.size();
}

// A cell's first character marks a text or a number.
QString cellText(const Cell& cell, bool isNumber) {
    return (isNumber ? u'n' : u't') + cell.text();
}

Cell cellOf(const QString& text) {
    return text.startsWith(u'n') ? Cell(platform::parseWon(QStringView(text).mid(1))) : Cell(text.mid(1));
}

/// JSON without a single quote, which no statement takes.
QString compact(const QJsonObject& object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact))
        .replace(u'\'', u"\\u0027"_s);
}

QJsonObject objectOf(QStringView text) {
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

QString keyOf(const QString& junNo, const QString& userId, const QString& gCode) {
    return junNo + u'|' + userId + u'|' + gCode;
}

QString digestOf(const Visit& visit) {
    QStringList parts;
    const auto number = [&](std::int64_t value) { parts << QString::number(value); };
    const auto won = [&](Won amount) { parts << platform::formatWon(amount); };
    for (const books::SoldLine& line : visit.goods) {
        parts << u"sold"_s << line.PCode;
        number(line.boxes);
        number(line.bottles);
        for (const Won amount : {line.supply, line.vat, line.crateDeposit, line.bottleDeposit}) won(amount);
    }
    for (const books::ReturnedLine& line : visit.containers) {
        parts << u"returned"_s << line.PCode;
        for (const std::int64_t each : {line.emptyCrates, line.filledCrates, line.bottles}) number(each);
        won(line.worth);
        won(line.fees);
    }
    for (CollectionSlip slip : visit.collections) {
        slip.DTime.clear();
        for (const QString& text : books::columnTexts(slip)) parts << text;
    }
    for (const books::JournalPayment& payment : visit.payments) {
        if (payment.isUnsettled() || payment.state == books::PaymentState::Approved)
            parts << payment.number << QString::number(int(payment.state));
    }
    const QByteArray digest = platform::sha256({parts.join(u'|').toUtf8()});
    return QString::fromLatin1(digest.first(8).toHex());
}

/// What a visit comes to: its sale, else what was settled, else what its containers are worth.
Won worthOf(const Visit& visit) {
    if (!visit.goods.isEmpty()) return visit.goodsTotal();
    Won total;
    for (const CollectionSlip& slip : visit.collections) total += slip.amounts().total;
    return visit.collections.isEmpty() ? visit.containerWorth() : total;
}

}  // namespace

std::optional<Day> readDay(QStringView date, QStringView userId) {
    auto visits = books::visitsOfDay(date, userId);
    auto deletions = books::deletionsOfDay(date, userId);
    const auto back = books::containersTakenBack(date, userId);
    if (!visits || !deletions || !back) return std::nullopt;
    Day day{.date = date.toString(),
            .userId = userId.toString(),
            .visits = *std::move(visits),
            .deletions = *std::move(deletions),
            .openPayments = books::unsettledPayments(),
            .figures = {}};
    day.openPayments.removeIf([&](const books::JournalPayment& payment) {
        const CollectionSlip& slip = payment.slip;
        return slip.DDate > day.date || !(userId.isEmpty() || slip.UserID == userId);
    });
    day.figures = figuresOf(day.visits, *back);
    return day;
}

Report dayStrip(QStringView title, const Day& day) {
    Report report = emptyStrip(title, day.date, day.userId);
    addOpenPayments(&report, day);
    Section sold = movements(day.figures);
    const auto undelivered = std::ranges::count_if(day.visits, &Visit::isUndelivered);
    if (undelivered != 0) sold.rows.append({u"미배송 주문"_s, count(undelivered)});
    if (!day.deletions.isEmpty()) sold.rows.append({u"삭제 전표"_s, count(countDeletions(day.deletions))});
    report.sections << receipts(day.figures, unapprovedCards(day.visits)) << crossFooting(day.visits) << sold;
    addUncollected(&report, day.visits);
    addLostApprovals(&report, day.visits);
    report.sections << expectedCash(day.figures);
    return report;
}

void addCount(Report* strip, QStringView date, const QList<DayClose>& before, const DayClose& close) {
    const Won over = close.counted - close.figures.expectedCash;
    const QString verdict = over > Won() ? u"과입"_s : over < Won() ? u"부족"_s : u"과부족"_s;
    const Won difference = over < Won() ? -over : over;
    QList<Row>& cash = strip->sections.last().rows;
    cash.append({u"현금시재"_s, close.counted});
    cash.append({verdict, difference});
    for (qsizetype i = 0; i < before.size(); ++i)
        cash.append({u"%1차 현금시재"_s.arg(i + 1), before[i].counted});
    // A day that is closed after midnight, or under another work date, says on which date that was.
    const QString time =
        close.closedAt.startsWith(date) ? close.closedAt.mid(11, 5) : close.closedAt.mid(5, 11);
    // The table for the office has no head that would say whose close it is.
    cash.append({u"마감 %1 (%2)"_s.arg(time, close.userId), Cell(QString())});
    strip->results = {
        {u"예상현금"_s, close.figures.expectedCash}, {u"현금시재"_s, close.counted}, {verdict, difference}};
}

Report stripOfFigures(QStringView title, QStringView date, QStringView userId, const DayFigures& figures) {
    Report report = emptyStrip(title, date, userId);
    Section sold = movements(figures);
    if (figures.openSlips != 0) sold.rows.append({u"수금없는 전표"_s, count(figures.openSlips)});
    report.sections = {receipts(figures, {}), sold, expectedCash(figures)};
    return report;
}

QString toText(const Report& strip) {
    QJsonArray sections;
    for (const Section& section : strip.sections) {
        QJsonArray rows;
        for (const Row& row : section.rows) {
            QJsonArray cells;
            for (qsizetype i = 0; i < row.size(); ++i) {
                const bool isNumber = strip.columns[i].kind != Kind::Text && !row[i].text().isEmpty();
                cells.append(cellText(row[i], isNumber));
            }
            rows.append(cells);
        }
        sections.append(QJsonObject{{u"title"_s, section.title}, {u"rows"_s, rows}});
    }
    QJsonArray results;
    for (const Sum& sum : strip.results)
        results.append(QJsonArray{sum.label, platform::formatWon(sum.value)});
    return compact({{u"title"_s, strip.title},
                    {u"salesman"_s, strip.salesman},
                    {u"sections"_s, sections},
                    {u"results"_s, results}});
}

std::optional<Report> fromText(QStringView text, QStringView date) {
    const QJsonObject kept = objectOf(text);
    if (kept.isEmpty()) return std::nullopt;
    Report strip = emptyStrip(kept[u"title"].toString(), date, {});
    strip.salesman = kept[u"salesman"].toString();
    for (const QJsonValue& section : kept[u"sections"].toArray()) {
        Section read{section[u"title"].toString(), {}};
        for (const QJsonValue& row : section[u"rows"].toArray()) {
            const QJsonArray cells = row.toArray();
            if (cells.size() != strip.columns.size()) return std::nullopt;
            read.rows.append({cellOf(cells[0].toString()), cellOf(cells[1].toString())});
        }
        strip.sections << read;
    }
    for (const QJsonValue& sum : kept[u"results"].toArray())
        strip.results.append({sum[0].toString(), platform::parseWon(sum[1].toString())});
    return strip;
}

QString fingerprint(const QList<Visit>& visits) {
    QJsonObject digests;
    for (const Visit& visit : visits) {
        // Orders that come in change nothing until they are delivered.
        if (!visit.isUndelivered) digests[keyOf(visit.junNo, visit.userId, visit.gCode)] = digestOf(visit);
    }
    return compact(digests);
}

QList<Row> changesSince(QStringView fingerprint, std::int64_t deletions, const Day& day) {
    const QJsonObject before = objectOf(fingerprint);
    QSet<QString> seen;
    QList<Row> changes;
    for (const Visit& visit : day.visits) {
        if (visit.isUndelivered) continue;
        const QString key = keyOf(visit.junNo, visit.userId, visit.gCode);
        seen << key;
        if (before[key].toString() != digestOf(visit)) changes.append({nameOf(visit), worthOf(visit)});
    }
    for (const books::Deletion& each : day.deletions.mid(qsizetype(deletions))) {
        const QString key = keyOf(each.junNo, each.userId, each.gCode);
        if (seen.contains(key)) continue;
        seen << key;
        changes.append({u"%1 %2 삭제"_s.arg(each.junNo, each.gName), -each.total});
    }
    for (const QString& key : before.keys()) {
        if (!seen.contains(key)) changes.append({u"%1 없어짐"_s.arg(key.section(u'|', 0, 0)), Won()});
    }
    return changes;
}

}  // namespace totals
