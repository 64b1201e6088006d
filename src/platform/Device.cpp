#include "platform/Device.h"

#include <QDir>
#include <QFileInfo>
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
    const QString exact = folder() + handheldPath.toString().replace(u'\\', u'/');
    if (QFileInfo::exists(exact)) return exact;
    // The handheld's file names know no case: a file that came as "mtm.rvn" is found all the same.
    const QFileInfo wanted(exact);
    for (const QString& name : wanted.dir().entryList(QDir::Files)) {
        if (name.compare(wanted.fileName(), Qt::CaseInsensitive) == 0) return wanted.dir().filePath(name);
    }
    return exact;
}

}  // namespace platform::device
