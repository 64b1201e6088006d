#include <QFileInfo>
#include <QProcess>

#include "AdminTest.h"

namespace test {
namespace {

using CommandsTest = AdminTest;

TEST_F(CommandsTest, JournalListsPaymentsAndSettlesOpenOnes) {
    makeDevice();
    execute(
        u"INSERT INTO PAYJOURNAL (Number, State, JunNo, BANKTRANNO, DDate, Charged, GCode) VALUES "
        "('%1', 'approved', '5001', '000000000001', '2024-03-29', '1000', '1'), "
        "('%2', 'unknown', '5002', '', '2024-03-29', '1000', '1'), "
        "('%3', 'sent', '7001', '', '2024-03-29', '1000', '1')"_s.arg(QString(32, u'a'), QString(32, u'b'),
                                                                      QString(32, u'c')));
    const struct {
        const char* options;  ///< "B" is the second payment's number and so on.
        int exitCode;
        const char* said;
    } cases[] = {
        {"--date 2024-03-30", admin::kSuccess, "sent\tstate"},
        {"--open", admin::kSuccess, "5002"},
        {"--settle bb released", admin::kUsageError, "message number"},
        {"--settle B approved", admin::kUsageError, "twelve"},
        {"--settle B released 000000000002", admin::kUsageError, "released"},
        {"--settle D released", admin::kFailure, "no payment"},
        {"--settle A released", admin::kFailure, "approved already"},
        {"--settle B approved 000000000001", admin::kFailure, "another payment"},
        {"--settle B approved 000000000002", admin::kSuccess, "slip 5002"},
        {"--settle C approved 000000000002", admin::kFailure, "on slip 5002"},
        {"--settle C released", admin::kSuccess, "paid again"},
        {"--settle C released", admin::kFailure, "released already"},
        {"--reopen C released", admin::kUsageError, "nothing else"},
        {"--reopen D", admin::kFailure, "no payment"},
        {"--reopen C", admin::kSuccess, "is open"},
        {"--reopen C", admin::kFailure, "open already"},
        {"--settle C approved 000000000003", admin::kSuccess, "slip 7001"},
        {"--reopen C", admin::kSuccess, "is open"},
        {"--settle C released", admin::kSuccess, "paid again"},
        {"stray", admin::kUsageError, "--settle"},
    };
    for (const auto& [options, exitCode, said] : cases) {
        QStringList arguments{u"journal"_s};
        for (const QString& word : QString::fromLatin1(options).split(u' '))
            arguments << (word.size() == 1 ? QString(32, word[0]) : word);
        platform::adoce::DatabaseFile::forgetAll();
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exitCode, exitCode) << options;
        EXPECT_TRUE((ended.out + ended.err).contains(QLatin1StringView(said)))
            << narrow(ended.out + ended.err);
        EXPECT_FALSE(ended.out.contains(u"5001"_s)) << options;
    }
    EXPECT_EQ(
        rows(u"SELECT State FROM PAYJOURNAL UNION ALL SELECT JunNo || BANKTRANNO FROM MTMOK ORDER BY 1"_s)
            .join(u' '),
        u"5002000000000002 7001 approved approved released"_s);
    platform::SqliteFile terminal(database(), platform::SqliteFile::Mode::Existing);
    ASSERT_TRUE(terminal.execute(u"PRAGMA journal_mode=WAL"_s) && terminal.rows(u"SELECT * FROM MTM"_s));
    EXPECT_TRUE(
        run({u"journal"_s, u"--settle"_s, QString(32, u'c'), u"released"_s}).err.contains(u"close the"_s));
}

/// The program itself, in an environment that knows no UTF-8.
Ended runProgram(const QStringList& arguments, const QByteArray& input = {}) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : {u"LC_ALL"_s, u"LC_CTYPE"_s, u"LANG"_s}) environment.remove(name);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ROVANACTL), arguments);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60'000));
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

TEST_F(CommandsTest, TheProgramWorksInAPlainEnvironment) {
    const QString device = folder() + u"/장치"_s;
    const Ended made = runProgram({u"init"_s, device, u"--demo"_s, u"--date"_s, kDay});
    EXPECT_EQ(made.exitCode, 0);
    EXPECT_EQ(narrow(made.err), "");
    for (const QString& file : {u""_s, u"/My Documents/rvnclient.cdb"_s, u"/My Documents/GARAE.RVN"_s,
                                u"/Flash Disk/SALE.ini"_s, u"/저장소카드"_s}) {
        const QFileInfo info(device + file);
        EXPECT_TRUE(info.exists()) << narrow(file);
        EXPECT_FALSE(info.permissions() & (QFile::ReadGroup | QFile::ReadOther)) << narrow(file);
    }
    EXPECT_EQ(runProgram({u"--device"_s, device, u"import"_s}).exitCode, 0);
    EXPECT_EQ(runProgram({u"slips"_s, u"--device"_s, device, u"--date"_s, kDay}).out.count(u'\n'), 7);
    EXPECT_EQ(runProgram({u"price"_s, u"-"_s, u"--device"_s, device}, "0001\t1027\t1\t0\n").out.count(u'\t'),
              4);
    EXPECT_EQ(runProgram({u"init"_s, device}).exitCode, 1);
    EXPECT_EQ(runProgram({}).exitCode, 2);
}

}  // namespace
}  // namespace test
