#include "rovana-play/Pilot.h"

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QAbstractItemModel>
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPixmap>

#include "desk/demo/DemoCards.h"
#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/message/Component.h"
#include "platform/termdev/CardReader.h"
#include "rovana-play/Approval.h"
#include "rovana-play/DatabaseReader.h"
#include "rovana-play/Hand.h"
#include "rovana-play/PaperPicture.h"
#include "rovana-play/Reach.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace pilot {

using namespace Qt::Literals::StringLiterals;

/// What came of looking at a step: it has to wait because of the problem, or it can be done now.
struct Pilot::Attempt {
    QString problem;
    /// Does the step; returns what went wrong, else an empty text. Empty when looking was all.
    std::function<QString()> act;
};

namespace {

using Attempt = Pilot::Attempt;

/// What the event loop does not tell, such as what another program wrote, is looked for this often.
constexpr int kPollMs = 5;
/// Dialogs that do not close are left behind after this time.
constexpr int kClosingMs = 10000;

Attempt waitFor(const QString& problem) {
    return {problem, {}};
}

template <typename Act>
Attempt ready(Act act) {
    return {{}, [act] {
                act();
                return QString();
            }};
}

Attempt expectEqual(const QString& found, const QString& wanted) {
    return found == wanted ? Attempt{} : waitFor(u"found "_s + quoted(found));
}

Attempt setClock(const Step& step) {
    return ready([moment = step.moment] { platform::clock::set(moment); });
}

Attempt press(const Step& step) {
    const Found found = reachControl(step.at);
    if (!found.control) return waitFor(found.problem);
    const QPoint place = placeOf(*found.control);
    if (step.command == Command::DoublePress) return ready([place] { touchTwice(place); });
    if (step.command != Command::Slide) return ready([place] { touch(place); });
    const Found end = reachControl(step.to);
    if (!end.control) return waitFor(end.problem);
    return ready([place, lifted = placeOf(*end.control)] { slide(place, lifted); });
}

/// The check boxes of the keypad for its second and third field.
constexpr Address kSecondField{130, 1089};
constexpr Address kThirdField{130, 1090};

bool isChecked(const Found& found) {
    const auto* box = qobject_cast<const QAbstractButton*>(found.control.data());
    return box != nullptr && box->isChecked();
}

Attempt nextField(const Step&) {
    const Found second = reachControl(kSecondField);
    if (!second.control) return waitFor(second.problem);
    if (isChecked(findControl(kThirdField))) return waitFor(u"the third field is the last"_s);
    if (!isChecked(second)) return ready([place = placeOf(*second.control)] { touch(place); });
    const Found third = reachControl(kThirdField);
    if (!third.control) return waitFor(third.problem);
    return ready([second = placeOf(*second.control), third = placeOf(*third.control)] {
        touch(second);
        touch(third);
    });
}

Attempt type(const Step& step) {
    const Found found = reachControl(step.at);
    if (!found.control) return waitFor(found.problem);
    return {{}, [control = found.control, text = step.texts[0]] { return typeInto(*control, text); }};
}

QString textOf(const Step& step) {
    return step.texts.value(0);
}

/// Puts a demonstration card through the reader as soon as that takes one.
Attempt swipe(const Step& step) {
    const desk::DemoCard* card = desk::findDemoCard(textOf(step));
    if (card == nullptr) return waitFor(u"there is no such card"_s);
    if (!platform::termdev::CardReader::instance().isReading()) return waitFor(u"the reader takes no card"_s);
    return ready([card] { desk::swipe(*card); });
}

/// Drags a list from a place on it to where one of its rows stands.
Attempt drag(const Found& list, QPoint from, int row) {
    const FoundRow goal = findRow(list.control, row, {});
    if (!goal.problem.isEmpty()) return waitFor(goal.problem);
    const QRect there = goal.list->visualRect(goal.cell);
    const QWidget* viewport = goal.list->viewport();
    if (!viewport->rect().contains(there.center())) return waitFor(u"row %1 is out of view"_s.arg(row));
    return ready([from, to = viewport->mapTo(viewport->window(), there.center())] { slide(from, to); });
}

Attempt chooseRow(const Step& step) {
    const Found found = reachControl(step.at);
    if (!found.control) return waitFor(found.problem);
    FoundRow row = findRow(found.control, step.numbers[0], textOf(step));
    if (!row.problem.isEmpty()) return waitFor(row.problem);
    if (step.command == Command::Cell) row.cell = row.cell.siblingAtColumn(step.numbers[1] - 1);
    if (auto* combo = qobject_cast<QComboBox*>(found.control.data()))
        return ready([combo = QPointer(combo), entry = row.cell] { chooseEntry(*combo, entry); });
    const QPoint place = placeOf(row);
    if (place.isNull()) return waitFor(u"the row cannot be brought into view"_s);
    if (step.command == Command::DragRow) return drag(found, place, step.numbers[1]);
    return ready([place, isDouble = step.command == Command::DoubleRow] {
        isDouble ? touchTwice(place) : touch(place);
    });
}

Attempt answer(const Step& step) {
    if (openMessage() == nullptr) return waitFor(u"no message is open: "_s + inFront());
    const Found found =
        reachControl({ui::kMessageBoxId, step.numbers[0] == 1 ? ui::kMessageOk : ui::kMessageCancel});
    if (!found.control)
        return waitFor(found.problem + u", the message is "_s + quoted(openMessage()->text()));
    return ready([place = placeOf(*found.control)] { touch(place); });
}

Attempt pressKey(const Step& step) {
    if (ui::Terminal::current()->top() == nullptr) return waitFor(inFront());
    return ready([key = Qt::Key(step.numbers[0])] { strike(key); });
}

Attempt expectMessage(const Step& step) {
    const ui::MessageBox* message = openMessage();
    if (message == nullptr) return waitFor(u"no message is open: "_s + inFront());
    return expectEqual(step.command == Command::ExpectMessage ? message->text() : message->caption(),
                       textOf(step));
}

Attempt expectScreen(const Step& step) {
    const ui::Screen* top = ui::Terminal::current()->top();
    const bool isInFront = top != nullptr && top->id() == step.numbers[0];
    return isInFront ? Attempt{} : waitFor(inFront());
}

Attempt expectText(const Step& step) {
    const Found found = findControl(step.at);
    if (!found.control) return waitFor(found.problem);
    if (!found.control->isVisible()) return waitFor(toString(step.at) + u" is hidden"_s);
    return expectEqual(shownText(*found.control), textOf(step));
}

Attempt expectRows(const Step& step) {
    const Found found = findControl(step.at);
    if (!found.control) return waitFor(found.problem);
    const QAbstractItemView* list = listOf(found.control);
    if (list == nullptr) return waitFor(toString(step.at) + u" has no rows"_s);
    const int rows = list->model()->rowCount();
    return rows == step.numbers[0] ? Attempt{} : waitFor(u"found %1 rows"_s.arg(rows));
}

Attempt expectCell(const Step& step) {
    const Found found = findControl(step.at);
    if (!found.control) return waitFor(found.problem);
    const QAbstractItemView* list = listOf(found.control);
    if (list == nullptr) return waitFor(toString(step.at) + u" has no rows"_s);
    const QAbstractItemModel* model = list->model();
    const int row = step.numbers[0];
    const int column = step.numbers[1];
    if (row > model->rowCount() || column > model->columnCount())
        return waitFor(
            u"there are only %1 rows of %2 columns"_s.arg(model->rowCount()).arg(model->columnCount()));
    return expectEqual(model->index(row - 1, column - 1).data().toString(), textOf(step));
}

Attempt expectState(const Step& step) {
    const Found found = findControl(step.at);
    if (!found.control) return waitFor(found.problem);
    const auto found_is = [&](bool isSo, QStringView otherwise) {
        return isSo ? Attempt{} : waitFor(u"%1 is %2"_s.arg(toString(step.at), otherwise));
    };
    switch (step.command) {
        case Command::ExpectHidden: return found_is(!found.control->isVisible(), u"shown");
        case Command::ExpectShown: return found_is(found.control->isVisible(), u"hidden");
        case Command::ExpectDisabled: return found_is(!found.control->isEnabled(), u"enabled");
        case Command::ExpectEnabled: return found_is(found.control->isEnabled(), u"disabled");
        case Command::ExpectChecked: return found_is(isChecked(found), u"not checked");
        default: return found_is(!isChecked(found), u"checked");
    }
}

Attempt expectSql(const Step& step) {
    const ReadValue value = readValue(step.texts[0]);
    return value.error.isEmpty() ? expectEqual(value.text, step.texts[1]) : waitFor(value.error);
}

QString removeFile(const QString& name) {
    QFile file(platform::device::folder() + u'/' + name);
    return file.remove() ? QString() : file.errorString();
}

bool needsNoScreen(Command command) {
    return command == Command::Clock || command == Command::Patience || command == Command::Tear;
}

}  // namespace

