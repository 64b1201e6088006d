// Each tap of the commonest visit, from the touch until its screen is painted and takes the next one: the
// longest of them among 50,000 products, 5,000 customers and 100,000 slips beside one frame of the display,
// and the whole visit beside the same among 1,000 slips. A frame is the peer because nobody feels less; the
// visit among few slips is one because nothing of it looks at the slips of other days.

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

#include "Bench.h"
#include "DemoDevice.h"
#include "Screens.h"
#include "Work.h"
#include "app/RovanaApp.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"
#include "rovana-play/Pilot.h"
#include "ui/Fonts.h"
#include "ui/ReportList.h"
#include "ui/Style.h"
#include "ui/Terminal.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;
using Clock = std::chrono::steady_clock;

constexpr double kFrameMs = 16;
constexpr int kFewSlips = 1'000;
constexpr int kPlays = 9;
constexpr QStringView kLogin = u"clock 2026-11-21 09:05\nlogin A 1111\n";
constexpr int kLinesOfLogin = 2;
/// Between two touches; the first one's work is done by then.
constexpr int kPaceMs = 20;

double millisecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// By the step's place in the script: its line and the milliseconds that it took in each play, or that it let
/// the next touch wait.
struct Tap {
    QString what;
    std::vector<double> times;

    double time() const { return median(times); }
};

/// Measures how long the program is at work after each step: from the step to when the event loop rests, or
/// has nothing left but the rows of a list to read on, which every touch comes before; of that it takes the
/// longest piece, which a touch may have to wait for. What the loop waits for in between, such as the finger
/// to be lifted, does not count.
class Watch : public QObject {
  public:
    explicit Watch(pilot::Pilot& player) {
        connect(&player, &pilot::Pilot::begun, this, [this](const pilot::Step& step) { begin(step); });
        connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this, [this] {
            endPiece();
            rest();
        });
        qApp->installEventFilter(this);
    }

    std::map<int, Tap>& taps() { return taps_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        // The rows of a list that are still read, or are freed: what is done while nothing else is to do.
        const bool isIdle =
            event->type() == QEvent::Timer &&
            (qobject_cast<ui::ReportList*>(watched) != nullptr || watched->objectName() == u"discarded");
        endPiece();
        isIdle ? rest() : work();
        if (isIdle && isOpen_) pieceSince_ = Clock::now();
        return false;
    }

  private:
    using Command = pilot::Command;

    void begin(const pilot::Step& step) {
        end();
        static const QList<Command> kTouches{Command::Press,  Command::DoublePress, Command::Row,
                                             Command::Answer, Command::KeypadKey,   Command::KeypadNext};
        ++step_;
        // The login is once a day, and waits for the disk.
        if (!kTouches.contains(step.command) || step.line <= kLinesOfLogin) return;
        what_ = step.source;
        spent_ = 0;
        longestPiece_ = 0;
        isOpen_ = true;
        since_ = Clock::now();
    }
    void work() {
        if (isOpen_ && !since_) since_ = Clock::now();
    }
    void rest() {
        if (!isOpen_ || !since_) return;
        spent_ += millisecondsSince(*since_);
        since_.reset();
    }
    void endPiece() {
        if (pieceSince_) longestPiece_ = std::max(longestPiece_, millisecondsSince(*pieceSince_));
        pieceSince_.reset();
    }
    void end() {
        if (!isOpen_) return;
        endPiece();
        rest();
        isOpen_ = false;
        Tap& tap = taps_[step_];
        tap.what = what_;
        tap.times.push_back(std::max(spent_, longestPiece_));
    }

    std::map<int, Tap> taps_;
    int step_ = 0;
    QString what_;
    double spent_ = 0;
    double longestPiece_ = 0;
    bool isOpen_ = false;
    std::optional<Clock::time_point> since_;
    std::optional<Clock::time_point> pieceSince_;
};

/// Plays the visit on a device, each time with a login of its own, and keeps what its taps took.
class Player {
  public:
    explicit Player(int slips) {
        makeDemonstration(device());
        enlarge(device(), slips);
    }

    void play() {
        platform::device::setFolder(device());
        pilot::Script script = pilot::parseScript(kLogin.toString() + commonestVisit());
        if (!script.errors.isEmpty()) throw std::runtime_error(script.errors.join(u'\n').toStdString());
        pilot::Options options;
        options.paceMs = kPaceMs;
        pilot::Pilot player(script, options);
        Watch watch(player);
        const InstructionCounter counter;
        QTimer::singleShot(0, &watch, [&] {
            player.start();
            app::CRovanaApp().run();
            QCoreApplication::exit();
        });
        QApplication::exec();
        if (!player.finish()) throw std::runtime_error(player.failure().toStdString());
        if (const auto count = counter.count()) instructions_.push_back(*count);
        for (const auto& [step, tap] : watch.taps()) {
            Tap& known = taps_[step];
            known.what = tap.what;
            known.times.insert(known.times.end(), tap.times.begin(), tap.times.end());
        }
    }

    const Tap& longest() const {
        return std::ranges::max_element(taps_, {}, [](const auto& tap) { return tap.second.time(); })->second;
    }
    /// What a whole visit asks of the processor; nothing where that is not counted.
    std::optional<double> instructions() const {
        return instructions_.empty() ? std::nullopt : std::optional(median(instructions_));
    }
    double milliseconds() const {
        double sum = 0;
        for (const auto& [step, tap] : taps_) sum += tap.time();
        return sum;
    }
    /// Each tap on a line of its own, for whoever looks for the reason.
    void tell() const {
        for (const auto& [step, tap] : taps_)
            std::fprintf(stderr, "%4d %7.2f ms  %s\n", step, tap.time(), qUtf8Printable(tap.what));
    }

  private:
    QString device() const { return folder_.filePath(u"device"_s); }

    QTemporaryDir folder_;
    std::map<int, Tap> taps_;
    std::vector<double> instructions_;  ///< Of each play.
};

/// The two devices, played in turns once for both measures.
const std::pair<Player, Player>& played() {
    static const auto players = [] {
        auto both = std::make_unique<std::pair<Player, Player>>(
            std::piecewise_construct, std::tuple(kManySlips), std::tuple(kFewSlips));
        const QString before = platform::device::folder();
        ui::prepareStyle();
        ui::prepareFonts();
        registerScreens();
        ui::Terminal terminal;
        terminal.setVisible(true);
        terminal.activateWindow();
        for (int i = 0; i < kPlays; ++i) {
            both->first.play();
            both->second.play();
        }
        platform::adoce::DatabaseFile::forgetAll();
        platform::device::setFolder(before);
        if (qEnvironmentVariableIsSet("ROVANA_BENCH_TAPS")) {
            both->first.tell();
            both->second.tell();
        }
        return both;
    }();
    return *players;
}

}  // namespace

Result measureTap() {
    const Tap& longest = played().first.longest();
    return {.ours = longest.time(),
            .peer = kFrameMs,
            .unit = "ms",
            .note = " (" + longest.what.toStdString() + ")"};
}

Result measureTapGrowth() {
    constexpr double kMillion = 1e6;
    const auto& [many, few] = played();
    if (const auto ours = many.instructions())
        return {.ours = *ours / kMillion, .peer = *few.instructions() / kMillion, .unit = "M instructions"};
    return {.ours = many.milliseconds(), .peer = few.milliseconds(), .unit = "ms"};
}

}  // namespace bench
