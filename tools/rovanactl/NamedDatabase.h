#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QTemporaryDir>
#include <optional>

namespace admin {

/// The database that --database names, an archive or a backup, in the place of the terminal's for a command
/// that only reads. What is read is a copy, for this object's life: the file may lie on a medium that cannot
/// be written, and nothing of it changes.
class NamedDatabase {
  public:
    static void addOption(QCommandLineParser& parser);

    /// Without the option the terminal's own stays.
    explicit NamedDatabase(const QCommandLineParser& options);
    ~NamedDatabase();
    Q_DISABLE_COPY_MOVE(NamedDatabase)

    /// What is wrong with the file; empty when it can be read.
    const QString& error() const { return error_; }

  private:
    std::optional<QTemporaryDir> folder_;
    QString before_;
    QString error_;
};

}  // namespace admin
