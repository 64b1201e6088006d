#include "app/RovanaDlg.h"

#include <malloc.h>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <functional>
#include <utility>

#include "app/ClockCheck.h"
#include "app/DeviceProblem.h"
#include "app/Dialogs.h"
#include "app/ImportReport.h"
#include "app/KeypadRequest.h"
#include "app/Login.h"
#include "app/LoginWait.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "app/UnsavedWork.h"
#include "books/OfficeState.h"
#include "books/PaymentJournal.h"
#include "books/SlipNumbers.h"
#include "books/VisitChecks.h"
#include "db/Health.h"
#include "db/ImportFile.h"
#include "platform/Clock.h"
#include "platform/Trace.h"
#include "platform/Wipe.h"
#include "ui/Calendar.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

enum Control {
    kUserName = 1009,
    kSalesButton = 1044,
    kContainerButton = 1046,
    kOldData = 1011,
    kOffice = 1012
};

/// Between two looks at what the sync has noted while nobody presses anything.
constexpr int kOfficeLookMs = 30'000;

QPoint tileAt(int index) {
    return {ui::kGridLeft + index % 2 * 2 * ui::kGridPitch, 8 + index / 2 * 68};
}

}  // namespace

CRovanaDlg::CRovanaDlg() : Screen(dialogs::kMain) {
    addLoginControls();
    loadCompany();
    setFittedText(1007, session().sangho, ui::FontHeight::Title);
    setText(1008, session().calltel.isEmpty() ? QString() : u"콜센터 "_s + session().calltel);
    userId_->setCurrentText(u"A"_s);
    date_->setDate(platform::clock::now().date());
    const QString fromSettings = defaultUserId();
    if (!fromSettings.isEmpty()) userId_->setCurrentText(fromSettings);
    userId_->setFocus();
    // On a display without a window manager keys may come before the focus does.
    userId_->lineEdit()->selectAll();
}

void CRovanaDlg::addLoginControls() {
    constexpr int kLabelLeft = 10;
    constexpr int kFieldLeft = 62;
    const auto field = [](int row, int width) { return QRect(kFieldLeft, 136 + row * 38, width, 30); };
    const auto caption = [&](int row, const QString& text) {
        return addLabel(0, text, {kLabelLeft, 136 + row * 38, kFieldLeft - kLabelLeft - 2, 30});
    };

    date_ = place(1004, new QDateEdit(this), field(0, 120));
    date_->setDisplayFormat(u"yyyy-MM-dd"_s);
    ui::addCalendar(date_);

    userId_ = addCombo(1005, field(1, 62));
    userId_->setEditable(true);
    userId_->setInsertPolicy(QComboBox::NoInsert);
    userId_->setCompleter(nullptr);
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter) userId_->addItem(QString(QChar(letter)));
    userId_->installEventFilter(this);
    userId_->lineEdit()->installEventFilter(this);
    connect(userId_, &QComboBox::activated, this, [this] { showUserName(); });

    password_ = place(1006, new QLineEdit(this), field(2, 100));
    password_->setEchoMode(QLineEdit::Password);
    describe(date_, u"작업일자"_s);
    describe(userId_, u"사번"_s);
    describe(password_, u"암호"_s);

    ui::BitmapButton* keypad =
        addButton(1010, u"비밀번호"_s, {170, 213}, ui::bitmaps::kPassword, [this] { enterPassword(); });
    ui::BitmapButton* confirm = addMainButton(1000, u"확  인"_s, [this] { logIn(); });
    addBottomButton(1003, u"X"_s, 0, ui::bitmaps::kCancel, [this] { close(Cancelled); });

    loginControls_ = {addLabel(1007, {}, {4, 76, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter),
                      addLabel(1008, {}, {4, 102, 232, 22}, ui::FontHeight::Small, Qt::AlignCenter),
                      addPicture(1060, ui::bitmaps::kLogo, {12, 10}),
                      addPicture(0, ui::bitmaps::kFooter, {0, 258}),
                      caption(0, u"작업일자"_s),
                      caption(1, u"사  번"_s),
                      caption(2, u"암  호"_s),
                      date_,
                      userId_,
                      addLabel(kUserName, {}, {130, 174, 106, 30}),
                      password_,
                      keypad,
                      confirm,
                      addBottomButton(1001, {}, 1, ui::bitmaps::kBlank, {}),
                      addBottomButton(1002, {}, 2, ui::bitmaps::kBlank, {})};
    date_->setFont(ui::font(ui::FontHeight::Medium));
    password_->setFont(ui::font(ui::FontHeight::Medium));
}

