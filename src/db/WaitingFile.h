#pragma once

#include <sys/stat.h>

#include <QByteArray>
#include <QString>

namespace db {

/// A waiting file of the office while it is loaded: what is read is what is deleted. It holds a read lease on
/// the file, which the kernel gives only while nobody has it open for writing, and which reports as soon as
/// somebody wants to. Where the file system or the file's owner gives none, the open files of the processes
/// that can be seen are looked through instead.
class WaitingFile {
  public:
    enum class State {
        Read,
        Missing,       ///< It is not there, or cannot be opened for reading and writing.
        BeingWritten,  ///< Another process has it open for writing: what is there may be a part.
    };

    /// Reads the file at `path`.
    explicit WaitingFile(const QString& path);
    ~WaitingFile();
    Q_DISABLE_COPY_MOVE(WaitingFile)

    /// True when a file waits at `path` that can be read and written; nothing is opened, which would disturb
    /// who loads or writes it.
    static bool isAt(const QString& path);

    /// Whether it is the same file with the same content; also by the time of change, which no program can
    /// set.
    static bool isUnchanged(const struct stat& one, const struct stat& other);

    State state() const { return state_; }
    const QString& path() const { return path_; }
    const QByteArray& content() const { return content_; }
    /// Time of its last change, in milliseconds since 1970.
    qint64 modified() const;

    /// Whether the path still leads to the very file that was read, as it was then, and nobody writes it.
    bool isUntouched() const;

    /// Deletes it and waits until the folder on disk knows it, so that a loaded file cannot come back after a
    /// loss of power. False when it may; an other file of that name stays.
    bool removeForGood();

  private:
    bool isWritten() const;

    QString path_;
    int file_ = -1;
    bool hasLease_ = false;
    struct stat status_ {};
    State state_ = State::Missing;
    QByteArray content_;
};

}  // namespace db
