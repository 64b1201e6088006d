#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <functional>

#include "app/LoginWait.h"
#include "db/MasterImport.h"
#include "desk/PaperView.h"
#include "platform/Device.h"
#include "platform/message/SavedValues.h"
#include "platform/termdev/PaperRoll.h"
#include "rovana-cardhost/Keys.h"
#include "rovana-cardhost/Program.h"
#include "rovana-play/Approval.h"
#include "rovanactl/Command.h"
#include "rovanactl/DeviceFolder.h"
#include "support/FullDisk.h"
#include "support/PrintQt.h"
#include "support/RecordedTraces.h"
#include "support/SystemCalls.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;

/// Who writes a small file, and where.
struct Caller {
    QString file;                                 ///< In the device folder.
    std::function<QString(const QString&)> save;  ///< Something else each time; says what went wrong.
    bool isMade = false;                          ///< The file is only made, never replaced.
    rlim_t room = 1;                              ///< How much of a file the full disk still takes.
};

class CallersTest : public ::testing::Test {
  protected:
    QString path(const QString& file) const { return device.folder() + u'/' + file; }
    std::optional<QByteArray> content(const QString& file) const {
        QFile read(path(file));
        return read.open(QIODevice::ReadOnly) ? std::optional(read.readAll()) : std::nullopt;
    }
    void put(const QString& file, const QByteArray& bytes) {
        QDir().mkpath(QFileInfo(path(file)).path());
        QFile written(path(file));
        ASSERT_TRUE(written.open(QIODevice::WriteOnly) && written.write(bytes) == bytes.size());
    }
    QString traced() { return traces.take().join(QString()); }

    /// Runs a program; its error text when it fails.
    template <class Run>
    static QString errorOf(Run run, const QStringList& arguments) {
        QString input, output, error;
        QTextStream in(&input), out(&output), err(&error);
        return run(arguments, in, out, err) == 0 ? QString() : error;
    }
    QString host(const QString& folder, const QStringList& arguments) {
        return errorOf(cardhost::run,
                       QStringList{u"rovana-cardhost"_s} + arguments + QStringList{u"--dir"_s, path(folder)});
    }
    QString tellCardHost(const QString& round) {
        return errorOf(admin::run, {u"rovanactl"_s, u"card-host"_s, u"--host"_s, u"127.0.0.1"_s, u"--port"_s,
                                    round, u"--key"_s, path(u"key"_s), u"--device"_s, device.folder()});
    }
    QString rejectLines(const QString& round) {
        const auto margins =
            std::ranges::find(db::importFiles(), u"GARAEMAJIN.RVN", &db::ImportFile::fileName);
        put(u"My Documents/GARAEMAJIN.RVN"_s, "0001|'|" + round.toLatin1() + "|\n");
        importFile(*margins, db::ImportSource::Documents, [](int, int) {});
        const QString told = traced();
        return told.contains(u"are kept in "_s + path(kRejected)) ? QString() : told;
    }
    QString print(const QString& round) {
        {
            PaperRoll roll;
            roll.open();
            roll.print(round);
            roll.close();
        }
        return traced();
    }
    QString savePaper(const QString& round) {
        desk::PaperView paper;
        paper.append({readPaperText(round)});
        return paper.save(path(u"paper.png"_s)) ? QString() : u"told by the desk"_s;
    }
    QString initDemo() {
        QDir(path(u"new"_s)).removeRecursively();
        const QString error = errorOf(
            admin::run, {u"rovanactl"_s, u"init"_s, path(u"new"_s), u"--demo"_s, u"--prices"_s, u"10000"_s});
        platform::device::setFolder(device.folder());
        return error;
    }
    QString makeOwnKey() {
        using namespace platform::message;
        SigningKey key;
        QString error;
        return makeSigningKey(&key, &error) == kDone ? QString() : error;
    }
    QString countLogin() {
        app::enterLoginTry();
        return traced();
    }

    QList<Caller> callers() {
        const auto publicKey = [](const QString& round) { return round.right(1).repeated(64); };
        return {
            {u"Flash Disk/KSNETMSG.ini"_s, [this](auto round) { return tellCardHost(round); }},
            {u"Flash Disk/KSNETMSG.pub"_s,
             [=, this](auto round) {
                 put(u"key"_s, publicKey(round).toLatin1());
                 return tellCardHost(u"40000"_s);
             }},
            {u"Flash Disk/KSNETMSG.key"_s, [this](auto) { return makeOwnKey(); }, true},
            {u"host/terminals/4711.pub"_s,
             [=, this](auto round) {
                 return host(u"host"_s,
                             {u"enrol"_s, u"--terminal"_s, u"4711"_s, u"--key"_s, publicKey(round)});
             }},
            {u"host/host.key"_s, [this](auto) { return host(u"host"_s, {u"terminals"_s}); }, true},
            {u"host/host.pub"_s, [this](auto) { return host(u"host"_s, {u"terminals"_s}); }, true},
            {u"login-failures"_s, [this](auto) { return countLogin(); }},
            {u"new/My Documents/GARAEDANGA.RVN"_s, [this](auto) { return initDemo(); }, true, 300'000},
            {kRejected, [this](auto round) { return rejectLines(round); }, false, 3'000'000},
            {u"roll.png"_s, [this](auto round) { return print(round); }},
            {u"paper.png"_s, [this](auto round) { return savePaper(round); }},
            {u"approved.txt"_s,
             [this](auto round) { return pilot::writeApproved(path(u"approved.txt"_s), round); }},
        };
    }

    const QString kRejected = u"My Documents/GARAEMAJIN.RVN.rejected"_s;

    TestDevice device;
    RecordedTraces traces;
};

TEST_F(CallersTest, AFullDiskLeavesTheFileOfBeforeAndIsTold) {
    put(u"key"_s, QByteArray(64, 'a'));
    put(kRejected, QByteArray(3'000'000, 'x') + '\n');
    for (const Caller& caller : callers()) {
        const std::string name = caller.file.toStdString();
        // The first use makes what the caller needs besides.
        ASSERT_EQ(caller.save(u"40001"_s), u"") << name;
        if (caller.isMade) QFile::remove(path(caller.file));
        const auto before = content(caller.file);
        ASSERT_NE(before.has_value(), caller.isMade) << name;
        QString told;
        {
            const FullDisk full(caller.room);
            told = caller.save(u"40002"_s);
        }
        EXPECT_NE(told, u"") << name;
        EXPECT_TRUE(content(caller.file) == before) << name;
        EXPECT_FALSE(content(caller.file + u".unfinished"_s)) << name;

        EXPECT_EQ(caller.save(u"40003"_s), u"") << name << ", there is room again";
        EXPECT_TRUE(content(caller.file) != before) << name;
    }
}

// An address without its host's key would be of no use.
TEST_F(CallersTest, AddressAndKeyOfTheCardHostAreReplacedTogether) {
    put(u"key"_s, QByteArray(64, 'a'));
    ASSERT_EQ(tellCardHost(u"40001"_s), u"");
    put(u"key"_s, QByteArray(64, 'b'));
    SystemCalls calls(device.folder());
    for (int failing = 0; failing < 4; ++failing) {
        calls.failAt(failing);
        EXPECT_NE(tellCardHost(u"40002"_s), u"") << calls.take().join(u", "_s).toStdString();
        EXPECT_EQ(content(u"Flash Disk/KSNETMSG.pub"_s), QByteArray(64, 'a') + '\n') << failing;
        EXPECT_TRUE(content(u"Flash Disk/KSNETMSG.ini"_s)->contains("222=40001")) << failing;
    }
}

}  // namespace
}  // namespace test
