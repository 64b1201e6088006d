#include "rovana-office/demo/Cluster.h"

#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTcpServer>
#include <cerrno>
#include <pqxx/pqxx>
#include <stdexcept>

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Where Debian keeps the server's programs: none of them is in the path. The newest version's.
QString serverPrograms() {
    const QDir versions(u"/usr/lib/postgresql"_s);
    const QStringList names = versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        const QString folder = versions.filePath(*name) + u"/bin"_s;
        if (QFile::exists(folder + u"/initdb"_s) && QFile::exists(folder + u"/postgres"_s)) return folder;
    }
    const QString found = QStandardPaths::findExecutable(u"initdb"_s);
    return found.isEmpty() ? found : QFileInfo(found).path();
}

const QString kFolderName = u"rovana-postgresql-%1-"_s;

/// Removes what programs of tests that were killed have left there; each folder has its program's number.
void sweep(const QDir& place) {
    for (const QString& name : place.entryList({kFolderName.arg(u"*"_s) + u"*"_s}, QDir::Dirs)) {
        const int program = name.section(u'-', 2, 2).toInt();
        if (program > 0 && ::kill(program, 0) != 0 && errno == ESRCH)
            QDir(place.filePath(name)).removeRecursively();
    }
}

/// Memory where there is enough of it; a disk would cost seconds.
QString placeOfFolder() {
    const QStorageInfo memory(u"/dev/shm"_s);
    const bool hasRoom = memory.rootPath() == u"/dev/shm" && memory.bytesAvailable() > 1'000'000'000;
    const QDir place(hasRoom ? memory.rootPath() : QDir::tempPath());
    sweep(place);
    return place.filePath(kFolderName.arg(::getpid()) + u"XXXXXX"_s);
}

QString unprivilegedUser() {
    if (::geteuid() != 0) return {};
    for (const char* name : {"postgres", "nobody"}) {
        if (::getpwnam(name) != nullptr) return QString::fromLatin1(name);
    }
    throw std::runtime_error("there is no user that could run a server");
}

int freePort() {
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost)) throw std::runtime_error("no port is free");
    return server.serverPort();
}

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

}  // namespace

bool Cluster::isThere() {
    return !serverPrograms().isEmpty();
}

Cluster& Cluster::instance() {
    static Cluster cluster;
    return cluster;
}

Cluster::Cluster() : folder_(placeOfFolder()), owner_(unprivilegedUser()) {
    if (!folder_.isValid()) throw std::runtime_error(folder_.errorString().toStdString());
    makeCertificates();
    if (!owner_.isEmpty()) run({u"chown"_s, u"-R"_s, owner_, folder_.path()});
    run(asOwner({serverPrograms() + u"/initdb"_s, u"--pgdata"_s, folder_.filePath(u"data"_s), u"--username"_s,
                 u"postgres"_s, u"--encoding"_s, u"UTF8"_s, u"--locale"_s, u"C.UTF-8"_s, u"--lc-collate"_s,
                 u"C"_s, u"--auth"_s, u"trust"_s, u"--no-sync"_s, u"--no-instructions"_s}));
    writeConfiguration();
    start();
}

Cluster::~Cluster() {
    if (server_ == nullptr) return;
    ::kill(pid_t(server_->processId()), SIGINT);
    if (!server_->waitForFinished()) server_->kill();
}

QStringList Cluster::asOwner(const QStringList& command) const {
    QStringList all;
    if (!owner_.isEmpty()) {
        const passwd* user = ::getpwnam(owner_.toLocal8Bit().constData());
        all << u"setpriv"_s << u"--reuid=%1"_s.arg(user->pw_uid) << u"--regid=%1"_s.arg(user->pw_gid)
            << u"--clear-groups"_s;
    }
    // The signal stops the server when this program is killed, too. A change of the user would clear it.
    return all + QStringList{u"setpriv"_s, u"--pdeathsig"_s, u"INT"_s} + command;
}

void Cluster::run(const QStringList& command) {
    QProcess process;
    process.setWorkingDirectory(folder_.path());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished(120'000) || process.exitCode() != 0) {
        throw std::runtime_error(command.join(u' ').toStdString() + ": " + process.readAll().toStdString() +
                                 process.errorString().toStdString());
    }
}