void CRovanaDlg::paintEvent(QPaintEvent* event) {
    Screen::paintEvent(event);
    // The menu is made when the login can be seen: the first screen shows the sooner.
    if (menuControls_.isEmpty()) QTimer::singleShot(0, this, &CRovanaDlg::addMenuControls);
}

void CRovanaDlg::addMenuControls() {
    if (!menuControls_.isEmpty()) return;
    struct Tile {
        int control;
        QString text;
        ui::ButtonBitmaps bitmaps;
        std::function<void()> action;
    };
    const Tile tiles[] = {
        {kSalesButton, u"매출작업"_s, ui::bitmaps::kSalesWork,
         [this] { runMenuAction(kSalesButton, kSalesWork, dialogs::kSlipList); }},
        {1045, u"입금작업"_s, ui::bitmaps::kCollectionWork,
         [this] { runMenuAction(1045, kCollectionWork, dialogs::kCollectionList); }},
        {kContainerButton, u"용공작업"_s, ui::bitmaps::kContainerWork,
         [this] { runMenuAction(kContainerButton, kContainerWork, dialogs::kContainerList); }},
        {1053, u"영업/HOST집계"_s, ui::bitmaps::kTotals,
         [this] { runMenuAction(1053, kTotalsWork, dialogs::kTotals); }},
        {1047, u"잔액조회"_s, ui::bitmaps::kBalance, [this] { runCardAction(1047, kBalanceInquiry); }},
        {1054, u"직전거래"_s, ui::bitmaps::kPreviousTransaction,
         [this] { runCardAction(1054, kPreviousTransaction); }},
        {1055, u"단순결제"_s, ui::bitmaps::kSimplePayment, [this] { runSimplePayment(); }},
    };
    for (int i = 0; i < int(std::size(tiles)); ++i) {
        ui::BitmapButton* button =
            addButton(tiles[i].control, tiles[i].text, tileAt(i), tiles[i].bitmaps, tiles[i].action);
        button->hide();
        menuControls_.append(button);
    }
    QLabel* old = addLabel(kOldData, {}, QRect(tileAt(int(std::size(tiles))), QSize(116, 64)),
                           ui::FontHeight::Small, Qt::AlignCenter);
    setTextColour(old, Qt::red);
    old->setWordWrap(true);
    old->hide();
    menuControls_.append(old);
}

bool CRovanaDlg::eventFilter(QObject* watched, QEvent* event) {
    if (watched == userId_ && event->type() == QEvent::FocusOut) showUserName();
    // A letter that is typed takes the place of the one that stands there.
    const QEvent::Type entering = watched == userId_ ? QEvent::FocusIn : QEvent::MouseButtonRelease;
    if (event->type() == entering && (watched == userId_ || watched == userId_->lineEdit()))
        QTimer::singleShot(0, userId_->lineEdit(), &QLineEdit::selectAll);
    return Screen::eventFilter(watched, event);
}

void CRovanaDlg::showUserName() {
    setFittedText(kUserName, userName(knownUserId(userId_->currentText())), ui::FontHeight::Small);
    label(kUserName)->repaint();
}

