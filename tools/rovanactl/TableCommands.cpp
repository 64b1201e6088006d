#include <QSet>
#include <algorithm>

#include "db/Query.h"
#include "platform/Csv.h"
#include "platform/Digits.h"
#include "platform/WholeFile.h"
#include "rovanactl/Command.h"
#include "rovanactl/DeliveredTable.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::CsvRow;

constexpr QStringView kNothingChanged =
    u"the database did not take the rows (disk full, or in use by another program); nothing has changed";

/// The login has no keyboard and offers a letter of these.
bool canLogIn(QStringView id) {
    return id.size() == 1 && id[0] >= u'A' && id[0] <= u'Z';
}

QString tableNames() {
    QStringList names;
    for (const DeliveredTable& table : deliveredTables()) names << table.name.toString();
    return names.join(u", "_s);
}

/// What the system needs of a whole table beyond its columns.
QString findFault(const DeliveredTable& table, const QList<CsvRow>& rows) {
    if (table.name == u"config" && rows.size() != 1) {
        return u"config holds exactly one row, the file has %1"_s.arg(rows.size());
    }
    if (table.name != u"PDAUSER") return {};
    QSet<QString> ids;
    for (const auto& [line, row] : rows) {
        const QString& id = row[user::kId];
        if (id.isEmpty() || row[user::kPassword].isEmpty()) {
            return u"line %1: a user needs an id and a password"_s.arg(line);
        }
        if (!canLogIn(id)) {
            return u"line %1: \"%2\" cannot log in; an id is one letter, A to Z"_s.arg(line).arg(id);
        }
        if (ids.contains(id)) return u"line %1: the user \"%2\" stands in the file twice"_s.arg(line).arg(id);
        ids.insert(id);
    }
    return {};
}

/// The file's rows in the table's column order, or an error that names the line.
QString readRows(const DeliveredTable& table, QByteArrayView content, QList<CsvRow>* rows) {
    const std::span<const QStringView> columns = columnsOf(table);
    if (const QString error = platform::readCsvRows(content, table.name, columns, rows); !error.isEmpty())
        return error;
    for (const auto& [line, row] : *rows) {
        for (qsizetype i = 0; i < row.size(); ++i) {
            if (const QString error = unstorable(row[i]); !error.isEmpty())
                return u"line %1, column %2: %3"_s.arg(line).arg(columns[std::size_t(i)], error);
        }
    }
    return findFault(table, *rows);
}

Outcome load(const Invocation& call) {
    const DeliveredTable* table = findDeliveredTable(call.arguments[0]);
    if (table == nullptr) {
        return usageError(
            u"\"%1\" is not a delivered table; load fills one of %2"_s.arg(call.arguments[0], tableNames()));
    }
    if (Outcome missing = requireTable(table->name); missing.exitCode != kSuccess) return missing;
    const QString& path = call.arguments[1];
    QString error;
    const std::optional<QByteArray> content = platform::readWholeFile(path, &error);
    if (!content) return failure(u"%1 cannot be read: %2"_s.arg(path, error));
    QList<CsvRow> rows;
    error = readRows(*table, *content, &rows);
    if (!error.isEmpty()) return failure(u"%1: %2; nothing has changed"_s.arg(path, error));
    db::Transaction transaction;
    const bool isStored =
        runIn(transaction, table->deleteAll()) && std::ranges::all_of(rows, [&](const CsvRow& row) {
            return runIn(transaction, table->insert(row.texts));
        });
    if (!isStored || !transaction.commit()) return failure(kNothingChanged.toString());
    call.out << u"%1: %2 rows\n"_s.arg(table->name).arg(rows.size());
    return {};
}

/// A setting of a user that has an option: its place in the row and the values that have a meaning.
struct UserOption {
    QStringView name;
    int position;
    QStringView values;  ///< Each a character; a blank stands for the empty value. Empty: any text.
    QStringView help;
};

constexpr UserOption kUserOptions[] = {
    {u"name", user::kName, u"", u"The name shown at login and on slips."},
    {u"vat-mode", user::kVatMode, u"123",
     u"Total of a slip: 1 exact, 2 to the nearest 10 won, 3 to 100 won."},
    {u"follow-on", user::kFollowOn, u" NYZ",
     u"After a sales slip: N container deposit, Y or Z container return, \"\" collection."},
    {u"container", user::kContainerWork, u" X", u"X hides the container work in the menu, \"\" shows it."},
    {u"search", user::kSearch, u"YN", u"Product search: Y by initial consonant, N by liquor class."},
};

