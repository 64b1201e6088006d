#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "db/ImportFile.h"
#include "db/RejectedLines.h"
#include "platform/FolderLock.h"

namespace db {

/// What became of one file.
struct ImportResult {
    enum class Outcome {
        Loaded,         ///< Its lines are in the table and the file is gone.
        Unchanged,      ///< The table held the lines of the very same content already; the file is gone.
        AlreadyLoaded,  ///< An earlier run had loaded it and was stopped before deleting it; now it is gone.
        NotOpened,      ///< It could not be opened; nothing was done.
        BeingWritten,   ///< Another program writes it; table and file are as they were.
        NotSaved,       ///< The database did not take the lines; table and file are as they were.
    };
    Outcome outcome = Outcome::NotOpened;
    int lines = 0;                      ///< Lines in the file.
    int loaded = 0;                     ///< Lines that are rows now.
    int rejected = 0;                   ///< Lines kept aside.
    QString keptIn;                     ///< The file on disk, or the table, where those are.
    QList<RejectedLine> firstRejected;  ///< A few of them.
    bool isLastLineCut = false;         ///< It had no line end and fewer fields than its table.
    bool isDeleted = true;  ///< False when the loaded file could not be deleted; it is not loaded again.

    /// Whether what the file holds is in the table.
    bool isInTable() const {
        return outcome == Outcome::Loaded || outcome == Outcome::Unchanged ||
               outcome == Outcome::AlreadyLoaded;
    }
};

/// The file on disk beside an import file in which its rejected lines are kept.
QString rejectedPath(const ImportFile& file, ImportSource source);

/// A master table's rows now and after loading its file.
struct Shrinkage {
    int rows;
    int lines;
};

/// Set when loading the file would empty its table, which has rows, or take away more than half of them.
std::optional<Shrinkage> findShrinkage(const ImportFile& file, ImportSource source);

/// Number of lines in the file as loading counts them; nothing when it cannot be opened. A line longer than
/// 1023 bytes counts as several.
std::optional<int> countImportLines(const ImportFile& file, ImportSource source);

/// Held by whoever loads files or puts some, so that no two programs do at the same time.
class ImportLock {
  public:
    /// Waits up to `patienceMs` for a program that has it now.
    explicit ImportLock(int patienceMs = 0);
    /// True when another program loads files now.
    bool isTaken() const { return lock_->state() == platform::FolderLock::State::Taken; }

  private:
    std::optional<platform::FolderLock> lock_;
};

/// Loads one file into its table and deletes it. Stopped at any moment, the table holds the rows from before
/// or all of the file's, and the next run loads a file that is still there only if it had not been loaded.
/// `progress(done, count)` is called after each line.
ImportResult importFile(const ImportFile& file, ImportSource source,
                        const std::function<void(int done, int count)>& progress);

}  // namespace db