std::pair<QString, QString> Cluster::makeCertificate(const QString& name) {
    const QString base = folder_.filePath(name);
    const QStringList keyOptions{u"-newkey"_s, u"ec"_s,    u"-pkeyopt"_s,   u"ec_paramgen_curve:prime256v1"_s,
                                 u"-nodes"_s,  u"-subj"_s, u"/CN="_s + name};
    run(QStringList{u"openssl"_s, u"req"_s, u"-keyout"_s, base + u".key"_s, u"-out"_s, base + u".csr"_s} +
        keyOptions);
    writeFile(base + u".ext"_s, "subjectAltName=DNS:" + name.toUtf8() + "\n");
    run({u"openssl"_s, u"x509"_s, u"-req"_s, u"-in"_s, base + u".csr"_s, u"-CA"_s, authority(), u"-CAkey"_s,
         folder_.filePath(u"ca.key"_s), u"-CAcreateserial"_s, u"-days"_s, u"2"_s, u"-extfile"_s,
         base + u".ext"_s, u"-out"_s, base + u".crt"_s});
    QFile::setPermissions(base + u".key"_s, QFile::ReadOwner | QFile::WriteOwner);
    return {base + u".crt"_s, base + u".key"_s};
}

void Cluster::makeCertificates() {
    run({u"openssl"_s, u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s,
         u"ec_paramgen_curve:prime256v1"_s, u"-nodes"_s, u"-subj"_s, u"/CN=Rovana test authority"_s,
         u"-days"_s, u"2"_s, u"-keyout"_s, folder_.filePath(u"ca.key"_s), u"-out"_s, authority()});
    makeCertificate(u"localhost"_s);
}

void Cluster::writeConfiguration() {
    port_ = freePort();
    const auto quoted = [&](QStringView name) { return u"'"_s + folder_.filePath(name.toString()) + u"'"_s; };
    const QStringList lines{
        u"listen_addresses = 'localhost'"_s, u"port = %1"_s.arg(port_),
        u"unix_socket_directories = '%1'"_s.arg(folder_.path()), u"ssl = on"_s,
        u"ssl_ca_file = "_s + quoted(u"ca.crt"), u"ssl_cert_file = "_s + quoted(u"localhost.crt"),
        u"ssl_key_file = "_s + quoted(u"localhost.key"), u"max_connections = 300"_s,
        u"shared_buffers = 64MB"_s, u"fsync = off"_s, u"full_page_writes = off"_s,
        u"synchronous_commit = off"_s, u"autovacuum = off"_s, u"max_wal_size = 256MB"_s,
        // Each connection would load it anew.
        u"shared_preload_libraries = 'plpgsql'"_s, u"timezone = 'Asia/Seoul'"_s, u"lc_messages = 'C'"_s};
    writeFile(folder_.filePath(u"data/postgresql.conf"_s), lines.join(u'\n').toUtf8() + '\n');
    writeFile(folder_.filePath(u"data/pg_hba.conf"_s),
              "local all postgres trust\n"
              "hostssl all +rovana_certificate localhost cert\n"
              "hostssl all all localhost scram-sha-256\n");
}

void Cluster::start() {
    server_ = std::make_unique<QProcess>();
    server_->setStandardErrorFile(folder_.filePath(u"log"_s), QIODevice::Append);
    const QStringList command =
        asOwner({serverPrograms() + u"/postgres"_s, u"-D"_s, folder_.filePath(u"data"_s)});
    server_->setWorkingDirectory(folder_.path());
    server_->start(command.first(), command.mid(1));
    const QStringList isReady{serverPrograms() + u"/pg_isready"_s, u"-h"_s, folder_.path(), u"-p"_s,
                              QString::number(port_)};
    const QDeadlineTimer deadline(60'000);
    while (QProcess::execute(isReady.first(), isReady.mid(1) + QStringList{u"-q"_s}) != 0) {
        if (deadline.hasExpired() || server_->waitForFinished(1))
            throw std::runtime_error("the server did not start: " + log().toStdString());
    }
}

void Cluster::kill() {
    ::kill(pid_t(server_->processId()), SIGQUIT);
    server_->waitForFinished();
}

QString Cluster::administrator(const QString& database) const {
    return u"host=%1 port=%2 user=postgres dbname=%3"_s.arg(folder_.path()).arg(port_).arg(database);
}

QString Cluster::createDatabase(const QString& from) {
    const QString name = u"test%1"_s.arg(++databases_);
    pqxx::connection connection(administrator(u"postgres"_s).toStdString());
    pqxx::nontransaction work(connection);
    work.exec("CREATE DATABASE " + name.toStdString() + " TEMPLATE " + from.toStdString());
    return name;
}

QByteArray Cluster::log() const {
    QFile file(folder_.filePath(u"log"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace office
