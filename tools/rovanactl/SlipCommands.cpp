#include "books/PayableTotal.h"
#include "db/Query.h"
#include "platform/Won.h"
#include "print/SlipBlocks.h"
#include "rovanactl/Command.h"
#include "rovanactl/NamedDatabase.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

struct Slip {
    QString state;
    QString customer;
    QString number;
    QString user;
    int lines = 0;
    platform::Won supply;
    platform::Won vat;
    platform::Won deposits;
};

/// The sales slips of the date, in order of number and user.
QList<Slip> readSlips(const QString& date) {
    static constexpr db::Statement<
        u"SELECT WorkGubun, GName, JunNo, UserID, MMoney, BMoney, YMoney, GMoney FROM MTM WHERE DDate = '%s' "
        u"ORDER BY JunNo, UserID">
        kSelectLines;
    QList<Slip> slips;
    db::forEachRow(kSelectLines(date), [&](db::CVORecordset& line) {
        const QString number = line.GetFieldString(2);
        const QString user = line.GetFieldString(3);
        if (slips.isEmpty() || slips.last().number != number || slips.last().user != user) {
            slips.append({line.GetFieldString(0), line.GetFieldString(1), number, user, 0, {}, {}, {}});
        }
        ++slips.last().lines;
        const auto won = [&](int column) { return platform::parseWon(line.GetFieldString(column)); };
        slips.last().supply += won(4);
        slips.last().vat += won(5);
        slips.last().deposits += won(6) + won(7);
    });
    return slips;
}

/// What the slip comes to on the terminal, in its salesman's VAT rounding mode.
platform::Won total(const Slip& slip) {
    return books::payableTotal(slip.supply, slip.vat, print::salesman(slip.user).vatMode) + slip.deposits;
}

void addSlipsOptions(QCommandLineParser& parser) {
    NamedDatabase::addOption(parser);
    parser.addOption({u"date"_s, u"The day of the slips, today without it."_s, u"yyyy-MM-dd"_s});
    parser.addOption({u"user"_s, u"Only the slips of this user."_s, u"ID"_s});
}

Outcome listSlips(const Invocation& call) {
    const std::optional<QString> date = dateOption(call.options, u"date"_s);
    if (!date) return usageError(u"--date takes a date such as 2024-03-31"_s);
    const NamedDatabase database(call.options);
    if (!database.error().isEmpty()) return failure(database.error());
    if (Outcome missing = requireTable(u"MTM"); missing.exitCode != kSuccess) return missing;
    const QString user = call.options.value(u"user"_s);
    call.out << u"state\tcustomer\tnumber\tuser\tlines\ttotal\n"_s;
    for (const Slip& slip : readSlips(*date)) {
        if (call.options.isSet(u"user"_s) && slip.user != user) continue;
        call.out << slip.state << u'\t' << slip.customer << u'\t' << slip.number << u'\t' << slip.user
                 << u'\t' << slip.lines << u'\t' << platform::formatWon(total(slip)) << u'\n';
    }
    return {};
}

}  // namespace

constinit const Command kSlipsCommand{
    u"slips",
    u"",
    u"lists the sales slips of a day",
    u"Tab-separated: state, customer, number, user, lines and total, deposits included, in won.",
    0,
    0,
    addSlipsOptions,
    listSlips};

}  // namespace admin
