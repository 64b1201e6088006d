#include "rovana-office/Command.h"
#include "rovana-office/Database.h"
#include "rovana-office/Migrations.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Writes a heading and the rows under it, each column as wide as its widest text; nothing without rows.
void writeTable(QTextStream& out, const QString& title, const pqxx::result& rows) {
    if (rows.empty()) return;
    QList<QStringList> lines{{}};
    for (pqxx::row::size_type i = 0; i < rows.columns(); ++i)
        lines.first() << QString::fromUtf8(rows.column_name(i)).replace(u'_', u' ');
    for (const pqxx::row& row : rows) {
        lines << QStringList();
        for (const pqxx::field& field : row) lines.last() << textOf(field);
    }
    out << u'\n' << title << u'\n';
    for (const QStringList& line : lines) {
        QString text;
        for (qsizetype i = 0; i < line.size(); ++i) {
            qsizetype width = 0;
            for (const QStringList& each : lines) width = std::max(width, each[i].size());
            text += u"  "_s + line[i].leftJustified(width);
        }
        out << text.trimmed().prepend(u"  ") << u'\n';
    }
}

Outcome status(const Invocation& call) {
    const Connection connection = connectToOffice();
    pqxx::work work(*connection);
    const auto table = [&](const QString& title, const char* select) {
        writeTable(call.out, title, work.exec(select));
    };
    call.out << u"%1, schema %2\n"_s.arg(QString::fromUtf8(connection->dbname())).arg(newestSchema());
    table(u"terminals"_s,
          "SELECT terminal, users, coalesce(to_char(last_seen, 'YYYY-MM-DD HH24:MI'), 'never') AS last_seen, "
          "coalesce(to_char(last_sent, 'YYYY-MM-DD HH24:MI'), 'never') AS last_sent, "
          "coalesce(program_version, '') AS program, coalesce(schema_version::text, '') AS tables, "
          "concat_ws(', ', CASE WHEN abs(extract(epoch FROM clock_offset)) > 120 THEN 'its clock is ' || "
          "CASE WHEN clock_offset < interval '0' THEN 'slow' ELSE 'fast' END || ' by ' || "
          "date_trunc('second', greatest(clock_offset, -clock_offset)) END, "
          "CASE WHEN NOT is_let_in THEN 'withdrawn' END, "
          "CASE WHEN last_sent < now() - interval '1 day' THEN 'silent for ' || extract(day FROM now() - "
          "last_sent) || "
          "' days' END) AS remarks FROM report.terminal ORDER BY length(terminal), terminal");
    table(u"master data"_s,
          "SELECT file_name AS file, version, lines, to_char(loaded_at, 'YYYY-MM-DD HH24:MI') AS loaded, "
          "loaded_by "
          "AS by FROM report.master ORDER BY file_name");
    table(
        u"sent and gone from the terminal without a deletion (rovana-sync --recover gives it back)"_s,
        "SELECT terminal, day, kind, number, userid AS user, to_char(sent_at, 'YYYY-MM-DD HH24:MI') AS sent "
        "FROM report.missing ORDER BY day DESC, terminal, number LIMIT 100");
    table(
        u"as an earlier revision was, this month and the last (an older copy restored, or two machines as "
        u"one "
        "terminal?)"_s,
        "SELECT terminal, day, kind, number, userid AS user, revision, earlier, to_char(sent_at, 'YYYY-MM-DD "
        "HH24:MI') AS sent FROM report.went_back WHERE month >= date_trunc('month', current_date - 31) "
        "ORDER BY day DESC, terminal, number LIMIT 100");
    table(u"numbers used twice, this month and the last"_s,
          "SELECT day, kind, number, userid AS user, array_to_string(terminals, ', ') AS terminals "
          "FROM report.number_conflict WHERE month >= date_trunc('month', current_date - 31) ORDER BY day "
          "DESC, number LIMIT 100");
    table(u"days that changed after their close, last 31 days"_s,
          "SELECT terminal, day, userid AS user, kind, number, change, to_char(seen_at, 'YYYY-MM-DD "
          "HH24:MI') AS seen "
          "FROM report.change_after_close WHERE month >= date_trunc('month', current_date - 31) AND "
          "day >= (current_date - 31)::text ORDER BY day DESC, terminal, number LIMIT 100");
    return {};
}

}  // namespace

constinit const Command kStatusCommand{u"status",
                                       u"",
                                       u"tells what the office has and of whom",
                                       u"When each terminal was seen and sent something, its versions, "
                                       u"whether its clock is off; the master data that is\n"
                                       u"handed out; what a terminal has lost or has of old, numbers used "
                                       u"twice, "
                                       u"and days that changed after their close.",
                                       0,
                                       0,
                                       nullptr,
                                       status};

}  // namespace office
