#include "DemoDevice.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStringList>
#include <stdexcept>

#include "platform/Sqlite.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kManyCustomers = 5'000;

/// What is there is copied, under codes of its own, so every column has what such a row has.
constexpr const char* kEnlarge = R"(
    BEGIN;
    CREATE TEMP TABLE N AS WITH RECURSIVE counted(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM counted
        WHERE n + 1 < max(%1, %2)) SELECT n FROM counted;
    CREATE TEMP TABLE P AS SELECT * FROM PUMMOK;
    UPDATE P SET TTT = NULL;
    CREATE TEMP TABLE M AS SELECT P.* FROM N JOIN P ON P.rowid = 1 + n % (SELECT COUNT(*) FROM P) WHERE n < %1;
    UPDATE M SET Pcode = printf('P%05d', rowid), Pname = Pname || ' ' || rowid;
    INSERT INTO PUMMOK SELECT * FROM M;
    CREATE TEMP TABLE G AS SELECT GARAE.* FROM N JOIN GARAE ON GARAE.rowid = 1 + n % (SELECT COUNT(*) FROM GARAE)
        WHERE n < %3;
    UPDATE G SET GCODE = printf('C%04d', rowid), GNAME = '가람상회 ' || rowid || '호점', SEEK = 'ㄱ', USERID = 'A';
    INSERT INTO GARAE SELECT * FROM G;
    CREATE TEMP TABLE S AS SELECT date('2025-11-21', '+' || n % 300 || ' days') AS day, char(65 + n % 4) AS user,
        printf('C%04d', 1 + n % %3) AS customer, printf('P%05d', 1 + n % %1) AS product,
        5001 + n / 300 AS number FROM N WHERE n < %2;
    INSERT INTO MTM (DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,BMoney,YMoney,GMoney,
        UserID,DTime) SELECT day,'매출',customer,'가람상회',number,'미발행',product,'소주','01','3','5','68500','6850',
        '3000','6000',user,'10:30' FROM S;
    INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,UserID,PMoney,WonMoney,CardMoney,MisuInMoney,UnderMoney,DTime)
        SELECT day,'매출',customer,'가람상회',number,user,'84350','84350','0','0','0','10:31' FROM S;
    DROP TABLE N; DROP TABLE P; DROP TABLE M; DROP TABLE G; DROP TABLE S;
    COMMIT;)";

}  // namespace

void makeDemonstration(const QString& device) {
    for (const QStringList& arguments :
         {QStringList{u"init"_s, device, u"--demo"_s, u"--date"_s, u"2026-11-21"_s},
          QStringList{u"import"_s, u"--device"_s, device}}) {
        QProcess process;
        process.start(QCoreApplication::applicationDirPath() + u"/rovanactl"_s, arguments);
        if (!process.waitForFinished() || process.exitCode() != 0)
            throw std::runtime_error("no demonstration device");
    }
}

void enlarge(const QString& device, int slips) {
    platform::SqliteFile file(device + u"/My Documents/rvnclient.cdb"_s,
                              platform::SqliteFile::Mode::Existing);
    file.run(QString::fromUtf8(kEnlarge).arg(kManyProducts).arg(slips).arg(kManyCustomers).toUtf8());
}

QString commonestVisit() {
    return uR"(
        press 102.1044 132.1002 143.1035
        row 144.1054 5
        press 144.1000 134.1000
        row 139.1090 3
        press 139.1000 keys 3 next 12 ok
        press 134.1000
        row 139.1090 7
        press 139.1000 keys 2 ok
        row 134.1054 2
        press 134.1137 134.1003 450.1098 450.1003 449.1003 142.1003
        press 102.1044
        row 132.1054 1
        press 132.1001
        answer ok
        answer ok
        press 132.1003
        expect screen 102
    )"_s;
}

}  // namespace bench
