#include "rovana-play/CardHost.h"

#include "platform/Device.h"
#include "platform/message/SavedValues.h"

namespace pilot {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;

QString CardHost::start(const QStringList& options) {
    const QString terminal = u"0000000001"_s;
    if (const QString error = host_.start(platform::device::folder() + u"/cardhost"_s, options);
        !error.isEmpty())
        return error;
    const SavedValues values{{kHostAddressKey.toString(), savedAddress(u"127.0.0.1"_s)},
                             {kHostPortKey.toString(), QString::number(host_.port())},
                             {kTerminalKey.toString(), terminal}};
    return writeSavedValues(values) ? host_.enrol({terminal}) : u"the saved values could not be written"_s;
}

}  // namespace pilot
