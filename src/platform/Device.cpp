#include "platform/Device.h"

#include <QDir>
#include <QStandardPaths>

namespace platform::device {
namespace {

using namespace Qt::Literals::StringLiterals;

QString& currentFolder() {
    static QString folder;
    return folder;
}

}  // namespace

QString choose(const QString& option) {
    if (!option.isEmpty()) return QDir(option).absolutePath();
    const QString fromEnvironment = qEnvironmentVariable("ROVANA_DEVICE");
    if (!fromEnvironment.isEmpty()) return QDir(fromEnvironment).absolutePath();
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/rovana"_s;
}

void setFolder(const QString& folder) {
    currentFolder() = QDir(folder).absolutePath();
}

QString folder() {
    if (currentFolder().isEmpty()) currentFolder() = choose({});
    return currentFolder();
}

QString path(QStringView handheldPath) {
    return folder() + handheldPath.toString().replace(u'\\', u'/');
}

}  // namespace platform::device
