#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace office {

/// A PostgreSQL of the program's own, for a demonstration, tests and measurements: a fresh cluster in a
/// temporary folder, on a socket there and on a port of this machine, where it takes TLS alone. As root it
/// runs as an unprivileged user. It ends with this program, however that ends. What it holds is not kept from
/// a loss of power.
class Cluster {
  public:
    /// The one of this program, started at the first call. Throws std::runtime_error when it does not start.
    static Cluster& instance();
    /// Whether PostgreSQL's server programs are on this machine.
    static bool isThere();

    Cluster();
    ~Cluster();
    Q_DISABLE_COPY_MOVE(Cluster)

    /// How the administrator connects to the database, through the socket.
    QString administrator(const QString& database) const;
    int port() const { return port_; }
    /// The certificate of the authority that has signed the server's.
    QString authority() const { return folder_.filePath(QStringLiteral("ca.crt")); }
    /// Signs a new certificate for that name; returns the files of certificate and key.
    std::pair<QString, QString> makeCertificate(const QString& name);

    /// A new database, made as a copy of `from`; dropped by nobody, since it goes with the cluster.
    QString createDatabase(const QString& from = QStringLiteral("template1"));

    /// All that the server has logged until now.
    QByteArray log() const;

    /// Kills the server and starts it again on the same files; or only one of the two.
    void kill();
    void start();

  private:
    QStringList asOwner(const QStringList& command) const;
    void run(const QStringList& command);
    void makeCertificates();
    void writeConfiguration();

    QTemporaryDir folder_;
    QString owner_;  ///< Empty where this process may run a server itself.
    int port_ = 0;
    int databases_ = 0;
    std::unique_ptr<QProcess> server_;
};

}  // namespace office
