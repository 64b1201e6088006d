#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace bench {

/// A device folder of a measurement, with the handheld's folders and an empty database of the system's tables
/// and indexes. It is the process's device folder until another one is made or used, and is removed with the
/// object.
class Folder {
  public:
    Folder();
    ~Folder();
    Q_DISABLE_COPY_MOVE(Folder)

    /// Makes it the process's device folder again.
    void use() const;

    QString path(const QString& name) const { return folder_.filePath(name); }

    /// The database file on disk, while the folder is the process's.
    QString databaseFile() const;

    /// Replaces the database by an empty one; no handle on it may be open but the pooled ones.
    void emptyDatabase() const;

    /// Makes an empty database of the system's tables and indexes at `path`, replacing what is there.
    static void makeDatabase(const QString& path);

  private:
    QTemporaryDir folder_;
};

/// Writes the file, replacing one that is there.
void writeFile(const QString& path, const QByteArray& content);

}  // namespace bench
