#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <pqxx/pqxx>

#include "platform/WholeFile.h"
#include "rovana-office/Command.h"
#include "rovana-office/demo/Cluster.h"
#include "tools/Ended.h"

namespace test {

using office::Cluster;

class OfficeTest : public ::testing::Test {
  protected:
    OfficeTest();

    static Cluster& cluster() { return Cluster::instance(); }
    QString connection() const { return cluster().administrator(database_); }
    const QString& database() const { return database_; }

    Ended run(const QStringList& arguments) const { return runOn(connection(), arguments); }
    static Ended runOn(const QString& connection, const QStringList& arguments);

    /// Runs statements as the administrator; the rows of the last, columns joined by "|".
    QStringList sql(const QString& statements) const;

    QString writeFile(const QString& name, const QByteArray& content);
    static QByteArray readFile(const QString& path) {
        return platform::readWholeFile(path).value_or(QByteArray());
    }
    QString path(const QString& name) const { return folder_.filePath(name); }

  private:
    QTemporaryDir folder_;
    QString database_;
};

}  // namespace test
