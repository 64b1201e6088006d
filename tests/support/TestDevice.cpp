#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStringBuilder>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/adoce/DatabaseFile.h"

namespace test {

using namespace Qt::Literals::StringLiterals;

TestDevice::TestDevice() : before_(platform::device::folder()) {
    platform::device::setFolder(folder_.path());
    for (const QStringView path : {platform::device::kDocumentsFolder, platform::device::kStorageCardFolder,
                                   QStringView(u"\\Flash Disk\\")}) {
        QDir().mkpath(platform::device::path(path));
    }
    // One script: a single open, and nothing that waits for the disk.
    platform::SqliteFile file(databaseFile(), platform::SqliteFile::Mode::Create);
    EXPECT_TRUE(file.execute(u"PRAGMA synchronous=OFF; PRAGMA journal_mode=WAL; BEGIN;"_s %
                             db::schema::createStatements() % u"COMMIT"_s))
        << file.errorText().toStdString();
}

TestDevice::~TestDevice() {
    platform::adoce::DatabaseFile::forgetAll();
    platform::device::setFolder(before_);
}

QString TestDevice::databaseFile() const {
    return platform::device::path(platform::device::kDatabaseFile);
}

void TestDevice::insert(QStringView table, std::initializer_list<Field> fields) {
    const db::schema::Table* found = db::schema::findTable(table);
    ASSERT_NE(found, nullptr) << "no table " << table.toUtf8().toStdString();
    QStringList values;
    for (qsizetype i = 0; i < qsizetype(found->columns.size()); ++i) values << u""_s;
    for (const auto& [name, value] : fields) {
        qsizetype at = 0;
        for (const QStringView column : found->columns) {
            if (column.compare(name, Qt::CaseInsensitive) == 0) break;
            ++at;
        }
        ASSERT_LT(at, values.size()) << "no column " << name.toUtf8().toStdString();
        values[at] = value.toString();
    }
    const QString places = QStringList(values.size(), u"?"_s).join(u',');
    run(u"INSERT INTO "_s % found->name % u" VALUES ("_s % places % u')', values);
}

void TestDevice::execute(const QString& script) {
    run(script, {});
}

QList<QStringList> TestDevice::rows(const QString& select) {
    return run(select, {});
}

QString TestDevice::value(const QString& select) {
    const QList<QStringList> found = rows(select);
    return found.isEmpty() || found.first().isEmpty() ? QString() : found.first().first();
}

void TestDevice::writeFile(QStringView handheldPath, const QByteArray& content) {
    QFile file(platform::device::path(handheldPath));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(content), content.size());
}

QList<QStringList> TestDevice::run(const QString& statement, const QStringList& values) {
    platform::SqliteFile file(databaseFile(), platform::SqliteFile::Mode::Existing);
    file.execute(u"PRAGMA synchronous=OFF"_s);
    const auto found = file.rows(statement, values);
    EXPECT_TRUE(found) << file.errorText().toStdString();
    return found.value_or(QList<QStringList>());
}

}  // namespace test
