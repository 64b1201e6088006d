#pragma once

#include <QString>
#include <QVariant>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/SecureBytes.h"
#include "platform/Sqlite.h"
#include "platform/adoce/Survives.h"

/// The handheld's database component, reduced to the operations that the system uses, over SQLite. Statements
/// come as text with their values in single quotes; the quoted values become bound parameters.
namespace platform::adoce {

class DatabaseFile;
struct ParsedStatement;

/// Result code of a component call: negative means failure.
using HResult = std::int32_t;
inline constexpr HResult kOk = 0;
inline constexpr HResult kFail = static_cast<HResult>(0x80004005);
inline constexpr HResult kInvalidClass = static_cast<HResult>(0x80040154);
inline constexpr bool failed(HResult result) {
    return result < 0;
}

enum class ClassId { None, Connection, Recordset };

inline constexpr int kInProcessServer = 1;
inline constexpr int kUnknownCommandType = 8;

/// Readies the component library; harmless when repeated.
HResult initialize(int concurrencyFlags);

/// The class that a name such as "ADOCE.Connection.3.1" stands for; kInvalidClass and None for other names.
HResult classIdFromProgId(QStringView progId, ClassId* classId);

/// A connection to one database file.
class Connection {
  public:
    void putProvider(const QString& provider) { provider_ = provider; }

    /// Opens the file of "Data Source = <path>". Fails on another provider than "cedb", a missing file and
    /// a file that is no database; the cause is traced.
    HResult Open(const QString& connectionString, const QString& user, const QString& password, int options);
    HResult Close();

    HResult BeginTrans(Survives survives = Survives::PowerLoss);
    HResult CommitTrans();
    HResult RollbackTrans();
    /// Lets the SELECTs up to EndReading() read the database as it is at the first of them. kFail, and
    /// nothing has changed, when a transaction or such reading is under way already.
    HResult BeginReading();
    /// Nothing when a change has ended the reading.
    void EndReading();
    /// False without a file, and when the database gave up the transaction that began here.
    bool IsUsable() const;

    const std::shared_ptr<DatabaseFile>& file() const { return file_; }

  private:
    QString provider_;
    std::shared_ptr<DatabaseFile> file_;
};

class Recordset;

/// One column of a recordset's current row.
class Field {
  public:
    QString Name() const;
    /// The value as text; an invalid variant for NULL or without a current row.
    HResult Value(QVariant* value) const;
    /// The same as a text; "" for NULL or without a current row.
    QString Text() const;

  private:
    friend class Fields;
    const Recordset* recordset_ = nullptr;
    int index_ = 0;
};

/// The columns of a recordset, in the order of its SELECT.
class Fields {
  public:
    int Count() const;
    /// The field with the index that the variant holds; kFail when there is none.
    HResult Item(const QVariant& index, Field** field);
    /// The same; null when there is none.
    Field* at(int index);

  private:
    friend class Recordset;
    explicit Fields(const Recordset* recordset) { field_.recordset_ = recordset; }
    Field field_;
};

/// The result of one statement, walked forwards, row by row.
class Recordset {
  public:
    Recordset() : fields_(this) {}
    ~Recordset() { Close(); }
    Q_DISABLE_COPY_MOVE(Recordset)

    void putActiveConnection(Connection* connection) { active_ = connection; }

    /// Runs the statement `source` on `activeConnection`, without one on the active one, and stands on the
    /// first row. Fails, traced with the statement but none of its values, when SQLite does.
    HResult Open(const QString& source, Connection* activeConnection, int cursorType, int lockType,
                 int options);
    HResult Close();
    bool BOF() const { return rowNumber_ < 0; }
    /// True after the last row, on an empty result and on one that could not be opened.
    bool EndOfRows() const { return !hasRow_; }
    /// True when a row could not be fetched, so that what was read is not all there is.
    bool IsBroken() const { return isBroken_; }
    HResult MoveFirst();
    HResult MoveNext();
    Fields* GetFields() { return &fields_; }

  private:
    friend class Field;
    friend class Fields;

    bool prepare(const ParsedStatement& parsed);
    HResult step();

    Connection* active_ = nullptr;
    std::shared_ptr<DatabaseFile> file_;
    SecureBytes values_;         ///< Of a SELECT: SQLite reads them while rows are fetched.
    SqliteStatement statement_;  ///< Let go before the file.
    qint64 rowNumber_ = -1;
    bool hasRow_ = false;
    bool isBroken_ = false;
    Fields fields_;
};

/// One statement that is run many times, each time with other values.
class Command {
  public:
    /// `text` has a "?" for each value. The connection must outlast the command.
    Command(const Connection& connection, QByteArray text)
        : connection_(connection), text_(std::move(text)) {}

    /// Runs it with these values, UTF-8 and never null. Fails, traced with none of them, when SQLite does.
    HResult Execute(std::span<const QByteArrayView> values);

  private:
    const Connection& connection_;
    QByteArray text_;
    SqliteStatement statement_;
};

/// New components; null, with `result` telling why, when creation fails.
std::unique_ptr<Connection> createConnection(ClassId classId, int context, HResult* result);
std::unique_ptr<Recordset> createRecordset(ClassId classId, int context, HResult* result);

}  // namespace platform::adoce
