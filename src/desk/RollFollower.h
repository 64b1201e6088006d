#pragma once

#include <QFileSystemWatcher>
#include <QList>
#include <QObject>

#include "platform/termdev/PaperLine.h"
#include "platform/termdev/PaperRoll.h"

namespace desk {

/// Tells of the paper as it comes out, whichever program of the device folder prints it.
class RollFollower : public QObject {
    Q_OBJECT

  public:
    explicit RollFollower(QObject* parent = nullptr);

    /// The paper printed before, at most the last 64 KiB of roll.txt. Call once; what comes later is
    /// signalled, also when the roll turns over.
    QList<platform::termdev::PaperLine> earlierPaper();

  Q_SIGNALS:
    void printed(const QList<platform::termdev::PaperLine>& lines);

  private:
    QList<platform::termdev::PaperLine> readOn();
    void look();

    QFileSystemWatcher watcher_;
    platform::termdev::RollReader roll_;
};

}  // namespace desk
