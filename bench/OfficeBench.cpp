// What terminals do with the office against the least that the same rows cost: a real PostgreSQL of the
// measurement's own, each terminal with a TLS connection of its own.

#include <libpq-fe.h>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QTextStream>
#include <cstdio>
#include <pqxx/pqxx>
#include <stdexcept>

#include "Bench.h"
#include "Folder.h"
#include "common/OfficeAccess.h"
#include "platform/CodePage.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/WholeFile.h"
#include "rovana-office/Command.h"
#include "rovana-office/demo/Cluster.h"
#include "rovana-sync/Sync.h"

namespace bench {

int officeTerminals = 0;

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSlips = 100;
constexpr int kLinesOfSlip = 6;
constexpr const char* kFiles[] = {"GARAE", "PUMMOK", "GARAEDANGA", "GARAEMAJIN"};

int terminals(int usual) {
    return officeTerminals > 0 ? officeTerminals : usual;
}

/// An office with `count` enrolled terminals from number `first` on, for one user A each, and a device folder
/// that stands for whichever of them has its turn.
class Office {
  public:
    explicit Office(int count, int first = 1) : database_(cluster().createDatabase()) {
        run({u"init"_s});
        for (int number = first; number < first + count; ++number) accesses_.push_back(enrol(number));
    }

    void load(const QString& name, const QString& lines) {
        writeFile(folder_.path(name), *platform::codepage::encode(lines));
        run({u"load"_s, folder_.path(name)});
    }
    pqxx::result sql(const std::string& statements) {
        pqxx::connection connection(cluster().administrator(database_).toStdString());
        pqxx::nontransaction work(connection);
        return work.exec(statements);
    }

    /// The whole program's work for a terminal.
    terminal_sync::Outcome sync(int number) {
        return terminal_sync::Sync(accesses_[std::size_t(number)]).run();
    }

    /// What the library needs to connect as that terminal, as plainly as it goes.
    std::string bareConnection(int number) {
        const office::Access& access = accesses_[std::size_t(number)];
        return u"host=localhost port=%1 dbname=%2 user=%3 password=%4 sslmode=verify-full sslrootcert=%5"_s
            .arg(access.port, access.database, access.user, access.password.view(), cluster().authority())
            .toStdString();
    }

    /// A full day in the device's database beside the days before.
    void writeDay(const QString& date) {
        platform::SqliteFile file(folder_.databaseFile(), platform::SqliteFile::Mode::Existing);
        const QString slips =
            u"WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "_s;
        file.run(
            (u"BEGIN; DELETE FROM MTM WHERE DDate = '%1'; DELETE FROM MTMOK WHERE DDate = '%1';"_s.arg(date) +
             u"INSERT INTO MTM "_s + slips.arg(kSlips * kLinesOfSlip - 1) +
             u"SELECT '%1','매출',printf('%04d', i / 6),'거래처 상회',5001 + i / 6,'발행',printf('%04d', i % "
             u"90),"
             "'상품 이름 500ml','01','3','0','32000','3200','4000','1000','A','10:00' FROM n;"_s.arg(date) +
             u"INSERT INTO MTMOK "_s + slips.arg(kSlips - 1) +
             u"SELECT '%1','매출',printf('%04d', i),'거래처 상회',5001 + "
             u"i,'10:01','A','211200','192000','19200','24000',"
             "'6000','30000','0','0','0','0','241200','0','0','','' FROM n; COMMIT"_s.arg(date))
                .toUtf8());
    }
    /// A table's rows as COPY takes them, read with nothing between SQLite and the text.
    static QByteArray copyText(platform::SqliteFile& file, const QByteArray& table, const QString& date) {
        QByteArray text;
        platform::SqliteStatement row = file.statement("SELECT * FROM " + table + " WHERE DDate = ?");
        row.bind(date);
        while (row.step()) {
            for (int i = 0; i < row.columns(); ++i) {
                if (i > 0) text += '\t';
                text += row.textView(i);
            }
            text += '\n';
        }
        return text;
    }
    const Folder& folder() const { return folder_; }

  private:
    static office::Cluster& cluster() { return office::Cluster::instance(); }

    void run(const QStringList& arguments) {
        QString input, out, err;
        QTextStream in(&input), outStream(&out), errStream(&err);
        const QStringList all = QStringList{u"rovana-office"_s} + arguments +
                                QStringList{u"--database"_s, cluster().administrator(database_)};
        if (office::run(all, in, outStream, errStream) != 0) throw std::runtime_error(err.toStdString());
    }
    office::Access enrol(int number) {
        const QString path = folder_.path(u"office.conf"_s);
        QFile::remove(path);
        run({u"enrol"_s, QString::number(number), u"--users"_s, u"A"_s, u"--host"_s, u"localhost"_s,
             u"--authority"_s, cluster().authority(), u"--out"_s, path});
        QDir().mkpath(folder_.path(u"office"_s));
        return terminal_sync::readAccessFile();
    }

