#include "db/VORecordset.h"

#include "db/VOConnection.h"
#include "platform/Trace.h"

namespace db {

using namespace Qt::Literals::StringLiterals;
namespace adoce = platform::adoce;

namespace {

adoce::ClassId recordsetClass = adoce::ClassId::None;
// Nothing sets the flag, so the class is resolved at every construction.
const bool recordsetClassResolved = false;

/// Whether there is a component; traced with the operation when there is none. Every cell of every row comes
/// through here: a string view would have the name's characters counted each time.
bool isMade(const std::unique_ptr<adoce::Recordset>& component, const char* operation) {
    if (!component)
        platform::trace(
            u"CVORecordset::%1() RecordSet COM Object not initialized\n"_s.arg(QLatin1StringView(operation)));
    return component != nullptr;
}

/// The same for a field.
bool isField(const adoce::Field* field, const char* operation) {
    if (field == nullptr)
        platform::trace(u"CVORecordset::%1() Invalid Field Index\n"_s.arg(QLatin1StringView(operation)));
    return field != nullptr;
}

}  // namespace

CVORecordset::CVORecordset(CVOConnection& connection) : m_pConnection(&connection) {
    if (!recordsetClassResolved) adoce::classIdFromProgId(u"ADOCE.Recordset.3.1", &recordsetClass);
    adoce::HResult result = adoce::kOk;
    m_pRecordset = adoce::createRecordset(recordsetClass, adoce::kInProcessServer, &result);
    if (m_pRecordset && connection.m_pConnection) {
        m_pRecordset->putActiveConnection(connection.m_pConnection.get());
    }
}

CVORecordset::~CVORecordset() {
    Close();
}

bool CVORecordset::Open(const Sql& sql, int cursorType, int lockType) {
    if (!isMade(m_pRecordset, "Open")) return false;
    if (m_bOpen) m_pRecordset->Close();
    if (sql.isWellFormed()) {
        const adoce::HResult result = m_pRecordset->Open(sql.text(), m_pConnection->m_pConnection.get(),
                                                         cursorType, lockType, adoce::kUnknownCommandType);
        m_bOpen = !adoce::failed(result);
    } else {
        m_pRecordset->Close();
        m_bOpen = false;
        platform::trace(u"database: a quote stands in a value of: %1\n"_s.arg(sql.format()));
    }
    m_pFields = m_pRecordset->GetFields();
    m_nFieldCount = m_pFields->Count();
    return m_bOpen;
}

bool CVORecordset::Close() {
    if (!isMade(m_pRecordset, "Close")) return false;
    if (m_bOpen) {
        m_pRecordset->Close();
        m_bOpen = false;
    }
    return true;
}

bool CVORecordset::BOF() {
    return isMade(m_pRecordset, "BOF") && m_pRecordset->BOF();
}

bool CVORecordset::EOF() {
    return isMade(m_pRecordset, "EOF") && m_pRecordset->EndOfRows();
}

bool CVORecordset::MoveFirst() {
    return isMade(m_pRecordset, "MoveFirst") && !adoce::failed(m_pRecordset->MoveFirst());
}

bool CVORecordset::MoveNext() {
    return isMade(m_pRecordset, "MoveNext") && !adoce::failed(m_pRecordset->MoveNext());
}

adoce::Field* CVORecordset::GetField(int index) {
    if (!isMade(m_pRecordset, "GetField")) return nullptr;
    m_pField = m_pFields == nullptr ? nullptr : m_pFields->at(index);
    return m_pField;
}

std::optional<QString> CVORecordset::GetFieldName(int index) {
    const adoce::Field* field = GetField(index);
    return isField(field, "GetFieldName") ? std::optional(field->Name()) : std::nullopt;
}

QVariant& CVORecordset::GetFieldValue(QVariant& value, int index) {
    if (!isField(GetField(index), "GetFieldValue")) {
        value = 0;
        return value;
    }
    // The field is asked for a second time before its value is read.
    GetField(index)->Value(&value);
    return value;
}

QString CVORecordset::GetFieldString(int index) {
    const adoce::Field* field = GetField(index);
    // It is read as GetFieldValue() reads it.
    return isField(field, "GetFieldValue") ? field->Text() : u"0"_s;
}

}  // namespace db
