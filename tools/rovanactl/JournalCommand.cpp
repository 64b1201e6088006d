#include <algorithm>

#include "books/PaymentJournal.h"
#include "platform/Device.h"
#include "platform/Digits.h"
#include "platform/Sqlite.h"
#include "platform/message/Frame.h"
#include "rovanactl/Command.h"
#include "rovanactl/DatabaseCopy.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

void addJournalOptions(QCommandLineParser& parser) {
    parser.addOption({u"date"_s, u"Only the payments of slips of this day."_s, u"yyyy-MM-dd"_s});
    parser.addOption({u"open"_s, u"Only those of which it is open whether the customer was charged."_s});
    parser.addOption({u"settle"_s, u"Settles the open payment with this message number."_s, u"NUMBER"_s});
    parser.addOption(
        {u"reopen"_s, u"Makes a payment open again that was settled by mistake."_s, u"NUMBER"_s});
}

bool isTransactionNumber(const QString& text) {
    constexpr qsizetype kDigits = 12;
    return text.size() == kDigits && platform::areDigits(text);
}

/// Why the payment cannot be settled so; empty when it can.
QString findHindrance(const QString& number, const QString& transactionNumber) {
    const auto payments = books::journalPayments({});
    if (!payments) return u"the journal could not be read; \"rovanactl check\" tells more"_s;
    const auto payment = std::ranges::find(*payments, number, &books::JournalPayment::number);
    if (payment == payments->end()) return u"the journal has no payment %1"_s.arg(number);
    if (!payment->isUnsettled())
        return u"payment %1 is %2 already"_s.arg(number, books::stateName(payment->state));
    if (transactionNumber.isEmpty()) return {};
    if (const auto slip = books::findByTransactionNumber(transactionNumber))
        return u"transaction %1 is on slip %2 of %3 already"_s.arg(transactionNumber, slip->JunNo,
                                                                   slip->DDate);
    const bool isTaken = std::ranges::any_of(
        *payments, [&](const auto& each) { return each.slip.BANKTRANNO == transactionNumber; });
    return isTaken ? u"transaction %1 belongs to another payment"_s.arg(transactionNumber) : QString();
}

/// Why nothing may be changed in the journal; no failure when it may.
Outcome claimJournal() {
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    // A terminal at work may be asking the host about this very payment.
    if (SqliteFile(path, SqliteFile::Mode::Existing).lock() == SqliteFile::Lock::InUse)
        return failure(describeUse(path));
    return requireTable(u"PAYJOURNAL");
}

Outcome reopen(const Invocation& call) {
    const auto asked = platform::message::parseMessageNumber(call.options.value(u"reopen"_s));
    if (!asked || !call.arguments.isEmpty())
        return usageError(u"--reopen takes a message number of the list and nothing else"_s);
    if (Outcome hindrance = claimJournal(); hindrance.exitCode != kSuccess) return hindrance;
    const QString number = platform::message::toText(*asked);
    const auto payment = books::findPayment(number);
    if (!payment) return failure(u"the journal has no payment %1"_s.arg(number));
    if (payment->isUnsettled()) return failure(u"payment %1 is open already"_s.arg(number));
    if (!books::reopenPayment(number))
        return failure(u"payment %1 could not be made open; nothing was changed"_s.arg(number));
    call.out << u"payment %1 is open: the terminal asks the host about it at the next login\n"_s.arg(number);
    return {};
}

