#include <algorithm>
#include <iterator>

#include "db/Query.h"
#include "print/CardReceipt.h"
#include "print/SlipPapers.h"
#include "rovanactl/Command.h"
#include "rovanactl/NamedDatabase.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

/// A document by the word that asks for it.
struct Printable {
    QStringView word;
    QStringView slip;  ///< What it is made of, for the message that there is none.
    db::Sql (*users)(QStringView date, QStringView number);
    std::optional<books::Paper> paper;  ///< Nothing for the receipt of a simple payment, always a reprint.
};

db::Sql sellers(QStringView date, QStringView number) {
    static constexpr db::Statement<
        u"SELECT DISTINCT UserID FROM MTM WHERE DDate = '%s' AND JunNo = '%s' ORDER BY UserID">
        kSellers;
    return kSellers(date, number);
}
db::Sql returners(QStringView date, QStringView number) {
    static constexpr db::Statement<
        u"SELECT DISTINCT UserID FROM YTM WHERE DDate = '%s' AND JunNo = '%s' ORDER BY UserID">
        kReturners;
    return kReturners(date, number);
}
db::Sql collectors(QStringView date, QStringView number) {
    static constexpr db::Statement<
        u"SELECT DISTINCT UserID FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' ORDER BY UserID">
        kCollectors;
    return kCollectors(date, number);
}

constexpr Printable kPrintables[] = {
    {u"sale", u"sales slip", sellers, books::Paper::Invoice},
    {u"container", u"container slip", returners, books::Paper::ContainerReceipt},
    {u"collection", u"collection slip", collectors, books::Paper::CollectionSlip},
    {u"card", u"simple payment", collectors, std::nullopt},
};

std::optional<print::Document> compose(const Printable& printable, const QString& date, const QString& number,
                                       const QString& user, books::Copy copy) {
    if (!printable.paper) return print::cardReceipt(date, number, user, std::nullopt, true);
    const bool isReprint = print::isReprint(*printable.paper, copy, date, number, user);
    return print::slipPaper(*printable.paper, date, number, user, copy, isReprint);
}

void addPrintOptions(QCommandLineParser& parser) {
    NamedDatabase::addOption(parser);
    parser.addOption({u"date"_s, u"The day of the slip, today without it."_s, u"yyyy-MM-dd"_s});
    parser.addOption({u"user"_s, u"The salesman, when two have a slip of that number."_s, u"ID"_s});
    parser.addOption({u"copy"_s, u"Whose copy: seller (without it) or buyer."_s, u"COPY"_s});
}

Outcome printSlip(const Invocation& call) {
    const auto printable = std::ranges::find(kPrintables, QStringView(call.arguments[0]), &Printable::word);
    if (printable == std::end(kPrintables)) {
        return usageError(
            u"there is no document \"%1\"; print makes \"sale\", \"container\", \"collection\" and \"card\""_s
                .arg(call.arguments[0]));
    }
    const QString& number = call.arguments[1];
    const std::optional<QString> date = dateOption(call.options, u"date"_s);
    if (!date) return usageError(u"--date takes a date such as 2024-03-31"_s);
    const QString copy = call.options.isSet(u"copy"_s) ? call.options.value(u"copy"_s) : u"seller"_s;
    if (copy != u"seller" && copy != u"buyer") return usageError(u"--copy takes seller or buyer"_s);
    const NamedDatabase database(call.options);
    if (!database.error().isEmpty()) return failure(database.error());
    for (const QStringView table : {u"MTM", u"PUMMOK", u"GARAE", u"PDAUSER", u"config", u"MTMOK", u"YTM"}) {
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
                              : compose(*printable, *date, number, users.first(),
                                        copy == u"buyer" ? books::Copy::Buyer : books::Copy::Seller);
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
    u"sale|container|collection|card JUNNO",
    u"writes a slip's document as text",
    u"The sales invoice, container receipt, collection slip or receipt of a simple payment as the 32-column\n"
    u"paper has it, marked where that copy has been printed before, the last always. It does not count as a\n"
    u"print.",
    2,
    2,
    addPrintOptions,
    printSlip};

}  // namespace admin
