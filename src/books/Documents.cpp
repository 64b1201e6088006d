#include "books/Documents.h"

#include <sodium.h>

#include <QDate>
#include <algorithm>
#include <set>

#include "books/CollectionRows.h"
#include "db/Schema.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SqliteStatement;

struct Kind {
    DocumentKind kind;
    QStringView name;
    QStringView table;
    QStringView number;  ///< Its column; empty for none.
};

/// Bytes of a slip of some lines: a content does not grow piece by piece.
constexpr qsizetype kUsualContent = 1024;

constexpr Kind kKinds[] = {
    {DocumentKind::Sale, u"sale", u"MTM", u"JunNo"},
    {DocumentKind::Containers, u"containers", u"YTM", u"JunNo"},
    {DocumentKind::Collection, u"collection", u"MTMOK", u"JunNo"},
    {DocumentKind::Payment, u"payment", u"PAYJOURNAL", u"Number"},
    {DocumentKind::Prints, u"prints", u"PRINTLOG", u"JunNo"},
    {DocumentKind::Deletion, u"deletion", u"DELETED", u"JunNo"},
    {DocumentKind::Close, u"close", u"DAYCLOSE", u""},
};

const Kind& find(DocumentKind kind) {
    return *std::ranges::find(kKinds, kind, &Kind::kind);
}

/// SHA-256. Not Qt's, which a measured sync spent a tenth of its work in.
class Sha256 {
  public:
    Sha256() { crypto_hash_sha256_init(&state_); }
    void add(QByteArrayView bytes) {
        crypto_hash_sha256_update(&state_, reinterpret_cast<const unsigned char*>(bytes.data()),
                                  static_cast<unsigned long long>(bytes.size()));
    }
    QByteArray result() {
        QByteArray digest(crypto_hash_sha256_BYTES, Qt::Uninitialized);
        crypto_hash_sha256_final(&state_, reinterpret_cast<unsigned char*>(digest.data()));
        return digest;
    }

  private:
    crypto_hash_sha256_state state_;
};

bool isSeparator(char each) {
    return each == kRowSeparator || each == kFieldSeparator || each == '\0';
}

/// Adds the column's text in UTF-8, without what would be taken for a separator and what the office's
/// database cannot hold.
void addField(const SqliteStatement& row, int column, QByteArray* content) {
    const QByteArrayView bytes = row.textView(column);
    if (bytes.isValidUtf8() && std::ranges::none_of(bytes, isSeparator)) {
        content->append(bytes);
        return;
    }
    QString text = QString::fromUtf8(bytes);
    for (QChar& each : text) {
        if (each.unicode() < 0x80 && isSeparator(char(each.unicode()))) each = QChar::ReplacementCharacter;
    }
    content->append(text.toUtf8());
}

QString field(const SqliteStatement& row, int column) {
    QByteArray bytes;
    addField(row, column, &bytes);
    return QString::fromUtf8(bytes);
}

/// Adds `count` columns of the row from `first` on, as they stand in a content.
void addRow(const SqliteStatement& row, int first, int count, QByteArray* content) {
    for (int i = 0; i < count; ++i) {
        if (i > 0) content->append(kFieldSeparator);
        addField(row, first + i, content);
    }
}

bool isDate(const QString& text) {
    return text.size() == 10 && QDate::fromString(text, u"yyyy-MM-dd"_s).isValid();
}

}  // namespace

QStringView kindName(DocumentKind kind) {
    return find(kind).name;
}

QStringView kindTable(DocumentKind kind) {
    return find(kind).table;
}

QByteArray documentDigest(DocumentKind kind, const QByteArray& content) {
    Sha256 hash;
    hash.add(kindName(kind).toUtf8());
    hash.add(QByteArrayView(&kRowSeparator, 1));
    hash.add(content);
    return hash.result();
}

QByteArray dayDigest(QList<QByteArray> digests) {
    std::ranges::sort(digests);
    Sha256 hash;
    for (const QByteArray& digest : std::as_const(digests)) hash.add(digest);
    return hash.result();
}

DocumentReader::DocumentReader(platform::SqliteFile& database) : database_(database) {
    for (const Kind& kind : kKinds) {
        if (database_.hasColumn(kind.table)) columns_[kind.kind] = columnsOf(kind.table);
    }
}

