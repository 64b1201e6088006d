#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <string>
#include <vector>

#include "desk/demo/DemoCards.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/TerminalLock.h"
#include "platform/WholeFile.h"
#include "support/PrintQt.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// A visit that takes longer hangs.
constexpr int kLongestVisitMs = 240000;

/// The day of the visits; the orders of the demonstration data are for it.
constexpr QStringView kDay = u"2026-11-21";

std::vector<QString> visits() {
    std::vector<QString> files;
    const QDir folder(QStringLiteral(ROVANA_TESTS_DIR "/visits"));
    for (const QFileInfo& file : folder.entryInfoList({u"*.visit"_s}, QDir::Files, QDir::Name))
        files.push_back(file.absoluteFilePath());
    return files;
}

std::string caseName(const testing::TestParamInfo<QString>& visit) {
    return QFileInfo(visit.param).completeBaseName().replace(u'-', u'_').toStdString();
}

struct Outcome {
    bool isDone = false;
    std::string output;
};

/// Runs one of the programs of this build without a window.
Outcome run(const QString& program, const QStringList& arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    // One that stands elsewhere has its whole path.
    process.start(QDir(QStringLiteral(ROVANA_BIN)).filePath(program), arguments);
    const bool hasEnded =
        process.waitForFinished(kLongestVisitMs) && process.exitStatus() == QProcess::NormalExit;
    const std::string output = process.readAll().toStdString();
    process.kill();
    process.waitForFinished();
    return {hasEnded && process.exitCode() == 0,
            output + (hasEnded ? "" : "the program hangs or has crashed\n")};
}

/// Runs a script of SQL statements on the device's database; returns what went wrong, else an empty text.
std::string prepare(const QString& device, const QString& sqlFile) {
    // The master data came on the day of the visits, not on that of the test.
    const QByteArray statements = "UPDATE MASTERLOAD SET LoadedAt = '" + kDay.toLatin1() + "T08:00:00';" +
                                  platform::readWholeFile(sqlFile).value_or("no file");
    platform::SqliteFile database(device + u"/My Documents/rvnclient.cdb"_s,
                                  platform::SqliteFile::Mode::Existing);
    if (database.execute(QString::fromUtf8(statements))) return {};
    return (sqlFile + u": "_s + database.errorText()).toStdString();
}

/// Lets others read and write every file, as a careless copy of a device does.
void openToOthers(const QString& folder) {
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) QFile::setPermissions(files.next(), QFile::Permissions(0x6666));
}

/// What of cards and passwords the files below a folder tell, and which of them others may read.
QStringList leaks(const QString& folder) {
    QList<QByteArray> secrets;
    for (const desk::DemoCard& card : desk::demoCards()) {
        for (const QString& text :
             {card.number.toString(), track2(card).mid(1, 30), track3(card).mid(1, 30)}) {
            secrets << text.toUtf8()
                    << QByteArray(reinterpret_cast<const char*>(text.utf16()), 2 * text.size());
        }
    }
    static const QRegularExpression password(u"\\b(1111|1112|1234|4321|2222|3333|9999)\\b"_s);
    QStringList found;
    QDirIterator files(folder, QDir::Files | QDir::System | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QFileInfo file(files.next());
        if (file.permissions() & QFile::Permissions(0x0077)) found << u"others may read "_s + file.filePath();
        if (!file.isFile()) continue;
        const QByteArray content = platform::readWholeFile(file.filePath()).value_or(QByteArray());
        for (const QByteArray& secret : std::as_const(secrets)) {
            if (content.contains(secret)) found << u"a card's data is in "_s + file.filePath();
        }
        if (file.fileName().startsWith(u"rovana.log") && QString::fromUtf8(content).contains(password))
            found << u"a password is in "_s + file.filePath();
    }
    return found;
}

class Visit : public testing::TestWithParam<QString> {};