void CRovanaDlg::enterPassword() {
    if (!askText(u"패스워드"_s)) return;
    QString& entered = keypadRequest().KeypadValue1;
    // A copy of its own, so that the record's characters can be wiped.
    password_->setText(QString(entered.constData(), entered.size()));
    platform::wipe(&entered);
    if (!password_->text().isEmpty()) logIn();
}

void CRovanaDlg::logIn() {
    if (isWaiting_) return;
    const std::chrono::milliseconds wait = enterLoginTry();
    if (wait.count() == 0) return answerLogin();
    setWaiting(true);
    // A right password waits as well: a quick answer would tell it from a wrong one.
    QTimer::singleShot(wait, this, [this] {
        setWaiting(false);
        answerLogin();
    });
}

/// While the answer waits, nothing but "X" can be pressed.
void CRovanaDlg::setWaiting(bool isWaiting) {
    isWaiting_ = isWaiting;
    // The disabled button would hand the focus to "X", which the next key would press.
    if (isWaiting) setFocus();
    for (QWidget* each : {static_cast<QWidget*>(date_), static_cast<QWidget*>(userId_),
                          static_cast<QWidget*>(password_), control(1010), control(1000)}) {
        each->setEnabled(!isWaiting);
    }
    if (isWaiting) {
        setFittedText(kUserName, u"확인 중..."_s, ui::FontHeight::Small);
    } else {
        showUserName();
        password_->setFocus();
    }
}

void CRovanaDlg::answerLogin() {
    const QString problem = deviceProblem();
    if (!problem.isEmpty()) platform::trace(problem);
    QString shown = password_->text();
    QString password(shown.constData(), shown.size());
    const bool isKnown =
        app::logIn(knownUserId(userId_->currentText()), password, date_->date().toString(u"yyyy-MM-dd"_s));
    platform::wipe(&password);
    if (!isKnown) {
        // A folder in which the database cannot be read knows nobody: that is no wrong password.
        const bool isUnread = !problem.isEmpty() && !db::databaseProblem().isEmpty();
        ui::message(isUnread ? problem : u"로그인 사원의 ID와 PASS가 일치하지 않습니다..!"_s);
        return;
    }
    loginSucceeded();
    // The last holder of the edit line's characters wipes them.
    password_->clear();
    platform::wipe(&shown);
    showMenu();
    if (!problem.isEmpty()) ui::message(problem);
    tellClock();
    {
        const ui::WaitCursor wait;
        session().ImportPending = db::isImportWaiting() ? u"Y"_s : u"N"_s;
    }
    if (session().ImportPending == u"Y") ui::runScreen(dialogs::kImport);
    showOldData();
    const QString old = oldDataMessage(db::oldMasterData(platform::clock::now().date()));
    if (!old.isEmpty()) ui::message(old);
    // After the import, which brings the balances that a payment found approved then moves.
    if (books::hasUnsettledPayments()) ui::runScreen(dialogs::kPaymentCheck);
    // Where the terminal ended on the card screen.
    takeBackUnpaid();
    // Before the first press in the menu empties the working slips.
    offerUnsaved();
    goOnToList();
    checkEarlierDays();
}

void CRovanaDlg::tellClock() {
    const QDateTime now = platform::clock::now();
    loginDay_ = now.date();
    const QString problem = clockProblem(session().WorkDate, now, newestSlip());
    if (!problem.isEmpty()) ui::message(problem);
}

void CRovanaDlg::tellNewDay() {
    const QDateTime now = platform::clock::now();
    if (std::exchange(loginDay_, now.date()) != now.date()) ui::message(newDay(session().WorkDate, now));
}

void CRovanaDlg::checkEarlierDays() {
    QStringList days;
    {
        const ui::WaitCursor wait;
        days = books::unclosedDays(session().UserID, session().WorkDate);
        days.removeIf([](const QString& day) {
            return books::checkVisits(
                       books::visitsOfDay(day, session().UserID).value_or(QList<books::Visit>()))
                .isEmpty();
        });
    }
    if (days.isEmpty()) return;
    resetSession();
    session().action.CheckedDays = days;
    ui::runScreen(dialogs::kVisitCheck);
}

