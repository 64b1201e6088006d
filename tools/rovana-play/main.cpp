#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <tuple>

#include "Screens.h"
#include "app/RovanaApp.h"
#include "desk/Desk.h"
#include "platform/Device.h"
#include "platform/OwnerOnly.h"
#include "platform/TerminalLock.h"
#include "platform/Trace.h"
#include "rovana-play/Hand.h"
#include "rovana-play/Pilot.h"
#include "rovana-play/Script.h"
#include "ui/Fonts.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kUsageError = 2;

int fail(const QString& error, int exitCode) {
    std::fprintf(stderr, "rovana-play: %s\n", qUtf8Printable(error));
    return exitCode;
}

}  // namespace

int main(int argc, char* argv[]) {
    platform::keepToOwner();
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Plays a visit script on the terminal's screens."_s);
    parser.addPositionalArgument(u"FILE.visit"_s, u"The script."_s);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption device(u"device"_s, u"The device folder."_s, u"DIR"_s);
    const QCommandLineOption shots(u"shots"_s, u"Folder for the screenshots; none without it."_s, u"DIR"_s);
    const QCommandLineOption scale(u"scale"_s, u"Size of the terminal; 2 with --shots, else 1."_s, u"N"_s);
    const QCommandLineOption pace(u"pace"_s, u"Pause before every step, to watch it."_s, u"MS"_s, u"0"_s);
    const QCommandLineOption onDesk(u"desk"_s, u"Shows the terminal on its desk, as rovana --desk does."_s);
    const QCommandLineOption byPointer(
        u"xdotool"_s, u"Moves the display's own pointer and strikes its keys, on X11 by xdotool."_s);
    parser.addOptions({device, shots, scale, pace, onDesk, byPointer});

    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    if (!parser.parse(arguments)) return fail(parser.errorText(), kUsageError);
    const bool isHelpWanted = parser.isSet(help);
    if (!isHelpWanted && parser.positionalArguments().size() != 1)
        return fail(u"one script is wanted, see --help"_s, kUsageError);
    if (isHelpWanted) {
        // The text needs an application object, but no display.
        const QCoreApplication passing(argc, argv);
        parser.showHelp();
    }
    // The scale has to be known before Qt starts.
    const QString size = parser.isSet(scale) ? parser.value(scale) : parser.isSet(shots) ? u"2"_s : QString();
    bool isSize = true;
    if (!size.isEmpty() && (size.toDouble(&isSize) <= 0 || !isSize))
        return fail(u"no scale: %1"_s.arg(size), kUsageError);
    if (!size.isEmpty()) qputenv("QT_SCALE_FACTOR", size.toUtf8());

    QApplication application(argc, argv);
    const pilot::Script script = pilot::readScript(parser.positionalArguments().constFirst());
    for (const QString& error : script.errors) fail(u"%1: %2"_s.arg(script.file, error), kUsageError);
    if (!script.errors.isEmpty()) return kUsageError;

    platform::device::setFolder(platform::device::choose(parser.value(device)));
    if (!QFileInfo::exists(platform::device::path(platform::device::kDatabaseFile)))
        return fail(u"no terminal in %1; \"rovanactl init\" makes one"_s.arg(platform::device::folder()),
                    kUsageError);
    const platform::TerminalLock lock;
    if (lock.isTaken()) {
        platform::TerminalLock::callHolder();
        return fail(u"a terminal is open on %1 already; close it first"_s.arg(platform::device::folder()),
                    kUsageError);
    }
    platform::openLog();
    platform::tightenFiles(platform::device::folder());
    QApplication::setCursorFlashTime(0);  // Screenshots of the same screen are the same.
    ui::prepareFonts();
    registerScreens();
    auto* terminal = new ui::Terminal;
    std::unique_ptr<QWidget> window(terminal);
    if (parser.isSet(onDesk)) {
        // The desk takes the terminal over.
        std::ignore = window.release();
        window = std::make_unique<desk::Desk>(terminal, platform::Settings());
        window->resize(desk::kDeskSize);
    }
    window->setVisible(true);
    window->activateWindow();
    QObject::connect(&lock, &platform::TerminalLock::startedAgain, window.get(), [&window] {
        window->raise();
        window->activateWindow();
    });

    pilot::Options options;
    options.shots = parser.value(shots);
    options.paceMs = parser.value(pace).toInt();
    options.approve = qEnvironmentVariableIntValue("ROVANA_APPROVE") == 1;
    if (parser.isSet(byPointer)) pilot::useDisplay();
    pilot::Pilot player(script, options);
    // At once: a program that hangs while it closes shall still have told why.
    QObject::connect(&player, &pilot::Pilot::missed, &player,
                     [](const QString& failure) { fail(failure, 1); });
    int exitCode = 0;
    // The program runs inside the event loop, as it does without a script.
    QTimer::singleShot(0, terminal, [&] {
        player.start();
        exitCode = app::CRovanaApp().run();
        QCoreApplication::quit();
    });
    QApplication::exec();
    return player.finish() ? exitCode : 1;
}
