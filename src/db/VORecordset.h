#pragma once

#include <QString>
#include <QVariant>
#include <cstdio>
#include <memory>
#include <optional>

#include "db/Statement.h"
#include "platform/adoce/Adoce.h"

// The end-of-file constant of the C library bears the name of the recordset's operation and is not used here.
#undef EOF

namespace db {

class CVOConnection;

/// Cursor and lock types of CVORecordset::Open.
inline constexpr int kForwardOnly = 0;
inline constexpr int kKeyset = 1;
inline constexpr int kReadOnly = 1;

/// One statement's result, walked row by row and read by column position.
class CVORecordset {
  public:
    explicit CVORecordset(CVOConnection& connection);
    virtual ~CVORecordset();
    Q_DISABLE_COPY_MOVE(CVORecordset)

    /// Runs the statement and stands on its first row; `m_bOpen`, false when the statement failed.
    bool Open(const Sql& sql, int cursorType, int lockType);

    /// True if the component exists.
    bool Close();

    /// Both false without a component. EOF is true on an empty or failed result.
    bool BOF();
    bool EOF();

    /// False after the last row's successor, and without a component.
    bool MoveFirst();
    bool MoveNext();

    /// The field at `index` (from 0, in SELECT order); null, traced, for an index without a field.
    platform::adoce::Field* GetField(int index);
    std::optional<QString> GetFieldName(int index);
    QVariant& GetFieldValue(QVariant& value, int index);

    /// The column's text: "" for NULL, "0" for an index without a field.
    QString GetFieldString(int index);

    /// True when the statement failed or its rows broke off: what was read is not all there is.
    bool IsBroken() const { return !m_pRecordset || !m_bOpen || m_pRecordset->IsBroken(); }

    bool m_bOpen = false;
    CVOConnection* m_pConnection;
    std::unique_ptr<platform::adoce::Recordset> m_pRecordset;
    platform::adoce::Fields* m_pFields = nullptr;
    platform::adoce::Field* m_pField = nullptr;
    int m_nFieldCount = 0;
};

}  // namespace db
