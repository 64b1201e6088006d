#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <optional>

namespace platform::termdev {

/// The print jobs that the printer has not taken yet, each a file of its bytes in a folder of the
/// device folder. A file is on disk before it counts as a job, and is named by its number, so the jobs
/// survive any end of the program and keep their order. Names are NUMBER.STAGE:
/// - job: kept, nothing sent yet;
/// - begun: part of it may be on paper;
/// - handed: the printer has all of it, only its farewell is awaited. Found without its program, it went out.
class PrintSpool {
  public:
    enum class Stage { Job, Begun, Handed };
    struct Entry {
        int number;
        Stage stage;
    };

    /// `name` is the folder's.
    explicit PrintSpool(QStringView name = u"spool");
    ~PrintSpool();
    Q_DISABLE_COPY_MOVE(PrintSpool)

    /// Keeps a job behind all others. False, traced, when the disk does not take it.
    bool add(QByteArrayView job);

    /// Jobs that are still to be sent.
    int count() const;

    /// Makes this the one sender of the folder, for several programs may share it. False while there is
    /// another one, errno is then EWOULDBLOCK; any other says why the folder cannot be locked. A program's
    /// end lets go of it.
    bool lock();
    void unlock();

    /// The job to send next; drops those that went out under another program. Only with the lock.
    std::optional<Entry> oldest();
    /// The job's bytes; nothing when they cannot be read.
    std::optional<QByteArray> read(const Entry& entry) const;
    void mark(Entry* entry, Stage stage);
    /// True when the job is out of the folder, so that it cannot be sent again.
    bool remove(const Entry& entry);

  private:
    QList<Entry> entries() const;
    QString path(const Entry& entry) const;

    QString folder_;
    int lock_ = -1;
};

}  // namespace platform::termdev
