#include "AdminTest.h"
#include "common/Csv.h"

namespace test {
namespace {

using TableCommandsTest = AdminTest;

TEST(Csv, ReadsWhatTheStandardAllows) {
    const struct {
        QByteArray content;
        QList<QStringList> records;
    } cases[] = {
        {"a,b\n1,2", {{u"a"_s, u"b"_s}, {u"1"_s, u"2"_s}}},
        {"\xEF\xBB\xBF"
         "a,b\r\n1,2\r\n",
         {{u"a"_s, u"b"_s}, {u"1"_s, u"2"_s}}},
        {"\"a,\"\"x\"\"\",\"b\nc\"\n", {{u"a,\"x\""_s, u"b\nc"_s}}},
        {"a,b\n\n\r\n1,2\n", {{u"a"_s, u"b"_s}, {u"1"_s, u"2"_s}}},
        {"", {}},
    };
    for (const auto& [content, records] : cases) {
        const tools::CsvFile file = tools::parseCsv(content);
        EXPECT_EQ(narrow(file.error), "") << content.toStdString();
        QList<QStringList> read;
        for (const tools::CsvRecord& record : file.records) read << record.fields;
        EXPECT_EQ(read, records) << content.toStdString();
    }
}

TEST_F(TableCommandsTest, LoadTakesTheWholeFileOrNothing) {
    makeDevice();
    const QByteArray user =
        "userID,userPASS,userNAME,vatMode,followOn,containerWork,searchSetting,userTEL,"
        "reserve1,reserve2\n";
    const QByteArray config = "sangho,sno,name,tel,fax,juso,calltel,cardid,cardpass,cardno\n";
    const struct {
        QString table;
        QByteArray content;
        QString said;
    } cases[] = {
        {u"JGUBUN"_s, "CODE,NAME\n01,소주\n02\n", u"line 3"_s},
        {u"JGUBUN"_s, "CODE,NAME\n01,\xBC\xD2\n02,\xFF\n", u"line 3: the text is neither"_s},
        {u"JGUBUN"_s,
         "\xEF\xBB\xBF"
         "CODE,NAME\n01,\xBC\xD2\n",
         u"line 2: the text is not UTF-8"_s},
        {u"JGUBUN"_s, "CODE,NAME\n01,소주\n02,맥'주\n", u"line 3"_s},
        {u"JGUBUN"_s, "CODE,NAME,PRICE\n01,소주,1\n", u"PRICE"_s},
        {u"JGUBUN"_s, "CODE,NAME,code\n01,소주,02\n", u"CODE twice"_s},
        {u"PDAUSER"_s, user + "A,1,,,,,,,,\nA,2,,,,,,,,\n", u"line 3"_s},
        {u"PDAUSER"_s, user + "A,,,,,,,,,\n", u"line 2"_s},
        {u"PDAUSER"_s, user + "A,1,,,,,,,,\na,1,,,,,,,,\n", u"line 3"_s},
        {u"config"_s, config + "a,,,,,,,,,\nb,,,,,,,,,\n", u"exactly one row"_s},
    };
    const auto contents = [this] {
        return rows(u"SELECT * FROM JGUBUN"_s) + rows(u"SELECT * FROM PDAUSER"_s) +
               rows(u"SELECT * FROM config"_s);
    };
    const QStringList before = contents();
    for (const auto& [table, content, said] : cases) {
        const Ended ended = run({u"load"_s, table, writeFile(u"faulty.csv"_s, content)});
        EXPECT_EQ(ended.exitCode, admin::kFailure) << content.toStdString();
        EXPECT_TRUE(ended.err.contains(said)) << narrow(ended.err);
        EXPECT_EQ(contents(), before) << content.toStdString();
    }
    const QString good =
        writeFile(u"classes.csv"_s, "\xEF\xBB\xBFname, CODE\r\n\"소, 주\",01\r\n맥주,02\r\n");
    EXPECT_EQ(run({u"load"_s, u"jgubun"_s, good}).exitCode, admin::kSuccess);
    const QStringList loaded{u"01|소, 주"_s, u"02|맥주"_s};
    EXPECT_EQ(rows(u"SELECT CODE, NAME FROM JGUBUN ORDER BY CODE"_s), loaded);
    execute(u"DELETE FROM JGUBUN"_s);
    // As a Korean spreadsheet writes it: code page 949.
    const QString korean = writeFile(u"korean.csv"_s,
                                     "name, CODE\r\n\"\xBC\xD2, \xC1\xD6\",01\r\n"
                                     "\xB8\xC6\xC1\xD6,02\r\n");
    EXPECT_EQ(run({u"load"_s, u"jgubun"_s, korean}).exitCode, admin::kSuccess);
    EXPECT_EQ(rows(u"SELECT CODE, NAME FROM JGUBUN ORDER BY CODE"_s), loaded);
}

TEST_F(TableCommandsTest, UserIsAddedAndChanged) {
    makeDevice();
    const QString select = u"SELECT * FROM PDAUSER WHERE userID = 'E'"_s;
    EXPECT_EQ(run({u"user"_s, u"E"_s, u"--name"_s, u"홍길동"_s}).exitCode, admin::kUsageError);
    EXPECT_EQ(rows(select), QStringList());

    const Ended added =
        run({u"user"_s, u"E"_s, u"--password"_s, u"-"_s, u"--name"_s, u"홍길동"_s}, u"8642\n"_s);
    EXPECT_EQ(added.exitCode, admin::kSuccess);
    EXPECT_FALSE((added.out + added.err).contains(u"8642"_s));
    EXPECT_EQ(rows(select), QStringList{u"E|8642|홍길동|1|||N|||"_s});

    EXPECT_EQ(run({u"user"_s, u"E"_s, u"--vat-mode"_s, u"3"_s, u"--follow-on"_s, u"Z"_s, u"--container"_s,
                   u"X"_s, u"--search"_s, u"Y"_s})
                  .exitCode,
              admin::kSuccess);
    EXPECT_EQ(rows(select), QStringList{u"E|8642|홍길동|3|Z|X|Y|||"_s});
    EXPECT_EQ(run({u"user"_s, u"E"_s, u"--container"_s, u""_s, u"--password"_s, u"97"_s}).exitCode,
              admin::kSuccess);
    EXPECT_EQ(rows(select), QStringList{u"E|97|홍길동|3|Z||Y|||"_s});
}

}  // namespace
}  // namespace test
