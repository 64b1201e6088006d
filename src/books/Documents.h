#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <functional>
#include <tuple>

#include "platform/Sqlite.h"

/// A day of the terminal as documents, each with a digest: what is compared with the office and sent there.
namespace books {

enum class DocumentKind {
    Sale,        ///< The lines of a sales slip, `MTM`.
    Containers,  ///< The lines of a container slip, `YTM`.
    Collection,  ///< `MTMOK`.
    Payment,     ///< A payment of the journal, by its message number.
    Prints,      ///< What was printed of a slip, `PRINTLOG`.
    Deletion,    ///< What was deleted under a number, `DELETED`.
    Close,       ///< The closes of a user's day, `DAYCLOSE`; they have no number.
};

inline constexpr DocumentKind kDocumentKinds[] = {
    DocumentKind::Sale,   DocumentKind::Containers, DocumentKind::Collection, DocumentKind::Payment,
    DocumentKind::Prints, DocumentKind::Deletion,   DocumentKind::Close};

/// "sale", "containers", "collection", "payment", "prints", "deletion" or "close".
QStringView kindName(DocumentKind kind);

/// The table whose rows make the document.
QStringView kindTable(DocumentKind kind);

/// What a document of a day is called, whatever its content.
struct DocumentIdentity {
    DocumentKind kind = DocumentKind::Sale;
    QString number;
    QString userId;

    friend bool operator==(const DocumentIdentity&, const DocumentIdentity&) = default;
    friend bool operator<(const DocumentIdentity& one, const DocumentIdentity& other) {
        return std::tie(one.kind, one.number, one.userId) < std::tie(other.kind, other.number, other.userId);
    }
    friend size_t qHash(const DocumentIdentity& id, size_t seed = 0) {
        return qHashMulti(seed, int(id.kind), id.number, id.userId);
    }
};

struct Document {
    DocumentIdentity identity;
    /// Its rows in their stored order, U+001E between them, and their fields, U+001F between them, in UTF-8:
    /// the table's columns without those of the day, the number and the user. A control character of a text
    /// that would be taken for one of those is U+FFFD here.
    QByteArray content;
    QByteArray digest;  ///< documentDigest.
};

inline constexpr char kRowSeparator = '\x1e';
inline constexpr char kFieldSeparator = '\x1f';

/// Whether the kind's contents have that column of its table.
bool isContentColumn(DocumentKind kind, QStringView column);

/// SHA-256 of the kind's name, the number and user with a field separator between them, and the content, a
/// row separator before each but the first.
QByteArray documentDigest(const DocumentIdentity& identity, const QByteArray& content);

/// SHA-256 of the documents' digests in their order as bytes; that of nothing for a day without documents.
QByteArray dayDigest(QList<QByteArray> digests);

/// Reads days from a database that others work on. A table or column that an older one lacks counts as empty.
/// What cannot be read throws platform::SqliteError.
class DocumentReader {
  public:
    explicit DocumentReader(platform::SqliteFile& database);

    /// The days from `first` on that hold anything, in order; a text that is no "yyyy-MM-dd" is none.
    QStringList days(const QString& first) const;

    /// Calls `use` on each document of the day, kind by kind, until it returns false. A collection that is on
    /// the way to the card is still the one that it replaces, or none: it may be taken back without a trace.
    void forEachDocument(const QString& date, const std::function<bool(const Document&)>& use) const;

  private:
    using Prepared = QHash<DocumentIdentity, QByteArray>;
    Prepared preparedCollections(const QString& date) const;
    QByteArray selection(DocumentKind kind, const QString& date) const;
    bool readKind(DocumentKind kind, const QString& date,
                  const std::function<bool(const Document&)>& use) const;
    QByteArray columnsOf(DocumentKind kind) const;

    platform::SqliteFile& database_;
    QHash<DocumentKind, QByteArray> columns_;  ///< The SELECT list for each table's contents that is there.
};

}  // namespace books
