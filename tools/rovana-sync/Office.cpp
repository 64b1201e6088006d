#include "rovana-sync/Office.h"

#include <QDateTime>
#include <algorithm>
#include <pqxx/pqxx>

#include "db/Schema.h"
#include "platform/Clock.h"
#include "rovana-sync/MemoryFile.h"

namespace terminal_sync {
namespace {

using namespace Qt::Literals::StringLiterals;
using books::DocumentIdentity;

int calls = 0;

/// An array as PostgreSQL reads it, each element in double quotes.
class ArrayText {
  public:
    void add(QByteArrayView element) {
        text_ += text_.size() > 1 ? ",\"" : "\"";
        for (const char each : element) {
            if (each == '"' || each == '\\') text_ += '\\';
            text_ += each;
        }
        text_ += '"';
    }
    void add(const QString& element) { add(QByteArrayView(element.toUtf8())); }
    void addBytes(const QByteArray& bytes) { add(QByteArrayView(QByteArray("\\x" + bytes.toHex()))); }
    std::string text() const { return text_ + "}"; }

  private:
    std::string text_ = "{";
};

QString text(const pqxx::field& field) {
    return QString::fromUtf8(field.c_str(), qsizetype(field.size()));
}

QByteArray bytes(const pqxx::field& field) {
    return QByteArray::fromHex(QByteArray(field.c_str(), qsizetype(field.size())).mid(2));
}

/// Nothing for a kind that this build does not know.
std::optional<DocumentIdentity> identity(const pqxx::row& row) {
    const QString kind = text(row["kind"]);
    const auto* const found = std::ranges::find(books::kDocumentKinds, QStringView(kind), books::kindName);
    if (found == std::end(books::kDocumentKinds)) return std::nullopt;
    return DocumentIdentity{*found, text(row["number"]), text(row["userid"])};
}

/// Adds a row of a day that differs: the day itself, or a document of it.
void addDifference(const pqxx::row& row, QMap<QString, DocumentDigests>* differing) {
    DocumentDigests& day = (*differing)[text(row["day"])];
    if (const auto found = identity(row)) day[*found] = bytes(row["digest"]);
}

std::pair<std::string, std::string> arrays(const DayDigests& days) {
    ArrayText names;
    ArrayText digests;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        names.add(day.key());
        digests.addBytes(day.value());
    }
    return {names.text(), digests.text()};
}

std::string utf8(const QString& text) {
    return text.toStdString();
}

/// Each after a row separator, its fields with a field separator between.
std::string salesmenText(const QList<Salesman>& salesmen) {
    QString text;
    for (const Salesman& each : salesmen) {
        QStringList fields{each.userId, each.name, each.vatMode};
        for (QString& field : fields) {
            for (const char separator : {books::kRowSeparator, books::kFieldSeparator, '\0'})
                field.replace(QLatin1Char(separator), QChar::ReplacementCharacter);
        }
        text += QLatin1Char(books::kRowSeparator) + fields.join(QLatin1Char(books::kFieldSeparator));
    }
    return utf8(text);
}

}  // namespace

struct Office::Connection {
    explicit Connection(const office::Access& access);

    // Certificates and key in files without a name: libpq takes them from nowhere else.
    MemoryFile authority;
    MemoryFile certificate;
    MemoryFile key;
    std::unique_ptr<pqxx::connection> line;
};

Office::Connection::Connection(const office::Access& access)
    : authority(access.authority),
      certificate(access.certificate),
      key(QByteArrayView(access.key.data(), qsizetype(access.key.size()))) {
    std::string options;
    const auto add = [&](const char* name, const std::string& value) {
        options += std::string(name) + "='";
        for (const char each : value) {
            if (each == '\'' || each == '\\') options += '\\';
            options += each;
        }
        options += "' ";
    };
    // A line that is dead is given up after half a minute: the next try is not far.
    options =
        "sslmode=verify-full connect_timeout=10 tcp_user_timeout=30000 keepalives_idle=20 "
        "keepalives_interval=5 "
        "keepalives_count=3 client_encoding=UTF8 application_name=rovana-sync gssencmode=disable ";
    add("host", utf8(access.host));
    add("port", utf8(access.port));
    add("dbname", utf8(access.database));
    add("user", utf8(access.user));
    add("sslrootcert", authority.path());
    if (!access.certificate.isEmpty()) {
        add("sslcert", certificate.path());
        add("sslkey", key.path());
    } else {
        // Neither a certificate of the machine's user nor his password file is meant.
        options += "sslcert=/proc/self/fd/none ";
        std::string password;
        password.reserve(std::size_t(access.password.size()));
        for (const QChar each : access.password.view()) password += char(each.toLatin1());
        // Neither text leaves a piece behind by growing.
        options.reserve(options.size() + 2 * password.size() + 32);
        add("password", password);
        sodium_memzero(password.data(), password.size());
    }
    try {
        line = std::make_unique<pqxx::connection>(options);
    } catch (...) {
        sodium_memzero(options.data(), options.size());
        throw;
    }
    sodium_memzero(options.data(), options.size());
}

Office::Office(const office::Access& access) try : connection_(std::make_unique<Connection>(access)) {
} catch (const pqxx::failure& failure) {
    throw OfficeError(OfficeError::Reason::Line, failure.what());
}

Office::~Office() = default;

