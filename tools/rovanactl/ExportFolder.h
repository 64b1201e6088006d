#pragma once

#include <QByteArrayView>
#include <QFile>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

namespace admin {

/// The files of an export. They are written into a folder beside the one that is asked for, which takes its
/// place as a whole: whoever looks finds all files of one export or none of it, whenever a run was stopped.
class ExportFolder {
  public:
    /// `names` are all files of the folder.
    ExportFolder(const QString& path, const QStringList& names);

    /// Removes what was not committed.
    ~ExportFolder();
    Q_DISABLE_COPY_MOVE(ExportFolder)

    /// Makes the files, empty. Returns what is wrong, empty when nothing is: the folder holds anything but
    /// these files, another export is writing it, or it cannot be made.
    QString begin();

    /// Adds to the file with that place in `names`. A failure shows in commit().
    void write(std::size_t file, QByteArrayView bytes);

    /// Puts the files in place for good. Returns what is wrong, empty when they are there; the folder is as
    /// it was then.
    QString commit();

  private:
    void removeFolder(const QString& path) const;

    QString path_;
    QStringList names_;
    QString unfinished_;
    QString replaced_;
    int parent_ = -1;  ///< The folder around, open and locked; -1 before begin().
    std::vector<std::unique_ptr<QFile>> files_;
    bool isWritten_ = true;
};

}  // namespace admin
