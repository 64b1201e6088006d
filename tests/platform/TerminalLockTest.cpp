#include "platform/TerminalLock.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <csignal>

#include "platform/Device.h"
#include "support/Pump.h"
#include "support/TestDevice.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Takes the folder's lock in another process, which is killed once it has it.
void killAHolder() {
    const pid_t child = ::fork();
    if (child == 0) {
        const TerminalLock lock;
        ::kill(::getpid(), lock.isTaken() ? SIGTERM : SIGKILL);
        ::pause();
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

TEST(TerminalLock, IsOneTerminalsUntilItsProcessIsGone) {
    const test::TestDevice terminal;
    const QString socket = terminal.folder() + u"/window.socket"_s;
    EXPECT_FALSE(TerminalLock::callHolder());
    killAHolder();
    ASSERT_TRUE(QFile::exists(socket)) << "what a killed terminal leaves";
    EXPECT_FALSE(TerminalLock::callHolder());
    // A second application object would leave the process without one when it goes.
    test::needApplication();
    {
        const TerminalLock first;
        EXPECT_FALSE(first.isTaken());
        EXPECT_FALSE(QFile::permissions(socket) & QFile::Permissions(0x0077));
        int calls = 0;
        QObject::connect(&first, &TerminalLock::startedAgain, [&] { ++calls; });
        const TerminalLock second;
        EXPECT_TRUE(second.isTaken());
        EXPECT_TRUE(TerminalLock::callHolder());
        EXPECT_TRUE(test::pump([&] { return calls > 0; }));
    }
    EXPECT_FALSE(QFile::exists(socket));
    EXPECT_FALSE(TerminalLock().isTaken());
    device::setFolder(terminal.folder() + u"/missing"_s);
    EXPECT_FALSE(TerminalLock().isTaken());
    device::setFolder(terminal.folder());
}

}  // namespace
}  // namespace platform
