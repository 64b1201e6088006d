#pragma once

#include <QFileSystemWatcher>
#include <QList>
#include <QObject>

#include "platform/termdev/PaperLine.h"

namespace desk {

/// Tells of the paper as it comes out, whichever program of the device folder prints it.
class RollFollower : public QObject {
    Q_OBJECT

  public:
    explicit RollFollower(QObject* parent = nullptr);

    /// The paper printed before, at most the last 64 KiB of roll.txt. Call once; what comes later is
    /// signalled.
    QList<platform::termdev::PaperLine> earlierPaper();

  Q_SIGNALS:
    void printed(const QList<platform::termdev::PaperLine>& lines);

  private:
    QList<platform::termdev::PaperLine> readOn();
    void look();

    QFileSystemWatcher watcher_;
    qint64 read_ = 0;   ///< Bytes of roll.txt that have been read.
    quint64 file_ = 0;  ///< Its number in the file system; 0 while there is none.
};

}  // namespace desk
