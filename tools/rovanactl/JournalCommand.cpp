#include "app/PaymentJournal.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

void addJournalOptions(QCommandLineParser& parser) {
    parser.addOption({u"date"_s, u"Only the payments of slips of this day."_s, u"yyyy-MM-dd"_s});
    parser.addOption({u"open"_s, u"Only those of which it is open whether the customer was charged."_s});
}

Outcome listJournal(const Invocation& call) {
    const std::optional<QString> date = dateOption(call.options, u"date"_s);
    if (!date) return usageError(u"--date takes a date such as 2024-03-31"_s);
    if (Outcome missing = requireTable(u"PAYJOURNAL"); missing.exitCode != kSuccess) return missing;
    const auto payments = app::journalPayments(call.options.isSet(u"date"_s) ? *date : QString());
    if (!payments) return failure(u"the journal could not be read; \"rovanactl check\" tells more"_s);
    call.out << u"sent\tstate\tkind\tcharged\tcustomer\tdate\tnumber\tuser\ttransaction\tmessage\n"_s;
    for (const app::JournalPayment& payment : *payments) {
        if (call.options.isSet(u"open"_s) && !payment.isUnsettled()) continue;
        const app::CollectionSlip& slip = payment.slip;
        const QStringList texts{slip.MSGSENDTIME,
                                app::stateName(payment.state).toString(),
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
    u"",
    u"lists the payments sent to the card host",
    u"One line for each payment in the order of sending, tabs between: when it was sent, what became of it\n"
    u"(sent, approved, refused, unknown, released), card or cash, what the host was asked for in won, the\n"
    u"slip, and the host's transaction number. \"released\" means that nothing was charged and never will "
    u"be;\n"
    u"\"sent\" and \"unknown\" are open until the terminal has asked the host, which it does at the next "
    u"login.\n"
    u"There is neither a track nor a password nor a card number in it.",
    0,
    0,
    addJournalOptions,
    listJournal};

}  // namespace admin
