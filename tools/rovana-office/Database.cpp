#include "rovana-office/Database.h"

#include <libpq-fe.h>

#include <memory>

#include "rovana-office/Migrations.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

QString chosen;

struct FreeOptions {
    void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
};
using Options = std::unique_ptr<PQconninfoOption, FreeOptions>;

/// The settings of a connection string alone; null, with the reason in `error`, when it is none.
Options parse(const QString& connection, QString* error) {
    char* reason = nullptr;
    Options options(PQconninfoParse(connection.toUtf8().constData(), &reason));
    if (options == nullptr && error != nullptr) *error = QString::fromUtf8(reason).trimmed();
    PQfreemem(reason);
    return options;
}

QString valueOf(const Options& options, QStringView name) {
    for (const PQconninfoOption* each = options.get(); each != nullptr && each->keyword != nullptr; ++each) {
        if (name == QLatin1StringView(each->keyword)) return QString::fromUtf8(each->val);
    }
    return {};
}

/// In single quotes, as a connection string takes any value.
QString quoted(QString value) {
    return u"'"_s + value.replace(u'\\', u"\\\\"_s).replace(u'\'', u"\\'"_s) + u"'"_s;
}

}  // namespace

QString chooseDatabase(const QString& connection) {
    QString error;
    const Options options = parse(connection, &error);
    if (options == nullptr) return u"--database is no connection of PostgreSQL: "_s + error;
    if (!valueOf(options, u"password").isEmpty())
        return u"a password in --database can be seen by every process; it belongs into ~/.pgpass"_s;
    chosen = connection;
    return {};
}

QString connectionSetting(QStringView name) {
    QString value = valueOf(parse(chosen, nullptr), name);
    if (value.isEmpty()) value = valueOf(Options(PQconndefaults()), name);
    if (value.isEmpty() && name == u"dbname") value = connectionSetting(u"user");
    return value;
}

Connection connect(const QString& database) {
    // Settings that are told again later win.
    QString settings;
    const Options options = parse(chosen, nullptr);
    for (const PQconninfoOption* each = options.get(); each != nullptr && each->keyword != nullptr; ++each) {
        if (each->val != nullptr)
            settings +=
                QLatin1StringView(each->keyword) + u"="_s + quoted(QString::fromUtf8(each->val)) + u" "_s;
    }
    if (!database.isEmpty()) settings += u"dbname="_s + quoted(database) + u" "_s;
    settings += u"client_encoding=UTF8 application_name=rovana-office"_s;
    auto connection = std::make_unique<pqxx::connection>(settings.toStdString());
    connection->set_variable("client_min_messages", "warning");
    connection->set_variable("datestyle", "ISO");
    return connection;
}

Connection connectToOffice() {
    Connection connection = connect();
    requireNewestSchema(*connection);
    return connection;
}

QString reasonOf(const std::exception& fault) {
    QString reason = QString::fromUtf8(fault.what()).trimmed();
    reason.replace(u'\n', u' ');
    if (reason.startsWith(u"ERROR:  ")) reason.remove(0, 8);
    return reason;
}

std::string textArray(const QStringList& texts) {
    std::string array = "{";
    for (const QString& text : texts) {
        if (array.size() > 1) array += ',';
        array += '"';
        for (const char byte : text.toUtf8()) {
            if (byte == '"' || byte == '\\') array += '\\';
            array += byte;
        }
        array += '"';
    }
    return array + '}';
}

QString textOf(const pqxx::field& field) {
    return field.is_null() ? QString() : QString::fromUtf8(field.c_str(), qsizetype(field.size()));
}

std::string plain(QStringView text) {
    return text.toUtf8().toStdString();
}

std::string byteaText(const QByteArray& bytes) {
    return "\\x" + bytes.toHex().toStdString();
}

}  // namespace office