pqxx::result Office::call(const char* statement, const std::vector<std::string>& values) try {
    // One statement is its own transaction: it needs no round trips around it.
    pqxx::nontransaction work(*connection_->line);
    ++calls;
    return work.exec_params(statement, pqxx::prepare::make_dynamic_params(values));
} catch (const pqxx::broken_connection& failure) {
    throw OfficeError(OfficeError::Reason::Line, failure.what());
} catch (const pqxx::sql_error& failure) {
    // Class 57: the server is stopped; 53: it lacks room; 40: somebody else was in the way.
    const std::string state = failure.sqlstate().substr(0, 2);
    const bool isPassing = state == "57" || state == "53" || state == "40" || state == "08" || state.empty();
    throw OfficeError(isPassing ? OfficeError::Reason::Line : OfficeError::Reason::Refused, failure.what());
} catch (const pqxx::failure& failure) {
    throw OfficeError(OfficeError::Reason::Line, failure.what());
}

int Office::roundTrips() {
    return calls;
}

Greeting Office::hello(const QString& firstDay, const DayDigests& days, const QList<Salesman>& salesmen) {
    const auto [names, digests] = arrays(days);
    const pqxx::result rows = call("SELECT * FROM terminal.hello($1, $2, $3, $4, $5, $6, $7)",
                                   {std::to_string(db::schema::kVersion), ROVANA_VERSION,
                                    utf8(platform::clock::now().toUTC().toString(Qt::ISODateWithMs)),
                                    utf8(firstDay), names, digests, salesmenText(salesmen)});
    Greeting greeting;
    for (const pqxx::row& row : rows) {
        const QString what = text(row["what"]);
        if (what == u"refused") throw OfficeError(OfficeError::Reason::Refused, row["note"].c_str());
        if (what == u"office") greeting.terminal = text(row["number"]);
        if (what == u"user") greeting.users << text(row["userid"]);
        if (what == u"day" || what == u"document") addDifference(row, &greeting.differing);
        if (what == u"master") {
            greeting.masters << MasterVersion{text(row["kind"]), text(row["note"]),
                                              QDateTime::fromString(text(row["day"]), Qt::ISODateWithMs)};
        }
        if (what == u"orders") greeting.hasOrders = true;
    }
    return greeting;
}

QMap<QString, DocumentDigests> Office::compare(const DayDigests& days) {
    const auto [names, digests] = arrays(days);
    QMap<QString, DocumentDigests> differing;
    for (const pqxx::row& row : call("SELECT * FROM terminal.compare($1, $2)", {names, digests}))
        addDifference(row, &differing);
    return differing;
}

Sent Office::send(const Parcel& parcel) {
    ArrayText kinds, numbers, users, digests, absentKinds, absentNumbers, absentUsers;
    std::string contents;
    for (const books::Document& document : parcel.documents) {
        kinds.add(books::kindName(document.identity.kind).toString());
        numbers.add(document.identity.number);
        users.add(document.identity.userId);
        // No row is empty, so two row separators stand in no content.
        if (!contents.empty()) contents.append(2, books::kRowSeparator);
        contents.append(document.content.constData(), std::size_t(document.content.size()));
        digests.addBytes(document.digest);
    }
    for (const DocumentIdentity& absent : parcel.absent) {
        absentKinds.add(books::kindName(absent.kind).toString());
        absentNumbers.add(absent.number);
        absentUsers.add(absent.userId);
    }
    const pqxx::result rows =
        call("SELECT * FROM terminal.send($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11)",
             {utf8(parcel.date), kinds.text(), numbers.text(), users.text(), contents, digests.text(),
              absentKinds.text(), absentNumbers.text(), absentUsers.text(), parcel.isLast ? "true" : "false",
              parcel.isArchived ? "true" : "false"});
    return {rows[0]["stored"].as<int>(), rows[0]["deleted"].as<int>(), rows[0]["missing"].as<int>()};
}

QMap<QString, QString> Office::masters(const QStringList& fileNames) {
    ArrayText names;
    for (const QString& each : fileNames) names.add(each);
    QMap<QString, QString> masters;
    for (const pqxx::row& row : call("SELECT * FROM terminal.masters($1)", {names.text()}))
        masters[text(row["file_name"])] = text(row["lines"]);
    return masters;
}

QList<Order> Office::orders(const QString& firstDay) {
    QList<Order> orders;
    for (const pqxx::row& row : call("SELECT * FROM terminal.orders($1)", {utf8(firstDay)}))
        orders << Order{text(row["ddate"]), text(row["junno"]), text(row["userid"]), text(row["line"])};
    return orders;
}

QStringList Office::days(const QString& firstDay) {
    QStringList days;
    for (const pqxx::row& row : call("SELECT terminal.days($1)", {utf8(firstDay)})) days << text(row[0]);
    return days;
}

QList<KeptDocument> Office::documents(const QString& date) {
    QList<KeptDocument> documents;
    for (const pqxx::row& row : call("SELECT * FROM terminal.documents($1)", {utf8(date)})) {
        const auto found = identity(row);
        if (!found) continue;
        const pqxx::field content = row["content"];
        documents << KeptDocument{
            {*found, QByteArray(content.c_str(), qsizetype(content.size())), bytes(row["digest"])},
            !content.is_null()};
    }
    return documents;
}

}  // namespace terminal_sync