void addUserOptions(QCommandLineParser& parser) {
    parser.addOption({u"password"_s, u"The password, digits; - reads it from standard input."_s, u"P"_s});
    for (const UserOption& option : kUserOptions) {
        parser.addOption({option.name.toString(), option.help.toString(), u"VALUE"_s});
    }
}

/// Takes the options that were given into the user's row; an error for a value without a meaning.
QString applyUserOptions(const QCommandLineParser& options, QStringList* row) {
    for (const UserOption& option : kUserOptions) {
        const QString name = option.name.toString();
        if (!options.isSet(name)) continue;
        const QString value = options.value(name);
        if (const QString error = unstorable(value); !error.isEmpty()) return u"--%1: %2"_s.arg(name, error);
        const bool isKnown = option.values.isEmpty() || (value.isEmpty() && option.values.startsWith(u' ')) ||
                             (value.size() == 1 && value != u" " && option.values.contains(value));
        if (!isKnown) {
            const QStringList letters = option.values.trimmed().toString().split(u""_s, Qt::SkipEmptyParts);
            return u"--%1 does not know \"%2\"; it takes %3%4"_s.arg(
                name, value, letters.join(u", "_s), option.values.startsWith(u' ') ? u" or \"\""_s : u""_s);
        }
        (*row)[option.position] = value;
    }
    return {};
}

/// Takes the password into the row; an error, which never holds the password, when it cannot be one.
QString applyPassword(const Invocation& call, QStringList* row) {
    if (!call.options.isSet(u"password"_s)) return {};
    QString password = call.options.value(u"password"_s);
    if (password == u"-") password = call.in.readLine();
    if (!platform::areDigits(password))
        return u"the password must be digits, as the keypad of the login has nothing else"_s;
    (*row)[user::kPassword] = password;
    return {};
}

Outcome changeUser(const Invocation& call) {
    static constexpr db::Statement<u"SELECT *  FROM PDAUSER WHERE userID = '%s'"> kSelectUser;
    static constexpr db::Statement<u"DELETE PDAUSER WHERE userID = '%s'"> kDeleteUser;
    const QString& id = call.arguments[0];
    if (!canLogIn(id)) return usageError(u"\"%1\" could not log in; an id is one letter, A to Z"_s.arg(id));
    if (Outcome missing = requireTable(u"PDAUSER"); missing.exitCode != kSuccess) return missing;

    const DeliveredTable& table = *findDeliveredTable(u"PDAUSER");
    const std::optional<QStringList> stored = db::firstRow(kSelectUser(id));
    QStringList row = stored.value_or(QStringList(qsizetype(columnsOf(table).size()), u""_s));
    if (!stored) {
        if (!call.options.isSet(u"password"_s) || !call.options.isSet(u"name"_s)) {
            return usageError(
                u"there is no user \"%1\" yet; adding one needs --password and --name"_s.arg(id));
        }
        row[user::kId] = id;
        row[user::kVatMode] = u"1"_s;
        row[user::kSearch] = u"N"_s;
    }
    QString error = applyUserOptions(call.options, &row);
    if (error.isEmpty()) error = applyPassword(call, &row);
    if (!error.isEmpty()) return usageError(error);

    db::Transaction transaction;
    if (!runIn(transaction, kDeleteUser(id)) || !runIn(transaction, table.insert(row)) ||
        !transaction.commit()) {
        return failure(kNothingChanged.toString());
    }
    call.out << u"user %1 %2\n"_s.arg(id, stored ? u"changed"_s : u"added"_s);
    return {};
}

}  // namespace

constinit const Command kLoadCommand{
    u"load",
    u"TABLE FILE.csv",
    u"replaces PDAUSER, config, JGUBUN, MPUMMOK or BankMoney",
    u"FILE.csv is UTF-8 or code page 949; its first line names the table's columns, in any order and case.\n"
    u"When anything in it is wrong the table stays as it was.",
    2,
    2,
    nullptr,
    load};

constinit const Command kUserCommand{
    u"user",
    u"ID",
    u"adds a user, or changes what is named of one",
    u"ID is one letter, A to Z. Adding takes --password and --name; changing keeps what is not named.",
    1,
    1,
    addUserOptions,
    changeUser};

}  // namespace admin
