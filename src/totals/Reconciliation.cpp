#include "totals/Reconciliation.h"

#include <algorithm>
#include <map>
#include <utility>

#include "books/PaymentJournal.h"
#include "db/Health.h"
#include "db/Query.h"
#include "platform/Digits.h"
#include "totals/DailyReports.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using books::CollectionSlip;
using platform::areDigits;
using platform::parseWon;
using platform::Won;

constexpr db::Statement<
    u"SELECT * FROM PAYJOURNAL WHERE Kind = 'card' AND MSGSENDTIME >= '%s' AND MSGSENDTIME <= '%s' "
    u"ORDER BY rowid">
    kSent;
constexpr int kStateColumn = 1;
constexpr int kChargedColumn = 3;
constexpr int kSlipColumn = 5;

constexpr qsizetype kNumberLength = 12;
constexpr qsizetype kTimeLength = 6;

std::optional<HostPayment> readPayment(QStringView line) {
    const QList<QStringView> parts = line.split(u' ');
    if (parts.size() != 3 || !std::ranges::all_of(parts, areDigits) || parts[0].size() != kNumberLength ||
        parts[1].size() != kTimeLength) {
        return std::nullopt;
    }
    return HostPayment{parts[0].toString(), parts[1].toString(), parseWon(parts[2])};
}

QString stamp(const QDate& day, QStringView time) {
    return day.toString(u"yyyyMMdd"_s) + time.toString();
}

/// The terminal's approvals by transaction number, of the day and of those around it.
class Slips {
  public:
    Slips(const QDate& day, QList<CollectionSlip> slips)
        : date_(day.toString(u"yyyyMMdd"_s)), slips_(std::move(slips)) {}

    /// Takes the slip with that number, one of the day if there is one, and rather one by card: a number may
    /// be there twice.
    std::optional<CollectionSlip> take(QStringView number) {
        const auto rank = [&](const CollectionSlip& slip) {
            return slip.BANKTRANNO != number ? 0 : 1 + (isOfDay(slip) ? 2 : 0) + (isByCard(slip) ? 1 : 0);
        };
        const auto best = std::ranges::max_element(slips_, {}, rank);
        if (best == slips_.end() || rank(*best) == 0) return std::nullopt;
        CollectionSlip slip = *best;
        slips_.erase(best);
        return slip;
    }

    /// The card payments of the day that nobody has taken.
    QList<CollectionSlip> left() const {
        QList<CollectionSlip> left = slips_;
        left.removeIf([&](const CollectionSlip& slip) { return !isOfDay(slip) || !isByCard(slip); });
        return left;
    }

  private:
    bool isOfDay(const CollectionSlip& slip) const { return slip.MSGSENDTIME.startsWith(date_); }
    /// A cash payment has a number as well, but the host's totals are of card payments.
    static bool isByCard(const CollectionSlip& slip) { return slip.CardMoney > Won(); }

    QString date_;
    QList<CollectionSlip> slips_;
};

/// The journal's approved card payments of the day and of those around it: the slips that they pay, with the
/// amount that was charged.
class Journal {
  public:
    explicit Journal(const QDate& day) : date_(day.toString(u"yyyyMMdd"_s)) {
        const int rows =
            db::forEachRow(kSent(stamp(day.addDays(-1), u"000000"), stamp(day.addDays(1), u"235959")),
                           [this](db::CVORecordset& row) {
                               CollectionSlip slip = books::readCollection(row, kSlipColumn);
                               slip.CardMoney = parseWon(row.GetFieldString(kChargedColumn));
                               const QString state = row.GetFieldString(kStateColumn);
                               if (state == books::stateName(books::PaymentState::Approved)) {
                                   approved_ << slip;
                               } else if (state != books::stateName(books::PaymentState::Refused) &&
                                          state != books::stateName(books::PaymentState::Released)) {
                                   open_ += isOfDay(slip);
                               }
                           });
        // A database of an older terminal has no journal.
        isRead_ = rows >= 0 || db::needsUpgrade();
    }

    bool isRead() const { return isRead_; }
    /// Payments of the day of which it is open whether they were charged.
    std::int64_t open() const { return open_; }