    Folder folder_;
    QString database_;
    std::vector<office::Access> accesses_;
};

void check(bool isRight, const char* what) {
    if (!isRight) throw std::runtime_error(what);
}

QString code(int number) {
    return QString::number(number).rightJustified(4, u'0');
}

/// Days of this month, which the office has room for, none of them twice.
QString nextDay() {
    static QDate day = QDate::currentDate();
    day = day.addDays(-1);
    return day.toString(Qt::ISODate);
}

/// A table like that of the rows, as bare as it goes, which terminals may write.
void makeBareTables(Office& office) {
    office.sql(
        "CREATE SCHEMA bare; GRANT USAGE ON SCHEMA bare TO rovana_terminal;"
        "CREATE TABLE bare.mtm AS SELECT * FROM office.mtm WITH NO DATA; ALTER TABLE bare.mtm DROP month, "
        "DROP terminal, DROP row_number, DROP content;"
        "CREATE TABLE bare.mtmok AS SELECT * FROM office.mtmok WITH NO DATA; ALTER TABLE bare.mtmok DROP "
        "month, DROP terminal, DROP row_number, DROP content;"
        "GRANT INSERT ON ALL TABLES IN SCHEMA bare TO rovana_terminal");
}

/// The library's own calls and nothing around them.
class BareConnection {
  public:
    explicit BareConnection(const std::string& options) : line_(PQconnectdb(options.c_str())) {
        check(PQstatus(line_) == CONNECTION_OK, "no connection");
    }
    ~BareConnection() { PQfinish(line_); }
    Q_DISABLE_COPY_MOVE(BareConnection)

    void run(const char* statement) { expect(PQexec(line_, statement)); }
    void copyIn(const char* statement, const QByteArray& rows) {
        run(statement);
        check(PQputCopyData(line_, rows.constData(), int(rows.size())) == 1 &&
                  PQputCopyEnd(line_, nullptr) == 1,
              "COPY took nothing");
        expect(PQgetResult(line_));
        PQgetResult(line_);
    }
    QByteArray copyOut(const char* statement) {
        run(statement);
        QByteArray rows;
        char* row = nullptr;
        for (int size = 0; (size = PQgetCopyData(line_, &row, 0)) > 0; PQfreemem(row)) rows.append(row, size);
        expect(PQgetResult(line_));
        PQgetResult(line_);
        return rows;
    }

  private:
    static void expect(PGresult* result) {
        const ExecStatusType status = PQresultStatus(result);
        PQclear(result);
        check(status != PGRES_FATAL_ERROR, "a statement failed");
    }
    PGconn* line_;
};

/// A salesman's customers with their prices, and the products, which terminals may read bare.
void loadMasters(Office& office) {
    QString customers, products, prices, margins;
    for (int i = 0; i < 150; ++i) {
        const QString number = code(i);
        customers +=
            number +
            u"|거래처 상회 이름|대표자 이름||123-45-67890|||150000||서울시 어느구 어느길 12|1|02-123-4567|1|ㄱ|A||\r\n"_s;
        prices += number + u"|0001|5|32000|3200|1600|160|0|0|0|\r\n"_s;
        margins += number + u"|01|5|\r\n"_s;
    }
    for (int i = 0; i < 500; ++i) {
        products +=
            u"%1|상품 이름 500ml|1|500|20|30000|3000|1500|150|31000|3100|1600|160|29000|2900|1400|140|4000|2000|100|10|100|100|01|1||ㅅ|\r\n"_s
                .arg(code(i));
    }
    office.load(u"GARAE.RVN"_s, customers);
    office.load(u"PUMMOK.RVN"_s, products);
    office.load(u"GARAEDANGA.RVN"_s, prices);
    office.load(u"GARAEMAJIN.RVN"_s, margins);
    office.sql(
        "GRANT USAGE ON SCHEMA office TO rovana_terminal; GRANT SELECT ON ALL TABLES IN SCHEMA office TO "
        "rovana_terminal");
}

}  // namespace

