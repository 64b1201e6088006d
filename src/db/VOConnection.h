#pragma once

#include <QString>
#include <QStringView>
#include <memory>

#include "db/Statement.h"
#include "platform/adoce/Adoce.h"

namespace db {

/// One open connection to the database file. Callers create it for one operation and let the destructor close
/// it. Nothing here reports a failure: a statement that cannot run does nothing, and the trace says why.
class CVOConnection {
  public:
    /// The argument has no effect.
    explicit CVOConnection(int unused = 0);
    virtual ~CVOConnection();
    Q_DISABLE_COPY_MOVE(CVOConnection)

    /// Opens the file at the handheld path `database`. `provider` has no effect: the provider is "cedb".
    /// Always 1, also when the file could not be opened.
    int Open(QStringView provider, QStringView database);

    /// True if the component exists.
    bool Close();

    /// Runs a DELETE, INSERT or UPDATE. Always 1, also when the statement failed.
    int Execute(const Sql& sql);

    std::unique_ptr<platform::adoce::Connection> m_pConnection;
};

}  // namespace db