QByteArray DocumentReader::columnsOf(QStringView table) const {
    QStringList columns;
    for (const QStringView column : db::schema::findTable(table)->columns)
        columns << (database_.hasColumn(table, column) ? column.toString() : u"''"_s);
    return columns.join(u',').toUtf8();
}

QStringList DocumentReader::days(const QString& first) const {
    std::set<QString> days;
    for (const Kind& kind : kKinds) {
        if (!columns_.contains(kind.kind)) continue;
        const QByteArray table = kind.table.toUtf8();
        // Day by day through the index: a year's rows are not looked at.
        SqliteStatement from = database_.statement("SELECT MIN(DDate) FROM " + table + " WHERE DDate >= ?");
        SqliteStatement after = database_.statement("SELECT MIN(DDate) FROM " + table + " WHERE DDate > ?");
        from.bind(first);
        for (SqliteStatement* next = &from; next->step() && !next->isNull(0);) {
            const QString day = next->text(0);
            if (isDate(day)) days.insert(day);
            after.rewind();
            after.bind(day);
            next = &after;
        }
    }
    return {days.begin(), days.end()};
}

void DocumentReader::forEachDocument(const QString& date,
                                     const std::function<bool(const Document&)>& use) const {
    for (const Kind& kind : kKinds) {
        if (columns_.contains(kind.kind) && !readKind(kind.kind, date, use)) return;
    }
}

/// By its identity, what the prepared entry of the journal keeps of the collection: the replaced row, or an
/// empty content for none.
DocumentReader::Prepared DocumentReader::preparedCollections(const QString& date) const {
    Prepared prepared;
    if (!columns_.contains(DocumentKind::Payment)) return prepared;
    SqliteStatement rows = database_.statement("SELECT JunNo, UserID, Gubun, " + columnsOf(u"MTMOK") +
                                               " FROM PAYJOURNAL WHERE State = 'prepared' AND DDate = ?");
    rows.bind(date);
    while (rows.step()) {
        const bool hasReplaced = !rows.text(2).isEmpty();
        QByteArray& replaced = prepared[{DocumentKind::Collection, field(rows, 0), field(rows, 1)}];
        replaced.clear();
        if (hasReplaced) addRow(rows, 3, kCollectionColumns, &replaced);
    }
    return prepared;
}

/// False when `use` wants no more.
bool DocumentReader::readKind(DocumentKind kind, const QString& date,
                              const std::function<bool(const Document&)>& use) const {
    const QByteArray number =
        kind == DocumentKind::Close ? "''" : "IFNULL(" + find(kind).number.toUtf8() + ",'')";
    const QByteArray user = "IFNULL(UserID,'')";
    const QByteArray condition = kind == DocumentKind::Payment ? " AND State <> 'prepared'" : "";
    const QByteArray select = "SELECT " + number + ", " + user + ", " + columns_[kind] + " FROM " +
                              find(kind).table.toUtf8() + " WHERE DDate = ?" + condition + " ORDER BY " +
                              number + ", " + user + ", rowid";
    const Prepared prepared = kind == DocumentKind::Collection ? preparedCollections(date) : Prepared();
    const auto give = [&](Document& document) {
        const auto replaced = prepared.constFind(document.identity);
        if (replaced != prepared.cend()) document.content = *replaced;
        if (document.content.isEmpty()) return true;
        document.digest = documentDigest(kind, document.content);
        return use(document);
    };
    SqliteStatement rows = database_.statement(select);
    rows.bind(date);
    const int columns = rows.columns() - 2;
    Document document;
    while (rows.step()) {
        const DocumentIdentity identity{kind, field(rows, 0), field(rows, 1)};
        if (!document.content.isEmpty() && document.identity != identity) {
            if (!give(document)) return false;
            document.content = {};
            document.content.reserve(kUsualContent);
        }
        document.identity = identity;
        if (!document.content.isEmpty()) document.content += kRowSeparator;
        addRow(rows, 2, columns, &document.content);
    }
    return document.content.isEmpty() || give(document);
}

}  // namespace books
