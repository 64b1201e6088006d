#include <QFile>
#include <QSslCertificate>
#include <algorithm>

#include "common/Enrolment.h"
#include "common/OfficeAccess.h"
#include "platform/WholeFile.h"
#include "rovana-office/Command.h"
#include "rovana-office/Database.h"
#include "rovana-office/Scram.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SecureBytes;

const QString kUsers = u"users"_s;
const QString kHost = u"host"_s;
const QString kPort = u"port"_s;
const QString kAuthority = u"authority"_s;
const QString kCertificate = u"certificate"_s;
const QString kKey = u"key"_s;
const QString kOut = u"out"_s;
const QString kWithdraw = u"withdraw"_s;

void addEnrolOptions(QCommandLineParser& parser) {
    parser.addOption({kUsers, u"The salesmen who work with the terminal, such as A,B."_s, u"IDS"_s});
    parser.addOption({kAuthority,
                      u"The certificate, PEM, that has signed the server's; the terminal trusts no other."_s,
                      u"FILE"_s});
    parser.addOption(
        {kHost, u"The server's name as its certificate has it; else that of --database."_s, u"NAME"_s});
    parser.addOption({kPort, u"The server's port; else that of --database."_s, u"PORT"_s});
    parser.addOption({kCertificate,
                      u"The terminal's own certificate, for terminal_NUMBER, instead of a password."_s,
                      u"FILE"_s});
    parser.addOption({kKey, u"The private key of that certificate."_s, u"FILE"_s});
    parser.addOption({kOut, u"The file for the terminal; else terminal-NUMBER.conf."_s, u"FILE"_s});
    parser.addOption({kWithdraw, u"Lets the terminal in no more; what it sent stays."_s});
}

/// Reads a private key into memory that is wiped.
SecureBytes readKey(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw Fault(u"%1 cannot be read: %2"_s.arg(path, file.errorString()));
    SecureBytes key(std::size_t(std::min<qint64>(file.size(), 65536)));
    const qint64 size = file.read(reinterpret_cast<char*>(key.data()), qint64(key.size()));
    key.resize(std::size_t(std::max<qint64>(size, 0)));
    if (!QByteArrayView(key.data(), qsizetype(key.size())).contains("PRIVATE KEY"))
        throw Fault(path + u" holds no private key"_s);
    return key;
}

QByteArray readCertificate(const QString& path, QSslCertificate* certificate) {
    QString error;
    const auto content = platform::readWholeFile(path, &error);
    if (!content) throw Fault(u"%1 cannot be read: %2"_s.arg(path, error));
    *certificate = QSslCertificate(*content, QSsl::Pem);
    if (certificate->isNull()) throw Fault(path + u" holds no certificate"_s);
    return *content;
}

QString roleOf(const QString& terminal) {
    return u"terminal_"_s + terminal;
}

/// What the options say of the way to the office, with a new password or the certificate.
Access readOptions(const QCommandLineParser& options, const QString& terminal) {
    const auto setting = [&](const QString& option) {
        return options.isSet(option) ? options.value(option) : connectionSetting(option);
    };
    Access access{.host = setting(kHost),
                  .port = setting(kPort),
                  .database = {},
                  .user = roleOf(terminal),
                  .password = {},
                  .authority = {},
                  .certificate = {},
                  .key = {}};
    if (access.host.isEmpty() || access.host.startsWith(u'/'))
        throw Fault(u"--host needs the name by which the terminals know the server"_s);
    if (!options.isSet(kAuthority))
        throw Fault(u"--authority needs the certificate that has signed the server's"_s);
    if (options.isSet(kCertificate) != options.isSet(kKey))
        throw Fault(u"--certificate and --key belong together"_s);
    QSslCertificate certificate;
    access.authority = readCertificate(options.value(kAuthority), &certificate);
    if (!options.isSet(kCertificate)) {
        access.password = randomPassword();
        return access;
    }
    access.certificate = readCertificate(options.value(kCertificate), &certificate);
    if (!certificate.subjectInfo(QSslCertificate::CommonName).contains(access.user))
        throw Fault(u"%1 is not for %2"_s.arg(options.value(kCertificate), access.user));
    access.key = readKey(options.value(kKey));
    return access;
}

