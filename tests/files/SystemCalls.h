#pragma once

#include <QString>
#include <QStringList>

namespace test {

/// While it lives, the calls of this process that change files in a folder, or below it, go through here:
/// they are noted, and one of them may fail. Databases and locks are left alone.
class SystemCalls {
  public:
    explicit SystemCalls(const QString& folder);
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    /// What was called since the last time, such as "write a.txt.unfinished", "sync a.txt.unfinished",
    /// "rename a.txt", "sync ." and "remove a.txt.unfinished", names relative to the folder.
    QStringList take();

    /// The `number`th noted call from here on, counted from 0, finds a broken disk.
    void failAt(int number);
    /// No write takes more than so many bytes.
    void shortenWrites(qsizetype bytes);
};

}  // namespace test
