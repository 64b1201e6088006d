#include <QFile>

#include "common/OfficeAccess.h"
#include "tools/office/OfficeTest.h"

namespace test {
namespace {

class EnrolTest : public OfficeTest {
  protected:
    OfficeEnded enrol(const QStringList& more) {
        return run(QStringList{u"enrol"_s, u"7"_s, u"--host"_s, u"localhost"_s, u"--authority"_s,
                               cluster().authority(), u"--out"_s, path(u"office.conf"_s)} +
                   more);
    }

    office::Access access() {
        QFile file(path(u"office.conf"_s));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
        QString error;
        auto read = office::readAccess(file.readAll(), &error);
        EXPECT_TRUE(read) << error.toStdString();
        return read ? *std::move(read) : office::Access();
    }

    /// How the terminal connects; `change` replaces settings.
    QString connectionOf(const office::Access& access, const QString& change = {}) {
        const QString base = u"host=%1 port=%2 dbname=%3 user=%4 sslmode=verify-full sslrootcert=%5 "_s.arg(
            access.host, access.port, access.database, access.user,
            writeFile(u"authority.pem"_s, access.authority));
        if (!access.password.isEmpty()) return base + u"password=%1 "_s.arg(access.password.view()) + change;
        const QString key = writeFile(
            u"key.pem"_s,
            QByteArray(reinterpret_cast<const char*>(access.key.data()), qsizetype(access.key.size())));
        QFile::setPermissions(key, QFile::ReadOwner | QFile::WriteOwner);
        return base + u"sslcert=%1 sslkey=%2 "_s.arg(writeFile(u"own.pem"_s, access.certificate), key) +
               change;
    }

