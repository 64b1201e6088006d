#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <memory>

#include "platform/FolderLock.h"

namespace platform {

/// Keeps the device folder to one terminal: two that work on one folder would share the slip that is being
/// written.
class TerminalLock : public QObject {
    Q_OBJECT

  public:
    /// Takes the device folder's lock, if it is free.
    TerminalLock();
    ~TerminalLock() override;

    /// True when another terminal has the folder.
    bool isTaken() const { return lock_.state() == FolderLock::State::Taken; }

    /// Tells the terminal that has the folder that it was started again. False when none listens.
    static bool callHolder();

  Q_SIGNALS:
    /// Somebody started a terminal on this one's folder and looks for its window.
    void startedAgain();

  private:
    bool listen();

    FolderLock lock_;
    int listener_ = -1;
    QString path_;
    std::unique_ptr<QSocketNotifier> calls_;
};

}  // namespace platform