Pilot::Pilot(Script script, Options options, QObject* parent)
    : QObject(parent), script_(std::move(script)), options_(std::move(options)) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &Pilot::poll);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &Pilot::loopSleeps);
}

Pilot::~Pilot() = default;

void Pilot::start() {
    tear();
    while (current_ < script_.steps.size() && needsNoScreen(script_.steps[current_].command)) {
        const Attempt head = attempt(script_.steps[current_]);
        ++current_;
        if (head.act) head.act();
    }
    wait(options_.paceMs, 1);
}

bool Pilot::finish() {
    timer_.stop();
    const bool isCutShort = !isClosing_ && current_ < script_.steps.size();
    if (isCutShort) miss(script_.steps[current_], u"the program had ended"_s);
    return failure_.isEmpty();
}

void Pilot::poll() {
    if (isClosing_) return closeAll();
    // What the last step does goes on in whatever it has opened.
    const ui::Terminal* terminal = ui::Terminal::current();
    const bool isClosing = terminal != nullptr && terminal->top() != nullptr && terminal->top()->isClosing();
    if (isHandBusy() || isClosing) return wait(kPollMs, 1);
    if (current_ == script_.steps.size() && options_.more) {
        script_.steps.clear();
        current_ = 0;
        script_.steps = options_.more();
    }
    if (current_ == script_.steps.size() || script_.steps[current_].command == Command::Quit) {
        isClosing_ = true;
        waiting_.restart();
        return closeAll();
    }
    // Whatever is looked for cannot have come before the loop has slept and something has woken it.
    wait(kPollMs, 2);
    // Not before: a busy machine, or the step before this one, may take longer than any patience.
    if (!waiting_.isValid()) waiting_.start();
    const Step step = script_.steps[current_];
    const Attempt tried = attempt(step);
    if (!tried.problem.isEmpty()) {
        if (waiting_.elapsed() >= options_.patienceMs) miss(step, tried.problem);
        return;
    }
    // Before the step, because it may open a dialog and come back only when that is closed.
    advance();
    Q_EMIT begun(step);
    if (!tried.act) return;
    const QString problem = tried.act();
    if (!problem.isEmpty()) miss(step, problem);
}

