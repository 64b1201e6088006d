#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdio>
#include <string_view>

#include "Program.h"
#include "rovana-play/Hand.h"
#include "rovana-play/Pilot.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kPatienceMs = 60'000;
/// Makes this program the terminal's own, in which the visit that follows is played.
constexpr std::string_view kPlay = "--play";

/// The real program on its real window; a visit moves the display's pointer and keyboard.
int play(const QString& visit, int argc, char** argv) {
    bool isDone = false;
    const int exitCode = runProgram(argc, argv, [&](ui::Terminal& terminal) {
        pilot::useDisplay();
        auto* player =
            new pilot::Pilot(pilot::readScript(visit, u"2026-11-21 09:05"_s), pilot::Options(), &terminal);
        QObject::connect(player, &pilot::Pilot::missed, player, [](const QString& failure) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(failure));
        });
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, player,
                         [=, &isDone] { isDone = player->finish(); });
        player->start();
    });
    return isDone ? exitCode : 1;
}

/// A display without a screen, for as long as the object lives.
class Display {
  public:
    Display() {
        server_.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"400x400x24"_s,
                                  u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
        while (server_.state() != QProcess::NotRunning && !server_.canReadLine() &&
               server_.waitForReadyRead(kPatienceMs)) {
        }
        number_ = server_.readLine().trimmed();
    }
    ~Display() {
        server_.terminate();
        if (!server_.waitForFinished(kPatienceMs)) server_.kill();
    }

    /// As the environment names it; ":" alone when there is none.
    QString name() const { return u':' + QString::fromLatin1(number_); }

  private:
    QProcess server_;
    QByteArray number_;
};

class Window : public testing::TestWithParam<const char*> {};

TEST_P(Window, IsWorked) {
    for (const QString& program : {u"Xvfb"_s, u"xdotool"_s}) {
        if (QStandardPaths::findExecutable(program).isEmpty())
            GTEST_SKIP() << "the real window is not tried: there is no " << program.toStdString();
    }
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    const QString tool = QCoreApplication::applicationDirPath();
    ASSERT_EQ(QProcess::execute(tool + u"/rovanactl"_s,
                                {u"init"_s, device, u"--demo"_s, u"--date"_s, u"2026-11-21"_s}),
              0);
    const Display display;
    ASSERT_NE(display.name(), u":"_s);
    QProcess terminal;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    environment.insert(u"DISPLAY"_s, display.name());
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    terminal.setProcessEnvironment(environment);
    terminal.setProcessChannelMode(QProcess::MergedChannels);
    // Larger than the display, which it is shrunk to: else the pointer would miss half of it.
    terminal.start(tool + u"/test_x11"_s, {QString::fromLatin1(kPlay.data()),
                                           QStringLiteral(ROVANA_TESTS_DIR "/visits/") +
                                               QString::fromLatin1(GetParam()) + u".visit"_s,
                                           u"--device"_s, device, u"--scale"_s, u"3"_s});
    EXPECT_TRUE(terminal.waitForFinished(kPatienceMs));
    EXPECT_EQ(terminal.exitCode(), 0) << terminal.readAll().toStdString();
}

INSTANTIATE_TEST_SUITE_P(By, Window, testing::Values("hand", "keys"),
                         [](const auto& each) { return std::string(each.param); });

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2 && argv[1] == kPlay) {
        const QString visit = QString::fromLocal8Bit(argv[2]);
        argv[2] = argv[0];
        return play(visit, argc - 2, argv + 2);
    }
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
