#include <algorithm>
#include <utility>

#include "db/Query.h"
#include "rovanactl/Command.h"
#include "rovanactl/NamedDatabase.h"
#include "totals/DailyReports.h"
#include "totals/DayClose.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

void addTotalsOptions(QCommandLineParser& parser) {
    NamedDatabase::addOption(parser);
    parser.addOption({u"date"_s, u"The day of the reports, today without it."_s, u"yyyy-MM-dd"_s});
    parser.addOption({u"user"_s, u"Only what this user did, everybody's without it."_s, u"ID"_s});
    parser.addOption({u"report"_s, u"Only this report, all without it."_s, u"NAME"_s});
    parser.addOption({u"csv"_s, u"Comma-separated values in UTF-8 instead of text."_s});
}

/// The kept closes of the day; written only when asked for by this name.
constexpr QStringView kClose = u"close";

QString reportNames() {
    QStringList names;
    for (const totals::DailyReport& report : totals::dailyReports()) names << report.name.toString();
    names << kClose.toString();
    return names.join(u", "_s);
}

Outcome writeTotals(const Invocation& call) {
    static constexpr db::Statement<u"SELECT userNAME  FROM PDAUSER WHERE userID = '%s'"> kUser;
    const std::optional<QString> date = dateOption(call.options, u"date"_s);
    if (!date) return usageError(u"--date takes a date such as 2024-03-31"_s);
    const QString name = call.options.value(u"report"_s);
    const bool isClose = name == kClose;
    const auto isWanted = [&](const totals::DailyReport& report) {
        return !call.options.isSet(u"report"_s) || report.name == name;
    };
    if (!isClose && std::ranges::none_of(totals::dailyReports(), isWanted)) {
        return usageError(u"there is no report \"%1\"; totals makes %2"_s.arg(name, reportNames()));
    }
    const NamedDatabase database(call.options);
    if (!database.error().isEmpty()) return failure(database.error());
    for (const QStringView table : {u"MTM", u"YTM", u"MTMOK", u"GARAE", u"BankMoney", u"PDAUSER"}) {
        if (Outcome missing = requireTable(table); missing.exitCode != kSuccess) return missing;
    }
    const QString user = call.options.value(u"user"_s);
    if (call.options.isSet(u"user"_s) && !db::hasRow(kUser(user))) {
        return usageError(u"there is no user \"%1\""_s.arg(user));
    }

    const auto unread = [](QStringView report) {
        return failure(
            u"the database could not be read for the report %1; \"rovanactl check\" tells more"_s.arg(
                report));
    };
    QList<totals::Report> reports;
    if (isClose) {
        // A database from before there were closes makes the other reports as ever.
        if (Outcome missing = requireTable(u"DAYCLOSE"); missing.exitCode != kSuccess) return missing;
        auto closes = totals::dayCloseReports(*date, user);
        if (!closes) return unread(kClose);
        reports = *std::move(closes);
    }
    for (const totals::DailyReport& daily : totals::dailyReports()) {
        if (!isWanted(daily)) continue;
        std::optional<totals::Report> report = daily.make(*date, user);
        if (!report) return unread(daily.name);
        reports << *std::move(report);
    }
    call.out << (call.options.isSet(u"csv"_s) ? totals::csvText(reports) : totals::paperText(reports));
    return {};
}

}  // namespace

constinit const Command kTotalsCommand{
    u"totals",
    u"",
    u"writes the reports of a day",
    u"The reports sales, containers, receivables, cards and collections, as the terminal's 32-column paper\n"
    u"has them, or with --csv as tables with their columns' titles and without sums. An empty line stands\n"
    u"between two reports. Receivables are those of now, and the bank's payments those of all users,\n"
    u"whatever is asked for. The report close is written when it is named: the kept closes of the day, or\n"
    u"without one the day's figures as they stand.",
    0,
    0,
    addTotalsOptions,
    writeTotals};

}  // namespace admin
