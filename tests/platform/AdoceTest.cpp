#include "platform/adoce/Adoce.h"

#include <gtest/gtest.h>

#include <QFile>

#include "support/PrintQt.h"
#include "support/RecordedTraces.h"
#include "support/TestDevice.h"

namespace platform::adoce {
namespace {

using namespace Qt::Literals::StringLiterals;

class AdoceTest : public testing::Test {
  protected:
    AdoceTest() { EXPECT_EQ(open(device.databaseFile()), kOk); }

    HResult open(const QString& file, const QString& provider = u"cedb"_s) {
        connection.putProvider(provider);
        return connection.Open(u"Data Source = "_s + file, {}, {}, -1);
    }

    HResult run(const QString& sql) {
        Recordset recordset;
        return recordset.Open(sql, &connection, 1, 1, kUnknownCommandType);
    }

    test::TestDevice device;
    Connection connection;
};

TEST_F(AdoceTest, SpeaksTheDialectOfTheHandheld) {
    struct Case {
        QString sql;
        bool runs;
        QString left;  ///< PCode of what stays in TEMP.
    };
    const Case cases[] = {
        {u"DELETE TEMP "_s, true, {}},
        {u"DELETE   TEMP WHERE PCode= '2' "_s, true, u"1,3"_s},
        {u"delete temp where PCODE = '3'"_s, true, u"1,2"_s},
        {u" SELECT * FROM TEMP "_s, true, u"1,2,3"_s},
        {u"DELETE TEMP WHERE PCode = '1'; DELETE TEMP"_s, false, u"1,2,3"_s},
        {u"DELETE TEMP WHERE PCode = '1"_s, false, u"1,2,3"_s},
        {u"DELETE TEMP WHERE PCode = '0''1' OR '1'='1'"_s, false, u"1,2,3"_s},
    };
    for (const Case& c : cases) {
        device.execute(u"DELETE FROM TEMP; INSERT INTO TEMP (PCode) VALUES ('1'), ('2'), ('3')"_s);
        EXPECT_EQ(!failed(run(c.sql)), c.runs) << c.sql.toStdString();
        EXPECT_EQ(device.value(u"SELECT group_concat(PCode) FROM TEMP"_s), c.left) << c.sql.toStdString();
    }
    EXPECT_FALSE(failed(run(u"SELECT 1 AS "_s + QString(100'000, u'술')))) << "three bytes for each";
}

TEST_F(AdoceTest, OnlyAnExistingDatabaseOpens) {
    const QString missing = device.folder() + u"/missing.cdb"_s;
    const QString garbage = device.folder() + u"/garbage.cdb"_s;
    device.writeFile(u"\\garbage.cdb", QByteArray(5000, 'x'));
    EXPECT_TRUE(failed(open(device.databaseFile(), u"sqlce"_s)));
    EXPECT_TRUE(failed(connection.Open(device.databaseFile(), {}, {}, -1)));
    for (const QString& path : {missing, garbage, device.folder()}) {
        test::RecordedTraces traces;
        EXPECT_TRUE(failed(open(path))) << path.toStdString();
        EXPECT_EQ(traces.take().size(), 1);
        EXPECT_TRUE(failed(run(u"DELETE TEMP"_s)));
        EXPECT_TRUE(failed(connection.BeginTrans()));
        EXPECT_FALSE(connection.IsUsable());
    }
    EXPECT_FALSE(QFile::exists(missing));
    EXPECT_EQ(open(device.databaseFile()), kOk);
}

TEST_F(AdoceTest, SeesADatabaseThatReplacedTheOldOne) {
    const QString path = device.databaseFile();
    const QString fresh = path + u".new"_s;
    ASSERT_TRUE(QFile::copy(path, fresh));
    device.insert(u"TEMP", {{u"PCode", u"old"}});
    EXPECT_EQ(run(u"SELECT * FROM TEMP"_s), kOk);
    for (const QString& suffix : {u"-wal"_s, u"-shm"_s}) QFile::remove(path + suffix);
    ASSERT_EQ(::rename(fresh.toUtf8().constData(), path.toUtf8().constData()), 0);
    EXPECT_EQ(open(path), kOk);
    Recordset recordset;
    EXPECT_EQ(recordset.Open(u"SELECT * FROM TEMP"_s, &connection, 1, 1, kUnknownCommandType), kOk);
    EXPECT_TRUE(recordset.EndOfRows());
}

}  // namespace
}  // namespace platform::adoce
