#include <QFile>

#include "platform/CodePage.h"
#include "platform/Device.h"
#include "rovanactl/DeviceFolder.h"
#include "tools/office/OfficeTest.h"

namespace test {
namespace {

class LoadTest : public OfficeTest {
  protected:
    /// GARAE.RVN of customers, each "code name balance salesman".
    QString customers(const QStringList& customers) {
        QString text;
        for (const QString& each : customers) {
            const QStringList is = each.split(u' ');
            text += u"%1|%2|||||2026-11-20|%3|0|||||ㄱ|%4||\n"_s.arg(is[0], is[1], is[2], is[3]);
        }
        return writeFile(u"GARAE.RVN"_s, *platform::codepage::encode(text));
    }
    QString prices(const QStringList& prices) {
        QString text;
        for (const QString& each : prices)
            text += u"%1|%2|0|9000|0|900|0|0|0|0|\n"_s.arg(each.first(4), each.last(4));
        return writeFile(u"GARAEDANGA.RVN"_s, text.toLatin1());
    }
    QStringList changes() const {
        return sql(u"SELECT userid, file_name, version FROM office.master_change ORDER BY 1, 2"_s);
    }
    void load(const QStringList& arguments) {
        const OfficeEnded ended = run(QStringList{u"load"_s} + arguments);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
    }
};

TEST_F(LoadTest, TakesTheFilesOfATerminalAndNamesWhatIsNew) {
    const QString before = platform::device::folder();
    platform::device::setFolder(path(u"device"_s));
    admin::demo::Options demo;
    demo.date = u"2026-11-21"_s;
    ASSERT_EQ(admin::createDevice(demo).toStdString(), "");
    const QString folder = platform::device::path(platform::device::kDocumentsFolder);
    platform::device::setFolder(before);
    QStringList files;
    for (const db::ImportFile& file : db::importFiles()) {
        files << folder + file.fileName.toString();
        if (!file.isOptional) continue;
        QFile optional(files.last());
        ASSERT_TRUE(optional.open(QIODevice::WriteOnly) && optional.write("1001|8801234567890|\n") > 0);
    }

    const OfficeEnded ended = run(QStringList{u"load"_s} + files);
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    for (const db::ImportFile& file : db::importFiles()) {
        QFile lines(folder + file.fileName.toString());
        ASSERT_TRUE(lines.open(QIODevice::ReadOnly));
        const QString table = file.fileName.chopped(4).toString().toLower();
        EXPECT_EQ(sql(u"SELECT count(*) FROM office.master_%1 WHERE last_version IS NULL"_s.arg(table)),
                  QStringList(QString::number(lines.readAll().count('\n'))))
            << table.toStdString();
    }
    const OfficeEnded again = run(QStringList{u"load"_s} + files);
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_EQ(QString::fromStdString(again.out).count(u"the office has these lines already"), 6) << again.out;
}

TEST_F(LoadTest, AVersionTellsEachSalesmanWhetherItConcernsHim) {
    load({customers({u"0001 가나 1000 A"_s, u"0002 다라 2000 B"_s, u"0003 마바 3000 B"_s}),
          prices({u"0001 2001"_s, u"0003 2001"_s})});
    EXPECT_EQ(changes(), QStringList({u"A|GARAE.RVN|1"_s, u"A|GARAEDANGA.RVN|2"_s, u"B|GARAE.RVN|1"_s,
                                      u"B|GARAEDANGA.RVN|2"_s}));
    // Another balance concerns one salesman, and no price with it but that the customer has prices.
    load({customers({u"0001 가나 1000 A"_s, u"0002 다라 2500 B"_s, u"0003 마바 3000 B"_s})});
    EXPECT_EQ(changes(), QStringList({u"A|GARAE.RVN|1"_s, u"A|GARAEDANGA.RVN|2"_s, u"B|GARAE.RVN|3"_s,
                                      u"B|GARAEDANGA.RVN|2"_s}));
    // A customer moves to another salesman, prices and all.
    load({customers({u"0001 가나 1000 A"_s, u"0002 다라 2500 B"_s, u"0003 마바 3000 A"_s})});
    EXPECT_EQ(changes(), QStringList({u"A|GARAE.RVN|4"_s, u"A|GARAEDANGA.RVN|4"_s, u"B|GARAE.RVN|4"_s,
                                      u"B|GARAEDANGA.RVN|4"_s}));
    EXPECT_EQ(sql(u"SELECT gcode, cjmoney, first_version, last_version FROM office.master_garae "
                  "WHERE gcode = '0002' ORDER BY first_version"_s),
              QStringList({u"0002|2000|1|2"_s, u"0002|2500|3|"_s}));
}

TEST_F(LoadTest, EqualRowsStandAsOftenAsInTheFile) {
    load({customers({u"0001 가나 1 A"_s, u"0001 가나 1 A"_s, u"0002 다라 2 A"_s})});
    load({customers({u"0002 다라 2 A"_s, u"0001 가나 1 A"_s})});
    EXPECT_EQ(
        sql(u"SELECT gcode, row_number FROM office.master_garae WHERE last_version IS NULL ORDER BY 2"_s),
        QStringList({u"0002|1"_s, u"0001|2"_s}));
}

TEST_F(LoadTest, WhatNoTerminalWouldTakeIsNamedAndNothingIsLoaded) {
    const QByteArray good = "0001|A|||||2026-11-20|1000|0|||||A|A||\n";
    const auto refused = [&](const QString& file, const char* reason) {
        const OfficeEnded ended = run({u"load"_s, prices({u"0001 2001"_s}), file});
        EXPECT_EQ(ended.exitCode, 1) << reason;
        EXPECT_NE(ended.err.find(reason), std::string::npos) << ended.err;
    };
    refused(writeFile(u"GARAE.RVN"_s, good + "0002|\xFF\xFF|\n"), "line 2 is not code page 949");
    refused(writeFile(u"GARAE.RVN"_s, good + "0002|O'Neill|||||2026-11-20|0|0|||||A|A||\n"),
            "line 2 holds a single");
    refused(writeFile(u"GARAE.RVN"_s, good + "0002|B|||"), "line 2 breaks off");
    const QByteArray heading =
        "GCODE,GNAME,GUPJU,ENDDATE,SNO,MAJIN,CJDATE,CJMONEY,TTMONEY,JUSO,GUBUN,TEL,BGGUBUN,SEEK,USERID,"
        "CARDNO\n";
    refused(writeFile(u"garae.csv"_s, heading + "1,A,,,,,,0,,,,,,A,A,\n"), "line 2 does not fit into a line");
    refused(writeFile(u"garae.csv"_s, heading + "0001,\"A|B\",,,,,,0,,,,,,A,A,\n"), "line 2 does not fit");
    refused(writeFile(u"garae.csv"_s, "GCODE\n0001\n"), "GNAME is missing");
    refused(writeFile(u"KUNDEN.RVN"_s, good), "is no master data");
    refused(path(u"GARAEMAJIN.RVN"_s), "cannot be read");
    EXPECT_EQ(sql(u"SELECT count(*) FROM office.master_version"_s), QStringList(u"0"_s));

    load({writeFile(u"garae.csv"_s, heading + "0001,A,,,,,2026-11-20,1000,0,,,,,A,A,\n")});
    const OfficeEnded same = run({u"load"_s, writeFile(u"GARAE.RVN"_s, good)});
    EXPECT_NE(same.out.find("has these lines already"), std::string::npos) << same.out;
}

TEST_F(LoadTest, AFileThatWouldEmptyItsTableHasToBeMeant) {
    load({customers({u"0001 가 1 A"_s, u"0002 나 2 A"_s, u"0003 다 3 A"_s})});
    const QString file = customers({u"0001 가 1 A"_s});
    EXPECT_EQ(run({u"load"_s, file}).exitCode, 1);
    load({file, u"--shrink"_s});
    EXPECT_EQ(sql(u"SELECT count(*) FROM office.master_garae WHERE last_version IS NULL"_s),
              QStringList(u"1"_s));
}

TEST_F(LoadTest, BalancesCountForWhatWasSentUntilThen) {
    load({customers({u"0001 가 1000 A"_s})});
    const auto collect = [&](const QString& junNo, const QString& unpaid) {
        insert(u"mtmok"_s, {{u"month"_s, u"0001-01-01"_s},
                            {u"terminal"_s, u"1"_s},
                            {u"row_number"_s, u"1"_s},
                            {u"gcode"_s, u"0001"_s},
                            {u"junno"_s, junNo},
                            {u"mmoney"_s, unpaid},
                            {u"undermoney"_s, unpaid}});
    };
    const auto moved = [&] { return sql(u"SELECT coalesce(sum(amount), 0) FROM office.movement"_s); };
    collect(u"1"_s, u"500"_s);
    collect(u"2"_s, u"70"_s);
    EXPECT_EQ(moved(), QStringList(u"570"_s));
    sql(u"DELETE FROM office.mtmok WHERE junno = '2'"_s);
    EXPECT_EQ(moved(), QStringList(u"500"_s));
    load({customers({u"0001 가 1200 A"_s}), u"--sent-until"_s, u"2020-01-01 00:00"_s});
    EXPECT_EQ(moved(), QStringList(u"500"_s));
    load({customers({u"0001 가 1500 A"_s})});
    EXPECT_EQ(moved(), QStringList(u"0"_s));
    EXPECT_EQ(run({u"load"_s, customers({u"0001 가 1 A"_s}), u"--sent-until"_s, u"gestern"_s}).exitCode, 1);
}

}  // namespace
}  // namespace test
