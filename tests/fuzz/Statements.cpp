#include "fuzz/Statements.h"

#include <sqlite3.h>

#include <QHash>
#include <QStringEncoder>
#include <array>
#include <memory>

#include "db/Query.h"
#include "db/Transaction.h"
#include "fuzz/Target.h"
#include "platform/Device.h"
#include "platform/adoce/Adoce.h"
#include "platform/adoce/DatabaseFile.h"
#include "platform/adoce/Literals.h"

namespace fuzz {
namespace {

namespace adoce = platform::adoce;

template <db::StatementText Format>
db::Sql make(std::span<const QString> values) {
    constexpr db::Statement<Format> kStatement;
    if constexpr (kStatement.kValues == 0) {
        return kStatement();
    } else {
        std::array<QStringView, kStatement.kValues> views;
        std::copy(values.begin(), values.end(), views.begin());
        return kStatement(views);
    }
}

template <db::StatementText Format>
constexpr SystemStatement describe() {
    return {db::Statement<Format>::format(), db::Statement<Format>::kValues, make<Format>};
}

const SystemStatement kStatements[] = {
#define STATEMENT(text) describe<text>(),
#include "SystemStatements.inc"
#undef STATEMENT
};

/// The system's database with empty tables, watched: what SQLite runs on it is noted.
class Database {
  public:
    static Database& instance() {
        static Database database;
        return database;
    }

    /// What `work` makes SQLite run, without the transaction that takes it back.
    template <typename Work>
    QList<QByteArray> watch(Work work) {
        db::Transaction transaction;
        isWatched_ = true;
        steps_ = 0;
        work(transaction);
        isWatched_ = false;
        return std::exchange(ran_, {});
    }

    /// The columns of the row that this statement has inserted.
    QList<QByteArray> insertedRow(QStringView insert) {
        isWatched_ = false;
        const QString table = insert.toString().simplified().section(u' ', 2, 2).section(u'(', 0, 0);
        const QByteArray select = "SELECT * FROM " + table.toUtf8() + " WHERE rowid = last_insert_rowid()";
        auto statement = file_->sqlite().statement(select);
        require(statement.step(), "what was inserted is there");
        QList<QByteArray> columns;
        for (int i = 0; i < statement.columns(); ++i) columns << statement.bytes(i);
        isWatched_ = true;
        return columns;
    }

  private:
    Database() {
        QString error;
        file_ = adoce::DatabaseFile::shared(device().databaseFile(), &error);
        require(file_ != nullptr, "there is a database");
        sqlite3* const handle = file_->sqlite().handle();
        sqlite3_trace_v2(handle, SQLITE_TRACE_STMT, note, this);
        sqlite3_set_authorizer(handle, mayDo, this);
        sqlite3_progress_handler(handle, 1000, isTooLong, this);
        sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, 16 * 1024 * 1024);
    }

    static int note(unsigned, void* self, void* statement, void*) {
        auto* const handle = static_cast<sqlite3_stmt*>(statement);
        auto* const database = static_cast<Database*>(self);
        if (database->isWatched_) database->ran_ << sqlite3_sql(handle);
        return 0;
    }

    static int mayDo(void* self, int action, const char*, const char*, const char*, const char*) {
        switch (action) {
            case SQLITE_SELECT:
            case SQLITE_READ:
            case SQLITE_INSERT:
            case SQLITE_UPDATE:
            case SQLITE_DELETE:
            case SQLITE_FUNCTION:
                return SQLITE_OK;
            case SQLITE_TRANSACTION:
                return static_cast<Database*>(self)->isWatched_ ? SQLITE_DENY : SQLITE_OK;
            default:
                return SQLITE_DENY;
        }
    }

    static int isTooLong(void* self) { return ++static_cast<Database*>(self)->steps_ > 1000; }

    std::shared_ptr<adoce::DatabaseFile> file_;
    QList<QByteArray> ran_;
    bool isWatched_ = false;
    int steps_ = 0;
};

struct Parameters {
    QByteArray structure;
    QList<QByteArray> values;
    friend bool operator==(const Parameters&, const Parameters&) = default;
};

Parameters parametersOf(QStringView text) {
    adoce::ParsedStatement parsed;
    require(adoce::parseStatement(text, &parsed), "a statement of the system parses");
    Parameters parameters{parsed.text, {}};
    int begin = 0;
    for (const int end : parsed.ends) {
        parameters.values << parsed.values.mid(begin, end - begin);
        begin = end;
    }
    return parameters;
}

/// A value as the database has it: what is only half a character is U+FFFD there.
QByteArray stored(const QString& value) {
    return QStringEncoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless)(value);
}

/// What SQLite runs for the statement with plain values; every other value must lead to the same.
const QByteArray& plainRun(const SystemStatement& statement) {
    static QHash<QStringView, QByteArray> known;
    const auto found = known.constFind(statement.format);
    if (found != known.constEnd()) return *found;
    const QStringList values(statement.values, QStringLiteral("1"));
    const QList<QByteArray> ran = Database::instance().watch([&](db::Transaction& transaction) {
        require(transaction.run(statement.make(values)), "a statement of the system runs");
    });
    require(ran.size() == 1 && 2 * ran.front().count('?') == statement.format.count(u'\''),
            "what is quoted is a parameter");
    return *known.insert(statement.format, ran.front());
}

}  // namespace

std::span<const SystemStatement> systemStatements() {
    return kStatements;
}

void checkValues(const SystemStatement& statement, std::span<const QString> values) {
    const QByteArray& plain = plainRun(statement);
    const db::Sql sql = statement.make(values);
    const bool hasQuote =
        std::ranges::any_of(values, [](const QString& value) { return value.contains(u'\''); });
    require(sql.isWellFormed() != hasQuote && sql.format() == statement.format, "a quote is noticed");
    if (!hasQuote) {
        // The few values that a statement itself has are parameters as well.
        Parameters expected = parametersOf(statement.format);
        for (auto value = values.begin(); QByteArray & each : expected.values) {
            if (each == "%s") each = stored(*value++);
        }
        require(parametersOf(sql.text()) == expected, "values are parameters, as they are");
    }
    Database& database = Database::instance();
    QList<QByteArray> row;
    bool hasRun = false;
    const QList<QByteArray> ran = database.watch([&](db::Transaction& transaction) {
        hasRun = transaction.run(sql);
        if (hasRun && statement.format.startsWith(u"INSERT")) row = database.insertedRow(statement.format);
    });
    require(hasRun != hasQuote, "what has no quote runs, and nothing else does");
    require(ran == (hasQuote ? QList<QByteArray>() : QList{plain}), "no value changes what is run");
    for (const QString& value : values)
        require(row.isEmpty() || row.contains(stored(value)), "a value is stored as it is");
}

QList<QByteArray> runText(const QString& text) {
    return Database::instance().watch([&](db::Transaction& transaction) {
        adoce::Recordset recordset;
        if (adoce::failed(recordset.Open(text, transaction.connection().m_pConnection.get(), db::kForwardOnly,
                                         db::kReadOnly, adoce::kUnknownCommandType))) {
            return;
        }
        for (int row = 0; row < 10 && !recordset.EndOfRows(); ++row, recordset.MoveNext()) {
            for (int i = 0; i < recordset.GetFields()->Count(); ++i) {
                adoce::Field* field = nullptr;
                QVariant value;
                require(!adoce::failed(recordset.GetFields()->Item(i, &field)) &&
                            !adoce::failed(field->Value(&value)),
                        "every column of a row can be read");
            }
        }
    });
}

}  // namespace fuzz
