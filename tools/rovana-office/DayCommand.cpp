#include <QDate>
#include <algorithm>
#include <utility>

#include "rovana-office/Command.h"
#include "rovana-office/Database.h"
#include "rovana-office/DayCopy.h"
#include "totals/DailyReports.h"
#include "totals/DayClose.h"
#include "totals/Reconciliation.h"
#include "totals/VisitReport.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;
using totals::Report;

const QString kReport = u"report"_s;
const QString kTerminal = u"terminal"_s;
const QString kUser = u"user"_s;
const QString kCsv = u"csv"_s;
constexpr QStringView kCheck = u"check";
constexpr QStringView kClose = u"close";
constexpr QStringView kHost = u"host";

void addDayOptions(QCommandLineParser& parser) {
    parser.addOption({kReport, u"Only this report, all without it."_s, u"NAME"_s});
    parser.addOption({kTerminal, u"Only what this terminal sent."_s, u"NUMBER"_s});
    parser.addOption({kUser, u"Only what this user did."_s, u"ID"_s});
    parser.addOption({kCsv, u"Comma-separated values in UTF-8 instead of text."_s});
}

QStringList reportNames() {
    QStringList names;
    for (const totals::DailyReport& report : totals::dailyReports()) names << report.name.toString();
    return names + QStringList{kCheck.toString(), kClose.toString(), kHost.toString()};
}

/// The card host's list of the day, as it was loaded; nothing before that.
std::optional<totals::HostDay> hostDay(pqxx::connection& connection, const QString& date) {
    pqxx::work work(connection);
    if (work.exec_params("SELECT FROM office.host_list WHERE day = $1::date", plain(date)).empty())
        return std::nullopt;
    totals::HostDay day;
    day.payments.emplace();
    for (const pqxx::row& row : work.exec_params("SELECT number, paid_at, amount FROM office.host_payment "
                                                 "WHERE day = $1::date ORDER BY number COLLATE \"C\"",
                                                 plain(date))) {
        day.payments->append({textOf(row[0]), textOf(row[1]), platform::Won(row[2].as<std::int64_t>())});
        day.sum += day.payments->last().amount;
    }
    day.count = day.payments->size();
    return day;
}

std::optional<QList<Report>> one(std::optional<Report> report) {
    return report ? std::optional(QList<Report>{*std::move(report)}) : std::nullopt;
}

/// The closes of one salesman, or his day as it stands.
std::optional<QList<Report>> closesOf(pqxx::connection& connection, const QString& date,
                                      const QString& user) {
    const qsizetype at = user.indexOf(u'@');
    if (at < 0) return totals::dayCloseReports(date, user);
    // What a close has kept of the visits names him as his terminal does.
    const QString terminal = user.sliced(at + 1);
    const DayCopy own(connection, date, terminal);
    auto reports = totals::dayCloseReports(date, user.first(at));
    if (!reports) return std::nullopt;
    for (Report& report : *reports) report.salesman += u'@' + terminal;
    return reports;
}

std::optional<QList<Report>> closes(pqxx::connection& connection, const QString& date,
                                    const QStringList& users) {
    QList<Report> reports;
    for (const QString& user : users) {
        auto own = closesOf(connection, date, user);
        if (!own) return std::nullopt;
        reports << *std::move(own);
    }
    return reports;
}

/// The reports of that name; nothing when the copied day could not be read, which it always can.
std::optional<QList<Report>> make(const QString& name, pqxx::connection& connection, const QString& date,
                                  const QString& user, const QStringList& users) {
    if (name == kCheck) {
        auto check = totals::checkDays({date}, user);
        return check ? one(std::move(check->report)) : std::nullopt;
    }
    if (name == kClose) return closes(connection, date, user.isEmpty() ? users : QStringList(user));
    if (name == kHost) {
        const auto host = hostDay(connection, date);
        if (!host) return QList<Report>();
        const QDate day = QDate::fromString(date, Qt::ISODate);
        const auto result = totals::reconcile(day, *host);
        return result ? one(totals::reconciliationReport(day, *result)) : std::nullopt;
    }
    const auto reports = totals::dailyReports();
    return one(std::ranges::find(reports, QStringView(name), &totals::DailyReport::name)->make(date, user));
}

Outcome day(const Invocation& call) {
    const auto given = tools::dateArgument(call.arguments[0]);
    if (!given)
        return usageError(u"a day is written such as 2026-11-21, not \"%1\""_s.arg(call.arguments[0]));
    const QString& date = *given;
    const QString name = call.options.value(kReport);
    if (call.options.isSet(kReport) && !reportNames().contains(name))
        return usageError(
            u"there is no report \"%1\"; day makes %2"_s.arg(name, reportNames().join(u", "_s)));
    const Connection connection = connectToOffice();
    const DayCopy copy(*connection, date, call.options.value(kTerminal));
    const QString user = call.options.value(kUser);
    if (!user.isEmpty() && !copy.users().contains(user)) {
        return usageError(u"nothing was sent of a user \"%1\" on that day; there are: %2"_s.arg(
            user, copy.users().join(u", "_s)));
    }
    QList<Report> reports;
    for (const QString& each : call.options.isSet(kReport) ? QStringList(name) : reportNames()) {
        auto made = make(each, *connection, date, user, copy.users());
        if (!made) return failure(u"the report %1 could not be made"_s.arg(each));
        if (each == kHost && made->isEmpty())
            call.err << u"rovana-office: the card host's list of %1 was not loaded\n"_s.arg(date);
        reports << *std::move(made);
    }
    call.out << (call.options.isSet(kCsv) ? totals::csvText(reports) : totals::paperText(reports));
    return {};
}

}  // namespace

constinit const Command kDayCommand{
    u"day",
    u"DATE",
    u"writes the reports of a day over all terminals",
    u"The reports sales, containers, receivables, cards, collections, check, close and host as a terminal "
    u"prints\n"
    u"them, or with --csv as tables. Receivables are those of now; host sets the approvals against the card\n"
    u"host's list (\"rovana-office host-list\"). A salesman who has sent from several terminals on that day "
    u"is\n"
    u"called by both, such as A@3.",
    1,
    1,
    addDayOptions,
    day};

}  // namespace office
