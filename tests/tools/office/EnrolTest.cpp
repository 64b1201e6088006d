#include "common/OfficeAccess.h"
#include "db/Schema.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

class EnrolTest : public SyncTest {
  protected:
    Ended enrolAgain(const QStringList& users, const QStringList& more = {}) {
        return enrolFolder(terminal_.folder(), u"7"_s, users, more);
    }
    office::Access access() {
        const QString path = accessOf(terminal_.folder());
        EXPECT_FALSE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther));
        QString error;
        return office::readAccess(readFile(path), &error).value();
    }

    /// How the terminal connects; `change` replaces settings.
    std::string connectionOf(const office::Access& access, const QString& change = {}) {
        return u"host=%1 port=%2 dbname=%3 user=%4 sslmode=verify-full sslrootcert=%5 password=%6 %7"_s
            .arg(access.host, access.port, access.database, access.user,
                 writeFile(u"authority.pem"_s, access.authority), access.password.view(), change)
            .toStdString();
    }
    std::string connectionNow() { return connectionOf(access()); }

    /// Why a statement fails, or why nobody can log in like that; empty when it does not.
    static std::string faultOf(pqxx::connection& connected, const QString& statement) try {
        pqxx::nontransaction(connected).exec(statement.toStdString());
        return {};
    } catch (const std::exception& fault) {
        return fault.what();
    }
    static std::string loginFaultOf(const std::string& connection) try {
        pqxx::connection connected(connection);
        return {};
    } catch (const std::exception& fault) {
        return fault.what();
    }

    const TestDevice& terminal_ = enrol(u"7"_s);
};

TEST_F(EnrolTest, ThePasswordOfTheFileLogsInAndIsNowhereElse) {
    sql(u"ALTER ROLE postgres IN DATABASE %1 SET log_statement = 'all'"_s.arg(database()));
    const Ended ended = enrolAgain({u"A"_s, u"B"_s});
    const office::Access first = access();
    EXPECT_EQ(loginFaultOf(connectionOf(first)), "");
    EXPECT_EQ(sql(u"SELECT terminal, role_name, users FROM office.terminal"_s),
              QStringList(u"7|terminal_7|{A,B}"_s));
    const std::string password = first.password.view().toString().toStdString();
    EXPECT_GE(password.size(), 32);
    EXPECT_TRUE(cluster().log().contains("ALTER ROLE"));
    EXPECT_FALSE(cluster().log().contains(password.c_str()));
    EXPECT_THAT(ended.out + ended.err, Not(HasSubstr(password)));
    // Neither a server of another name, nor one that another authority has signed, nor a line that all can
    // read.
    EXPECT_THAT(loginFaultOf(connectionOf(first, u"host=127.0.0.1"_s)), HasSubstr("does not match"));
    EXPECT_THAT(loginFaultOf(connectionOf(first, u"sslmode=disable"_s)), HasSubstr("no encryption"));
    const QString stranger = cluster().makeCertificate(u"stranger"_s).first;
    EXPECT_NE(loginFaultOf(connectionOf(first, u"sslrootcert="_s + stranger)), "");
    // Nor does the program tell it to another server, or to one that says it is another.
    changeAccess(terminal_, "host = localhost", "host = 127.0.0.1");
    const Ended wrong = sync(terminal_);
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_THAT(wrong.err, HasSubstr("certificate"));
    EXPECT_THAT(wrong.err, Not(HasSubstr(password)));

    // What cannot be done leaves the key as it is.
    EXPECT_NE(enrolAgain({u"C"_s, u"12"_s}).exitCode, 0);
    EXPECT_NE(enrolAgain({u"C"_s}, {u"--out"_s, path(u"no/such/folder.conf"_s)}).exitCode, 0);
    EXPECT_EQ(loginFaultOf(connectionOf(first)), "");
    // Enrolled once more: the key of before is void, and who is in with it is sent away, as by a withdrawal.
    pqxx::connection before(connectionOf(first));
    ASSERT_EQ(enrolAgain({u"C"_s}).exitCode, 0);
    EXPECT_NE(faultOf(before, u"SELECT 1"_s), "");
    EXPECT_THAT(loginFaultOf(connectionOf(first)), HasSubstr("password authentication failed"));
    pqxx::connection connected(connectionNow());
    EXPECT_EQ(run({u"enrol"_s, u"7"_s, u"--withdraw"_s}).exitCode, 0);
    EXPECT_NE(loginFaultOf(connectionNow()), "");
    EXPECT_NE(faultOf(connected, u"SELECT 1"_s), "");
    EXPECT_EQ(sql(u"SELECT users FROM office.terminal"_s), QStringList(u"{C}"_s));
}