    std::optional<CollectionSlip> take(QStringView number) {
        const auto found = std::ranges::find(approved_, number, &CollectionSlip::BANKTRANNO);
        if (found == approved_.end()) return std::nullopt;
        CollectionSlip slip = *found;
        approved_.erase(found);
        return slip;
    }

    /// The approvals of the day that nobody has taken and no slip shows, of whatever day.
    QList<CollectionSlip> left() const {
        QList<CollectionSlip> left = approved_;
        left.removeIf([this](const CollectionSlip& slip) {
            return !isOfDay(slip) || books::findByTransactionNumber(slip.BANKTRANNO).has_value();
        });
        return left;
    }

  private:
    bool isOfDay(const CollectionSlip& slip) const { return slip.MSGSENDTIME.startsWith(date_); }

    QString date_;
    QList<CollectionSlip> approved_;
    std::int64_t open_ = 0;
    bool isRead_ = false;
};

/// Those that have another of the same customer and amount beside them, customer by customer. One who is not
/// registered is nobody in particular.
QList<CollectionSlip> repeatedOf(const QList<CollectionSlip>& approvals) {
    std::map<std::pair<QString, Won>, QList<CollectionSlip>> alike;
    for (const CollectionSlip& slip : approvals) {
        if (slip.GCode.isEmpty() || slip.GCode == u"XXXX") continue;
        alike[{slip.GCode, slip.CardMoney}] << slip;
    }
    QList<CollectionSlip> repeated;
    for (const auto& [key, slips] : alike) {
        if (slips.size() > 1) repeated << slips;
    }
    return repeated;
}

QString caption(Difference::Kind kind) {
    switch (kind) {
        case Difference::Kind::MissingAtHost: return u"호스트에 없음"_s;
        case Difference::Kind::MissingOnTerminal: return u"전표에 없음"_s;
        case Difference::Kind::AmountDiffers: return u"금액 다름"_s;
    }
    return {};
}

Row differenceRow(const Difference& difference) {
    Row row(5, Cell(QString()));
    const auto& named = difference.slip ? difference.slip : difference.sent;
    row[0] = named ? named->GName
                   // The host knows no customer: the time shows which visit it was.
                   : QString(difference.payment->time).insert(4, u':').insert(2, u':') + u" 승인"_s;
    if (named) row[1] = named->UserID + u' ' + named->JunNo;
    if (difference.slip) row[2] = difference.slip->CardMoney;
    if (difference.payment) row[3] = difference.payment->amount;
    row[4] = difference.number;
    return row;
}

}  // namespace

HostDay readHostDay(const print::HostSummary& summary, QStringView listTotal, QStringView list) {
    HostDay day;
    day.count = platform::parseInteger(summary.transferCount);
    day.sum = parseWon(summary.transaction);
    if (!areDigits(listTotal)) return day;
    QList<HostPayment> payments;
    for (const QStringView line : list.split(u'\n', Qt::SkipEmptyParts)) {
        const std::optional<HostPayment> payment = readPayment(line);
        if (!payment) return day;
        payments << *payment;
    }
    std::ranges::stable_sort(payments, {}, &HostPayment::number);
    day.isWhole = platform::parseInteger(listTotal) <= payments.size();
    day.payments = std::move(payments);
    return day;
}

bool Reconciliation::isAgreed() const {
    return differences.isEmpty() && openPayments == 0 && count == host.count && sum == host.sum;
}

