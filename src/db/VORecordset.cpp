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
    if (!m_pRecordset) {
        platform::trace(u"CVORecordset::Open() RecordSet COM Object not initialized\n");
        return false;
    }
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
    if (!m_pRecordset) {
        platform::trace(u"CVORecordset::Close() RecordSet COM Object not initialized\n");
        return false;
    }
    if (m_bOpen) {
        m_pRecordset->Close();
        m_bOpen = false;
    }
    return true;
}

bool CVORecordset::BOF() {
    if (!m_pRecordset) {
        platform::trace(u"CVORecordset::BOF() RecordSet COM Object not initialized\n");
        return false;
    }
    return m_pRecordset->BOF();
}

bool CVORecordset::EOF() {
    if (!m_pRecordset) {
        platform::trace(u"CVORecordset::EOF() RecordSet COM Object not initialized\n");
        return false;
    }
    return m_pRecordset->EndOfRows();
}

bool CVORecordset::MoveFirst() {
    if (!m_pRecordset) {
        platform::trace(u"CVORecordset::MoveFirst() RecordSet COM Object not initialized\n");
        return false;
    }
    return !adoce::failed(m_pRecordset->MoveFirst());
}

bool CVORecordset::MoveNext() {
    if (!m_pRecordset) {
        platform::trace(u"CVORecordset::MoveNext() RecordSet COM Object not initialized\n");
        return false;
    }
    return !adoce::failed(m_pRecordset->MoveNext());
}

adoce::Field* CVORecordset::GetField(int index) {
    if (!m_pRecordset) {
        platform::trace(u"CVORecordset::GetField() RecordSet COM Object not initialized\n");
        return nullptr;
    }
    m_pField = m_pFields == nullptr ? nullptr : m_pFields->at(index);
    return m_pField;
}

std::optional<QString> CVORecordset::GetFieldName(int index) {
    const adoce::Field* field = GetField(index);
    if (field == nullptr) {
        platform::trace(u"CVORecordset::GetFieldName() Invalid Field Index\n");
        return std::nullopt;
    }
    return field->Name();
}

QVariant& CVORecordset::GetFieldValue(QVariant& value, int index) {
    if (GetField(index) == nullptr) {
        platform::trace(u"CVORecordset::GetFieldValue() Invalid Field Index\n");
        value = 0;
        return value;
    }
    // The field is asked for a second time before its value is read.
    GetField(index)->Value(&value);
    return value;
}

QString CVORecordset::GetFieldString(int index) {
    const adoce::Field* field = GetField(index);
    if (field == nullptr) {
        platform::trace(u"CVORecordset::GetFieldValue() Invalid Field Index\n");
        return u"0"_s;
    }
    return field->Text();
}

}  // namespace db
