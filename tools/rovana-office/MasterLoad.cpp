#include "rovana-office/MasterLoad.h"

#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

/// One file on its way into its table.
class Load {
  public:
    Load(pqxx::work& work, const MasterFile& master)
        : work_(work),
          master_(master),
          table_("office.master_" + plain(master.table)),
          columns_(plain(master.columns.join(u", "))) {}

    bool isUnchanged() {
        const pqxx::result last = work_.exec_params(
            "SELECT digest = $2::bytea FROM office.master_version WHERE file_name = $1 ORDER BY version DESC "
            "LIMIT 1",
            plain(master_.name), byteaText(master_.digest()));
        return !last.empty() && last[0][0].as<bool>();
    }

    void refuseShrinking() {
        const auto rows = work_.exec("SELECT count(*) FROM " + table_ + " WHERE last_version IS NULL")[0][0]
                              .as<qsizetype>();
        if (master_.rows.size() * 2 >= rows) return;
        throw Fault(u"%1 has %2 lines and the office %3; --shrink loads it all the same"_s.arg(master_.name)
                        .arg(master_.rows.size())
                        .arg(rows));
    }

    std::int64_t makeVersion() {
        version_ = work_
                       .exec_params(
                           "INSERT INTO office.master_version (file_name, digest, lines) "
                           "VALUES ($1, $2::bytea, $3) RETURNING version",
                           plain(master_.name), byteaText(master_.digest()), master_.rows.size())[0][0]
                       .as<std::int64_t>();
        return version_;
    }

    /// The file's rows, numbered, in the session's table `loaded`.
    void stage() {
        work_.exec("CREATE TEMPORARY TABLE loaded ON COMMIT DROP AS SELECT row_number, " + columns_ +
                   " FROM " + table_ + " LIMIT 0");
        std::string arrays;
        std::vector<std::string> texts;
        for (qsizetype i = 0; i < master_.columns.size(); ++i) {
            arrays += (i > 0 ? ", $" : "$") + std::to_string(i + 1) + "::text[]";
            texts.push_back(textArray(master_.column(i)));
        }
        work_.exec_params("INSERT INTO loaded (" + columns_ + ", row_number) SELECT * FROM unnest(" + arrays +
                              ") WITH ORDINALITY",
                          pqxx::prepare::make_dynamic_params(texts.begin(), texts.end()));
        work_.exec("ANALYZE loaded");
    }

    /// Each row of the table beside the equal one of the file; of several equal rows the first beside the
    /// first.
    void compare() {
        const std::string numbered =
            ", row_number() OVER (PARTITION BY " + columns_ + " ORDER BY row_number) AS n";
        work_.exec(
            "CREATE TEMPORARY TABLE compared ON COMMIT DROP AS "
            "SELECT was.ctid AS place, is_now.row_number FROM "
            "(SELECT ctid, row_number, " +
            columns_ + numbered + " FROM " + table_ +
            " WHERE last_version IS NULL) AS was FULL JOIN (SELECT row_number, " + columns_ + numbered +
            " FROM loaded) AS is_now USING (" + columns_ + ", n)");
    }

    /// Ends the rows that the file has no more, which are counted.
    std::int64_t endRows() {
        const std::int64_t ended =
            work_
                .exec_params("WITH gone AS (UPDATE " + table_ +
                                 " SET last_version = $1 - 1 WHERE ctid IN "
                                 "(SELECT place FROM compared WHERE row_number IS NULL) RETURNING 1) "
                                 "SELECT count(*) FROM gone",
                             version_)[0][0]
                .as<std::int64_t>();
        // A row that stays may stand on another line now.
        work_.exec("UPDATE " + table_ +
                   " AS kept SET row_number = compared.row_number FROM compared "
                   "WHERE kept.ctid = compared.place AND kept.row_number <> compared.row_number");
        return ended;
    }

    /// Adds the rows that the table lacks, which are counted.
    std::int64_t addNewRows() {
        return work_
            .exec_params("WITH new AS (INSERT INTO " + table_ + " (first_version, row_number, " + columns_ +
                             ") SELECT $1, row_number, " + columns_ +
                             " FROM loaded WHERE row_number IN (SELECT row_number FROM compared WHERE place "
                             "IS NULL) RETURNING 1) SELECT count(*) FROM new",
                         version_)[0][0]
            .as<std::int64_t>();
    }