std::optional<Reconciliation> reconcile(const QDate& day, const HostDay& host) {
    // Terminal and host may see midnight pass at different moments.
    auto approved = books::approvedSlips(stamp(day.addDays(-1), u"000000"), stamp(day.addDays(1), u"235959"));
    Journal journal(day);
    if (!approved || !journal.isRead()) return std::nullopt;
    Slips slips(day, *std::move(approved));

    Reconciliation result;
    result.host = host;
    result.openPayments = journal.open();
    QList<CollectionSlip> approvals;
    const auto count = [&](const CollectionSlip& slip) {
        if (slip.CardMoney <= Won()) return;
        approvals << slip;
        ++result.count;
        result.sum += slip.CardMoney;
    };
    const QList<HostPayment> payments = host.payments.value_or(QList<HostPayment>());
    for (const HostPayment& payment : payments) {
        const std::optional<CollectionSlip> slip = slips.take(payment.number);
        const std::optional<CollectionSlip> sent = journal.take(payment.number);
        if (slip) count(*slip);
        if (slip && slip->CardMoney == payment.amount) continue;
        if (!slip && sent) approvals << *sent;
        result.differences.append(
            {slip ? Difference::Kind::AmountDiffers : Difference::Kind::MissingOnTerminal, payment.number,
             slip, slip ? std::nullopt : sent, payment});
    }
    const auto miss = [&](const CollectionSlip& slip, bool isOnTerminal) {
        // Of what lies behind the end of a list that was cut, nothing is known.
        if (!host.payments ||
            (!host.isWhole && (payments.isEmpty() || slip.BANKTRANNO > payments.last().number))) {
            return;
        }
        result.differences.append({Difference::Kind::MissingAtHost, slip.BANKTRANNO,
                                   isOnTerminal ? std::optional(slip) : std::nullopt,
                                   isOnTerminal ? std::nullopt : std::optional(slip), std::nullopt});
    };
    for (const CollectionSlip& slip : slips.left()) {
        count(slip);
        miss(slip, true);
    }
    for (const CollectionSlip& slip : journal.left()) {
        approvals << slip;
        miss(slip, false);
    }
    result.repeated = repeatedOf(approvals);
    std::ranges::stable_sort(result.differences, {}, &Difference::number);
    return result;
}

Report reconciliationReport(const QDate& day, const Reconciliation& result) {
    const QString date = day.toString(u"yyyy-MM-dd"_s);
    Report report = reportHead(u"대사 "_s + date, date, {});
    report.columns = {
        {.title = u"거래처"_s, .pixels = 92, .paper = 24},
        {.title = u"전표"_s, .pixels = 50, .paper = 8},
        {.title = u"단말금액"_s, .kind = Kind::Amount, .pixels = 76, .paper = 16, .startsLine = true},
        {.title = u"호스트금액"_s, .kind = Kind::Amount, .pixels = 76, .paper = 16},
        {.title = u"거래번호"_s, .pixels = 100, .paper = 32, .startsLine = true}};
    const auto total = [](const QString& who, std::int64_t count) {
        Row row(5, Cell(QString()));
        row[0] = u"%1 %2건"_s.arg(who).arg(count);
        return row;
    };
    Row terminal = total(u"단말기"_s, result.count);
    terminal[2] = result.sum;
    Row host = total(u"호스트"_s, result.host.count);
    host[3] = result.host.sum;
    Section totals{!result.isAgreed() ? u"불일치"_s
                   : result.isWhole() ? u"일치"_s
                                      : u"건수·금액 일치"_s,
                   {terminal, host}};
    const auto note = [&](const QString& text) {
        Row row(5, Cell(QString()));
        row[0] = text;
        totals.rows << row;
    };
    if (!result.host.payments) note(u"건수·금액만 대조"_s);
    if (!result.host.isWhole) note(u"목록 일부만 대조"_s);
    if (result.openPayments != 0) note(u"결과 미확인 %1건"_s.arg(result.openPayments));
    report.sections << totals;
    for (const Difference::Kind kind : {Difference::Kind::MissingAtHost, Difference::Kind::MissingOnTerminal,
                                        Difference::Kind::AmountDiffers}) {
        Section section{caption(kind), {}};
        for (const Difference& difference : result.differences) {
            if (difference.kind == kind) section.rows << differenceRow(difference);
        }
        if (!section.rows.isEmpty()) report.sections << section;
    }
    Section repeated{u"같은 거래처·금액"_s, {}};
    for (const CollectionSlip& slip : result.repeated) {
        repeated.rows.append(
            {slip.GName, slip.UserID + u' ' + slip.JunNo, slip.CardMoney, Cell(QString()), slip.BANKTRANNO});
    }
    if (!repeated.rows.isEmpty()) report.sections << repeated;
    report.results = {{u"단말기"_s, result.sum}, {u"호스트"_s, result.host.sum}};
    return report;
}

}  // namespace totals
