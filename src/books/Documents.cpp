#include "books/Documents.h"

#include <QDate>
#include <algorithm>
#include <array>
#include <set>

#include "db/Schema.h"
#include "platform/Sha256.h"

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

/// More than any table of a kind has.
constexpr std::size_t kMostColumns = 32;

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

bool isSeparator(char each) {
    return each == kRowSeparator || each == kFieldSeparator || each == '\0';
}

/// A field's text in UTF-8, without what would be taken for a separator and what the office's database cannot
/// hold.
QByteArray withoutSeparators(QByteArrayView bytes) {
    QString text = QString::fromUtf8(bytes);
    for (QChar& each : text) {
        if (each.unicode() < 0x80 && isSeparator(char(each.unicode()))) each = QChar::ReplacementCharacter;
    }
    return text.toUtf8();
}

QString field(QByteArrayView bytes) {
    return QString::fromUtf8(withoutSeparators(bytes));
}

/// True when no field needs its separators taken out. All of a row is looked at at once.
bool isPlain(QByteArrayView row, int fields) {
    qsizetype separators = 0;
    for (const char each : row) separators += isSeparator(each);
    return separators == fields - 1 && row.isValidUtf8();
}

/// Adds `count` columns of the row from `first` on, as they stand in a content.
void addRow(const SqliteStatement& row, int first, int count, QByteArray* content) {
    std::array<QByteArrayView, kMostColumns> fields;
    const qsizetype begin = content->size();
    qsizetype size = count - 1;
    for (int i = 0; i < count; ++i) size += (fields[std::size_t(i)] = row.textView(first + i)).size();
    // Each field at its place: a content that is told to append makes sure of its room every time.
    content->resize(begin + size);
    char* at = content->data() + begin;
    for (int i = 0; i < count; ++i) {
        if (i > 0) *at++ = kFieldSeparator;
        at = std::ranges::copy(fields[std::size_t(i)], at).out;
    }
    if (isPlain(QByteArrayView(*content).sliced(begin), count)) return;
    content->truncate(begin);
    for (int i = 0; i < count; ++i) {
        if (i > 0) content->append(kFieldSeparator);
        content->append(withoutSeparators(fields[std::size_t(i)]));
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

bool isContentColumn(DocumentKind kind, QStringView column) {
    return column != u"DDate" && column.compare(u"UserID", Qt::CaseInsensitive) != 0 &&
           column.compare(find(kind).number, Qt::CaseInsensitive) != 0;
}

QByteArray documentDigest(const DocumentIdentity& identity, const QByteArray& content) {
    const QByteArray name = kindName(identity.kind).toUtf8() + kRowSeparator + identity.number.toUtf8() +
                            kFieldSeparator + identity.userId.toUtf8() + kRowSeparator;
    return platform::sha256({name, content});
}

QByteArray dayDigest(QList<QByteArray> digests) {
    std::ranges::sort(digests);
    const QByteArray all = digests.join();
    return platform::sha256({all});
}

DocumentReader::DocumentReader(platform::SqliteFile& database) : database_(database) {
    for (const Kind& kind : kKinds) {
        if (database_.hasColumn(kind.table)) columns_[kind.kind] = columnsOf(kind.kind);
    }
}

QByteArray DocumentReader::columnsOf(DocumentKind kind) const {
    const db::schema::Table& table = *db::schema::findTable(kindTable(kind));
    QStringList columns;
    for (const QStringView column : table.columns) {
        if (isContentColumn(kind, column))
            columns << (database_.hasColumn(table.name, column) ? column.toString() : u"''"_s);
    }
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
    SqliteStatement rows =
        database_.statement("SELECT JunNo, UserID, Gubun, " + columnsOf(DocumentKind::Collection) +
                            " FROM PAYJOURNAL WHERE State = 'prepared' AND DDate = ?");
    rows.bind(date);
    while (rows.step()) {
        const bool hasReplaced = !rows.text(2).isEmpty();
        QByteArray& replaced =
            prepared[{DocumentKind::Collection, field(rows.textView(0)), field(rows.textView(1))}];
        replaced.clear();
        if (hasReplaced) addRow(rows, 3, rows.columns() - 3, &replaced);
    }
    return prepared;
}

/// The statement for the kind's rows of a day, those of a document together and in their stored order: its
/// number, its user and the columns.
QByteArray DocumentReader::selection(DocumentKind kind, const QString& date) const {
    const QByteArray table = find(kind).table.toUtf8();
    const QByteArray number = kind == DocumentKind::Close ? "''" : find(kind).number.toUtf8();
    // Where each row has both, as ever, an index brings them in order; nothing else counts as an empty text.
    SqliteStatement without = database_.statement("SELECT 1 FROM " + table + " WHERE DDate = ? AND (" +
                                                  number + " IS NULL OR UserID IS NULL) LIMIT 1");
    without.bind(date);
    const bool isWhole = !without.step();
    const auto order = [&](const QByteArray& column) {
        return isWhole ? column : "IFNULL(" + column + ",'')";
    };
    const QByteArray condition = kind == DocumentKind::Payment ? " AND State <> 'prepared'" : "";
    return "SELECT " + order(number) + ", " + order("UserID") + ", " + columns_[kind] + " FROM " + table +
           " WHERE DDate = ?" + condition + " ORDER BY " + order(number) + ", " + order("UserID") + ", rowid";
}

/// False when `use` wants no more.
bool DocumentReader::readKind(DocumentKind kind, const QString& date,
                              const std::function<bool(const Document&)>& use) const {
    const Prepared prepared = kind == DocumentKind::Collection ? preparedCollections(date) : Prepared();
    const auto give = [&](Document& document) {
        const auto replaced = prepared.constFind(document.identity);
        if (replaced != prepared.cend()) document.content = *replaced;
        if (document.content.isEmpty()) return true;
        document.digest = documentDigest(document.identity, document.content);
        return use(document);
    };
    SqliteStatement rows = database_.statement(selection(kind, date));
    rows.bind(date);
    const int columns = rows.columns() - 2;
    Document document;
    QByteArray number;
    QByteArray user;
    while (rows.step()) {
        const QByteArrayView numberNow = rows.textView(0);
        const QByteArrayView userNow = rows.textView(1);
        if (document.content.isEmpty() || numberNow != number || userNow != user) {
            number = numberNow.toByteArray();
            user = userNow.toByteArray();
            const DocumentIdentity identity{kind, field(number), field(user)};
            if (!document.content.isEmpty() && document.identity != identity) {
                if (!give(document)) return false;
                document.content = {};
                document.content.reserve(kUsualContent);
            }
            document.identity = identity;
        }
        if (!document.content.isEmpty()) document.content += kRowSeparator;
        addRow(rows, 2, columns, &document.content);
    }
    return document.content.isEmpty() || give(document);
}

}  // namespace books
