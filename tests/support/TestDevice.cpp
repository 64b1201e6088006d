#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QStringBuilder>

#include "db/Schema.h"
#include "platform/Device.h"
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
    QString script = u"PRAGMA synchronous=OFF; PRAGMA journal_mode=WAL; BEGIN;"_s;
    for (const db::schema::Table& table : db::schema::tables()) {
        QStringList columns;
        for (const QStringView column : table.columns) columns << column % u" TEXT"_s;
        script += u"CREATE TABLE "_s % table.name % u" ("_s % columns.join(u", "_s) % u");"_s;
    }
    for (const db::schema::Index& index : db::schema::indexes()) {
        script +=
            u"CREATE INDEX "_s % index.name % u" ON "_s % index.table % u" ("_s % index.columns % u");"_s;
    }
    script += u"COMMIT;"_s;
    sqlite3* handle = nullptr;
    EXPECT_EQ(sqlite3_open(databaseFile().toUtf8().constData(), &handle), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(handle, script.toUtf8().constData(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(handle);
    sqlite3_close(handle);
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
    QList<QStringList> found;
    sqlite3* handle = nullptr;
    sqlite3_stmt* prepared = nullptr;
    EXPECT_EQ(sqlite3_open_v2(databaseFile().toUtf8().constData(), &handle, SQLITE_OPEN_READWRITE, nullptr),
              SQLITE_OK);
    sqlite3_busy_timeout(handle, 2000);
    sqlite3_exec(handle, "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr);
    const QByteArray script = statement.toUtf8();
    for (const char* next = script.constData(); *next != '\0';) {
        EXPECT_EQ(sqlite3_prepare_v2(handle, next, -1, &prepared, &next), SQLITE_OK)
            << sqlite3_errmsg(handle);
        for (int i = 0; i < values.size(); ++i) {
            const QByteArray text = values[i].toUtf8();
            sqlite3_bind_text(prepared, i + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
        }
        int result = prepared ? sqlite3_step(prepared) : SQLITE_DONE;
        for (; result == SQLITE_ROW; result = sqlite3_step(prepared)) {
            QStringList row;
            for (int column = 0; column < sqlite3_column_count(prepared); ++column) {
                row << QString::fromUtf8(
                    reinterpret_cast<const char*>(sqlite3_column_text(prepared, column)));
            }
            found << row;
        }
        EXPECT_EQ(result, SQLITE_DONE) << sqlite3_errmsg(handle);
        sqlite3_finalize(prepared);
    }
    sqlite3_close(handle);
    return found;
}

}  // namespace test