void Pilot::advance() {
    ++current_;
    waiting_.invalidate();
    wait(qMax(kPollMs, options_.paceMs), options_.paceMs > 0 ? 0 : 1);
}

/// Looks again after that time, or earlier when the event loop goes to sleep that many times; 0 for never.
void Pilot::wait(int milliseconds, int sleeps) {
    sleeps_ = sleeps;
    timer_.start(milliseconds);
}

void Pilot::loopSleeps() {
    if (sleeps_ > 0 && --sleeps_ == 0) timer_.start(0);
}

void Pilot::closeAll() {
    ui::Terminal* terminal = ui::Terminal::current();
    if (terminal == nullptr || terminal->top() == nullptr) return;
    if (waiting_.elapsed() >= kClosingMs) {
        if (failure_.isEmpty()) {
            failure_ = u"%1: the dialogs do not close: %2"_s.arg(script_.file, inFront());
            Q_EMIT missed(failure_);
        }
        return QCoreApplication::exit(1);
    }
    // A dialog may open another one while it closes, so this goes on until none is left.
    timer_.start(kPollMs);
    terminal->closeAll();
}

void Pilot::miss(const Step& step, const QString& problem) {
    if (!failure_.isEmpty()) return;
    failure_ = u"%1:%2: %3\n    %4"_s.arg(script_.file).arg(step.line).arg(step.source, problem);
    saveShot(u"missed"_s);
    isClosing_ = true;
    waiting_.restart();
    timer_.start(0);
    Q_EMIT missed(failure_);
}

Attempt Pilot::attempt(const Step& step) {
    switch (step.command) {
        case Command::Clock: return setClock(step);
        case Command::Patience:
            return ready([this, seconds = step.numbers[0]] { options_.patienceMs = seconds * 1000; });
        case Command::Press:
        case Command::DoublePress:
        case Command::Slide:
        case Command::KeypadKey: return press(step);
        case Command::KeypadNext: return nextField(step);
        case Command::Type: return type(step);
        case Command::Row:
        case Command::DoubleRow:
        case Command::Cell:
        case Command::DragRow: return chooseRow(step);
        case Command::Answer: return answer(step);
        case Command::Key: return pressKey(step);
        case Command::Tear: return ready([this] { tear(); });
        case Command::Count: return ready([this, name = textOf(step)] { countTouches(name); });
        case Command::Host:
            return {{}, [this, options = textOf(step)] {
                        return cardHost_.start(QProcess::splitCommand(options));
                    }};
        case Command::Swipe: return swipe(step);
        case Command::TimeOut:
            return ready([unit = std::chrono::milliseconds(step.numbers[0])] {
                platform::message::Component::setTimeOutUnit(unit);
            });
        case Command::Remove: return {{}, [name = textOf(step)] { return removeFile(name); }};
        case Command::Shot: return ready([this, name = textOf(step)] { saveShot(name); });
        case Command::Paper: return savePaper(textOf(step));
        case Command::Quit: return {};
        default: return expect(step);
    }
}

