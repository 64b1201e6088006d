#include "AdminTest.h"
#include "platform/Csv.h"

namespace test {
namespace {

class ExportTest : public AdminTest {
  protected:
    std::string exportDay(const QString& date = kDay) {
        return ran({u"export"_s, u"--date"_s, date, u"--out"_s, path(u"office/day"_s)});
    }
    QByteArray exported(const QString& name) const { return readFile(path(u"office/day/"_s + name)); }
    QByteArray exported() const {
        QByteArray all;
        for (const QString& name : filesOf(path(u"office/day"_s)))
            all += "[" + name.toUtf8() + "]\n" + exported(name);
        return all;
    }
};

TEST_F(ExportTest, WritesTheDayAndItsOrdersComeBackThroughTheImport) {
    makeDevice();
    execute(
        uR"(DELETE FROM MTM; DELETE FROM YTM; DELETE FROM MTMOK;
        INSERT INTO MTM VALUES
            ('2024-03-29','매출','0001','가람, "본점"','5002','미발행','1001','쀍주','01','1','2','3','4','5','6','A','t'),
            ('2024-03-29','매출','0001','가람, "본점"','5001','결제','1002','b','01','1','2','-3','4','5','6','B','t'),
            ('2024-03-29','매출','0002','','5001','발행','1001','','','','','','','','','A',NULL),
            ('2024-03-29','매출','0002','','5001','발행','1001','','','','','','','','','A',NULL),
            ('2024-03-28','매출','0002','','5001','발행','1001','','','','','','','','','A','');
        INSERT INTO YTM VALUES ('2024-03-29','0001','가람','5001','1001','소주','1','2','3','4','5','6','7','A');
        INSERT INTO MTMOK VALUES ('2024-03-29','매출','0001','가람','5001','09:05','A'%1,'s','T1'))"_s.arg(
            u",'1'"_s.repeated(13)));
    EXPECT_EQ(exportDay(),
              "sales.csv, MTM.RVN\t3 slips\t4 lines\n"
              "containers.csv, YTM.RVN\t1 slips\t1 lines\n"
              "collections.csv, MTMOK.RVN\t1 slips\t1 lines\n");
    const QByteArray first = exported();
    EXPECT_EQ(exported(u"YTM.RVN"_s),
              "2024-03-29|0001|\xB0\xA1\xB6\xF7|5001|1001|\xBC\xD2\xC1\xD6|1|2|3|4|5|6|7|A|\r\n");
    EXPECT_EQ(exported(u"MTMOK.RVN"_s), "2024-03-29|\xB8\xC5\xC3\xE2|0001|\xB0\xA1\xB6\xF7|5001|09:05|A|" +
                                            QByteArray("1|").repeated(13) + "s|T1|\r\n");
    QStringList read;
    for (const platform::CsvRecord& record : platform::parseCsv(exported(u"sales.csv"_s)).records.mid(1))
        read << record.fields.join(u'|');
    const QString select = u"SELECT * FROM MTM WHERE DDate = '2024-03-29' ORDER BY JunNo, UserID"_s;
    EXPECT_EQ(read, rows(select));

    execute(u"UPDATE MTM SET DTime = ''"_s);
    const QStringList withoutTime = rows(select);
    execute(u"DELETE FROM MTM WHERE DDate = '2024-03-29'"_s);
    writeFile(u"My Documents/MTM.RVN"_s, exported(u"MTM.RVN"_s));
    ran({u"import"_s});
    EXPECT_EQ(rows(select), withoutTime);

    // The last export is replaced as a whole, here by that of a day without slips; a repetition is the same.
    EXPECT_THAT(exportDay(u"2024-03-30"_s), HasSubstr("no slips on 2024-03-30"));
    EXPECT_EQ(exported().count('\n'), 9) << "six names and three headings";
    execute(u"UPDATE MTM SET DTime = 't' WHERE UserID = 'B' OR JunNo = '5002'"_s);
    exportDay();
    EXPECT_EQ(exported(), first);
    EXPECT_EQ(QDir(path(u"office"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{u"day"_s});
}

}  // namespace
}  // namespace test
