#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/WholeFile.h"
#include "platform/adoce/DatabaseFile.h"
#include "rovanactl/Command.h"
#include "rovanactl/DeviceFolder.h"
#include "tools/Ended.h"

namespace test {

inline const QString kDay = u"2024-03-29"_s;

class AdminTest : public ::testing::Test {
  protected:
    AdminTest() : before_(platform::device::folder()) { platform::device::setFolder(folder_.path()); }
    ~AdminTest() override {
        platform::adoce::DatabaseFile::forgetAll();
        platform::device::setFolder(before_);
    }

    QString folder() const { return folder_.path(); }
    QString path(const QString& name) const { return folder_.filePath(name); }
    QString database() const { return platform::device::path(platform::device::kDatabaseFile); }

    /// Runs the command on the test's device folder, as a process that has just begun.
    Ended run(const QStringList& arguments, const QString& input = {}) {
        platform::adoce::DatabaseFile::forgetAll();
        return runHere(admin::run,
                       QStringList(u"rovanactl"_s) + arguments + QStringList{u"--device"_s, folder()}, input);
    }
    std::string ran(const QStringList& arguments, const QString& input = {}) {
        const Ended ended = run(arguments, input);
        EXPECT_EQ(ended.exitCode, admin::kSuccess) << ended.err;
        return ended.out;
    }
    /// Runs what has to be refused for that reason and leaves all files and rows as they were.
    void expectRefused(const QStringList& arguments, const char* reason) {
        const auto state = [this] {
            platform::adoce::DatabaseFile::forgetAll();
            QStringList all = filesOf(folder()) + filesOf(path(u"My Documents"_s), u"*.cdb*"_s) +
                              rows(u"SELECT name, sql FROM sqlite_schema"_s) + rows(u"PRAGMA user_version"_s);
            for (const QString& table : rows(u"SELECT name FROM sqlite_schema WHERE type = 'table'"_s))
                all += rows(u"SELECT * FROM "_s + table);
            return all;
        };
        const QStringList before = state();
        const Ended ended = run(arguments);
        EXPECT_NE(ended.exitCode, admin::kSuccess) << reason;
        EXPECT_THAT(ended.err, HasSubstr(reason));
        EXPECT_EQ(state(), before) << reason;
    }
    /// The connection of a terminal that has read once: its write-ahead log stays open.
    std::unique_ptr<platform::SqliteFile> openTerminal() const {
        auto terminal =
            std::make_unique<platform::SqliteFile>(database(), platform::SqliteFile::Mode::Existing);
        EXPECT_TRUE(terminal->execute(u"PRAGMA journal_mode=WAL"_s) &&
                    terminal->rows(u"SELECT * FROM MTM"_s));
        return terminal;
    }

    void makeDevice() { ASSERT_EQ(admin::createDevice(std::nullopt).toStdString(), ""); }

    /// The rows of a SELECT, columns joined by "|".
    QStringList rows(const QString& select) {
        platform::SqliteFile file(database(), platform::SqliteFile::Mode::Existing);
        const auto found = file.rows(select);
        EXPECT_TRUE(found) << file.errorText().toStdString();
        QStringList texts;
        for (const QStringList& row : found.value_or(QList<QStringList>())) texts << row.join(u'|');
        return texts;
    }
    static void executeOn(const QString& database, const QString& statements) {
        platform::SqliteFile file(database, platform::SqliteFile::Mode::Create);
        ASSERT_TRUE(file.execute(statements)) << file.errorText().toStdString();
    }
    void execute(const QString& statements) { executeOn(database(), statements); }

    QString writeFile(const QString& name, const QByteArray& content) {
        EXPECT_TRUE(platform::writeWholeFile(path(name), content));
        return path(name);
    }
    static QByteArray readFile(const QString& path) {
        const auto content = platform::readWholeFile(path);
        EXPECT_TRUE(content) << path.toStdString();
        return content.value_or(QByteArray());
    }
    static void expectForNobodyElse(const QString& path) {
        EXPECT_TRUE(QFile::exists(path)) << path.toStdString();
        EXPECT_FALSE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther)) << path.toStdString();
    }
    static QStringList filesOf(const QString& folder, const QString& name = u"*"_s) {
        return QDir(folder).entryList({name}, QDir::Files | QDir::Hidden, QDir::Name);
    }

  private:
    QTemporaryDir folder_;
    QString before_;
};

}  // namespace test
