#pragma once

#include <QDate>
#include <map>
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
    static constexpr char kNothing[] = "sent 0, deleted 0, waiting 0\n";

    ~SyncTest() override {
        terminals_.clear();
        platform::device::setFolder(before_);
    }

    /// A new terminal of that number, enrolled for those users; the ones after it begin empty as well.
    TestDevice& enrol(const QString& number = u"1"_s, const QStringList& users = {u"A"_s}) {
        terminals_.push_back(std::make_unique<TestDevice>());
        const Ended ended = enrolFolder(terminals_.back()->folder(), number, users);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return *terminals_.back();
    }
    Ended enrolFolder(const QString& folder, const QString& number, const QStringList& users,
                      const QStringList& more = {}) const {
        return run(QStringList{u"enrol"_s, number, u"--users"_s, users.join(u','), u"--host"_s,
                               u"localhost"_s, u"--authority"_s, cluster().authority(), u"--out"_s,
                               accessOf(folder)} +
                   more);
    }
    static QString accessOf(const QString& folder) { return folder + u"/office.conf"_s; }
    static void changeAccess(const TestDevice& terminal, const QByteArray& from, const QByteArray& to) {
        const QString path = accessOf(terminal.folder());
        EXPECT_TRUE(platform::writeWholeFile(path, readFile(path).replace(from, to)));
    }

    static Ended sync(const TestDevice& terminal, const QStringList& arguments = {}) {
        return runProgram(u"rovana-sync"_s, QStringList{u"--device"_s, terminal.folder()} + arguments);
    }
    static std::string synced(const TestDevice& terminal, const QStringList& arguments = {}) {
        const Ended ended = sync(terminal, arguments);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return ended.out;
    }

    static QString databaseOf(const QString& folder) { return folder + u"/My Documents/rvnclient.cdb"_s; }
    /// Works on a terminal's database, whichever folder is the process's; rows as those of `sql`.
    static QStringList on(const QString& folder, const QString& statements) {
        platform::SqliteFile file(databaseOf(folder), platform::SqliteFile::Mode::Existing);
        file.execute(u"PRAGMA synchronous=OFF"_s);
        const auto rows = file.rows(statements);
        EXPECT_TRUE(rows) << file.errorText().toStdString();
        QStringList texts;
        for (const QStringList& row : rows.value_or(QList<QStringList>())) texts << row.join(u'|');
        return texts;
    }
    static QStringList on(const TestDevice& terminal, const QString& statements) {
        return on(terminal.folder(), statements);
    }

    /// The rows of a sale of one product, of its collection and of what was deleted.
    void sell(const TestDevice& terminal, const QString& number, const QString& customer, int won,
              const QString& user = u"A"_s) const {
        on(terminal,
           uR"(INSERT INTO MTM VALUES ('%1','매출','%3','상회 %3','%2','미발행','1001','맥주','01','1','0',
            '%4','0','0','0','%5','10:00'))"_s.arg(day_, number, customer, QString::number(won), user));
    }
    void collect(const TestDevice& terminal, const QString& number, const QString& customer, int won,
                 int cash = 0, const QString& user = u"A"_s) const {
        on(terminal,
           uR"(INSERT INTO MTMOK VALUES ('%1','매출','%3','상회 %3','%2','10:01','%5','%4','%4','0','0','0',
            '0','%6','%6','0','0','%7','0','0','',''))"_s
               .arg(day_, number, customer, QString::number(won), user)
               .arg(cash)
               .arg(won - cash));
    }
    void noteDeletion(const TestDevice& terminal, const QString& paper, const QString& number,
                      const QString& customer = u"0001"_s) const {
        on(terminal,
           u"INSERT INTO DELETED VALUES ('%1','%2','%3','A','%4','상회','0','A','%1 11:00:00')"_s.arg(
               day_, paper, number, customer));
    }

    /// Each document at the office: "kind number user state revision", those that are deleted included.
    QStringList documents() const {
        return sql(
            u"SELECT concat_ws(' ', kind, number, userid, state, revision) FROM office.document "
            "WHERE terminal = '1' ORDER BY kind, number, userid"_s);
    }
    /// Compares the terminal's rows with the office's; how many are lost, and how many there too often.
    std::pair<int, int> expectSameRows(const QString& folder, const QString& number = u"1"_s) const {
        std::pair<int, int> wrong;
        for (const QString& table :
             {u"MTM"_s, u"YTM"_s, u"MTMOK"_s, u"PAYJOURNAL"_s, u"PRINTLOG"_s, u"DELETED"_s, u"DAYCLOSE"_s}) {
            std::map<QString, int> rows;
            for (const QString& row : on(folder, u"SELECT * FROM "_s + table)) ++rows[row];
            QStringList columns;
            for (const QStringView column : db::schema::findTable(table)->columns)
                columns << column.toString();
            for (const QString& row : sql(u"SELECT %1 FROM office.%2 WHERE terminal = '%3'"_s.arg(
                     columns.join(u','), table, number)))
                --rows[row];
            for (const auto& [row, count] : rows) {
                EXPECT_EQ(count, 0) << table.toStdString() << ": " << row.toStdString();
                (count > 0 ? wrong.first : wrong.second) += std::abs(count);
            }
        }
        return wrong;
    }

    QString day_ = QDate::currentDate().toString(Qt::ISODate);

  private:
    std::vector<std::unique_ptr<TestDevice>> terminals_;
    QString before_ = platform::device::folder();
};

}  // namespace test
