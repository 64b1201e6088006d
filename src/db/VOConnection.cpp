#include "db/VOConnection.h"

#include "db/VORecordset.h"
#include "platform/Device.h"
#include "platform/Trace.h"

namespace db {

using namespace Qt::Literals::StringLiterals;
namespace adoce = platform::adoce;

namespace {

adoce::ClassId connectionClass = adoce::ClassId::None;
// Nothing sets the flag, so the class is resolved at every construction.
const bool connectionClassResolved = false;

/// Where the last database was found: every statement opens one, and nearly always the same.
struct Opened {
    QString folder;
    QString database;
    QString source;
};
Opened lastOpened;

}  // namespace

CVOConnection::CVOConnection(int) {
    if (connectionClassResolved) return;
    if (!adoce::failed(adoce::initialize(0))) {
        adoce::classIdFromProgId(u"ADOCE.Connection.3.1", &connectionClass);
    }
}

CVOConnection::~CVOConnection() {
    if (m_pConnection) Close();
}

int CVOConnection::Open(QStringView, QStringView database) {
    adoce::HResult result = adoce::kOk;
    m_pConnection = adoce::createConnection(connectionClass, adoce::kInProcessServer, &result);
    if (!m_pConnection) return 1;
    m_pConnection->putProvider(u"cedb"_s);
    const auto open = [this](const QString& source) {
        return !adoce::failed(m_pConnection->Open(source, {}, {}, -1));
    };
    if (lastOpened.folder == platform::device::folder() && lastOpened.database == database &&
        open(lastOpened.source)) {
        return 1;
    }
    const QString source = u"Data Source = "_s + platform::device::path(database);
    lastOpened = open(source) ? Opened{platform::device::folder(), database.toString(), source} : Opened();
    return 1;
}

bool CVOConnection::Close() {
    if (!m_pConnection) {
        platform::trace(u"CVOConnection::Close() Connection COM Object not initialized\n");
        return false;
    }
    m_pConnection->Close();
    m_pConnection.reset();
    return true;
}

int CVOConnection::Execute(const Sql& sql) {
    CVORecordset recordset(*this);
    recordset.Open(sql, kForwardOnly, kReadOnly);
    return 1;
}

}  // namespace db
