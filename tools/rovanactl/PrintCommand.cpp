#include <algorithm>
#include <iterator>

#include "db/Query.h"
#include "print/CardReceipt.h"
#include "print/CollectionSlip.h"
#include "print/PrintState.h"
#include "print/SalesInvoice.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr db::Statement<
    u"SELECT DISTINCT UserID FROM MTM WHERE DDate = '%s' AND JunNo = '%s' ORDER BY UserID">
    kSellers;
constexpr db::Statement<
    u"SELECT DISTINCT UserID FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' ORDER BY UserID">
    kCollectors;

using Print = std::optional<print::Document> (*)(QStringView date, QStringView number, QStringView user,
                                                 print::Copy copy);

/// A document by the word that asks for it.
struct Printable {
    QStringView word;
    QStringView slip;  ///< What it is made of, for the message that there is none.
    db::Sql (*users)(QStringView date, QStringView number);
    Print print;
};

constexpr Printable kPrintables[] = {
    {u"sale", u"sales slip", [](QStringView date, QStringView number) { return kSellers(date, number); },
     [](QStringView date, QStringView number, QStringView user, print::Copy copy) {
         return print::salesInvoice(date, number, user, copy, print::isPrinted(date, number, user));
     }},
    {u"collection", u"collection slip",
     [](QStringView date, QStringView number) { return kCollectors(date, number); },
     [](QStringView date, QStringView number, QStringView user, print::Copy copy) {
         return print::collectionSlip(date, number, user, copy, true);
     }},
    {u"card", u"simple payment",
     [](QStringView date, QStringView number) { return kCollectors(date, number); },
     [](QStringView date, QStringView number, QStringView user, print::Copy) {
         return print::cardReceipt(date, number, user, std::nullopt, true);
     }},
};

void addPrintOptions(QCommandLineParser& parser) {
    parser.addOption({u"date"_s, u"The day of the slip, today without it."_s, u"yyyy-MM-dd"_s});
    parser.addOption({u"user"_s, u"The salesman, when two have a slip of that number."_s, u"ID"_s});
    parser.addOption({u"copy"_s, u"Whose copy: seller (without it) or buyer."_s, u"COPY"_s});
}

Outcome printSlip(const Invocation& call) {
    const auto printable = std::ranges::find(kPrintables, QStringView(call.arguments[0]), &Printable::word);
    if (printable == std::end(kPrintables)) {
        return usageError(
            u"there is no document \"%1\"; print makes \"sale\", \"collection\" and \"card\""_s.arg(
                call.arguments[0]));
    }
    const QString& number = call.arguments[1];
    const std::optional<QString> date = dateOption(call.options, u"date"_s);
    if (!date) return usageError(u"--date takes a date such as 2024-03-31"_s);
    const QString copy = call.options.isSet(u"copy"_s) ? call.options.value(u"copy"_s) : u"seller"_s;
    if (copy != u"seller" && copy != u"buyer") return usageError(u"--copy takes seller or buyer"_s);
    for (const QStringView table : {u"MTM", u"PUMMOK", u"GARAE", u"PDAUSER", u"config", u"MTMOK"}) {
        if (Outcome missing = requireTable(table); missing.exitCode != kSuccess) return missing;
    }

    QStringList users;
    db::forEachRow(printable->users(*date, number),
                   [&](db::CVORecordset& row) { users << row.GetFieldString(0); });
    if (call.options.isSet(u"user"_s)) {
        const QString user = call.options.value(u"user"_s);
        users.removeIf([&](const QString& each) { return each != user; });
    }
    if (users.size() > 1) {
        return usageError(u"the users %1 each have a slip %2 on %3; choose one with --user"_s.arg(
            users.join(u", "_s), number, *date));
    }
    const auto document = users.isEmpty()
                              ? std::nullopt
                              : printable->print(*date, number, users.first(),
                                                 copy == u"buyer" ? print::Copy::Buyer : print::Copy::Seller);
    if (!document) {
        return failure(u"there is no %1 %2 on %3"_s.arg(printable->slip, number, *date) +
                       (printable == std::begin(kPrintables)
                            ? u"; \"rovanactl slips --date %1\" lists them"_s.arg(*date)
                            : QString()));
    }
    call.out << document->text();
    return {};
}

}  // namespace

constinit const Command kPrintCommand{
    u"print",
    u"sale|collection|card JUNNO",
    u"writes a slip's document as text",
    u"The sales invoice, the collection slip or the receipt of a simple payment as the terminal's 32-column "
    u"paper has it, the last two marked as reprints. The slip's print state stays.",
    2,
    2,
    addPrintOptions,
    printSlip};

}  // namespace admin
