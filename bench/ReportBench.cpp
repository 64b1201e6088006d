// The five reports of one day among 100,000 rows of each slip table beside among 1,000. The salesman's rows
// of the day and the customers are the same on both devices.

#include <stdexcept>

#include "Bench.h"
#include "Folder.h"
#include "Work.h"
#include "platform/Sqlite.h"
#include "totals/DailyReports.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 5;
constexpr int kFewRows = 1'000;
constexpr int kManyRows = 100'000;
constexpr int kRowsOfTheDay = 200;
constexpr QStringView kDay = u"2024-12-30";

/// Fills the tables: `n` counts the rows, the first of which are those of the day; the others are spread over
/// 300 earlier days and four salesmen.
constexpr const char* kFill = R"(
    BEGIN;
    CREATE TEMP TABLE N AS WITH RECURSIVE counted(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM counted
        WHERE n + 1 < %d) SELECT n, CASE WHEN n < %d THEN '2024-12-30'
        ELSE date('2024-01-02', '+' || n %% 300 || ' days') END AS day,
        CASE WHEN n < %d THEN 'A' ELSE char(65 + n %% 4) END AS user,
        printf('C%%03d', n %% 500) AS customer, printf('P%%03d', n %% 90) AS product FROM counted;
    INSERT INTO GARAE (GCODE,GNAME,CJMONEY,USERID) SELECT customer, '가람상회 ' || n, '150000', 'A' FROM N
        WHERE n < 500;
    INSERT INTO MTM SELECT day,'매출',customer,'가람상회',5001 + n / 300,'미발행',product,'소주','01','3','5',
        '68500','6850','3000','6000',user,'10:30' FROM N;
    INSERT INTO YTM SELECT day,customer,'가람상회',6001 + n / 300,product,'소주','1','2','30','3000','6000',
        '100','200',user FROM N;
    INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,UserID,WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,
        BANKTRANNO) SELECT day,'매출',customer,'가람상회',5001 + n / 300,user,'1000','2000','0','0','500',n FROM N;
    INSERT INTO BankMoney SELECT day,customer,'가람상회','2000' FROM N;
    DROP TABLE N;
    COMMIT;)";

void fill(const QString& file, int rows) {
    platform::SqliteFile(file, platform::SqliteFile::Mode::Existing)
        .run(QString::asprintf(kFill, rows, kRowsOfTheDay, kRowsOfTheDay).toUtf8());
}

Work makeReports(const Folder& folder) {
    folder.use();
    // Kept to the end: where the next one finds room would depend on what was let go before.
    QList<std::optional<totals::Report>> reports;
    const Work work = workOf([&] {
        for (const totals::DailyReport& daily : totals::dailyReports()) reports << daily.make(kDay, u"A");
    });
    for (const std::optional<totals::Report>& report : reports) {
        if (!report || report->isEmpty()) throw std::runtime_error("a report is empty");
    }
    return work;
}

}  // namespace

Result measureReport() {
    const Folder many;
    fill(many.databaseFile(), kManyRows);
    const Folder few;
    fill(few.databaseFile(), kFewRows);
    return compareWork(
        kRuns, [&] { return makeReports(many); }, [&] { return makeReports(few); });
}

}  // namespace bench
