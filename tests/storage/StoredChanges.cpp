#include "storage/StoredChanges.h"

#include <QFile>

#include "books/CollectionSlip.h"
#include "books/PaymentJournal.h"
#include "container/ContainerStore.h"
#include "db/MasterImport.h"
#include "db/Schema.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/Sqlite.h"
#include "platform/adoce/DatabaseFile.h"
#include "sales/SlipStore.h"
#include "support/PrintQt.h"
#include "totals/DayClose.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kDate = u"2024-03-29"_s;
const QString kNumber = u"5001"_s;
const QString kUser = u"A"_s;
const QString kPayment = u"0123456789abcdef0123456789abcdef"_s;

books::CollectionSlip collection(int cash, const QString& number = kNumber) {
    books::CollectionSlip slip;
    slip.DDate = kDate;
    slip.GCode = u"0016"_s;
    slip.GName = u"강나루마트"_s;
    slip.JunNo = number;
    slip.UserID = kUser;
    slip.MMoney = slip.PMoney = slip.InMoney = platform::Won(130500);
    slip.WonMoney = platform::Won(cash);
    slip.UnderMoney = platform::Won(130500 - cash);
    slip.InMoney = platform::Won(cash);
    return slip;
}

db::ImportResult::Outcome import() {
    for (const db::ImportFile& file : db::importFiles()) {
        if (file.fileName == u"MTM.RVN") return db::importFile(file, db::ImportSource::Documents, {}).outcome;
    }
    return db::ImportResult::Outcome::NotOpened;
}

const Change kChanges[] = {
    {"save a slip", [] { return sales::saveSlip(kUser, kDate, kNumber) == sales::SaveOutcome::Saved; }},
    {"delete a slip and what hangs on it", [] { return sales::deleteSlip(kDate, kNumber, true, kUser); }},
    {"save a container slip",
     [] { return container::saveSlip(kUser, kDate, kNumber, u"0016") == container::SaveOutcome::Saved; }},
    {"delete a container slip", [] { return container::deleteSlip(kDate, kNumber, kUser).has_value(); }},
    {"save a collection", [] { return books::saveCollection(collection(100000)); }},
    {"delete a collection", [] { return books::removeCollection(kDate, kNumber, kUser); }},
    {"take a card's collection back", [] { return books::takeBackCollection(kDate, u"5007", kUser); }},
    {"note a payment",
     [] {
         books::JournalPayment payment;
         payment.number = u"f"_s.repeated(32);
         payment.slip = collection(0, u"5002"_s);
         payment.slip.GCode = u"0076"_s;
         return books::notePayment(payment);
     }},
    {"approve a payment", [] { return books::approvePayment(kPayment, u"000000000001").has_value(); }},
    {"close the day", [] { return totals::closeDay(kDate, kUser, platform::Won(1000)).has_value(); }},
    {"import", [] { return import() == db::ImportResult::Outcome::Loaded; }},
};

}  // namespace

std::span<const Change> storedChanges() {
    return kChanges;
}

StoredChangesTest::StoredChangesTest() {
    platform::clock::set(QDateTime({2024, 3, 29}, {9, 5}));
    device_.insert(u"GARAE", {{u"GCODE", u"0016"}, {u"GNAME", u"강나루마트"}, {u"CJMONEY", u"2821400"}});
    for (const QStringView table : {u"MTM", u"TEMP"}) {
        for (const QStringView box : {u"3", u"4"})
            device_.execute(
                u"INSERT INTO %1 (DDate, GCode, JunNo, PCode, Box) VALUES ('2024-03-29', '0016', '5001', '%2', '%3')"_s
                    .arg(table, table == u"MTM" ? u"1001"_s : u"1010"_s, box));
    }
    for (const auto& [table, crates] : {std::pair(u"YTM"_s, u"1"_s), {u"YTEMP"_s, u"2"_s}})
        device_.execute(
            u"INSERT INTO %1 (DDate, GCode, JunNo, NBox) VALUES ('2024-03-29', '0016', '5001', '%2')"_s.arg(
                table, crates));
    device_.execute(u"UPDATE MTM SET UserID = 'A'; UPDATE YTM SET UserID = 'A'"_s);
    EXPECT_TRUE(books::saveCollection(collection(50000)) && books::saveCollection(collection(9, u"5007"_s)) &&
                books::saveForCard(collection(0, u"5007"_s)));
    books::JournalPayment payment;
    payment.number = kPayment;
    payment.slip = collection(50000);
    EXPECT_TRUE(books::notePayment(payment));
    for (const QStringView paper : {u"거래명세서", u"용공인수증", u"입금표"})
        device_.execute(
            u"INSERT INTO PRINTLOG (DDate, JunNo, UserID, Document, Copy) VALUES "
            "('2024-03-29', '5001', 'A', '%1', '공급자용')"_s.arg(paper));
    // One file from here on, which is put back before every change.
    platform::adoce::DatabaseFile::forgetAll();
    device_.execute(u"PRAGMA journal_mode=DELETE"_s);
    QFile file(device_.databaseFile());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    fresh_ = file.readAll();
}

void StoredChangesTest::reset() {
    platform::adoce::DatabaseFile::forgetAll();
    for (const QString& suffix : {u"-wal"_s, u"-shm"_s, u"-journal"_s})
        QFile::remove(device_.databaseFile() + suffix);
    QFile file(device_.databaseFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(fresh_) == fresh_.size());
    QByteArray lines;
    for (int line = 0; line < 30; ++line) {
        QStringList fields{kDate, u"매출"_s, u"0016"_s};
        while (fields.size() < 16) fields << QString::number(line);
        lines += *platform::codepage::encode(fields.join(u'|') + u"|\r\n"_s);
    }
    device_.writeFile(u"\\My Documents\\MTM.RVN", lines);
}

QStringList StoredChangesTest::everythingIn(const QString& databaseFile, bool alsoWorking) {
    QString selects;
    for (const db::schema::Table& table : db::schema::tables()) {
        const bool isWorking = table.name == u"TEMP" || table.name == u"YTEMP" || table.name == u"UNSAVED";
        if (table.name != u"IMPORTLOG" && (alsoWorking || !isWorking))
            selects += u"SELECT '%1', * FROM %1;"_s.arg(table.name);
    }
    platform::SqliteFile file(databaseFile, platform::SqliteFile::Mode::Existing);
    const auto found = file.rows(selects);
    EXPECT_TRUE(found) << file.errorText().toStdString();
    QStringList rows;
    for (const QStringList& row : found.value_or(QList<QStringList>())) rows << row.join(u'|');
    EXPECT_TRUE(file.rows(u"PRAGMA integrity_check"_s) == QList<QStringList>(1, {u"ok"_s}));
    rows.sort();
    return rows;
}

}  // namespace test
