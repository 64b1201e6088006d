#include "platform/adoce/Adoce.h"

#include <QScopeGuard>

#include "platform/Trace.h"
#include "platform/adoce/DatabaseFile.h"
#include "platform/adoce/Literals.h"

namespace platform::adoce {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kConnectionProgId = u"ADOCE.Connection.3.1";
constexpr QStringView kRecordsetProgId = u"ADOCE.Recordset.3.1";

HResult& creationResult() {
    static HResult result = kOk;
    return result;
}

void traceFailure(const QString& error, QByteArrayView text) {
    trace(u"database: %1 in: %2"_s.arg(error, QString::fromUtf8(text)));
}

template <typename Component>
std::unique_ptr<Component> create(bool classMatches, int context, HResult* result) {
    *result = !classMatches || context != kInProcessServer ? kInvalidClass : creationResult();
    return failed(*result) ? nullptr : std::make_unique<Component>();
}

}  // namespace

HResult initialize(int concurrencyFlags) {
    return concurrencyFlags == 0 ? kOk : kFail;
}

HResult classIdFromProgId(QStringView progId, ClassId* classId) {
    *classId = progId == kConnectionProgId  ? ClassId::Connection
               : progId == kRecordsetProgId ? ClassId::Recordset
                                            : ClassId::None;
    return *classId == ClassId::None ? kInvalidClass : kOk;
}

void setCreationResult(HResult result) {
    creationResult() = result;
}

std::unique_ptr<Connection> createConnection(ClassId classId, int context, HResult* result) {
    return create<Connection>(classId == ClassId::Connection, context, result);
}

std::unique_ptr<Recordset> createRecordset(ClassId classId, int context, HResult* result) {
    return create<Recordset>(classId == ClassId::Recordset, context, result);
}

HResult changeTypeToText(QVariant* value) {
    *value = value->toString();
    return kOk;
}

HResult Connection::Open(const QString& connectionString, const QString&, const QString&, int) {
    constexpr QStringView kDataSource = u"Data Source = ";
    file_.reset();
    if (provider_ != u"cedb" || !connectionString.startsWith(kDataSource)) return kFail;
    QString error;
    file_ = DatabaseFile::shared(connectionString.mid(kDataSource.size()), &error);
    if (file_) return kOk;
    trace(u"database: "_s + error);
    return kFail;
}

HResult Connection::Close() {
    file_.reset();
    return kOk;
}

HResult Connection::BeginTrans(Survives survives) {
    return file_ && file_->begin(survives) ? kOk : kFail;
}

HResult Connection::CommitTrans() {
    return file_ && file_->commit() ? kOk : kFail;
}

HResult Connection::RollbackTrans() {
    if (!file_) return kFail;
    file_->rollback();
    return kOk;
}

bool Connection::IsUsable() const {
    return file_ && file_->isUsable();
}

QString Field::Name() const {
    if (recordset_->statement_ == nullptr) return {};
    return QString::fromUtf8(sqlite3_column_name(recordset_->statement_->handle, index_));
}

HResult Field::Value(QVariant* value) const {
    value->clear();
    if (!recordset_->hasRow_) return kFail;
    if (sqlite3_column_type(recordset_->statement_->handle, index_) == SQLITE_NULL) return kOk;
    const auto* text =
        reinterpret_cast<const char*>(sqlite3_column_text(recordset_->statement_->handle, index_));
    *value = QString::fromUtf8(text, sqlite3_column_bytes(recordset_->statement_->handle, index_));
    return kOk;
}

int Fields::Count() const {
    return field_.recordset_->statement_ ? sqlite3_column_count(field_.recordset_->statement_->handle) : 0;
}

HResult Fields::Item(const QVariant& index, Field** field) {
    bool isNumber = false;
    field_.index_ = index.toInt(&isNumber);
    *field = nullptr;
    if (!isNumber || field_.index_ < 0 || field_.index_ >= Count()) return kFail;
    *field = &field_;
    return kOk;
}

HResult Recordset::Open(const QVariant& source, const QVariant& activeConnection, int, int, int) {
    Close();
    auto* connection = activeConnection.value<Connection*>();
    if (connection == nullptr) connection = active_;
    isBroken_ = true;
    if (connection == nullptr || !connection->file() || source.typeId() != QMetaType::QString) return kFail;

    thread_local ParsedStatement parsed;
    // Values may be passwords: none stays behind in the memory that the next statement uses.
    const auto wipe = qScopeGuard([] { sodium_memzero(parsed.values.data(), size_t(parsed.values.size())); });
    const bool isWellFormed = parseStatement(*static_cast<const QString*>(source.constData()), &parsed);
    if (!isWellFormed) {
        // A broken text may show a piece of a value where its structure should be.
        traceFailure(u"a quote stands in a value"_s, "(text not shown)");
        return kFail;
    }
    file_ = connection->file();
    QString error;
    if (file_->isUsable()) {
        statement_ = file_->acquire(parsed.text, &error);
    } else {
        error = u"the transaction is lost"_s;
    }
    if (statement_ == nullptr) {
        traceFailure(error, parsed.text);
        return kFail;
    }
    sqlite3_stmt* handle = statement_->handle;
    if (sqlite3_stmt_readonly(handle) == 0 && !file_->readyToChange()) {
        Close();
        return kFail;
    }

    // A SELECT goes on reading its values while rows are fetched, long after `parsed` serves another one.
    // SQLite's own copies would not be wiped.
    const char* values = parsed.values.constData();
    if (sqlite3_stmt_readonly(handle) != 0) {
        values_.reserve(parsed.values.size() + 1);  // Never null, which would bind NULL.
        values_.assign(parsed.values.cbegin(), parsed.values.cend());
        values = reinterpret_cast<const char*>(values_.data());
    }
    int begin = 0;
    for (size_t i = 0; i < parsed.ends.size(); ++i) {
        sqlite3_bind_text(handle, int(i) + 1, values + begin, parsed.ends[i] - begin, SQLITE_STATIC);
        begin = parsed.ends[i];
    }
    const HResult result = step();
    if (failed(result)) {
        Close();
        isBroken_ = true;
    } else if (hasRow_) {
        rowNumber_ = 0;
    }
    return result;
}

HResult Recordset::Close() {
    if (statement_ != nullptr) file_->release(statement_);
    statement_ = nullptr;
    SecureBytes().swap(values_);
    file_.reset();
    rowNumber_ = -1;
    hasRow_ = false;
    return kOk;
}

HResult Recordset::MoveFirst() {
    if (statement_ == nullptr || rowNumber_ < 0) return kFail;
    if (rowNumber_ == 0 && hasRow_) return kOk;
    sqlite3_reset(statement_->handle);
    const HResult result = step();
    rowNumber_ = hasRow_ ? 0 : -1;
    return result;
}

HResult Recordset::MoveNext() {
    if (statement_ == nullptr || !hasRow_) return kFail;
    ++rowNumber_;
    return step();
}

HResult Recordset::step() {
    const int result = sqlite3_step(statement_->handle);
    file_->noteResult(result);
    hasRow_ = result == SQLITE_ROW;
    isBroken_ = !hasRow_ && result != SQLITE_DONE;
    if (isBroken_) traceFailure(file_->errorText(), sqlite3_sql(statement_->handle));
    return isBroken_ ? kFail : kOk;
}

}  // namespace platform::adoce
