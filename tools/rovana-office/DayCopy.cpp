#include "rovana-office/DayCopy.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/adoce/DatabaseFile.h"
#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

/// A salesman of several terminals carries the terminal's number.
const std::string kUser =
    "CASE WHEN userid = ANY ($3::text[]) THEN userid || '@' || terminal ELSE userid END";

/// What is copied of one table: its columns are those of the terminal's, with the salesman's id as it is
/// here.
struct Source {
    QStringView table;  ///< The terminal's.
    QStringView days;   ///< Condition on the days; $1 is the day, $2 the terminal.
    QStringView order;
};

// What was sent to the card host on the day may belong to the slips of the days around it.
constexpr QStringView kOfDay = u"month = office.month($1) AND ddate = $1";
constexpr QStringView kAround =
    u"month BETWEEN office.month(($1::date - 1)::text) AND office.month(($1::date + 1)::text) "
    u"AND ddate BETWEEN ($1::date - 1)::text AND ($1::date + 1)::text";
// Of a payment of a day before them the close says as long as it is open whether the customer was charged. An
// index has these of all months; its words are these.
constexpr QStringView kOpenBefore =
    u"ddate < ($1::date - 1)::text AND split_part(content, E'\\x1f', 1) IN ('sent', 'unknown')";
constexpr Source kSources[] = {
    {u"MTM", kOfDay, u"terminal, junno, row_number"},
    {u"YTM", kOfDay, u"terminal, junno, row_number"},
    {u"MTMOK", kAround, u"terminal, junno, row_number"},
    {u"PAYJOURNAL", kOpenBefore, u"terminal, msgsendtime, number, row_number"},
    {u"PAYJOURNAL", kAround, u"terminal, msgsendtime, number, row_number"},
    {u"PRINTLOG", kOfDay, u"terminal, printedat, junno, row_number"},
    {u"DELETED", kOfDay, u"terminal, deletedat, junno, row_number"},
    {u"DAYCLOSE", kOfDay, u"terminal, userid, row_number"},
};

class Copy {
  public:
    Copy(pqxx::work& work, platform::SqliteFile& file, const QString& date, const QString& terminal)
        : work_(work), file_(file), date_(plain(date)), terminal_(plain(terminal)) {
        const pqxx::result shared = work_.exec_params(
            "SELECT coalesce(array_agg(userid), '{}') FROM (SELECT userid FROM office.document "
            "WHERE month = office.month($1) AND ddate = $1 AND ($2 = '' OR terminal = $2) GROUP BY userid "
            "HAVING count(DISTINCT terminal) > 1) AS shared",
            date_, terminal_);
        shared_ = shared[0][0].c_str();
    }

    void copySlips() {
        for (const Source& source : kSources) {
            const db::schema::Table& table = *db::schema::findTable(source.table);
            std::string columns;
            for (const QStringView column : table.columns) {
                const bool isUser = column.compare(u"userid", Qt::CaseInsensitive) == 0;
                columns += (columns.empty() ? "" : ", ") + (isUser ? kUser : plain(column));
            }
            // The parameters stand in each statement, so that all are called alike.
            insert(table, work_.exec_params(
                              "SELECT " + columns + " FROM office." + plain(source.table) + " WHERE " +
                                  plain(source.days) +
                                  " AND ($2 = '' OR terminal = $2) AND $3::text[] IS NOT NULL ORDER BY " +
                                  plain(source.order),
                              date_, terminal_, shared_));
        }
    }

    void copyMasterData() {
        insert(
            *db::schema::findTable(u"GARAE"),
            work_.exec(
                "SELECT gcode, g.gname, gupju, enddate, sno, majin, cjdate, "
                "CASE r.moved WHEN 0 THEN cjmoney ELSE (office.won(cjmoney) + r.moved)::text END, ttmoney, "
                "juso, "
                "gubun, "
                "tel, bggubun, seek, g.userid, cardno FROM office.master_garae AS g "
                "JOIN report.receivable AS r USING (gcode) WHERE last_version IS NULL ORDER BY row_number"));
        const db::schema::Table& products = *db::schema::findTable(u"PUMMOK");
        std::string columns;
        for (const QStringView column : products.columns)
            columns += (columns.empty() ? "" : ", ") + plain(column);
        insert(products,
               work_.exec("SELECT " + columns +
                          " FROM office.master_pummok WHERE last_version IS NULL ORDER BY row_number"));
    }

    QStringList copyUsers() {
        const std::string known =
            "SELECT DISTINCT ON (1) " + kUser +
            " AS id, '' AS pass, username, vatmode, '', '', '', '', '', '' FROM office.salesman "
            "WHERE ($2 = '' OR terminal = $2) AND $1 <> '' ORDER BY 1, terminal";
        insert(*db::schema::findTable(u"PDAUSER"), work_.exec_params(known, date_, terminal_, shared_));
        QStringList users;
        for (const pqxx::row& row :
             work_.exec_params("SELECT DISTINCT " + kUser +
                                   " FROM office.document WHERE month = office.month($1) AND ddate = $1 "
                                   "AND ($2 = '' OR terminal = $2) ORDER BY 1",
                               date_, terminal_, shared_))
            users << textOf(row[0]);
        return users;
    }

  private:
    void insert(const db::schema::Table& table, const pqxx::result& rows) {
        QByteArray places;
        for (std::size_t i = 0; i < table.columns.size(); ++i) places += i > 0 ? ",?" : "?";
        platform::SqliteStatement statement =
            file_.statement("INSERT INTO " + table.name.toUtf8() + " VALUES (" + places + ")");
        for (const pqxx::row& row : rows) {
            for (const pqxx::field& field : row)
                statement.bindBorrowed({field.c_str(), qsizetype(field.size())});
            statement.step();
            statement.rewind();
        }
    }

    pqxx::work& work_;
    platform::SqliteFile& file_;
    std::string date_;
    std::string terminal_;
    std::string shared_;
};

}  // namespace

DayCopy::DayCopy(pqxx::connection& connection, const QString& date, const QString& terminal)
    : before_(platform::device::folder()) {
    if (!folder_.isValid()) throw Fault(u"the day cannot be laid out: "_s + folder_.errorString());
    platform::device::setFolder(folder_.path());
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    QDir().mkpath(QFileInfo(path).path());
    platform::SqliteFile file(path, platform::SqliteFile::Mode::Create);
    // It goes with this object: nothing waits for the disk.
    file.run("PRAGMA synchronous = OFF");
    platform::SqliteTransaction transaction(file);
    file.run(db::schema::createStatements().toUtf8() + QByteArray("PRAGMA user_version = ") +
             QByteArray::number(db::schema::kVersion));
    // One picture of all tables, whatever the terminals send meanwhile.
    pqxx::work work(connection);
    work.exec("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ READ ONLY");
    Copy copy(work, file, date, terminal);
    copy.copySlips();
    copy.copyMasterData();
    users_ = copy.copyUsers();
    transaction.commit();
}

DayCopy::~DayCopy() {
    platform::adoce::DatabaseFile::forgetAll();
    platform::device::setFolder(before_);
}

}  // namespace office
