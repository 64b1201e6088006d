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

    HResult open(Recordset& recordset, const QString& sql) {
        return recordset.Open(sql, &connection, 1, 1, kUnknownCommandType);
    }

    HResult run(const QString& sql) {
        Recordset recordset;
        return open(recordset, sql);
    }

    static QString text(Recordset& recordset) {
        Field* field = nullptr;
        QVariant value;
        if (!failed(recordset.GetFields()->Item(0, &field))) field->Value(&value);
        return value.toString();
    }

    /// The first column of every row.
    QStringList column(const QString& sql) {
        Recordset recordset;
        EXPECT_EQ(open(recordset, sql), kOk);
        QStringList texts;
        for (; !recordset.EndOfRows(); recordset.MoveNext()) texts << text(recordset);
        return texts;
    }

    test::TestDevice device;
    Connection connection;
};

TEST_F(AdoceTest, SpeaksTheDialectOfTheHandheld) {
    struct Case {
        const char16_t* sql;
        bool runs;
        QStringList left;  ///< PCode of what stays in TEMP.
    };
    const QStringList all{u"0001"_s, u"0002"_s, u"0003"_s};
    const Case cases[] = {
        {u"DELETE TEMP ", true, {}},
        {u"DELETE   TEMP WHERE PCode= '0002' ", true, {u"0001"_s, u"0003"_s}},
        {u"delete temp where PCODE = '0003'", true, {u"0001"_s, u"0002"_s}},
        {u" SELECT * FROM TEMP ", true, all},
        {u"DELETE TEMP WHERE PCode = '0001'; DELETE TEMP", false, all},
        {u"DELETE NOTABLE", false, all},
        {u"", false, all},
        {u"DELETE TEMP WHERE PCode = '0001", false, all},
        {u"DELETE TEMP WHERE PCode = '0''1' OR '1'='1'", false, all},
    };
    for (const Case& c : cases) {
        device.execute(u"DELETE FROM TEMP"_s);
        device.insert(u"TEMP", {{u"PCode", u"0001"}, {u"PName", u"진로"}, {u"Box", u"2"}});
        device.insert(u"TEMP", {{u"PCode", u"0002"}, {u"PName", u"처음처럼"}});
        device.insert(u"TEMP", {{u"PCode", u"0003"}, {u"PName", u"카스"}});
        const QString sql = QString::fromUtf16(c.sql);
        EXPECT_EQ(!failed(run(sql)), c.runs) << sql.toStdString();
        EXPECT_EQ(column(u"SELECT PCode FROM TEMP ORDER BY PCode"_s), c.left) << sql.toStdString();
    }
}

TEST_F(AdoceTest, OnlyAnExistingDatabaseOpens) {
    const QString missing = device.folder() + u"/missing.cdb"_s;
    const QString garbage = device.folder() + u"/garbage.cdb"_s;
    QFile file(garbage);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, 'x'));
    file.close();

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
    EXPECT_EQ(column(u"SELECT PCode FROM TEMP"_s), QStringList({u"old"_s}));
    for (const QString& suffix : {u"-wal"_s, u"-shm"_s}) QFile::remove(path + suffix);
    ASSERT_EQ(::rename(fresh.toUtf8().constData(), path.toUtf8().constData()), 0);
    EXPECT_EQ(open(path), kOk);
    EXPECT_EQ(column(u"SELECT PCode FROM TEMP"_s), QStringList());
}

}  // namespace
}  // namespace platform::adoce