Outcome settle(const Invocation& call) {
    const auto asked = platform::message::parseMessageNumber(call.options.value(u"settle"_s));
    const QString outcome = call.arguments.value(0);
    const QString transactionNumber = call.arguments.value(1);
    const bool isApproved = outcome == u"approved" && isTransactionNumber(transactionNumber);
    if (!asked || (!isApproved && (outcome != u"released" || call.arguments.size() != 1))) {
        return usageError(
            u"--settle takes a message number of the list, then \"approved\" and the host's transaction "
            u"number "
            u"of twelve digits, or \"released\""_s);
    }
    if (Outcome hindrance = claimJournal(); hindrance.exitCode != kSuccess) return hindrance;
    const QString number = platform::message::toText(*asked);
    if (const QString hindrance = findHindrance(number, transactionNumber); !hindrance.isEmpty())
        return failure(hindrance);
    if (!isApproved) {
        if (!books::settlePayment(number, books::PaymentState::Released))
            return failure(u"payment %1 could not be settled; nothing was changed"_s.arg(number));
        call.out << u"payment %1 is released: its slip can be paid again\n"_s.arg(number);
        return {};
    }
    const auto slip = books::approvePayment(number, transactionNumber);
    if (!slip) return failure(u"payment %1 could not be settled; nothing was changed"_s.arg(number));
    call.out << u"payment %1 is approved: slip %2 of %3 (%4, %5) has transaction %6\n"_s.arg(
        number, slip->JunNo, slip->DDate, slip->UserID, slip->GName, transactionNumber);
    return {};
}

Outcome runJournal(const Invocation& call) {
    if (call.options.isSet(u"settle"_s)) return settle(call);
    if (call.options.isSet(u"reopen"_s)) return reopen(call);
    if (!call.arguments.isEmpty()) return usageError(u"without --settle it takes no argument"_s);
    const std::optional<QString> date = dateOption(call.options, u"date"_s);
    if (!date) return usageError(u"--date takes a date such as 2024-03-31"_s);
    if (Outcome missing = requireTable(u"PAYJOURNAL"); missing.exitCode != kSuccess) return missing;
    const auto payments = books::journalPayments(call.options.isSet(u"date"_s) ? *date : QString());
    if (!payments) return failure(u"the journal could not be read; \"rovanactl check\" tells more"_s);
    call.out << u"sent\tstate\tkind\tcharged\tcustomer\tdate\tnumber\tuser\ttransaction\tmessage\n"_s;
    for (const books::JournalPayment& payment : *payments) {
        if (call.options.isSet(u"open"_s) && !payment.isUnsettled()) continue;
        const books::CollectionSlip& slip = payment.slip;
        const QStringList texts{slip.MSGSENDTIME,
                                books::stateName(payment.state).toString(),
                                payment.isCard ? u"card"_s : u"cash"_s,
                                platform::formatWon(payment.charged),
                                slip.GName,
                                slip.DDate,
                                slip.JunNo,
                                slip.UserID,
                                slip.BANKTRANNO,
                                payment.number};
        call.out << texts.join(u'\t') << u'\n';
    }
    return {};
}

}  // namespace

constinit const Command kJournalCommand{
    u"journal",
    u"[OUTCOME]",
    u"lists the payments sent to the card host, settles one or makes it open again",
    u"One line for each payment in the order of sending, tabs between: when it was sent, what became of it\n"
    u"(sent, approved, refused, unknown, released), card or cash, what the host was asked for in won, the\n"
    u"slip, and the host's transaction number. \"released\" means that nothing was charged and never will "
    u"be;\n"
    u"\"sent\" and \"unknown\" are open until the terminal has asked the host, which it does at the next "
    u"login.\n"
    u"There is neither a track nor a password nor a card number in it.\n"
    u"\n"
    u"--settle NUMBER approved TRANSACTION puts the host's transaction number on the payment's slip, which "
    u"is\n"
    u"put back where it has gone. --settle NUMBER released says that nothing was charged and never will be.\n"
    u"Both are for a payment of which the host tells the terminal nothing, and believe what they are told:\n"
    u"ask whoever runs the host first. --reopen NUMBER takes that back: the payment is open again, an "
    u"approval "
    u"goes\n"
    u"off its slip, and the terminal asks the host anew. All are refused while a terminal has the database "
    u"open.",
    0,
    2,
    addJournalOptions,
    runJournal};

}  // namespace admin
