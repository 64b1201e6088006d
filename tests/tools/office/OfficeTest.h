#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTextStream>
#include <pqxx/pqxx>

#include "rovana-office/Command.h"
#include "support/PrintQt.h"
#include "tools/office/Cluster.h"

namespace test {

using namespace Qt::Literals::StringLiterals;

struct OfficeEnded {
    int exitCode;
    std::string out;
    std::string err;
};

/// An office of the test's own, with its tables and nothing in them.
class OfficeTest : public ::testing::Test {
  protected:
    OfficeTest();

    static Cluster& cluster() { return Cluster::instance(); }
    QString connection() const { return cluster().administrator(database_); }
    const QString& database() const { return database_; }

    /// Runs rovana-office on it.
    OfficeEnded run(const QStringList& arguments) const { return runOn(database_, arguments); }
    static OfficeEnded runOn(const QString& database, const QStringList& arguments);

    /// Runs statements as the administrator; the rows of the last, columns joined by "|".
    QStringList sql(const QString& statements) const;
    /// Puts one row into a table of the office, columns that are not named as they are by default.
    void insert(const QString& table, const QList<std::pair<QString, QString>>& fields) const;

    QString writeFile(const QString& name, const QByteArray& content);
    QString path(const QString& name) const { return folder_.filePath(name); }

  private:
    QTemporaryDir folder_;
    QString database_;
};

}  // namespace test
