#include "db/Schema.h"
#include "tools/office/OfficeTest.h"

namespace test {
namespace {

class SchemaTest : public OfficeTest {};

TEST_F(SchemaTest, ColumnsAreThoseOfTheTerminal) {
    for (const QStringView table :
         {u"mtm", u"ytm", u"mtmok", u"payjournal", u"printlog", u"deleted", u"dayclose"}) {
        QStringList columns;
        for (const QStringView column : db::schema::findTable(table)->columns)
            columns << column.toString().toLower();
        EXPECT_EQ(sql(u"SELECT column_name FROM information_schema.columns WHERE table_schema = 'office' "
                      "AND table_name = '%1' AND column_name NOT IN ('month', 'terminal', 'row_number', "
                      "'document_id') "
                      "ORDER BY ordinal_position"_s.arg(table)),
                  columns)
            << table.toUtf8().constData();
    }
}

TEST_F(SchemaTest, IsMadeOnceAndRefusesANewerOne) {
    const OfficeEnded again = run({u"init"_s});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_NE(again.out.find("nothing to do"), std::string::npos) << again.out;
    EXPECT_EQ(run({u"upgrade"_s}).exitCode, 0);

    sql(u"INSERT INTO office.migration (number, name, program_version) VALUES (900, 'later', '9')"_s);
    for (const QString& command : {u"init"_s, u"upgrade"_s}) {
        const OfficeEnded refused = run({command});
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_NE(refused.err.find("newer program (schema 900"), std::string::npos) << refused.err;
    }
}

TEST_F(SchemaTest, AMigrationThatFailsLeavesNothing) {
    const QString name = cluster().createDatabase();
    pqxx::connection connected(cluster().administrator(name).toStdString());
    {
        pqxx::nontransaction work(connected);
        work.exec("CREATE SCHEMA office; CREATE FUNCTION office.won(text) RETURNS int LANGUAGE sql RETURN 1");
    }
    EXPECT_EQ(runOn(name, {u"upgrade"_s}).exitCode, 1);
    const OfficeEnded ended = runOn(name, {u"init"_s});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_NE(ended.err.find("001-tables.sql"), std::string::npos) << ended.err;
    pqxx::nontransaction work(connected);
    EXPECT_TRUE(work.exec("SELECT to_regclass('office.migration')")[0][0].is_null());
}

TEST_F(SchemaTest, AnOlderDatabaseIsUpgradedBeforeItIsUsed) {
    sql(u"DROP SCHEMA report CASCADE; DROP FUNCTION office.integer_part, office.payable_total, "
        u"office.containers, "
        "office.json_keys, office.own_number; DELETE FROM office.migration WHERE number >= 10"_s);
    const OfficeEnded refused = run({u"status"_s});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.err.find("rovana-office upgrade"), std::string::npos) << refused.err;
    const OfficeEnded upgraded = run({u"upgrade"_s});
    EXPECT_EQ(upgraded.exitCode, 0) << upgraded.err;
    EXPECT_NE(upgraded.out.find("was 2"), std::string::npos) << upgraded.out;
    EXPECT_EQ(run({u"status"_s}).exitCode, 0);
}

TEST_F(SchemaTest, AReaderSeesEveryViewAndNothingElse) {
    for (const QString& table : {u"mtm"_s, u"ytm"_s, u"mtmok"_s, u"payjournal"_s, u"dayclose"_s}) {
        insert(table, {{u"month"_s, u"0001-01-01"_s},
                       {u"terminal"_s, u"1"_s},
                       {u"row_number"_s, u"1"_s},
                       {u"userid"_s, u"A"_s}});
    }
    insert(u"master_garae"_s,
           {{u"first_version"_s, u"1"_s}, {u"row_number"_s, u"1"_s}, {u"gcode"_s, u"0001"_s}});
    sql(u"DROP ROLE IF EXISTS clerk; CREATE ROLE clerk LOGIN IN ROLE rovana_reader"_s);
    pqxx::connection connected(connection().toStdString());
    pqxx::nontransaction work(connected);
    work.exec("SET SESSION AUTHORIZATION clerk");
    const QStringList views = sql(u"SELECT viewname FROM pg_views WHERE schemaname = 'report'"_s);
    EXPECT_GE(views.size(), 14);
    for (const QString& view : views)
        EXPECT_NO_THROW(work.exec("SELECT * FROM report." + view.toStdString()));
    for (const char* view : {"sale", "container_return", "collection", "close", "receivable"})
        EXPECT_EQ(work.exec(std::string("SELECT * FROM report.") + view).size(), 1) << view;
    for (const char* statement :
         {"SELECT * FROM office.mtm", "DELETE FROM report.movement", "SELECT * FROM terminal.days('')",
          "SELECT office.make_month('2026-01-01')", "CREATE TABLE report.mine (a int)"})
        EXPECT_THROW(work.exec(statement), pqxx::sql_error) << statement;
    EXPECT_EQ(
        sql(u"SELECT relname FROM pg_class WHERE relnamespace = 'report'::regnamespace AND relkind = 'v' "
            "AND obj_description(oid) IS NULL"_s),
        QStringList());
}

TEST_F(SchemaTest, AmountsAreReadAsTheTerminalReadsThem) {
    EXPECT_EQ(
        sql(u"SELECT office.won(text) FROM unnest(ARRAY['12', ' -5', '+7x', '', 'abc', '-', E'\\u3000 12', "
            "'9223372036854775807', '9223372036854775808', '-99999999999999999999', "
            "'000000000000000000000000012', NULL]) WITH ORDINALITY AS each(text, n) ORDER BY n"_s),
        QStringList({u"12"_s, u"-5"_s, u"7"_s, u"0"_s, u"0"_s, u"0"_s, u"12"_s, u"9223372036854775807"_s,
                     u"9223372036854775807"_s, u"-9223372036854775808"_s, u"12"_s, u"0"_s}));
}

TEST_F(SchemaTest, APasswordInTheConnectionIsRefused) {
    QString out;
    QString err;
    QTextStream in(stdin);
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    for (const QString& connection : {u"host=db password=geheim"_s, u"postgresql://a:geheim@db/office"_s}) {
        EXPECT_EQ(office::run({u"rovana-office"_s, u"status"_s, u"--database"_s, connection}, in, outStream,
                              errStream),
                  2);
        EXPECT_TRUE(err.contains(u".pgpass")) << err.toStdString();
        EXPECT_FALSE(err.contains(u"geheim"));
    }
}

}  // namespace
}  // namespace test