TEST_P(Visit, Plays) {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    const Outcome made = run(u"rovanactl"_s, {u"init"_s, device, u"--demo"_s, u"--date"_s, kDay.toString()});
    ASSERT_TRUE(made.isDone) << made.output;
    // A visit that needs rows of its own brings them in a file beside it, for the loaded master data.
    const QFileInfo visit(GetParam());
    const QString ownRows = visit.path() + u'/' + visit.completeBaseName() + u".sql"_s;
    if (QFileInfo::exists(ownRows)) {
        const Outcome loaded = run(u"rovanactl"_s, {u"import"_s, u"--device"_s, device});
        ASSERT_TRUE(loaded.isDone) << loaded.output;
        ASSERT_EQ(prepare(device, ownRows), "");
    }
    openToOthers(device);
    QStringList call{GetParam(), u"--device"_s, device, u"--clock"_s, kDay.toString() + u" 09:05"_s};
    // Rows that are there before the visit itself loads the master data.
    const QString earlierRows = visit.path() + u'/' + visit.completeBaseName() + u".before.sql"_s;
    if (QFileInfo::exists(earlierRows)) call << u"--rows"_s << earlierRows;
    const Outcome played = run(u"rovana-play"_s, call);
    EXPECT_TRUE(played.isDone) << played.output;
    if (visit.completeBaseName() == u"guide") {
        for (const QStringList& keep :
             {QStringList{u"backup"_s, folder.filePath(u"kept"_s)},
              {u"export"_s, u"--out"_s, folder.filePath(u"exported"_s), u"--date"_s, kDay.toString()}}) {
            const Outcome kept = run(u"rovanactl"_s, keep + QStringList{u"--device"_s, device});
            EXPECT_TRUE(kept.isDone) << kept.output;
        }
    }
    EXPECT_EQ(leaks(folder.path()), QStringList());
}

TEST(Start, OneTerminalWorksOnAFolder) {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    ASSERT_TRUE(run(u"rovanactl"_s, {u"init"_s, device, u"--demo"_s}).isDone);
    platform::device::setFolder(device);
    const platform::TerminalLock lock;
    // The program shows its message until somebody answers it.
    QProcess second;
    second.setProcessChannelMode(QProcess::MergedChannels);
    second.start(QStringLiteral(ROVANA_BIN "/rovana"), {u"--device"_s, device});
    QByteArray said;
    while (!said.contains("another terminal works on") && second.waitForReadyRead(30000))
        said += second.readAll();
    EXPECT_TRUE(said.contains("another terminal works on")) << said.constData();
    second.kill();
    second.waitForFinished();
}

TEST(Start, AnInstallationWithABrokenModuleGoesOnAndSaysSoWhenItIsToPay) {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    const QString module = QStringLiteral(ROVANA_BIN "/../lib/rovana/lines.so");
    const QString program = folder.filePath(u"bin/rovana-play"_s);
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"bin"_s) && QDir(folder.path()).mkpath(u"lib/rovana"_s));
    ASSERT_TRUE(QFile::copy(QStringLiteral(ROVANA_BIN "/rovana-play"), program));
    ASSERT_TRUE(QFile::link(QStringLiteral(ROVANA_BIN "/rovana-cardhost"),
                            folder.filePath(u"bin/rovana-cardhost"_s)));
    const QString cut = folder.filePath(u"lib/rovana/lines.so"_s);
    ASSERT_TRUE(QFile::copy(module, cut) && QFile::resize(cut, 5000));
    ASSERT_TRUE(run(u"rovanactl"_s, {u"init"_s, device, u"--demo"_s, u"--date"_s, kDay.toString()}).isDone);
    const QString script = folder.filePath(u"pay.visit"_s);
    ASSERT_TRUE(platform::writeWholeFile(script, R"(
        host ""
        login A 1111
        import
        sale 강나루마트 1001 3 12
        press 134.1003 450.1097 450.1003
        swipe good 1234 ok
        expect 449.1142 "주류CARD를 읽었습니다.![KSNET에러] -504[프로그램 재설치 필요] [통신종료] "
        answer ok
        expect sql "SELECT State FROM PAYJOURNAL WHERE State <> 'prepared'" released
    )"));
    const Outcome played =
        run(program, {script, u"--device"_s, device, u"--clock"_s, kDay.toString() + u" 09:05"_s});
    EXPECT_TRUE(played.isDone) << played.output;
}

INSTANTIATE_TEST_SUITE_P(Tests, Visit, testing::ValuesIn(visits()), caseName);

}  // namespace
