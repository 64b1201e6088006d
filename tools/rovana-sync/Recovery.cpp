#include "rovana-sync/Recovery.h"

#include <QHash>
#include <algorithm>

#include "books/CollectionRows.h"
#include "books/OfficeState.h"
#include "books/PrintLog.h"
#include "db/Schema.h"
#include "platform/Device.h"
#include "rovana-sync/LocalDays.h"
#include "rovana-sync/MasterFiles.h"

namespace terminal_sync {
namespace {

using namespace Qt::Literals::StringLiterals;
using books::Document;
using books::DocumentIdentity;
using books::DocumentKind;
using platform::SqliteFile;
using platform::SqliteStatement;

QString describe(const QString& date, const DocumentIdentity& identity) {
    return u"%1 %2 %3 of user %4"_s.arg(date, books::kindName(identity.kind), identity.number,
                                        identity.userId);
}

/// The paper whose deletion takes a document of that kind.
std::optional<books::Paper> paperOf(DocumentKind kind) {
    switch (kind) {
        case DocumentKind::Sale: return books::Paper::Invoice;
        case DocumentKind::Containers: return books::Paper::ContainerReceipt;
        case DocumentKind::Collection: return books::Paper::CollectionSlip;
        default: return std::nullopt;
    }
}

class Days {
  public:
    explicit Days(SqliteFile& database) : database_(database), reader_(database) {}

    void giveBack(const QString& date, const QList<KeptDocument>& kept, Recovered* recovered);

  private:
    bool isDeletedHere(const QString& date, const DocumentIdentity& identity);
    void insert(const QString& date, const Document& document);
    void moveBalance(const QHash<QString, QString>& row);

    SqliteFile& database_;
    books::DocumentReader reader_;
};

void Days::giveBack(const QString& date, const QList<KeptDocument>& kept, Recovered* recovered) {
    platform::SqliteTransaction transaction(database_);
    const books::DocumentDigests here = books::digestsOfDay(reader_, date);
    books::DocumentDigests traces;
    for (const KeptDocument& each : kept) {
        if (each.document.identity.kind == DocumentKind::Deletion)
            traces[each.document.identity] = each.document.digest;
    }
    int documents = 0;
    for (const auto& [document, isGivenBack] : kept) {
        const DocumentIdentity& id = document.identity;
        if (!isGivenBack) {
            recovered->left << describe(date, id) + u": its number was given to another customer"_s;
            continue;
        }
        if (here.contains(id)) continue;
        // The office has weighed a trace that it has: what it keeps came later, under the same number.
        const DocumentIdentity trace{DocumentKind::Deletion, id.number, id.userId};
        const bool isWeighed = !here.contains(trace) || here[trace] == traces.value(trace);
        if (!isWeighed && isDeletedHere(date, id)) continue;
        if (books::documentDigest(id, document.content) != document.digest) {
            recovered->left << describe(date, id) + u": the office's copy is damaged"_s;
            continue;
        }
        insert(date, document);
        ++documents;
    }
    if (documents == 0) return;
    transaction.commit();
    recovered->documents += documents;
    ++recovered->days;
}

bool Days::isDeletedHere(const QString& date, const DocumentIdentity& identity) {
    const auto paper = paperOf(identity.kind);
    if (!paper || !database_.hasColumn(u"DELETED")) return false;
    SqliteStatement trace = database_.statement(
        "SELECT 1 FROM DELETED WHERE DDate = ? AND JunNo = ? AND UserID = ? AND Document = ?");
    trace.bind(date).bind(identity.number).bind(identity.userId).bind(books::paperName(*paper).toString());
    return trace.step();
}

void Days::insert(const QString& date, const Document& document) {
    const DocumentIdentity& id = document.identity;
    const db::schema::Table& table = *db::schema::findTable(books::kindTable(id.kind));
    QStringList names;
    for (const QStringView column : table.columns) {
        if (database_.hasColumn(table.name, column)) names << column.toString();
    }
    const QString statement = u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(
        table.name, names.join(u','), QStringList(names.size(), u"?"_s).join(u','));
    const qsizetype count = std::ranges::count_if(
        table.columns, [&](QStringView column) { return books::isContentColumn(id.kind, column); });
    for (const QByteArray& line : document.content.split(books::kRowSeparator)) {
        const QByteArrayList fields = line.split(books::kFieldSeparator);
        if (fields.size() != count) throw LocalError("the office's rows have other columns");
        SqliteStatement row = database_.statement(statement.toUtf8());
        QHash<QString, QString> texts;
        auto field = fields.begin();
        for (const QStringView column : table.columns) {
            QString& text = texts[column.toString()];
            if (books::isContentColumn(id.kind, column))
                text = QString::fromUtf8(*field++);
            else
                text = column == u"DDate" ? date : column == u"UserID" ? id.userId : id.number;
            if (names.contains(column)) row.bind(text);
        }
        row.step();
        if (id.kind == DocumentKind::Collection) moveBalance(texts);
    }
}

/// What the collection slip has made of its customer's balance. One who is not there has none.
void Days::moveBalance(const QHash<QString, QString>& row) {
    const auto won = [&](const QString& column) { return platform::parseWon(row[column]); };
    books::CollectionSlip slip;
    slip.Gubun = row[u"Gubun"_s];
    slip.MMoney = won(u"MMoney"_s);
    slip.YGMoney = won(u"YGMoney"_s);
    slip.GDMoney = won(u"GDMoney"_s);
    slip.InMoney = won(u"InMoney"_s);
    slip.WonMoney = won(u"WonMoney"_s);
    slip.CardMoney = won(u"CardMoney"_s);
    slip.MisuInMoney = won(u"MisuInMoney"_s);
    slip.UnderMoney = won(u"UnderMoney"_s);
    slip.YDMoney = won(u"YDMoney"_s);
    SqliteStatement balance = database_.statement("SELECT CJMONEY FROM GARAE WHERE GCODE = ?");
    balance.bind(row[u"GCode"_s]);
    if (!balance.step()) return;
    const platform::Won moved = platform::parseWon(balance.text(0)) + slip.receivableEffect();
    SqliteStatement update = database_.statement("UPDATE GARAE SET CJMONEY = ? WHERE GCODE = ?");
    update.bind(platform::formatWon(moved)).bind(row[u"GCode"_s]).step();
}

}  // namespace

Recovered recover(Office& office) try {
    LocalDays local;
    // What has left for an archive stays there.
    const QString first = std::max(u"0001-01-01"_s, local.firstKept());
    // The balances here may be the office's already, with what is given back: the next sync fetches them
    // anew.
    MasterFiles(local).forgetBalances();
    SqliteFile database(platform::device::path(platform::device::kDatabaseFile), SqliteFile::Mode::Existing);
    Recovered recovered;
    Days days(database);
    for (const QString& date : office.days(first)) days.giveBack(date, office.documents(date), &recovered);
    return recovered;
} catch (const platform::SqliteError& error) {
    throw LocalError(error.what());
}

}  // namespace terminal_sync
