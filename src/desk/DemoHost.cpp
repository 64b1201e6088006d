#include "desk/DemoHost.h"

#include <QFile>

#include "platform/Device.h"
#include "platform/message/SavedValues.h"

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kKeyFileBytes = 1024;

QString hostFile(const QString& name) {
    return platform::device::folder() + u"/cardhost/"_s + name;
}

}  // namespace

bool isDemoHost() {
    QFile file(hostFile(u"host.pub"_s));
    platform::message::PublicKey known;
    if (!file.open(QIODevice::ReadOnly) || platform::message::readHostKey(&known) != platform::message::kDone)
        return false;
    return platform::message::parsePublicKey(file.read(kKeyFileBytes)) == known;
}

bool setHostSilent(bool isSilent) {
    // The host looks for this file at every request.
    QFile file(hostFile(u"silent"_s));
    return isSilent ? file.open(QIODevice::WriteOnly) : !file.exists() || file.remove();
}

}  // namespace desk
