#include <QFileInfo>

#include "platform/Clock.h"
#include "platform/Device.h"
#include "rovanactl/Archive.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

void addArchiveOptions(QCommandLineParser& parser) {
    parser.addOption({u"before"_s, u"The first day that stays, today at the latest."_s, u"yyyy-MM-dd"_s});
    parser.addOption({u"unclosed"_s, u"Also the days that not every user with slips has closed."_s});
}

Outcome archive(const Invocation& call) {
    if (!call.options.isSet(u"before"_s)) return usageError(u"archive needs --before DATE"_s);
    const std::optional<QString> before = dateOption(call.options, u"before"_s);
    if (!before || *before > platform::clock::now().date().toString(u"yyyy-MM-dd"))
        return usageError(u"--before takes a date such as 2024-03-31, today at the latest"_s);
    const QString database = platform::device::path(platform::device::kDatabaseFile);
    if (!QFileInfo::exists(database))
        return failure(u"there is no database %1; name the device folder with --device"_s.arg(database));
    const QString& file = call.arguments[0];
    const ArchiveResult result = archiveSlips(database, file, {*before, call.options.isSet(u"unclosed"_s)});
    if (!result.error.isEmpty()) return failure(result.error);
    int rows = 0;
    for (const auto& [table, count] : result.moved) {
        call.out << table << u'\t' << count << u'\n';
        rows += count;
    }
    if (rows == 0) {
        call.out << u"nothing to archive before "_s << *before << u"; no file was written\n"_s;
    } else {
        call.out << u"CONTAINERCARRY\t"_s << result.carried << u'\n'
                 << (result.wasThere ? u"they were in %1 already, from a run that was stopped\n"_s
                                     : u"archived to %1\n"_s)
                        .arg(file);
    }
    for (const QString& day : result.unclosedDays)
        call.out << day.section(u' ', 0, 0) << u" stays: not closed by "_s << day.section(u' ', 1) << u'\n';
    for (const QString& visit : result.visits)
        call.out << visit << u" stays: not settled or not delivered\n"_s;
    return {};
}

}  // namespace

constinit const Command kArchiveCommand{
    u"archive",
    u"FILE",
    u"moves the slips of old days into a file",
    u"Sales, collections, containers, payments and notes of prints of the days before --before DATE that "
    u"are\n"
    u"closed. FILE is a database of the same tables, read with \"print\", \"slips\" or \"totals\" and\n"
    u"--database FILE. What the customers hold of containers is carried forward. Open payments and orders\n"
    u"that nobody has delivered stay. Whole or not at all; stopped in between, the same call goes on. "
    u"Refused\n"
    u"while a terminal has the database open.",
    1,
    1,
    addArchiveOptions,
    archive};

}  // namespace admin
