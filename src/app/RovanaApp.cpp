#include "app/RovanaApp.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QString>
#include <cstdio>

#include "app/DeviceProblem.h"
#include "app/Dialogs.h"
#include "db/Health.h"
#include "platform/Trace.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace app {

using namespace Qt::Literals::StringLiterals;

bool CRovanaApp::initializeSockets() {
    const int probe = ::socket(AF_INET, SOCK_STREAM, 0);
    if (probe < 0) return false;
    ::close(probe);
    return true;
}

int CRovanaApp::run() {
    if (!initializeSockets()) {
        ui::message(u"Windows CE sockets initialization failed."_s);
        return 1;
    }
    // The login looks again and waits for the disk: here its waiting would be most of the start.
    if (const QString noFolder = deviceProblem(Sure::AtOnce); !noFolder.isEmpty()) {
        platform::trace(noFolder);
        ui::message(noFolder);
    }
    const QString problem = db::databaseProblem();
    if (!problem.isEmpty()) {
        platform::trace(problem);
        std::fprintf(stderr, "rovana: %s\n", qUtf8Printable(problem));
    }
    if (db::needsUpgrade()) platform::trace(u"the database is an older build's; run: rovanactl upgrade");
    ui::runScreen(dialogs::kMain);
    return 0;
}

}  // namespace app
