#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "db/ImportFile.h"

namespace db {

/// What became of one file.
struct ImportResult {
    enum class Outcome {
        Loaded,         ///< Its lines are in the table and the file is gone.
        AlreadyLoaded,  ///< An earlier run had loaded it and was stopped before deleting it; now it is gone.
        NotOpened,      ///< It could not be opened; nothing was done.
        NotSaved,       ///< The database did not take the lines; table and file are as they were.
    };
    Outcome outcome = Outcome::NotOpened;
    int lines = 0;          ///< Lines in the file.
    int loaded = 0;         ///< Lines that became rows.
    int rejected = 0;       ///< Lines kept aside in NAME.RVN.rejected.
    bool isDeleted = true;  ///< False when the loaded file could not be deleted; it is not loaded again.
};

/// Number of lines in the file as loading counts them; nothing when it cannot be opened. A line longer than
/// 1023 bytes counts as several.
std::optional<int> countImportLines(const ImportFile& file, ImportSource source);

/// Loads one file into its table and deletes it. Stopped at any moment, the table holds the rows from before
/// or all of the file's, and the next run loads a file that is still there only if it had not been loaded.
/// `progress(done, count)` is called after each line.
ImportResult importFile(const ImportFile& file, ImportSource source,
                        const std::function<void(int done, int count)>& progress);

}  // namespace db
