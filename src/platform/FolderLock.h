#pragma once

#include <QString>

namespace platform {

/// A lock on a folder that other processes see. It is the kernel's and goes with the process, however that
/// ends; it needs no file in the folder, and works where nothing can be written.
class FolderLock {
  public:
    enum class State {
        Held,
        Taken,     ///< Somebody else has it.
        Unlocked,  ///< There is no such folder, or its file system knows no locks; traced.
    };

    /// Takes the lock if it is free.
    explicit FolderLock(const QString& folder);
    ~FolderLock();
    Q_DISABLE_COPY_MOVE(FolderLock)

    State state() const { return state_; }

  private:
    int folder_;
    State state_ = State::Unlocked;
};

}  // namespace platform