void CRovanaDlg::showMenu() {
    for (QWidget* control : std::as_const(loginControls_)) control->hide();
    addMenuControls();
    for (QWidget* control : std::as_const(menuControls_)) control->show();
    if (session().UserField5 == u"X") control(kContainerButton)->hide();
    auto* first = static_cast<ui::BitmapButton*>(menuControls_.first());
    setDefaultButton(first);
    // Tab begins with the work, not with the way out.
    setTabOrder(control(1055), control(1003));
    const bool hasOffice = books::hasOffice();
    QLabel* who = addLabel(0, {}, {64, ui::kBottomRow, 172, hasOffice ? 16 : 32}, ui::FontHeight::Small,
                           Qt::AlignRight | Qt::AlignVCenter);
    fitText(who, session().UserID + u' ' + session().UserField2 + u"  "_s + session().WorkDate,
            ui::FontHeight::Small);
    if (hasOffice) addOfficeLine();
    who->show();
    first->setFocus();
}

void CRovanaDlg::showOldData() {
    setText(kOldData, oldDataLine(db::oldMasterData(platform::clock::now().date())));
}

void CRovanaDlg::addOfficeLine() {
    addLabel(kOffice, {}, {64, ui::kBottomRow + 16, 172, 16}, ui::FontHeight::Small,
             Qt::AlignRight | Qt::AlignVCenter)
        ->show();
    showOffice();
    auto* look = new QTimer(this);
    connect(look, &QTimer::timeout, this, [this] {
        if (isActiveWindow()) showOffice();
    });
    look->start(kOfficeLookMs);
}

void CRovanaDlg::showOffice() {
    if (control(kOffice) != nullptr)
        setFittedText(kOffice, books::officeLine(session().WorkDate), ui::FontHeight::Small);
}

void CRovanaDlg::runBehind(int button, const std::function<void()>& action) {
    // The hidden button would hand the focus to another one, which the next key would press.
    setFocus();
    control(button)->hide();
    repaint();
    action();
    takeBackUnpaid();
    control(button)->show();
    showOldData();
    showOffice();
    control(button)->setFocus();
    repaint();
    tellNewDay();
}

void CRovanaDlg::goOnToList() {
    if (!session().ReturnsToList) return;
    session().WorkMode == kContainerWork
        ? runMenuAction(kContainerButton, kContainerWork, dialogs::kContainerList, true)
        : runMenuAction(kSalesButton, kSalesWork, dialogs::kSlipList, true);
}

void CRovanaDlg::runMenuAction(int button, int workMode, int dialog, bool isNext) {
    runBehind(button, [=]() mutable {
        do {
            session().ReturnsToList = false;
            resetSession();
            session().action.UnvisitedFirst = isNext;
            session().SlipDone = 0;
            session().WorkMode = workMode;
            ui::runScreen(dialog);
            // The lists of the visit are closed: what they held goes back to the system, whose other programs
            // need it.
            malloc_trim(0);
            isNext = session().ReturnsToList;
            if (isNext) takeBackUnpaid();
        } while (isNext);
    });
}

void CRovanaDlg::runCardAction(int button, int workMode) {
    // The current customer and slip are kept: the card screens may need them.
    runBehind(button, [=] {
        session().WorkMode = workMode;
        ui::runScreen(dialogs::kCard);
    });
}

void CRovanaDlg::runSimplePayment() {
    runBehind(1055, [] {
        resetSession();
        session().action.GCode = books::kUnregisteredCustomer.toString();
        session().action.GName = u"미등록"_s;
        session().action.JunNo = books::nextSimplePaymentNumber(session().WorkDate);
        session().SlipDone = 0;
        session().WorkMode = kSimplePayment;
        ui::runScreen(dialogs::kConsonantBoard);
    });
}

}  // namespace app
