#include "db/Transaction.h"

#include <algorithm>

#include "db/Query.h"

namespace db {

Transaction::Transaction(Survives survives) {
    finishReading();
    openDatabase(connection_);
    isOpen_ = connection_.m_pConnection &&
              !platform::adoce::failed(connection_.m_pConnection->BeginTrans(survives));
    // Statements that could not be taken back again must not run at all.
    if (!isOpen_ && connection_.m_pConnection) connection_.Close();
}

Transaction::~Transaction() {
    if (isOpen_) connection_.m_pConnection->RollbackTrans();
}

bool Transaction::isAlive() const {
    return isOpen_ && connection_.m_pConnection->IsUsable();
}

bool Transaction::run(const Sql& statement) {
    CVORecordset recordset(connection_);
    return recordset.Open(statement, kForwardOnly, kReadOnly);
}

bool Transaction::commit() {
    if (!isOpen_ || platform::adoce::failed(connection_.m_pConnection->CommitTrans())) return false;
    isOpen_ = false;
    return true;
}

RowInsert::RowInsert(Transaction& transaction, const QByteArray& statement)
    : command_(*transaction.connection().m_pConnection, statement) {}

bool RowInsert::run(std::span<const QByteArrayView> values) {
    const bool hasQuote =
        std::ranges::any_of(values, [](QByteArrayView value) { return value.contains('\''); });
    return !hasQuote && !platform::adoce::failed(command_.Execute(values));
}

ReadScope::ReadScope() {
    openDatabase(connection_);
    isOpen_ =
        connection_.m_pConnection && !platform::adoce::failed(connection_.m_pConnection->BeginReading());
}

ReadScope::~ReadScope() {
    if (isOpen_) connection_.m_pConnection->EndReading();
}

bool changeWorkingTable(const Sql& statement) {
    Transaction transaction(Survives::ProcessEnd);
    return transaction.run(statement) && transaction.commit();
}

}  // namespace db
