#include "tools/office/OfficeTest.h"

namespace test {
namespace {

class SchemaTest : public OfficeTest {};

TEST_F(SchemaTest, IsBroughtUpOnceAndRefusesANewerOne) {
    EXPECT_THAT(run({u"init"_s}).out, HasSubstr("nothing to do"));
    sql(u"DROP SCHEMA report CASCADE; DROP FUNCTION office.integer_part, office.payable_total, "
        u"office.containers, "
        "office.json_keys, office.own_number, office.is_touched; DELETE FROM office.migration WHERE number >= 10"_s);
    const Ended refused = run({u"status"_s});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("rovana-office upgrade"));
    const Ended upgraded = run({u"upgrade"_s});
    EXPECT_EQ(upgraded.exitCode, 0) << upgraded.err;
    EXPECT_THAT(upgraded.out, HasSubstr("was 2"));
    EXPECT_EQ(run({u"status"_s}).exitCode, 0);

    sql(u"INSERT INTO office.migration (number, name, program_version) VALUES (900, 'later', '9')"_s);
    for (const QString& command : {u"init"_s, u"upgrade"_s})
        EXPECT_THAT(run({command}).err, HasSubstr("newer program (schema 900"));
    // One that fails leaves nothing.
    sql(u"DROP SCHEMA office CASCADE; CREATE SCHEMA office; "
        "CREATE FUNCTION office.won(text) RETURNS int LANGUAGE sql RETURN 1"_s);
    EXPECT_THAT(run({u"init"_s}).err, HasSubstr("001-tables.sql"));
    EXPECT_EQ(sql(u"SELECT to_regclass('office.migration') IS NULL"_s), QStringList(u"t"_s));
}

TEST_F(SchemaTest, AReaderSeesEveryViewAndNothingElse) {
    // Amounts and a VAT mode that no view reads at a glance.
    sql(uR"(INSERT INTO office.terminal (terminal, role_name, users) VALUES ('1', 'terminal_1', '{A}');
        INSERT INTO office.salesman VALUES ('1', 'A', '', '2');
        INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest, content)
            SELECT '0001-01-01', '1', kind, '', '1', 'A', '',
                array_to_string(array_fill(' 1'::text, ARRAY[cardinality(columns)]), E'\x1f') FROM office.kind;
        INSERT INTO office.master_garae (first_version, row_number, gcode) VALUES (1, 1, '0001');
        DROP ROLE IF EXISTS clerk; CREATE ROLE clerk LOGIN IN ROLE rovana_reader)"_s);
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
}

TEST_F(SchemaTest, AmountsAreReadAsTheTerminalReadsThem) {
    EXPECT_EQ(
        sql(uR"(SELECT string_agg(office.won(text)::text, ' ' ORDER BY n) FROM unnest(ARRAY['12', ' -5', '+7x',
                  '', 'abc', '-', E'\u3000 12', '9223372036854775807', '9223372036854775808',
                  '-99999999999999999999', '000000000000000000000000012', NULL]) WITH ORDINALITY AS each(text, n))"_s),
        QStringList(u"12 -5 7 0 0 0 12 9223372036854775807 9223372036854775807 -9223372036854775808 12 0"_s));
}

TEST(OfficeConnection, APasswordInItIsRefused) {
    for (const QString& connection : {u"host=db password=geheim"_s, u"postgresql://a:geheim@db/office"_s}) {
        const Ended ended =
            runHere(office::run, {u"rovana-office"_s, u"status"_s, u"--database"_s, connection});
        EXPECT_EQ(ended.exitCode, 2);
        EXPECT_THAT(ended.err, HasSubstr(".pgpass"));
        EXPECT_THAT(ended.err, Not(HasSubstr("geheim")));
    }
}

}  // namespace
}  // namespace test
