#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

#include "books/CollectionSlip.h"
#include "platform/Won.h"
#include "print/HostSummary.h"
#include "totals/Report.h"

/// The card host's approved payments of a day against the terminal's slips.
namespace totals {

/// A payment of the host's list.
struct HostPayment {
    QString number;  ///< Transaction number.
    QString time;    ///< "hhmmss", by the host's clock.
    platform::Won amount;
};

/// What the host says of a terminal's day.
struct HostDay {
    std::int64_t count = 0;
    platform::Won sum;
    /// By transaction number; nothing when the host has sent none that can be read.
    std::optional<QList<HostPayment>> payments;
    /// False when the list was cut: the payments with the highest numbers are not on it.
    bool isWhole = true;
};

/// Reads the host's answer. `listTotal` and `list` are its fields kListTotalField and kListField, empty from
/// a host that does not send them. A list with a line that is none counts as not sent.
HostDay readHostDay(const print::HostSummary& summary, QStringView listTotal, QStringView list);

/// A payment on which the two do not agree.
struct Difference {
    enum class Kind { MissingAtHost, MissingOnTerminal, AmountDiffers };

    Kind kind;
    QString number;                             ///< Transaction number.
    std::optional<books::CollectionSlip> slip;  ///< The terminal's; nothing when it has none.
    std::optional<books::CollectionSlip> sent;  ///< What was sent, by the journal, where no slip shows it.
    std::optional<HostPayment> payment;         ///< The host's; nothing when it has none.
};

struct Reconciliation {
    std::int64_t count = 0;  ///< The terminal's payments of the day.
    platform::Won sum;
    HostDay host;
    QList<Difference> differences;  ///< By transaction number; none without the host's list.
    std::int64_t openPayments = 0;  ///< Sent on the day, and it is open whether they were charged.
    /// Approvals of one customer with one amount, which may be one payment made twice; no differences.
    QList<books::CollectionSlip> repeated;

    /// True when nothing differs: number and sum are the same, and every payment where the host has listed
    /// them, and none is open.
    bool isAgreed() const;
    /// True when every payment was compared, not their number and sum alone.
    bool isWhole() const { return host.payments && host.isWhole; }
};

/// Sets the host's day against the terminal's slips, whoever wrote them: those by card whose request was sent
/// on that day. A payment of the host's list whose slip the terminal counts to a neighbouring day is no
/// difference; of the host's own neighbouring days nothing is known. What the journal knows to be approved on
/// that day and no slip shows is missing where the host has it or not. Nothing when the slips or the journal
/// could not be read.
std::optional<Reconciliation> reconcile(const QDate& day, const HostDay& host);

/// The result as a report: both counts and sums, then every difference.
Report reconciliationReport(const QDate& day, const Reconciliation& result);

}  // namespace totals
