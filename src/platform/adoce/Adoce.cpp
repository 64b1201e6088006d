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

void traceFailure(const QString& error, QByteArrayView text) {
    trace(u"database: %1 in: %2"_s.arg(error, QString::fromUtf8(text)));
}

template <typename Component>
std::unique_ptr<Component> create(bool classMatches, int context, HResult* result) {
    *result = !classMatches || context != kInProcessServer ? kInvalidClass : kOk;
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

std::unique_ptr<Connection> createConnection(ClassId classId, int context, HResult* result) {
    return create<Connection>(classId == ClassId::Connection, context, result);
}

std::unique_ptr<Recordset> createRecordset(ClassId classId, int context, HResult* result) {
    return create<Recordset>(classId == ClassId::Recordset, context, result);
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

HResult Connection::BeginReading() {
    return file_ && file_->beginReading() ? kOk : kFail;
}

void Connection::EndReading() {
    if (file_) file_->endReading();
}

bool Connection::IsUsable() const {
    return file_ && file_->isUsable();
}

QString Field::Name() const {
    return recordset_->statement_.isEmpty() ? QString() : recordset_->statement_.name(index_);
}

HResult Field::Value(QVariant* value) const {
    value->clear();
    if (!recordset_->hasRow_) return kFail;
    if (!recordset_->statement_.isNull(index_)) *value = recordset_->statement_.text(index_);
    return kOk;
}

QString Field::Text() const {
    return recordset_->hasRow_ ? recordset_->statement_.text(index_) : QString();
}

int Fields::Count() const {
    const SqliteStatement& statement = field_.recordset_->statement_;
    return statement.isEmpty() ? 0 : statement.columns();
}

Field* Fields::Item(int index) {
    if (index < 0 || index >= Count()) return nullptr;
    field_.index_ = index;
    return &field_;
}

HResult Recordset::Open(const QString& source, Connection* activeConnection, int, int, int) {
    Close();
    const Connection* const connection = activeConnection == nullptr ? active_ : activeConnection;
    isBroken_ = true;
    if (connection == nullptr || !connection->file()) return kFail;

    thread_local StatementParser parser;
    ParsedStatement* const parsed = parser.parse(source);
    if (parsed == nullptr) {
        // A broken text may show a piece of a value where its structure should be.
        traceFailure(u"a quote stands in a value"_s, "(text not shown)");
        return kFail;
    }
    // Values may be passwords: none stays behind in the memory that the next statement uses.
    const auto wipe =
        qScopeGuard([parsed] { sodium_memzero(parsed->values.data(), size_t(parsed->values.size())); });
    file_ = connection->file();
    if (!prepare(*parsed)) return kFail;
    const HResult result = step();
    if (failed(result)) {
        Close();
        isBroken_ = true;
    } else if (hasRow_) {
        rowNumber_ = 0;
    }
    return result;
}

bool Recordset::prepare(const ParsedStatement& parsed) {
    if (!file_->isUsable()) {
        traceFailure(u"the transaction is lost"_s, parsed.text);
        return false;
    }
    try {
        statement_ = file_->statement(parsed.text);
        if (!statement_.isReadOnly() && !file_->readyToChange()) {
            Close();
            return false;
        }
        // A SELECT goes on reading its values while rows are fetched, long after `parsed` serves another one.
        // SQLite's own copies would not be wiped.
        const char* values = parsed.values.constData();
        if (statement_.isReadOnly()) {
            values_.reserve(parsed.values.size() + 1);  // Never null, which would bind NULL.
            values_.assign(parsed.values.cbegin(), parsed.values.cend());
            values = reinterpret_cast<const char*>(values_.data());
        }
        int begin = 0;
        for (const int end : parsed.ends) {
            statement_.bindBorrowed({values + begin, end - begin});
            begin = end;
        }
        return true;
    } catch (const SqliteError& error) {
        traceFailure(QString::fromUtf8(error.what()), parsed.text);
        Close();
        return false;
    }
}

HResult Command::Execute(std::span<const QByteArrayView> values) {
    const auto& file = connection_.file();
    if (!file || !file->isUsable()) {
        traceFailure(u"the transaction is lost"_s, text_);
        return kFail;
    }
    try {
        if (statement_.isEmpty()) statement_ = file->statement(text_);
        if (!file->readyToChange()) return kFail;
        for (const QByteArrayView value : values) statement_.bindBorrowed(value);
        statement_.step();
        statement_.rewind();
        return kOk;
    } catch (const SqliteError& error) {
        file->noteFailure(error);
        traceFailure(QString::fromUtf8(error.what()), text_);
        statement_ = {};
        return kFail;
    }
}

HResult Recordset::Close() {
    statement_ = {};
    SecureBytes().swap(values_);
    file_.reset();
    rowNumber_ = -1;
    hasRow_ = false;
    return kOk;
}

HResult Recordset::MoveFirst() {
    if (statement_.isEmpty() || rowNumber_ < 0) return kFail;
    if (rowNumber_ == 0 && hasRow_) return kOk;
    statement_.rewind();
    const HResult result = step();
    rowNumber_ = hasRow_ ? 0 : -1;
    return result;
}

HResult Recordset::MoveNext() {
    if (statement_.isEmpty() || !hasRow_) return kFail;
    ++rowNumber_;
    return step();
}

HResult Recordset::step() try {
    hasRow_ = statement_.step();
    isBroken_ = false;
    return kOk;
} catch (const SqliteError& error) {
    file_->noteFailure(error);
    hasRow_ = false;
    isBroken_ = true;
    traceFailure(QString::fromUtf8(error.what()), statement_.text());
    return kFail;
}

}  // namespace platform::adoce