Attempt Pilot::expect(const Step& step) {
    switch (step.command) {
        case Command::ExpectMessage:
        case Command::ExpectCaption: return expectMessage(step);
        case Command::ExpectScreen: return expectScreen(step);
        case Command::ExpectText: return expectText(step);
        case Command::ExpectRows: return expectRows(step);
        case Command::ExpectCell: return expectCell(step);
        case Command::ExpectHidden:
        case Command::ExpectShown:
        case Command::ExpectDisabled:
        case Command::ExpectEnabled:
        case Command::ExpectChecked:
        case Command::ExpectUnchecked: return expectState(step);
        case Command::ExpectSql: return expectSql(step);
        case Command::ExpectRoll: return compareRoll(step);
        case Command::ExpectPrinted: return expectPrinted(step);
        case Command::ExpectTouches: return expectTouches(step);
        default: return {};
    }
}

void Pilot::countTouches(const QString& name) {
    counted_ = name;
    touchesBefore_ = touches();
}

QString Pilot::rollSoFar() {
    paper_ += QString::fromUtf8(roll_.read());
    return paper_;
}

void Pilot::tear() {
    roll_.read();
    paper_.clear();
}

Attempt Pilot::compareRoll(const Step& step) {
    const QString file = QDir(QFileInfo(script_.file).absolutePath()).absoluteFilePath(step.texts[0]);
    const QString approved = readApproved(file);
    const QString printed = rollSoFar();
    if (!approved.isNull() && approved == printed) return {};
    // Until then the paper may still be on its way.
    if (options_.approve && waiting_.elapsed() >= options_.patienceMs / 5)
        return {{}, [file, printed] { return writeApproved(file, printed); }};
    if (approved.isNull())
        return waitFor(u"%1 is not there; ROVANA_APPROVE=1 writes it. Printed:\n%2"_s.arg(file, printed));
    return waitFor(u"the paper differs (- approved, + printed):\n"_s + lineDiff(approved, printed));
}

Attempt Pilot::expectTouches(const Step& step) {
    const int found = touches() - touchesBefore_;
    if (found != step.numbers[0]) return waitFor(u"found %1 touches"_s.arg(found));
    return ready([this, found] { Q_EMIT counted(counted_, found); });
}

Attempt Pilot::expectPrinted(const Step& step) {
    int found = 0;
    for (const QString& line : rollSoFar().split(u'\n')) found += line.simplified() == step.texts[0];
    if (found == step.numbers[0]) return {};
    return waitFor(u"found %1 such lines on this paper:\n%2"_s.arg(found).arg(paper_));
}

void Pilot::saveShot(const QString& name) {
    ui::Terminal* terminal = ui::Terminal::current();
    if (options_.shots.isEmpty() || terminal == nullptr) return;
    const QString file = nextPicture(name);
    if (!terminal->window()->grab().save(file)) qWarning("cannot write %s", qUtf8Printable(file));
}

Attempt Pilot::savePaper(const QString& name) {
    QStringList texts = rollSoFar().split(u'\n');
    // Behind the last line's end, and what was fed after it.
    while (!texts.isEmpty() && texts.last().trimmed().isEmpty()) texts.removeLast();
    if (texts.isEmpty()) return waitFor(u"no paper was printed"_s);
    return ready([this, name, texts] {
        if (options_.shots.isEmpty()) return;
        const QString file = nextPicture(name);
        if (!paperPicture(texts).save(file)) qWarning("cannot write %s", qUtf8Printable(file));
    });
}

QString Pilot::nextPicture(const QString& name) {
    QDir().mkpath(options_.shots);
    return u"%1/%2-%3.png"_s.arg(options_.shots).arg(++shots_, 2, 10, QChar(u'0')).arg(name);
}

}  // namespace pilot