TEST_F(EnrolTest, ACertificateLogsInWithoutAPassword) {
    const auto [certificate, key] = cluster().makeCertificate(u"terminal_7"_s);
    const auto [others, othersKey] = cluster().makeCertificate(u"terminal_8"_s);
    const auto exitCode = [&](const QString& ofCertificate, const QString& ofKey) {
        return enrolAgain({u"A"_s}, {u"--certificate"_s, ofCertificate, u"--key"_s, ofKey}).exitCode;
    };
    ASSERT_EQ(exitCode(certificate, key), 0);
    EXPECT_TRUE(access().password.isEmpty());
    EXPECT_EQ(exitCode(others, othersKey), 1);
    EXPECT_EQ(exitCode(certificate, certificate), 1);
    EXPECT_EQ(synced(terminal_), kNothing);
}

TEST_F(EnrolTest, ATerminalsRoleReachesNoTableAndNoOther) {
    pqxx::connection terminal(connectionNow());
    const QStringList relations =
        sql(u"SELECT format('%I.%I', nspname, relname) FROM pg_class JOIN pg_namespace AS n "
            "ON n.oid = relnamespace WHERE nspname IN ('office', 'report', 'terminal') "
            "AND relkind IN ('r', 'p', 'v', 'm', 'S')"_s);
    ASSERT_GT(relations.size(), 20);
    for (const QString& relation : relations) {
        for (const QString& statement : {u"SELECT * FROM %1"_s, u"DELETE FROM %1"_s, u"COPY %1 TO STDOUT"_s})
            EXPECT_THAT(faultOf(terminal, statement.arg(relation)), HasSubstr("permission denied"));
    }
    for (const QString& statement :
         {u"CREATE TABLE public.mine (a int)"_s, u"CREATE TEMPORARY TABLE mine (a int)"_s,
          u"CREATE SCHEMA mine"_s, u"SET ROLE rovana_owner"_s, u"SET SESSION AUTHORIZATION postgres"_s,
          u"CREATE ROLE other"_s, u"ALTER ROLE terminal_8 PASSWORD 'x'"_s,
          u"GRANT rovana_owner TO terminal_7"_s, u"SELECT pg_read_file('/etc/passwd')"_s,
          u"SELECT office.won('1')"_s, u"SELECT office.settle(NULL)"_s, u"SELECT * FROM pg_authid"_s,
          u"SELECT terminal.masters('{PDAUSER}')"_s,
          // By them it would hold up all others, or fill the disk.
          u"SELECT pg_advisory_lock(hashtext('office.balances'))"_s,
          u"SELECT pg_try_advisory_xact_lock_shared(1)"_s, u"SELECT lo_create(0)"_s,
          u"SELECT lo_from_bytea(0, 'x')"_s})
        EXPECT_NE(faultOf(terminal, statement), "") << statement.toStdString();

    // Even the owner's functions see nothing of another.
    sql(uR"(INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest, content)
            VALUES ('0001-01-01', '7', '', '', '', '', '', ''), ('0001-01-01', '8', '', '', '', '', '', '');
        CREATE FUNCTION terminal.careless() RETURNS bigint LANGUAGE sql SECURITY DEFINER
            RETURN (SELECT sum(terminal::int) FROM office.document);
        ALTER FUNCTION terminal.careless OWNER TO rovana_owner;
        CREATE FUNCTION terminal.forge() RETURNS void LANGUAGE sql SECURITY DEFINER BEGIN ATOMIC
            UPDATE office.document SET terminal = '8'; END;
        ALTER FUNCTION terminal.forge OWNER TO rovana_owner;
        GRANT EXECUTE ON ALL FUNCTIONS IN SCHEMA terminal TO rovana_terminal)"_s);
    EXPECT_EQ(pqxx::nontransaction(terminal).exec("SELECT terminal.careless()")[0][0].as<int>(), 7);
    EXPECT_THAT(faultOf(terminal, u"SELECT terminal.forge()"_s), HasSubstr("row-level security"));
}

