#pragma once

#include <QDate>
#include <QFile>
#include <QProcess>
#include <memory>
#include <vector>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/FolderLock.h"
#include "platform/Sqlite.h"
#include "support/TestDevice.h"
#include "tools/office/OfficeTest.h"

namespace test {

/// Terminals with an office. Each has a device folder of its own; the real rovana-sync runs on it.
class SyncTest : public OfficeTest {
  protected:
    SyncTest() : before_(platform::device::folder()) {}
    ~SyncTest() override {
        terminals_.clear();
        platform::device::setFolder(before_);
    }

    /// A new terminal of that number, enrolled for those users; the ones after it begin empty as well.
    TestDevice& enrol(const QString& number, const QStringList& users = {u"A"_s}, int port = 0) {
        terminals_.push_back(std::make_unique<TestDevice>());
        enrolFolder(terminals_.back()->folder(), number, users, port);
        return *terminals_.back();
    }
    /// Lets a device folder in; its terminal reaches the server through `port` when that is above 0.
    void enrolFolder(const QString& folder, const QString& number, const QStringList& users, int port = 0) {
        const QString path = folder + u"/office.conf"_s;
        const OfficeEnded ended =
            run({u"enrol"_s, number, u"--users"_s, users.join(u','), u"--host"_s, u"localhost"_s,
                 u"--authority"_s, cluster().authority(), u"--out"_s, path});
        ASSERT_EQ(ended.exitCode, 0) << ended.err;
        if (port > 0)
            changeAccess(folder, "port = " + QByteArray::number(cluster().port()),
                         "port = " + QByteArray::number(port));
    }
    static void changeAccess(const QString& folder, const QByteArray& before, const QByteArray& after) {
        QFile file(folder + u"/office.conf"_s);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const QByteArray text = file.readAll().replace(before, after);
        file.resize(0);
        file.seek(0);
        file.write(text);
    }

    OfficeEnded syncFolder(const QString& folder, const QStringList& arguments = {}) const {
        QProcess process;
        process.start(QStringLiteral(ROVANA_BIN "/rovana-sync"),
                      QStringList{u"--device"_s, folder} + arguments);
        if (!process.waitForFinished(120'000)) return {-1, "", "rovana-sync did not end"};
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }
    OfficeEnded sync(const TestDevice& terminal, const QStringList& arguments = {}) const {
        return syncFolder(terminal.folder(), arguments);
    }
    /// What a sync that went well has said.
    std::string synced(const TestDevice& terminal, const QStringList& arguments = {}) const {
        const OfficeEnded ended = sync(terminal, arguments);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return ended.out;
    }

    /// Works on the terminal's database, whichever folder is the process's.
    static QList<QStringList> on(const TestDevice& terminal, const QString& statements) {
        platform::SqliteFile file(terminal.folder() + u"/My Documents/rvnclient.cdb"_s,
                                  platform::SqliteFile::Mode::Existing);
        file.execute(u"PRAGMA synchronous=OFF"_s);
        const auto rows = file.rows(statements);
        EXPECT_TRUE(rows) << file.errorText().toStdString();
        return rows.value_or(QList<QStringList>());
    }

    /// The rows of a sale of one product, and of its collection on credit.
    void sell(const TestDevice& terminal, const QString& number, const QString& customer, int won,
              const QString& user = u"A"_s) const {
        on(terminal,
           u"INSERT INTO MTM VALUES ('%1','매출','%3','상회 "
           u"%3','%2','미발행','1001','맥주','01','1','0','%4','0',"
           "'0','0','%5','10:00')"_s.arg(day_, number, customer)
               .arg(won)
               .arg(user));
    }
    void collect(const TestDevice& terminal, const QString& number, const QString& customer, int won,
                 int cash = 0, const QString& user = u"A"_s) const {
        on(terminal,
           u"INSERT INTO MTMOK VALUES ('%1','매출','%3','상회 "
           u"%3','%2','10:01','%5','%4','%4','0','0','0','0','%6',"
           "'%6','0','0','%7','0','0','','')"_s.arg(day_, number, customer)
               .arg(won)
               .arg(user)
               .arg(cash)
               .arg(won - cash));
    }
    void noteDeletion(const TestDevice& terminal, const QString& paper, const QString& number,
                      const QString& customer) const {
        on(terminal,
           u"INSERT INTO DELETED VALUES ('%1','%2','%3','A','%4','상회','0','A','%1 11:00:00')"_s.arg(
               day_, paper, number, customer));
    }

    /// Each document at the office: "kind number user state revision", those that are deleted included.
    QStringList documents(const QString& terminal = u"1"_s) const {
        return sql(
            u"SELECT kind || ' ' || number || ' ' || userid || ' ' || state || ' ' || revision FROM "
            "office.document WHERE terminal = '%1' ORDER BY kind, number, userid"_s.arg(terminal));
    }
    /// What the office has of a terminal's table, without its own columns.
    QStringList officeRows(const QString& table, const QString& terminal) const {
        QStringList columns;
        for (const QStringView column : db::schema::findTable(table)->columns) columns << column.toString();
        return sql(
            u"SELECT %1 FROM office.%2 WHERE terminal = '%3'"_s.arg(columns.join(u','), table, terminal));
    }
    /// The terminal's rows of a table and the office's of it, to be compared.
    void expectSameRows(const TestDevice& terminal, const QString& number) const {
        for (const QString& table :
             {u"MTM"_s, u"YTM"_s, u"MTMOK"_s, u"PAYJOURNAL"_s, u"PRINTLOG"_s, u"DELETED"_s, u"DAYCLOSE"_s}) {
            QStringList here;
            for (const QStringList& row :
                 on(terminal, u"SELECT * FROM %1 "_s.arg(table) +
                                  (table == u"PAYJOURNAL" ? u"WHERE State <> 'prepared'"_s : u""_s)))
                here << row.join(u'|');
            QStringList there = officeRows(table, number);
            here.sort();
            there.sort();
            EXPECT_EQ(here, there) << table.toStdString();
        }
    }

    QString day_ = QDate::currentDate().toString(Qt::ISODate);

  private:
    std::vector<std::unique_ptr<TestDevice>> terminals_;
    QString before_;
};

}  // namespace test
