#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <optional>

#include "Screens.h"
#include "app/RovanaApp.h"
#include "desk/Desk.h"
#include "platform/Device.h"
#include "platform/OwnerOnly.h"
#include "platform/Sqlite.h"
#include "platform/TerminalLock.h"
#include "platform/Trace.h"
#include "platform/WholeFile.h"
#include "rovana-play/Hand.h"
#include "rovana-play/Pilot.h"
#include "rovana-play/Script.h"
#include "ui/FontList.h"
#include "ui/Fonts.h"
#include "ui/Style.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kUsageError = 2;

int fail(const QString& error, int exitCode) {
    std::fprintf(stderr, "rovana-play: %s\n", qUtf8Printable(error));
    return exitCode;
}

/// What the program is called with.
struct Call {
    QString script;
    QString device;
    QString rows;   ///< A file of SQL statements; empty for none.
    QString scale;  ///< Empty for Qt's own.
    QString clock;  ///< When the script begins that does not say so; empty for the system's clock.
    bool isOnDesk = false;
    bool isByPointer = false;
    bool tellsTouches = false;
    pilot::Options options;
};

/// Reads the call; the exit code when the program ends with it.
std::optional<int> readCall(int argc, char** argv, Call* call) {
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Plays a visit script on the terminal's screens."_s);
    parser.addPositionalArgument(u"FILE.visit"_s, u"The script."_s);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption device(u"device"_s, u"The device folder."_s, u"DIR"_s);
    const QCommandLineOption shots(u"shots"_s, u"Folder for the screenshots; none without it."_s, u"DIR"_s);
    const QCommandLineOption scale(u"scale"_s, u"Size of the terminal; 2 with --shots, else 1."_s, u"N"_s);
    const QCommandLineOption rows(u"rows"_s, u"Runs these statements on the database before the play."_s,
                                  u"FILE.sql"_s);
    const QCommandLineOption pace(u"pace"_s, u"Pause before every step, to watch it."_s, u"MS"_s, u"0"_s);
    const QCommandLineOption onDesk(u"desk"_s, u"Shows the terminal on its desk, as rovana --desk does."_s);
    const QCommandLineOption byPointer(
        u"xdotool"_s, u"Moves the display's own pointer and strikes its keys, on X11 by xdotool."_s);
    const QCommandLineOption clock(u"clock"_s, u"When a script that does not say so itself begins."_s,
                                   u"YYYY-MM-DD HH:MM"_s);
    const QCommandLineOption touches(u"touches"_s, u"Tells how many touches each counted visit took."_s);
    parser.addOptions({device, shots, scale, pace, onDesk, byPointer, clock, touches, rows});

    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    if (!parser.parse(arguments)) return fail(parser.errorText(), kUsageError);
    if (parser.isSet(help)) {
        // The text needs an application object, but no display.
        const QCoreApplication passing(argc, argv);
        parser.showHelp();
    }
    if (parser.positionalArguments().size() != 1)
        return fail(u"one script is wanted, see --help"_s, kUsageError);
    call->script = parser.positionalArguments().constFirst();
    call->device = parser.value(device);
    call->rows = parser.value(rows);
    call->scale = parser.isSet(scale) ? parser.value(scale) : parser.isSet(shots) ? u"2"_s : QString();
    bool isSize = true;
    if (!call->scale.isEmpty() && (call->scale.toDouble(&isSize) <= 0 || !isSize))
        return fail(u"no scale: %1"_s.arg(call->scale), kUsageError);
    call->isOnDesk = parser.isSet(onDesk);
    call->isByPointer = parser.isSet(byPointer);
    call->tellsTouches = parser.isSet(touches);
    call->options.shots = parser.value(shots);
    call->clock = parser.value(clock);
    call->options.paceMs = parser.value(pace).toInt();
    call->options.approve = qEnvironmentVariableIntValue("ROVANA_APPROVE") == 1;
    return std::nullopt;
}

/// Runs the statements of that file on the device's database; returns what went wrong, else an empty text.
QString addRows(const QString& file) {
    QString error;
    const auto statements = platform::readWholeFile(file, &error);
    if (!statements) return error;
    platform::SqliteFile database(platform::device::path(platform::device::kDatabaseFile),
                                  platform::SqliteFile::Mode::Existing);
    return database.execute(QString::fromUtf8(*statements)) ? QString() : database.errorText();
}

/// The window of the terminal: itself, or its desk.
std::unique_ptr<QWidget> makeWindow(ui::Terminal* terminal, bool isOnDesk) {
    if (!isOnDesk) return std::unique_ptr<QWidget>(terminal);
    // The desk takes the terminal over.
    auto window = std::make_unique<desk::Desk>(terminal, platform::Settings());
    window->resize(desk::kDeskSize);
    return window;
}

/// Plays the script in that window, inside the event loop, as the program runs without a script.
int play(const pilot::Script& script, const Call& call, QWidget& window) {
    if (call.isByPointer) pilot::useDisplay();
    pilot::Pilot player(script, call.options);
    // At once: a program that hangs while it closes shall still have told why.
    QObject::connect(&player, &pilot::Pilot::missed, &player,
                     [](const QString& failure) { fail(failure, 1); });
    if (call.tellsTouches) {
        QObject::connect(&player, &pilot::Pilot::counted, &player, [](const QString& name, int touches) {
            std::printf("%s=%d\n", qUtf8Printable(name), touches);
        });
    }
    int exitCode = 0;
    QTimer::singleShot(0, &window, [&] {
        player.start();
        exitCode = app::CRovanaApp().run();
        QCoreApplication::quit();
    });
    QApplication::exec();
    return player.finish() ? exitCode : 1;
}

}  // namespace

int main(int argc, char* argv[]) {
    platform::keepToOwner();
    Call call;
    if (const std::optional<int> exitCode = readCall(argc, argv, &call)) return *exitCode;
    // The scale has to be known before Qt starts.
    if (!call.scale.isEmpty()) qputenv("QT_SCALE_FACTOR", call.scale.toUtf8());

    ui::useOwnFontList();
    QApplication application(argc, argv);
    const pilot::Script script = pilot::readScript(call.script, call.clock);
    for (const QString& error : script.errors) fail(u"%1: %2"_s.arg(script.file, error), kUsageError);
    if (!script.errors.isEmpty()) return kUsageError;

    platform::device::setFolder(platform::device::choose(call.device));
    if (!QFileInfo::exists(platform::device::path(platform::device::kDatabaseFile)))
        return fail(u"no terminal in %1; \"rovanactl init\" makes one"_s.arg(platform::device::folder()),
                    kUsageError);
    const platform::TerminalLock lock;
    if (lock.isTaken()) {
        platform::TerminalLock::callHolder();
        return fail(u"a terminal is open on %1 already; close it first"_s.arg(platform::device::folder()),
                    kUsageError);
    }
    if (!call.rows.isEmpty()) {
        if (const QString error = addRows(call.rows); !error.isEmpty())
            return fail(u"%1: %2"_s.arg(call.rows, error), kUsageError);
    }
    platform::openLog();
    platform::tightenFiles(platform::device::folder());
    QApplication::setCursorFlashTime(0);  // Screenshots of the same screen are the same.
    ui::prepareStyle();
    ui::prepareFonts();
    registerScreens();
    const std::unique_ptr<QWidget> window = makeWindow(new ui::Terminal, call.isOnDesk);
    window->setVisible(true);
    window->activateWindow();
    QObject::connect(&lock, &platform::TerminalLock::startedAgain, window.get(), [&window] {
        window->raise();
        window->activateWindow();
    });
    return play(script, call, *window);
}