    /// Notes for whom the version brings something else.
    void noteChanges() {
        const std::string changed =
            " FROM " + table_ + " WHERE first_version = $1::bigint OR last_version = $1::bigint - 1";
        if (master_.table == u"pummok" || master_.table == u"barcode") {
            noteFor("SELECT '' AS userid WHERE EXISTS (SELECT" + changed + ")", master_.name);
            work_.exec_params("SELECT office.keep_lines($1)", plain(master_.name));
        } else if (master_.table == u"mtm" || master_.table == u"garae") {
            noteFor("SELECT userid" + changed, master_.name);
        } else {
            noteFor(
                "SELECT userid FROM office.master_garae WHERE last_version IS NULL AND gcode IN (SELECT "
                "gcode" +
                    changed + ")",
                master_.name);
        }
        if (master_.table != u"garae") return;
        // A customer who comes to a salesman, or leaves him, brings his prices or takes them along.
        for (const QString& prices : {u"garaedanga"_s, u"garaemajin"_s}) {
            noteFor("SELECT userid FROM (SELECT gcode, userid" + changed +
                        ") AS changed WHERE gcode IN (SELECT gcode FROM office.master_" + plain(prices) +
                        " WHERE last_version IS NULL) GROUP BY gcode, userid HAVING count(*) % 2 = 1",
                    prices.toUpper() + u".RVN"_s);
        }
    }

    /// Forgets rows that ended long ago, and old orders: no terminal asks for them any more.
    void prune() {
        work_.exec_params("DELETE FROM " + table_ + " WHERE " +
                              (master_.isOrders() ? "first_version" : "last_version") +
                              " < (SELECT max(version) FROM office.master_version WHERE file_name = $1 "
                              "AND loaded_at < now() - interval '90 days')",
                          plain(master_.name));
    }

  private:
    void noteFor(const std::string& users, const QString& fileName) {
        work_.exec_params(
            "INSERT INTO office.master_change (userid, file_name, version) "
            "SELECT DISTINCT userid, $2::text, $1::bigint FROM (" +
                users +
                ") AS users ON CONFLICT (userid, file_name) DO UPDATE SET version = "
                "excluded.version, loaded_at = excluded.loaded_at",
            version_, plain(fileName));
    }

    pqxx::work& work_;
    const MasterFile& master_;
    std::string table_;
    std::string columns_;
    std::int64_t version_ = 0;
};

}  // namespace

MasterLoaded loadMaster(pqxx::work& work, const MasterFile& master, bool mayShrink, bool isAnew) {
    // One load at a time; who only reads does not wait.
    work.exec("SELECT pg_advisory_xact_lock(hashtext('office.load'))");
    Load load(work, master);
    MasterLoaded loaded;
    if (!isAnew && load.isUnchanged()) return loaded;
    if (!mayShrink && !master.isOrders()) load.refuseShrinking();
    loaded.version = load.makeVersion();
    load.stage();
    load.compare();
    // Orders stay when a later file is without them, and come once when it has them again.
    if (!master.isOrders()) loaded.removed = load.endRows();
    loaded.added = load.addNewRows();
    work.exec("DROP TABLE compared");
    work.exec("DROP TABLE loaded");
    load.noteChanges();
    load.prune();
    return loaded;
}

void replaceBalances(pqxx::work& work, const QString& sentUntil) {
    // Who is sending ends first; who comes now waits for the end of the load.
    work.exec("SELECT pg_advisory_xact_lock(hashtext('office.balances'))");
    // A customer whose line is the one of before has another balance all the same.
    work.exec_params(
        "WITH gone AS (DELETE FROM office.movement WHERE moved_at <= coalesce(nullif($1, '')::timestamptz, "
        "now()) RETURNING gcode) "
        "INSERT INTO office.master_change (userid, file_name, version, loaded_at) "
        "SELECT g.userid, v.file_name, v.version, v.loaded_at FROM (SELECT DISTINCT userid "
        "FROM office.master_garae WHERE last_version IS NULL AND gcode IN (SELECT gcode FROM gone)) AS g "
        "CROSS JOIN (SELECT * FROM office.master_version WHERE file_name = 'GARAE.RVN' "
        "ORDER BY version DESC LIMIT 1) AS v "
        "ON CONFLICT (userid, file_name) DO UPDATE SET version = excluded.version, "
        "loaded_at = excluded.loaded_at",
        plain(sentUntil));
}

}  // namespace office
