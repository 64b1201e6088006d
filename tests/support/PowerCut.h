#pragma once

#include <sys/stat.h>

#include <QByteArray>
#include <QString>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <vector>

namespace test {

/// What a folder holds: names of files and folders, and what stands in the files.
struct DiskState {
    std::map<QByteArray, int> names;  ///< Paths within the folder, and the number of the file there.
    std::set<QByteArray> folders;
    std::vector<QByteArray> contents;  ///< By the file's number.
    std::map<int, timespec> modified;  ///< When, of files that were there at first.

    /// Makes the folder `path` hold just this.
    void writeTo(const QString& path) const;
};

class CallRecorder;

/// Writes down what this process does to the files of a folder, and works out what a disk may hold of it when
/// the power goes: whatever was synced, and any part of what was not. A file is written in sectors of 512
/// bytes, of which each is on the disk or not; a name is there, moved or gone once its folder was synced, and
/// until then perhaps. The memory that processes share beside a database is gone.
class PowerCut {
  public:
    /// From here on until finish().
    explicit PowerCut(const QString& folder);
    ~PowerCut();
    PowerCut(const PowerCut&) = delete;
    PowerCut& operator=(const PowerCut&) = delete;

    /// How many calls were written down so far; the power may go before each and after the last.
    int calls() const;
    /// Those of them that are no writing: syncs, and names that come and go.
    std::vector<int> turningPoints() const;
    void finish();

    /// What the disk may hold when the power goes before call `before`; each part of what was not synced is
    /// there with a likelihood of `percent`.
    DiskState stateBefore(int before, int percent, std::mt19937& random) const;

  private:
    std::unique_ptr<CallRecorder> recorder_;
};

}  // namespace test
