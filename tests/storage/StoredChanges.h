#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <span>

#include "support/TestDevice.h"

/// A device with one saved and one working slip of each kind, and every change that the terminal makes to it.
namespace test {

struct Change {
    const char* name;
    std::function<bool()> make;  ///< Whether it says that it was made.
};

std::span<const Change> storedChanges();

class StoredChangesTest : public testing::Test {
  protected:
    StoredChangesTest();

    /// Back to the beginning, everything closed.
    void reset();

    /// Every row of every table of a database but those of the import's ledger and, unless asked for, of the
    /// working tables. The file has to be sound.
    static QStringList everythingIn(const QString& databaseFile, bool alsoWorking = true);
    QStringList everything() { return everythingIn(device_.databaseFile()); }

    TestDevice device_;
    QByteArray fresh_;
};

}  // namespace test
