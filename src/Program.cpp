#include "Program.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QPalette>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "Screens.h"
#include "app/RovanaApp.h"
#include "desk/Desk.h"
#include "platform/Device.h"
#include "platform/Lines.h"
#include "platform/OwnerOnly.h"
#include "platform/Settings.h"
#include "platform/TerminalLock.h"
#include "platform/Trace.h"
#include "platform/termdev/Devices.h"
#include "platform/termdev/SwipeSocket.h"
#include "ui/Bitmaps.h"
#include "ui/DisplayScale.h"
#include "ui/FontList.h"
#include "ui/Fonts.h"
#include "ui/KoreanTexts.h"
#include "ui/Messages.h"
#include "ui/Sounds.h"
#include "ui/Style.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// What a desktop's title bar and panel take of the display, in pixels at scale 1.
constexpr QSize kAroundWindow(0, 40);
/// The first screen stands by then.
constexpr int kLoadLinesMs = 300;

struct Options {
    QString device;
    qreal scale = 2;
    bool isScaleGiven = false;
    bool isFullScreen = false;
    bool isDesk = false;
};

Options readOptions(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Rovana, the route-sales terminal."_s);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption device(u"device"_s, u"The device folder."_s, u"DIR"_s);
    const QCommandLineOption scale(u"scale"_s, u"Enlarges the 240 by 320 screen (default 2)."_s, u"N"_s);
    const QCommandLineOption fullScreen(u"fullscreen"_s, u"Fills the display, as on a handheld."_s);
    const QCommandLineOption desk(
        u"desk"_s, u"Shows the terminal on a desk, with its paper, a card slot and its faults."_s);
    parser.addOptions({device, scale, fullScreen, desk});
    if (!parser.parse(arguments) || parser.isSet(help) || parser.isSet(version)) {
        // The program ends here, before it needs a display; the text needs an application object.
        const QCoreApplication passing(argc, argv);
        parser.process(arguments);
    }

    Options options;
    options.device = parser.value(device);
    options.isFullScreen = parser.isSet(fullScreen);
    options.isDesk = parser.isSet(desk) && !options.isFullScreen;
    options.isScaleGiven = parser.isSet(scale);
    if (options.isScaleGiven) {
        bool isNumber = false;
        options.scale = parser.value(scale).toDouble(&isNumber);
        if (!isNumber ||
            !(options.scale >= platform::kSmallestScale && options.scale <= platform::kLargestScale)) {
            std::fprintf(stderr, "rovana: --scale takes a number from 0.5 to 8\n");
            std::exit(2);
        }
    }
    return options;
}

/// The scale: the option's, else that of the settings, as far as it fits the display; without one what fits.
ui::DisplayScale chooseScale(const Options& options, const platform::Settings& settings) {
    const QSize window = options.isFullScreen ? ui::kScreenSize
                         : options.isDesk     ? desk::kDeskSize + kAroundWindow
                                              : ui::kScreenSize + kAroundWindow;
    const bool isFromSettings = !options.isScaleGiven && settings.scale > 0;
    const double asked = isFromSettings ? settings.scale : options.scale;
    if (options.isScaleGiven || isFromSettings) return ui::DisplayScale::asked(window, asked);
    if (options.isFullScreen) return ui::DisplayScale(window);
    return options.isDesk ? ui::DisplayScale(window, asked) : ui::DisplayScale::asked(window, asked);
}

void setScale(double scale) {
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
}

/// The application object at the scale that fits the display.
std::unique_ptr<QApplication> makeFitting(ui::DisplayScale& scale, int& argc, char** argv) {
    const std::vector<char*> words(argv, argv + argc);
    if (scale.isKnown()) {
        setScale(scale.value());
        auto application = std::make_unique<QApplication>(argc, argv);
        if (scale.fits()) return application;
    }
    argc = int(words.size());
    std::ranges::copy(words, argv);
    scale.measure(argc, argv);
    setScale(scale.value());
    auto application = std::make_unique<QApplication>(argc, argv);
    scale.fits();
    return application;
}