    /// Why a statement of the session fails; empty when it does not.
    static std::string faultOf(pqxx::connection& connected, const std::string& statement) try {
        pqxx::nontransaction(connected).exec(statement);
        return {};
    } catch (const std::exception& fault) {
        return fault.what();
    }
    /// Why nobody can log in like that; empty when one can.
    static std::string faultOf(const QString& connection) try {
        pqxx::connection connected(connection.toStdString());
        return faultOf(connected, "SELECT 1");
    } catch (const std::exception& fault) {
        return fault.what();
    }
};

TEST_F(EnrolTest, ThePasswordOfTheFileLogsInAndIsNowhereElse) {
    sql(u"ALTER ROLE postgres IN DATABASE %1 SET log_statement = 'all'"_s.arg(database()));
    const OfficeEnded ended = enrol({u"--users"_s, u"A,B"_s});
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    const office::Access first = access();
    EXPECT_EQ(faultOf(connectionOf(first)), "");
    EXPECT_EQ(sql(u"SELECT terminal, role_name, users FROM office.terminal"_s),
              QStringList(u"7|terminal_7|{A,B}"_s));
    const QByteArray password = first.password.view().toUtf8();
    EXPECT_GE(password.size(), 32);
    EXPECT_TRUE(cluster().log().contains("ALTER ROLE"));
    EXPECT_FALSE(cluster().log().contains(password));
    EXPECT_FALSE(QByteArray::fromStdString(ended.out + ended.err).contains(password));
    // Neither a server of another name, nor one that another authority has signed, nor a line that all can
    // read.
    EXPECT_NE(faultOf(connectionOf(first, u"host=127.0.0.1"_s)).find("does not match"), std::string::npos);
    EXPECT_NE(faultOf(connectionOf(first, u"sslmode=disable"_s)).find("no encryption"), std::string::npos);
    EXPECT_NE(
        faultOf(connectionOf(first, u"sslrootcert="_s + cluster().makeCertificate(u"stranger"_s).first)), "");

    // Enrolled once more: the key of before is void, and who is in with it is sent away, as by a withdrawal.
    const auto isSentAway = [](pqxx::connection& connected) {
        EXPECT_THROW(pqxx::nontransaction(connected).exec("SELECT 1"), pqxx::failure);
    };
    pqxx::connection before(connectionOf(first).toStdString());
    ASSERT_EQ(enrol({u"--users"_s, u"C"_s}).exitCode, 0);
    isSentAway(before);
    EXPECT_NE(faultOf(connectionOf(first)).find("password authentication failed"), std::string::npos);
    const QString again = connectionOf(access());
    pqxx::connection connected(again.toStdString());
    EXPECT_EQ(run({u"enrol"_s, u"7"_s, u"--withdraw"_s}).exitCode, 0);
    EXPECT_NE(faultOf(again), "");
    isSentAway(connected);
    EXPECT_EQ(sql(u"SELECT users FROM office.terminal"_s), QStringList(u"{C}"_s));
}

TEST_F(EnrolTest, ACertificateLogsInWithoutAPassword) {
    const auto [certificate, key] = cluster().makeCertificate(u"terminal_7"_s);
    const OfficeEnded ended = enrol({u"--users"_s, u"A"_s, u"--certificate"_s, certificate, u"--key"_s, key});
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(faultOf(connectionOf(access())), "");

    const auto [others, othersKey] = cluster().makeCertificate(u"terminal_8"_s);
    EXPECT_EQ(enrol({u"--users"_s, u"A"_s, u"--certificate"_s, others, u"--key"_s, othersKey}).exitCode, 1);
    EXPECT_EQ(
        enrol({u"--users"_s, u"A"_s, u"--certificate"_s, certificate, u"--key"_s, certificate}).exitCode, 1);
    EXPECT_EQ(faultOf(connectionOf(access())), "");
}

TEST_F(EnrolTest, ATerminalsRoleReachesNoTableAndNoOther) {
    ASSERT_EQ(enrol({u"--users"_s, u"A"_s}).exitCode, 0);
    pqxx::connection terminal(connectionOf(access()).toStdString());
    const QStringList relations =
        sql(u"SELECT format('%I.%I', nspname, relname) FROM pg_class JOIN pg_namespace AS n "
            "ON n.oid = relnamespace WHERE nspname IN ('office', 'report', 'terminal') "
            "AND relkind IN ('r', 'p', 'v', 'm', 'S')"_s);
    ASSERT_GT(relations.size(), 20);
    for (const QString& relation : relations) {
        for (const QString& statement : {u"SELECT * FROM %1"_s, u"DELETE FROM %1"_s, u"COPY %1 TO STDOUT"_s})
            EXPECT_NE(faultOf(terminal, statement.arg(relation).toStdString()).find("permission denied"),
                      std::string::npos)
                << relation.toStdString();
    }
    for (const char* statement :
         {"CREATE TABLE public.mine (a int)", "CREATE TEMPORARY TABLE mine (a int)", "CREATE SCHEMA mine",
          "SET ROLE rovana_owner", "SET SESSION AUTHORIZATION postgres", "CREATE ROLE other",
          "ALTER ROLE terminal_8 PASSWORD 'x'", "GRANT rovana_owner TO terminal_7",
          "SELECT pg_read_file('/etc/passwd')", "SELECT office.won('1')", "SELECT * FROM pg_authid",
          // By them it would hold up all others, or fill the disk.
          "SELECT pg_advisory_lock(hashtext('office.balances'))",
          "SELECT pg_try_advisory_xact_lock_shared(1)", "SELECT lo_create(0)",
          "SELECT lo_from_bytea(0, 'x')"})
        EXPECT_NE(faultOf(terminal, statement), "") << statement;
}

TEST_F(EnrolTest, EvenTheOwnersFunctionsSeeNothingOfAnother) {
    ASSERT_EQ(enrol({u"--users"_s, u"A"_s}).exitCode, 0);
    for (const QString& each : {u"7"_s, u"8"_s}) {
        insert(u"mtm"_s, {{u"month"_s, u"0001-01-01"_s}, {u"terminal"_s, each}, {u"row_number"_s, u"1"_s}});
    }
    sql(u"CREATE FUNCTION terminal.careless() RETURNS bigint LANGUAGE sql SECURITY DEFINER "
        "RETURN (SELECT sum(terminal::int) FROM office.mtm); "
        "ALTER FUNCTION terminal.careless OWNER TO rovana_owner; "
        "CREATE FUNCTION terminal.forge() RETURNS void LANGUAGE sql SECURITY DEFINER BEGIN ATOMIC "
        "UPDATE office.mtm SET terminal = '8'; END; ALTER FUNCTION terminal.forge OWNER TO rovana_owner; "
        "GRANT EXECUTE ON ALL FUNCTIONS IN SCHEMA terminal TO rovana_terminal"_s);
    pqxx::connection terminal(connectionOf(access()).toStdString());
    EXPECT_EQ(pqxx::nontransaction(terminal).exec("SELECT terminal.careless()")[0][0].as<int>(), 7);
    EXPECT_NE(faultOf(terminal, "SELECT terminal.forge()").find("row-level security"), std::string::npos);
}

TEST_F(EnrolTest, WhatIsMissingIsSaidAndNothingIsChanged) {
    const auto refused = [&](const QStringList& arguments, const char* reason) {
        const OfficeEnded ended = run(QStringList{u"enrol"_s} + arguments);
        EXPECT_NE(ended.exitCode, 0) << reason;
        EXPECT_NE(ended.err.find(reason), std::string::npos) << ended.err;
    };
    const QStringList whole{u"7"_s,           u"--users"_s,         u"A"_s, u"--host"_s, u"localhost"_s,
                            u"--authority"_s, cluster().authority()};
    refused({u"7a"_s}, "one to ten digits");
    refused({u"7"_s}, "--users needs");
    refused({u"7"_s, u"--users"_s, u"A,12"_s}, "--users needs");
    refused(whole.first(3), "--host needs");
    refused(whole.first(5), "--authority needs");
    refused(whole.first(6) + QStringList(path(u"none.pem"_s)), "cannot be read");
    refused(whole + QStringList{u"--out"_s, path(u"no/such/folder.conf"_s)}, "cannot be written");
    refused({u"9"_s, u"--withdraw"_s}, "not enrolled");
    EXPECT_EQ(sql(u"SELECT count(*) FROM office.terminal"_s), QStringList(u"0"_s));
}

TEST(OfficeAccess, AFileThatIsNoneSaysWhyAndHoldsNothingOfIt) {
    const QByteArray whole =
        "host = h\nport = 1\ndatabase = d\nuser = u\npassword = geheim\n[authority]\n-----BEGIN\nx\n";
    const auto faultOf = [](const QByteArray& text) {
        QString error;
        const auto read = office::readAccess(text, &error);
        EXPECT_EQ(read.has_value(), error.isEmpty());
        EXPECT_FALSE(error.contains(u"geheim"));
        return error;
    };
    EXPECT_EQ(faultOf(whole), QString());
    EXPECT_EQ(faultOf(QByteArray(whole).replace("\n", "\r\n")), QString());
    EXPECT_EQ(faultOf(whole.sliced(9)), u"\"host\" is missing"_s);
    EXPECT_EQ(faultOf("geheim\n" + whole), u"line 1 means nothing"_s);
    EXPECT_EQ(faultOf(whole.first(whole.indexOf('['))), u"the certificate of the authority is missing"_s);
    EXPECT_EQ(faultOf(whole + "[key]\nk\n"), u"a certificate and its key belong together"_s);
    EXPECT_EQ(faultOf(whole + "[certificate]\nc\n[key]\nk\n"),
              u"it needs a password, or a certificate and its key"_s);
    EXPECT_EQ(faultOf({}), u"\"host\" is missing"_s);
}

}  // namespace
}  // namespace test
