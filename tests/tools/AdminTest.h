#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/WholeFile.h"
#include "platform/adoce/DatabaseFile.h"
#include "rovanactl/Command.h"
#include "rovanactl/DeviceFolder.h"

namespace test {

using namespace Qt::Literals::StringLiterals;

inline const QString kDay = u"2024-03-29"_s;

inline std::string narrow(const QString& text) {
    return text.toStdString();
}

/// What a run of the command left.
struct Ended {
    int exitCode;
    QString out;
    QString err;
};

/// A device folder of the test's own, empty at first.
class AdminTest : public ::testing::Test {
  protected:
    AdminTest() : before_(platform::device::folder()) { platform::device::setFolder(folder_.path()); }
    ~AdminTest() override {
        platform::adoce::DatabaseFile::forgetAll();
        platform::device::setFolder(before_);
    }

    QString folder() const { return folder_.path(); }
    QString database() const { return platform::device::path(platform::device::kDatabaseFile); }

    /// Runs the command on the test's device folder.
    Ended run(const QStringList& arguments, QString input = {}) {
        Ended ended;
        QTextStream in(&input);
        QTextStream out(&ended.out);
        QTextStream err(&ended.err);
        const QStringList all =
            QStringList{u"rovanactl"_s} + arguments + QStringList{u"--device"_s, folder()};
        ended.exitCode = admin::run(all, in, out, err);
        return ended;
    }

    void makeDevice() { ASSERT_EQ(narrow(admin::createDevice(std::nullopt)), ""); }
    void makeDemo(admin::demo::Options options = {}) {
        options.date = kDay;
        ASSERT_EQ(narrow(admin::createDevice(options)), "");
    }

    /// The rows of a SELECT, columns joined by "|".
    QStringList rows(const QString& select) {
        platform::SqliteFile file(database(), platform::SqliteFile::Mode::Existing);
        QStringList texts;
        EXPECT_TRUE(file.forEachRow(select, {}, [&](const QStringList& row) {
            texts << row.join(u'|');
            return true;
        })) << narrow(file.errorText());
        return texts;
    }

    void execute(const QString& statement) {
        platform::SqliteFile file(database(), platform::SqliteFile::Mode::Existing);
        ASSERT_TRUE(file.execute(statement)) << narrow(file.errorText());
    }

    QString writeFile(const QString& name, const QByteArray& content) {
        const QString path = folder_.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return path;
    }

    static QByteArray readFile(const QString& path) {
        const auto content = platform::readWholeFile(path);
        EXPECT_TRUE(content) << narrow(path);
        return content.value_or(QByteArray());
    }

  private:
    QTemporaryDir folder_;
    QString before_;
};

}  // namespace test