/// Says that the device folder has its terminal already, which shows its window meanwhile.
int refuseSecondStart() {
    std::fprintf(stderr, "rovana: another terminal works on %s\n",
                 qUtf8Printable(platform::device::folder()));
    platform::TerminalLock::callHolder();
    ui::prepareStyle();
    ui::prepareFonts();
    ui::Terminal terminal;
    terminal.setWindowTitle(u"Rovana"_s);
    QTimer::singleShot(0, &terminal, [&] {
        terminal.setVisible(true);
        ui::message(u"단말기가 이미 열려 있습니다..! 먼저 연 창에서 계속하십시오. : %1"_s.arg(
            platform::device::folder()));
        QCoreApplication::quit();
    });
    QApplication::exec();
    return 1;
}

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();
}

/// Begins the log and closes the folder to others.
void openFolder(const platform::Settings& settings) {
    if (!platform::openLog(settings.logKilobytes * qint64{1024})) {
        std::fprintf(stderr, "rovana: no log can be kept in %s\n",
                     qUtf8Printable(platform::device::folder()));
    }
    platform::tightenFiles(platform::device::folder());
    for (const QString& complaint : settings.complaints) platform::trace(complaint);
}

/// Puts the terminal, on its desk where that is asked for, into the window.
ui::Terminal* fillWindow(QWidget& window, const Options& options, const platform::Settings& settings) {
    window.setWindowTitle(u"Rovana"_s);
    window.setPalette(QPalette(Qt::black));
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* terminal = new ui::Terminal(&window);
    if (options.isDesk) {
        layout->addWidget(new desk::Desk(terminal, settings, &window));
        window.resize(desk::kDeskSize);
    } else {
        layout->addWidget(terminal, 0, Qt::AlignCenter);
        if (!options.isFullScreen) layout->setSizeConstraint(QLayout::SetFixedSize);
    }
    return terminal;
}

}  // namespace

int runProgram(int argc, char** argv, const std::function<void(ui::Terminal&)>& terminalMade) {
    QCoreApplication::setApplicationName(u"rovana"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(ROVANA_VERSION));
    const Options options = readOptions(argc, argv);
    platform::device::setFolder(platform::device::choose(options.device));
    const platform::Settings settings = platform::readSettings();
    ui::useOwnFontList();
    ui::DisplayScale scale = chooseScale(options, settings);
    const std::unique_ptr<QApplication> application = makeFitting(scale, argc, argv);
    // The caret stands still: blinking, it would wake a handheld twice a second all day.
    QApplication::setCursorFlashTime(0);
    // Before anything in the folder is touched.
    const platform::TerminalLock lock;
    if (lock.isTaken()) return refuseSecondStart();
    openFolder(settings);
    scale.keep();
    ui::prepareStyle();
    ui::prepareFonts();
    ui::speakKorean();
    // Played visits are silent.
    ui::setSounds(settings.hasSound && QGuiApplication::platformName() != u"offscreen");
    QApplication::setWindowIcon(ui::icon(ui::bitmaps::kApplicationIcon));

    // Before the window: a desk in it stands on them to its end.
    const platform::termdev::Devices devices(settings);
    QWidget window;
    ui::Terminal* const terminal = fillWindow(window, options, settings);
    QObject::connect(&lock, &platform::TerminalLock::startedAgain, &window, [&] { bringToFront(window); });
    const platform::termdev::SwipeSocket swipes;
    registerScreens();
    if (terminalMade) terminalMade(*terminal);
    int exitCode = 0;
    // The main dialog runs inside the event loop, so that closing the window ends it like everything else.
    QTimer::singleShot(0, &window, [&] {
        // The window is drawn when the first screen waits, so it never shows without one.
        if (options.isFullScreen) {
            window.showFullScreen();
        } else {
            window.show();
        }
        // Nobody waits for it now; whoever needs a line earlier loads it himself.
        QTimer::singleShot(kLoadLinesMs, &window, [] { platform::loadLines(); });
        exitCode = app::CRovanaApp().run();
        QCoreApplication::quit();
    });
    QApplication::exec();
    return exitCode;
}
