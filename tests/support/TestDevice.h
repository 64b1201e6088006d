#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QTemporaryDir>
#include <initializer_list>
#include <utility>

namespace test {

/// A fresh device folder with the handheld's folders and an empty database, tables and indexes made. It is
/// the process's device folder while the object lives and is removed with it. Rows go in and come out past
/// the code under test; a statement that fails is a test failure.
class TestDevice {
  public:
    using Field = std::pair<QStringView, QStringView>;  ///< Column name and text.

    TestDevice();
    ~TestDevice();
    TestDevice(const TestDevice&) = delete;
    TestDevice& operator=(const TestDevice&) = delete;

    QString folder() const { return folder_.path(); }

    QString databaseFile() const;

    /// Adds one row; columns that are not named are empty texts.
    void insert(QStringView table, std::initializer_list<Field> fields);

    /// Runs any statements of SQLite, `;` between them.
    void execute(const QString& script);

    /// Every row of a SELECT; NULL reads as an empty text.
    QList<QStringList> rows(const QString& select);

    /// The first column of the first row; empty when there is none.
    QString value(const QString& select);

    /// Writes a file at a handheld path such as "\My Documents\MTM.RVN", replacing one that is there.
    void writeFile(QStringView handheldPath, const QByteArray& content);

  private:
    QList<QStringList> run(const QString& statement, const QStringList& values);

    QTemporaryDir folder_;
    QString before_;
};

}  // namespace test
