#include <algorithm>

#include "db/ImportFile.h"
#include "db/ImportLines.h"
#include "db/Schema.h"
#include "platform/CodePage.h"
#include "platform/Csv.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "rovanactl/Command.h"
#include "rovanactl/DeliveredTable.h"
#include "rovanactl/ExportFolder.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SqliteFile;

/// A kind of slips and its two files.
struct SlipKind {
    QStringView table;
    QStringView name;  ///< As messages call one.
    QStringView csvName;
    QStringView rvnName;
    qsizetype rvnFields;  ///< The import of MTM.RVN does not read the time of saving.
};

constexpr SlipKind kKinds[] = {
    {u"MTM", u"sales slip", u"sales.csv", u"MTM.RVN", 16},
    {u"YTM", u"container slip", u"containers.csv", u"YTM.RVN", 14},
    {u"MTMOK", u"collection slip", u"collections.csv", u"MTMOK.RVN", 22},
};

QStringList columnsOf(const SlipKind& kind) {
    QStringList columns;
    for (const QStringView column : db::schema::findTable(kind.table)->columns) columns << column.toString();
    return columns;
}

/// A line of a *.RVN file, or the column that does not go into one and why.
struct Line {
    QByteArray bytes;
    qsizetype faultyColumn = 0;
    QString fault;  ///< Empty when the line is whole.
};

Line rvnLine(const SlipKind& kind, const QStringList& fields) {
    for (qsizetype column = 0; column < fields.size(); ++column) {
        const QString& value = fields[column];
        QString fault = unstorable(value);
        if (std::ranges::any_of(value, [](QChar c) { return c == u'|' || c == u'\r' || c == u'\n'; })) {
            fault = u"a value with \"|\" or a line end would break its line"_s;
        } else if (!platform::codepage::encode(value)) {
            fault = u"code page 949 does not hold the value"_s;
        }
        if (!fault.isEmpty()) return {{}, column, fault};
    }
    const QString text = fields.join(u'|') + u'|';
    for (const db::ImportFile& file : db::importFiles()) {
        if (file.fileName != kind.rvnName) continue;
        std::vector<QStringView> cut;
        db::cutImportLine(file, text, &cut);
        const auto [read, written] = std::ranges::mismatch(cut, fields);
        if (read != cut.end())
            return {{}, written - fields.begin(), u"the line is too long for its import"_s};
    }
    const QByteArray bytes = *platform::codepage::encode(text) + "\r\n";
    if (bytes.size() > db::kLongestLineBytes) {
        const auto longest = std::ranges::max_element(fields, {}, &QString::size);
        return {{}, longest - fields.begin(), u"the line is too long"_s};
    }
    return {bytes, 0, {}};
}

/// What was written of a kind of slips, and what is wrong with them.
struct Written {
    qsizetype slips = 0;
    int lines = 0;
    QString error;
};

/// Writes the day's rows, a slip's lines in the order of their saving. `csv` and the file after it are
/// theirs.
Written writeSlips(const SlipKind& kind, const QString& date, SqliteFile& database, ExportFolder& folder,
                   std::size_t csv) {
    const QStringList columns = columnsOf(kind);
    const qsizetype number = columns.indexOf(u"JunNo");
    const qsizetype user = columns.indexOf(u"UserID");
    folder.write(csv, platform::kCsvMark);
    folder.write(csv, platform::csvLine(columns));
    Written written;
    QStringList slip;
    const bool isRead = database.forEachRow(
        u"SELECT %1 FROM %2 WHERE DDate = ? ORDER BY JunNo, UserID, rowid"_s.arg(columns.join(u','),
                                                                                 kind.table),
        {date}, [&](const QStringList& row) {
            const Line line = rvnLine(kind, row.first(kind.rvnFields));
            if (!line.fault.isEmpty()) {
                written.error =
                    u"%1 %2 of user %3, column %4: %5; nothing was written, correct the slip first"_s.arg(
                        kind.name, row[number], row[user], columns[line.faultyColumn], line.fault);
                return false;
            }
            folder.write(csv, platform::csvLine(row));
            folder.write(csv + 1, line.bytes);
            const QStringList rowSlip{row[number], row[user]};
            written.slips += rowSlip != slip;
            slip = rowSlip;
            ++written.lines;
            return true;
        });
    if (!isRead && written.error.isEmpty()) {
        written.error = u"the table %1 cannot be read: %2"_s.arg(kind.table, database.errorText());
    }
    return written;
}

void addExportOptions(QCommandLineParser& parser) {
    parser.addOption({u"date"_s, u"The day of the slips, today without it."_s, u"yyyy-MM-dd"_s});
    parser.addOption(
        {u"out"_s, u"The folder of the files; it is made, or its last export replaced."_s, u"DIR"_s});
}

Outcome exportDay(const Invocation& call) {
    const std::optional<QString> date = dateOption(call.options, u"date"_s);
    if (!date) return usageError(u"--date takes a date such as 2024-03-31"_s);
    if (call.options.value(u"out"_s).isEmpty()) return usageError(u"--out needs a folder"_s);
    QStringList names;
    for (const SlipKind& kind : kKinds) {
        if (Outcome missing = requireTable(kind.table); missing.exitCode != kSuccess) return missing;
        names << kind.csvName.toString() << kind.rvnName.toString();
    }
    ExportFolder folder(call.options.value(u"out"_s), names);
    if (const QString error = folder.begin(); !error.isEmpty()) return failure(error);

    // One transaction: a terminal that saves or deletes a slip meanwhile shows in all files or in none.
    SqliteFile database(platform::device::path(platform::device::kDatabaseFile), SqliteFile::Mode::Existing);
    if (!database.execute(u"BEGIN"_s)) return failure(database.errorText());
    QString report;
    int lines = 0;
    std::size_t file = 0;
    for (const SlipKind& kind : kKinds) {
        const Written written = writeSlips(kind, *date, database, folder, file);
        if (!written.error.isEmpty()) return failure(written.error);
        report += u"%1, %2\t%3 slips\t%4 lines\n"_s.arg(kind.csvName, kind.rvnName)
                      .arg(written.slips)
                      .arg(written.lines);
        lines += written.lines;
        file += 2;
    }
    if (const QString error = folder.commit(); !error.isEmpty()) return failure(error);
    call.out << report;
    if (lines == 0) call.out << u"there are no slips on "_s << *date << u"; the files hold headings only\n"_s;
    return {};
}

}  // namespace

constinit const Command kExportCommand{
    u"export",
    u"",
    u"writes a day's slips for the office",
    u"Sales, container and collection slips as *.csv (UTF-8 with its mark, and a heading) and as *.RVN (code "
    u"page 949).\n"
    u"All six files or none; the same slips give the same bytes. MTM.RVN is what the import reads.",
    0,
    0,
    addExportOptions,
    exportDay};

}  // namespace admin