Result measureOfficeDay() {
    const int count = terminals(200);
    Office office(count);
    makeBareTables(office);
    QString day;
    const auto send = [&](int terminal) {
        if (terminal == 0) office.writeDay(day = nextDay());
        return millisecondsOf([&] { check(office.sync(terminal).sent == 2 * kSlips, "not all was sent"); });
    };
    const auto copy = [&](int terminal) {
        return millisecondsOf([&] {
            // The day of a terminal lies in its database, for either side.
            platform::SqliteFile file(office.folder().databaseFile(), platform::SqliteFile::Mode::ReadOnly);
            BareConnection connection(office.bareConnection(terminal));
            connection.run("BEGIN");
            connection.copyIn("COPY bare.mtm FROM STDIN", Office::copyText(file, "MTM", day));
            connection.copyIn("COPY bare.mtmok FROM STDIN", Office::copyText(file, "MTMOK", day));
            connection.run("COMMIT");
        });
    };
    Result result = compareSums(count, "ms", send, copy);
    result.note = " (" + std::to_string(count) + " terminals)";
    return result;
}

Result measureOfficeIdle() {
    Office office(1);
    office.writeDay(nextDay());
    check(office.sync(0).sent == 2 * kSlips, "not all was sent");
    const auto idle = [&] {
        return millisecondsOf([&] { check(office.sync(0).sent == 0, "something was sent again"); });
    };
    const auto bare = [&] {
        return millisecondsOf([&] { BareConnection(office.bareConnection(0)).run("SELECT 1"); });
    };
    const Result times = compare(21, "ms", idle, bare);
    const int before = terminal_sync::Office::roundTrips();
    idle();
    char note[100];
    std::snprintf(note, sizeof note, " (%.1f ms, a connection with one SELECT %.1f ms)", times.ours,
                  times.peer);
    return {
        .ours = double(terminal_sync::Office::roundTrips() - before), .peer = 1, .unit = "", .note = note};
}

Result measureOfficeFull() {
    Office empty(1);
    // A terminal's role is the whole server's.
    Office full(1, 2);
    // A year from before the days that each sync compares; each with as many documents and rows as today's.
    full.sql(
        "SELECT office.make_month(m::date) FROM generate_series(date_trunc('month', now()) - interval '13 "
        "months', "
        "date_trunc('month', now()), interval '1 month') AS m;"
        "INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest, gcode, content) "
        "SELECT office.month(d), '2', kind, d, n::text, 'A', sha256((kind || d || n)::bytea), '0001', repeat("
        "E'0123456789\\x1e', CASE kind WHEN 'sale' THEN 60 ELSE 15 END) "
        "FROM generate_series(now() - interval '400 days', now() - interval '35 days', interval '1 day') AS "
        "day, "
        "to_char(day, 'YYYY-MM-DD') AS d, generate_series(5001, 5100) AS n, unnest(ARRAY['sale', "
        "'collection']) AS kind; ANALYZE");
    const auto day = [](Office& office) {
        office.folder().use();
        office.writeDay(QDate::currentDate().toString(Qt::ISODate));
        // Each time as if the day had never been sent, without a look at the year.
        office.sql(
            "DELETE FROM office.document WHERE month = date_trunc('month', now()) AND ddate = to_char(now(), "
            "'YYYY-MM-DD'); DELETE FROM office.movement");
        return millisecondsOf([&] { check(office.sync(0).sent == 2 * kSlips, "not all was sent"); });
    };
    return compare(
        15, "ms", [&] { return day(full); }, [&] { return day(empty); });
}

Result measureOfficeMorning() {
    const int count = terminals(1000);
    Office office(1);
    loadMasters(office);
    const auto filePath = [&](const char* name) {
        return office.folder().path(u"My Documents/%1.RVN"_s.arg(QLatin1StringView(name)));
    };
    const auto forget = [&] {
        QFile::remove(office.folder().path(u"office/fetched.json"_s));
        for (const char* name : kFiles) QFile::remove(filePath(name));
    };
    const auto fetch = [&](int) {
        forget();
        return millisecondsOf([&] { check(office.sync(0).fetched.size() == 4, "not all was fetched"); });
    };
    // What is not on the terminal's disk was not fetched: the files are written side by side, and the disk is
    // waited for once each.
    const auto copy = [&](int) {
        forget();
        return millisecondsOf([&] {
            BareConnection connection(office.bareConnection(0));
            std::vector<std::unique_ptr<platform::WholeFile>> files;
            for (const char* name : kFiles) {
                const std::string copyFile = std::string("COPY office.master_") + name + " TO STDOUT";
                files.push_back(std::make_unique<platform::WholeFile>(filePath(name)));
                check(files.back()->begin(connection.copyOut(copyFile.c_str())), "a file was not written");
            }
            for (const auto& file : files) check(file->sync() && file->takeNameOnly(), "a file was not kept");
            check(files.back()->syncFolder(), "the folder was not kept");
        });
    };
    Result result = compareSums(count, "ms", fetch, copy);
    result.note = " (" + std::to_string(count) + " terminals)";
    return result;
}

}  // namespace bench