TEST_F(EnrolTest, WhatIsNotItsOwnOrNotWhatItSaysIsRefused) {
    pqxx::connection line(connectionNow());
    // Sends a document of one row, whose digest is that of what is said.
    const auto send = [&](const QString& day, const QString& user, const QString& said, int fields = 14) {
        const QString content = u"array_to_string(array_fill('1'::text, ARRAY[%1]), E'\\x1f')"_s.arg(fields);
        return faultOf(
            line,
            u"SELECT * FROM terminal.send('%1','{sale}','{5001}','{%2}',%3,"
            "ARRAY[sha256(convert_to(E'sale\\x1e%4\\x1e' || %3, 'UTF8'))],'{}','{}','{}',true,false)"_s.arg(
                day, user, content, said));
    };
    const QString own = u"5001\\x1fA"_s;
    for (const QString& forged : {u"5002\\x1fA"_s, u"5001\\x1fB"_s, u"5001\\x1fA\\x1e1"_s})
        EXPECT_THAT(send(day_, u"A"_s, forged), HasSubstr("digest"));
    EXPECT_THAT(send(day_, u"B"_s, u"5001\\x1fB"_s), HasSubstr("not enrolled for user B"));
    EXPECT_THAT(send(day_, u"A"_s, own, 13), HasSubstr("rows"));
    for (const QString& none : {u"2024-02-31"_s, u"-infinity"_s, u"12024-02-01"_s, u"1970-1-1"_s})
        EXPECT_NE(send(none, u"A"_s, own), "") << none.toStdString();
    EXPECT_EQ(sql(u"SELECT count(*) FROM office.document"_s), QStringList(u"0"_s));
    EXPECT_EQ(send(day_, u"A"_s, own), "");

    // A slip of a salesman who is not enrolled stays, and is named; the others' go.
    sell(terminal_, u"5002"_s, u"0001"_s, 500, u"B"_s);
    sell(terminal_, u"5003"_s, u"0001"_s, 600);
    const Ended ended = sync(terminal_);
    EXPECT_EQ(ended.out, "sent 1, deleted 0, waiting 1\n");
    EXPECT_THAT(ended.err, HasSubstr("not enrolled"));

    const QString clock = QDate::currentDate().addDays(-2).toString(Qt::ISODate) + u" 10:00"_s;
    const Ended skewed = sync(terminal_, {u"--clock"_s, clock});
    EXPECT_EQ(skewed.exitCode, 1);
    EXPECT_THAT(skewed.err, HasSubstr("set the clock"));
    const auto hello = [&](int schema) {
        const std::string call = "SELECT what || note FROM terminal.hello(" + std::to_string(schema) +
                                 ",'',now(),'2026-01-01','{}','{}',E'\\x1eA\\x1fx\\x1f1\\x1eB\\x1fy\\x1f2')";
        return pqxx::nontransaction(line).exec(call)[0][0].as<std::string>();
    };
    EXPECT_THAT(hello(db::schema::kVersion + 1), HasSubstr("upgrade the office"));
    EXPECT_THAT(hello(db::schema::kVersion - 1), HasSubstr("upgrade the terminal"));
    EXPECT_EQ(hello(db::schema::kVersion), "office");
    // Of the salesmen that it told of, its own.
    EXPECT_EQ(sql(u"SELECT userid, username, vatmode FROM office.salesman"_s), QStringList(u"A|x|1"_s));
}

TEST(OfficeAccess, AFileThatIsNoneSaysWhyAndHoldsNothingOfIt) {
    const QByteArray whole =
        "host = h\nport = 1\ndatabase = d\nuser = u\npassword = geheim\n[authority]\n-----BEGIN\nx\n";
    const std::pair<QByteArray, QString> cases[] = {
        {whole, QString()},
        {whole.sliced(9), u"\"host\" is missing"_s},
        {"geheim\n" + whole, u"line 1 means nothing"_s},
        {whole.first(whole.indexOf('[')), u"the certificate of the authority is missing"_s},
        {whole + "[certificate]\nc\n[key]\nk\n", u"it needs a password, or a certificate and its key"_s},
    };
    for (const auto& [text, fault] : cases) {
        QString error;
        EXPECT_EQ(office::readAccess(text, &error).has_value(), fault.isEmpty());
        EXPECT_EQ(error, fault);
    }
}

}  // namespace
}  // namespace test