/// The role, its rights and its credentials, as part of `work`.
void makeRole(pqxx::work& work, const Access& access) {
    const std::string role = work.quote_name(plain(access.user));
    if (work.exec_params("SELECT FROM pg_roles WHERE rolname = $1", plain(access.user)).empty())
        work.exec("CREATE ROLE " + role);
    // The server is told the verifier, never the password.
    const std::string password =
        access.password.isEmpty() ? "NULL" : work.quote(scramVerifier(access.password));
    work.exec("ALTER ROLE " + role + " LOGIN INHERIT NOCREATEROLE NOCREATEDB CONNECTION LIMIT 4 PASSWORD " +
              password);
    work.exec("GRANT rovana_terminal TO " + role);
    work.exec(
        (access.password.isEmpty() ? "GRANT rovana_certificate TO " : "REVOKE rovana_certificate FROM ") +
        role);
    // What hangs is ended rather than left to hold up the others.
    work.exec("ALTER ROLE " + role + " SET statement_timeout = '5min'");
    work.exec("ALTER ROLE " + role + " SET idle_in_transaction_session_timeout = '1min'");
}

/// Sends away whoever is logged in with what the terminal had before. The rest is done by then: a failure
/// says what is left.
Outcome endSessions(pqxx::connection& connection, const QString& role) try {
    pqxx::nontransaction work(connection);
    work.exec_params("SELECT pg_terminate_backend(pid, 5000) FROM pg_stat_activity WHERE usename = $1",
                     plain(role));
    return {};
} catch (const std::exception& fault) {
    return failure(u"who is logged in as %1 stays so until he leaves: %2"_s.arg(role, reasonOf(fault)));
}

Outcome withdraw(const Invocation& call, const QString& terminal) {
    const Connection connection = connectToOffice();
    {
        pqxx::work work(*connection);
        if (work.exec_params("SELECT FROM office.terminal WHERE terminal = $1", plain(terminal)).empty())
            return failure(u"terminal %1 is not enrolled"_s.arg(terminal));
        work.exec("ALTER ROLE " + work.quote_name(plain(roleOf(terminal))) + " NOLOGIN PASSWORD NULL");
        work.commit();
    }
    call.out << u"terminal %1 is let in no more; what it sent stays\n"_s.arg(terminal);
    return endSessions(*connection, roleOf(terminal));
}

Outcome enrol(const Invocation& call) {
    const QString& terminal = call.arguments[0];
    if (!cardhost::isTerminalNumber(terminal))
        return usageError(u"a terminal's number is one to ten digits, not \"%1\""_s.arg(terminal));
    if (call.options.isSet(kWithdraw)) return withdraw(call, terminal);
    const QStringList users = call.options.value(kUsers).split(u',', Qt::SkipEmptyParts);
    const auto isId = [](const QString& id) { return id.size() == 1 && id[0] >= u'A' && id[0] <= u'Z'; };
    if (users.isEmpty() || !std::ranges::all_of(users, isId))
        return usageError(u"--users needs the salesmen's ids, each one letter, A to Z, such as A,B"_s);
    Access access = readOptions(call.options, terminal);
    const Connection connection = connectToOffice();
    access.database = QString::fromUtf8(connection->dbname());
    if (access.port.isEmpty()) access.port = QString::fromUtf8(connection->port());

    const QString path =
        call.options.isSet(kOut) ? call.options.value(kOut) : u"terminal-%1.conf"_s.arg(terminal);
    const SecureBytes text = accessText(access);
    platform::WholeFile file(path);
    pqxx::work work(*connection);
    makeRole(work, access);
    work.exec_params(
        "INSERT INTO office.terminal (terminal, role_name, users) VALUES ($1, $2, $3::text[]) "
        "ON CONFLICT (terminal) DO UPDATE SET users = excluded.users, enrolled_at = now(), salesmen = NULL",
        plain(terminal), plain(access.user), textArray(users));
    // On the disk before the credentials of before are gone.
    if (!file.write(QByteArrayView(text.data(), qsizetype(text.size()))))
        return failure(u"%1 cannot be written: %2; nothing has changed"_s.arg(path, file.errorText()));
    work.commit();
    if (!file.takeName())
        return failure(
            u"%1 cannot be written: %2; enrol the terminal once more"_s.arg(path, file.errorText()));
    call.out << u"terminal %1 is enrolled for %2; %3 is its key to the office: bring it to the terminal as "
                "office.conf in its device folder, and leave no copy\n"_s.arg(terminal, users.join(u", "_s),
                                                                              path);
    return endSessions(*connection, access.user);
}

}  // namespace

constinit const Command kEnrolCommand{u"enrol",
                                      u"TERMINAL",
                                      u"lets a terminal in and writes the file that it needs",
                                      u"Makes the role terminal_NUMBER with a new password, or for a "
                                      u"certificate, and writes where the office is, how\n"
                                      u"the terminal proves who it is, and by whom the server's certificate "
                                      u"must be signed. A terminal that is\n"
                                      u"enrolled already gets the salesmen and credentials that are named "
                                      u"now, and the ones of before end; so does\n"
                                      u"a terminal that is lost, with --withdraw.",
                                      1,
                                      1,
                                      addEnrolOptions,
                                      enrol};

}  // namespace office
