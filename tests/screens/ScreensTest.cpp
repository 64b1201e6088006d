#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include "Screens.h"
#include "app/ClockCheck.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "app/UnsavedWork.h"
#include "books/OfficeState.h"
#include "books/OpenPayments.h"
#include "books/TransactionRecord.h"
#include "db/Schema.h"
#include "platform/adoce/DatabaseFile.h"
#include "platform/termdev/CardReader.h"
#include "platform/termdev/TermDev.h"
#include "sales/PriceOrigin.h"
#include "sales/WorkingSlip.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "totals/DailyReports.h"
#include "ui/BitmapButton.h"
#include "ui/Messages.h"
#include "ui/NarrowScreen.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// As long as names get: twice the paper's width would be 32 syllables.
constexpr QStringView kLongName = u"주식회사 한국종합주류유통 제삼지점";
constexpr QStringView kLongProduct = u"꿀빛복분자발효주 선물용 대병묶음";
constexpr QStringView kLargest = u"999999999";
constexpr QStringView kDebt = u"-999999999";
constexpr QStringView kDay = u"2026-11-21";
constexpr int kFingerHeight = 24;
constexpr int kRowHeight = 24;  ///< Of a list, without its second line.
/// In place of a keypad's mode: the consonants that narrow the list are open.
constexpr int kKeysOpen = 9;
/// The same: the payment has been approved.
constexpr int kApproved = 8;

/// A screen as it is at its fullest: what it is opened with, and the row that is chosen in its list.
struct Case {
    const char* name;
    int dialog;
    int workMode = app::kSalesWork;
    int keypadMode = app::kOneNumber;
};
// clang-format off
constexpr Case kCases[] = {
    {"login", 102}, {"password", 130, 0, app::kTextField}, {"one number", 130},
    {"two numbers", 130, 0, app::kTwoNumbers}, {"two numbers again", 130, app::kSalesWork, app::kTwoNumbers},
    {"three numbers", 130, 0, app::kThreeNumbers},
    {"three numbers again", 130, app::kSalesWork, app::kThreeNumbers}, {"slips", 132}, {"sales slip", 134},
    {"product board", 138}, {"product search", 139}, {"printing", 142},
    {"customer board", 143, app::kSimplePayment}, {"customers", 144},
    {"customers with consonants", 144, app::kSalesWork, kKeysOpen},
    {"simple payment", 104, app::kSimplePayment}, {"collections", 150}, {"container slips", 391},
    {"container deposits", 393}, {"container slip", 394}, {"container balance", 395},
    {"container products", 397}, {"import", 435}, {"import results", 437}, {"card payment", 449},
    {"approved payment", 449, app::kSalesWork, kApproved}, {"balance inquiry", 449, app::kBalanceInquiry},
    {"collection", 450}, {"totals", 457}, {"open payment", 459}, {"check of the visits", 460},
    {"unvisited orders", 461}, {"past orders", 465}
};
// clang-format on

QString nameOf(const QWidget& control) {
    return u"%1 (%2)"_s.arg(control.objectName(), QLatin1StringView(control.metaObject()->className()));
}

/// Every control of the screen that shows, the parts of a control left out.
QList<QWidget*> controls(const ui::Screen& screen) {
    QList<QWidget*> shown = screen.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    shown.removeIf([](const QWidget* control) { return !control->isVisible(); });
    return shown;
}

/// The texts of a list that its cells and titles do not take.
QStringList cutTexts(const ui::ReportList& list) {
    QStringList cut;
    const QAbstractItemModel& model = *list.model();
    for (int column = 0; column < model.columnCount(); ++column) {
        const QString title = model.headerData(column, Qt::Horizontal).toString();
        if (list.horizontalHeader()->fontMetrics().horizontalAdvance(title) + 4 > list.columnWidth(column))
            cut << title;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStyleOptionViewItem option;
            option.initFrom(&list);
            option.rect = list.visualRect(model.index(row, column));
            const QSize needed = list.itemDelegate()->sizeHint(option, model.index(row, column));
            if (needed.width() > list.columnWidth(column) || needed.height() > list.rowHeight(row))
                cut << model.index(row, column).data().toString();
        }
    }
    for (int row = 0; row < model.rowCount(); ++row) {
        const QSize needed = list.detailSize(row);
        if (needed.width() > list.viewport()->width() || needed.height() > list.rowHeight(row) - kRowHeight)
            cut << model.index(row, 0).data(Qt::AccessibleDescriptionRole).toString();
    }
    return cut;
}

/// The texts of the control that do not fit it.
QStringList cutTexts(QWidget& control) {
    if (const auto* list = qobject_cast<const ui::ReportList*>(&control)) return cutTexts(*list);
    QString text;
    QSize needed;
    QSize room = control.contentsRect().size();
    if (const auto* label = qobject_cast<const QLabel*>(&control)) {
        text = label->text();
        needed =
            label->fontMetrics()
                .boundingRect(QRect(0, 0, room.width(), 0), label->wordWrap() ? Qt::TextWordWrap : 0, text)
                .size();
        // A line's blank space above and below its letters may lie outside.
        if (!label->wordWrap()) {
            needed = {label->fontMetrics().horizontalAdvance(text),
                      label->fontMetrics().tightBoundingRect(text).height()};
        }
    } else if (const auto* button = qobject_cast<const ui::BitmapButton*>(&control)) {
        text = button->text();
        needed = button->captionBounds().size();
        room = button->rect().united(button->captionBounds()) == button->rect() ? needed : QSize();
    } else if (qobject_cast<QCheckBox*>(&control) || qobject_cast<QRadioButton*>(&control)) {
        text = static_cast<QAbstractButton&>(control).text();
        needed = control.sizeHint();
    } else if (const auto* combo = qobject_cast<const QComboBox*>(&control)) {
        constexpr int kArrowAndFrame = 30;
        for (int i = 0; i < combo->count(); ++i) {
            text = combo->itemText(i);
            needed = {combo->fontMetrics().horizontalAdvance(text) + kArrowAndFrame, 0};
            if (needed.width() > room.width()) break;
        }
    }
    const bool fits = text.isEmpty() || (needed.width() <= room.width() && needed.height() <= room.height());
    return fits ? QStringList() : QStringList{text};
}

bool isPicture(const QWidget* control) {
    const auto* label = qobject_cast<const QLabel*>(control);
    return label != nullptr && !label->pixmap(Qt::ReturnByValue).isNull();
}

/// What a finger, an eye or a reader of the screen would miss on it.
QStringList faults(const ui::Screen& screen) {
    QStringList found;
    const QList<QWidget*> shown = controls(screen);
    for (QWidget* control : shown) {
        for (const QString& text : cutTexts(*control)) found << nameOf(*control) + u" cuts "_s + text;
        if (!screen.rect().contains(control->geometry())) found << nameOf(*control) + u" leaves the screen"_s;
        const bool isPressed =
            control->focusPolicy() != Qt::NoFocus || qobject_cast<QAbstractButton*>(control);
        if (isPressed && control->height() < kFingerHeight) found << nameOf(*control) + u" is low"_s;
        for (const QWidget* other : shown) {
            if (other == control) break;
            // A heading's text lies on its picture.
            if (!isPicture(other) && other->geometry().intersects(control->geometry()))
                found << nameOf(*control) + u" covers "_s + nameOf(*other);
        }
    }
    return found;
}

class Screens : public testing::Test {
  protected:
    Screens() {
        registerScreens();
        terminal.setVisible(true);
        fillDevice();
    }

    void fillDevice() {
        QString rows;
        for (const db::schema::Table& table : db::schema::tables())
            rows += u"DELETE FROM %1;"_s.arg(table.name);
        rows +=
            uR"(
            INSERT INTO PDAUSER (userID, userPASS, userNAME) VALUES ('A', '1', '남궁김영수');
            INSERT INTO config (sangho, calltel) VALUES ('$shop', '0502-1234-5678');
            INSERT INTO JGUBUN (CODE, NAME) VALUES ('10', '기타주류와 발효주, 증류주');
            INSERT INTO GARAE (GCODE, GNAME, ENDDATE, MAJIN, CJMONEY, TEL, SEEK, USERID)
                VALUES ('0001', '$shop', '$day', '100', '$debt', '0502-1234-5678', 'ㅈ', 'A');
            INSERT INTO PUMMOK (Pcode, Pname, Gubun, Size, JGubun, TTT, seek) SELECT column1, '$goods', '공용',
                '1,000ml', '10', 'A', 'ㄲ' FROM (VALUES ('1001'), ('1002'));
            INSERT INTO MTM VALUES ('$day', '', '0001', '$shop', '5001', '미발행', '1001', '$goods', '10', '999',
                '-999', '$most', '$debt', '$most', '$most', 'A', '');
            INSERT INTO MTM VALUES ('$day', '', '0001', '$shop', '0009', '미발행', '1001', '$goods', '10', '999',
                '-999', '$most', '$debt', '$most', '$most', 'A', '');
            INSERT INTO MTM SELECT '2026-10-01', '', '0001', '$shop', '5001', '', '1001', '$goods', '10', '999', '999',
                '$most', '$most', '$most', '$debt', 'A', '' FROM (VALUES (1), (2));
            INSERT INTO MTMOK VALUES ('$day', '', '0001', '$shop', '5001', '', 'A', '$most', '$most', '$most', '', '',
                '', '$most', '$debt', '$most', '$debt', '$debt', '', '', '', '1');
            INSERT INTO PAYJOURNAL (Number, State, Charged, DDate, GName, JunNo)
                VALUES ('1', 'unknown', '$most', '$day', '$shop', '5001');
            INSERT INTO YTM VALUES ('$day', '0001', '$shop', '5001', '1001', '$goods', '999', '999', '999', '$most',
                '$most', '$debt', '$most', 'A'))"_s;
        for (const auto& [mark, text] : {std::pair(u"$shop"_s, kLongName),
                                         {u"$goods"_s, kLongProduct},
                                         {u"$day"_s, kDay},
                                         {u"$most"_s, kLargest},
                                         {u"$debt"_s, kDebt}})
            rows.replace(mark, text.toString());
        device.execute(rows);
    }

    /// The screen in front of the terminal, its first row chosen.
    std::unique_ptr<ui::Screen> open(const Case& screen) {
        app::SessionValues& session = app::session();
        session = {};
        session.UserID = u"A"_s;
        session.UserField2 = u"남궁김영수"_s;
        session.WorkDate = kDay.toString();
        session.WorkMode = screen.workMode;
        session.action.GCode = u"0001"_s;
        session.action.GName = kLongName.toString();
        session.action.JunNo = u"5001"_s;
        session.action.CheckedDays = {kDay.toString()};
        if (screen.dialog == 144) session.action.SeekValue = u"ㅈ"_s;
        sales::reloadSlip(session.UserID, session.WorkDate, session.action.JunNo);
        books::resetTransactionRecord();
        books::transactionRecord().amounts.card = platform::Won(999999999);
        const QString number = kDebt.toString();
        app::keypadRequest() = {number,      number,      number,      u"패스워드"_s,    u"공상자"_s,
                                u"입상자"_s, u"공상자"_s, u"입상자"_s, screen.keypadMode};
        if (screen.workMode != 0 && screen.keypadMode > app::kOneNumber) {
            const QString asked = u"-999"_s;
            app::keypadRequest().KeypadValue1 = app::keypadRequest().KeypadValue2 =
                app::keypadRequest().KeypadValue3 = asked;
            app::keypadRequest().Topic = {kLongName.toString(),
                                          kLongProduct.toString() + u" 1,000ml"_s,
                                          {asked, asked, asked},
                                          [](const std::array<QString, 3>&) {
                                              return u"상자 99,999,999 본 9,999,999 = 99,999,999,999원"_s;
                                          }};
        }
        std::unique_ptr<ui::Screen> made = ui::makeScreen(screen.dialog);
        below = made.get();
        terminal.show(made.get());
        if (screen.keypadMode == kKeysOpen)
            static_cast<QAbstractButton*>(made->control(ui::kNarrowButton))->click();
        if (screen.keypadMode == kApproved) {
            made->control(1143)->hide();
            for (int id = 1150; id <= 1154; ++id) made->control(id)->show();
            static_cast<QLabel*>(made->control(1150))->setText(u"승인"_s);
            static_cast<QLabel*>(made->control(1151))->setText(u"-999,999,999원"_s);
            static_cast<QLabel*>(made->control(1154))->setText(u"출력 대기 12건: 용지·덮개·전원 확인"_s);
        }
        for (auto* list : made->findChildren<ui::ReportList*>()) {
            if (list->rowCount() == 0) continue;
            list->selectRow(0);
            Q_EMIT list->rowClicked(0);
        }
        return made;
    }

    /// What opens above the screen is looked at and closed.
    void closeWhatOpens(ui::Screen::Result result) {
        QObject::connect(&terminal, &ui::Terminal::topChanged, &terminal, [this, result](ui::Screen* front) {
            if (front == nullptr || front == below) return;
            ++shown;
            EXPECT_THAT(faults(*front), testing::IsEmpty());
            if (front->id() == 458) {
                ++reports;
                EXPECT_GT(static_cast<ui::ReportList*>(front->control(1054))->rowCount(), 0);
            }
            QTimer::singleShot(0, front, [front, result] { front->close(result); });
        });
    }

    int shown = 0;
    int reports = 0;
    test::TestDevice device;
    ui::Terminal terminal;
    const ui::Screen* below = nullptr;  ///< The screen that was opened last by open().
};

/// What somebody misses who hears the screen instead of seeing it, or has only keys.
QStringList unspoken(ui::Screen& screen) {
    QStringList missed;
    QSet<QWidget*> wanted;
    for (QWidget* control : controls(screen)) {
        if (!control->isEnabled()) continue;
        const QString spoken = QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
        const auto* text = qobject_cast<const QLabel*>(control);
        // A picture or an empty text has nothing to say, and a figure says what it is.
        const bool isNamed = text == nullptr
                                 ? !spoken.isEmpty()
                                 : text->text().isEmpty() || spoken.contains(QRegularExpression(u"\\p{L}"_s));
        if (!isNamed) missed << nameOf(*control) + u" is read as "_s + spoken;
        if (qobject_cast<const QAbstractButton*>(control) || control->focusPolicy() != Qt::NoFocus)
            wanted << control;
        auto* list = qobject_cast<ui::ReportList*>(control);
        if (list == nullptr || list->rowCount() == 0) continue;
        const QModelIndex cell = list->model()->index(0, 0);
        const QString title = list->model()->headerData(0, Qt::Horizontal).toString();
        if (cell.data(Qt::AccessibleTextRole) != QString(title + u' ' + cell.data().toString()))
            missed << title;
    }
    // On the keypad the keys of a keyboard stand for the buttons, and arrows choose among what excludes each
    // other.
    if (screen.id() == 130) return missed;
    wanted.removeIf([](QWidget* control) { return qobject_cast<QRadioButton*>(control) != nullptr; });
    for (qsizetype steps = controls(screen).size(); steps > 0; --steps) {
        screen.focusNextPrevChild(true);
        wanted.remove(screen.focusWidget());
    }
    for (const QWidget* control : std::as_const(wanted)) missed << nameOf(*control) + u" is not reached"_s;
    return missed;
}

TEST_F(Screens, AreWholeAndSpokenAndLeft) {
    const auto& reader = platform::termdev::CardReader::instance();
    device.writeFile(u"\\My Documents\\BARCODE.RVN", "1001|8801234567890|\n");
    closeWhatOpens(ui::Screen::Accepted);
    for (const Case& screen : kCases) {
        SCOPED_TRACE(screen.name);
        auto opened = open(screen);
        EXPECT_THAT(faults(*opened), testing::IsEmpty());
        EXPECT_THAT(unspoken(*opened), testing::IsEmpty());
        EXPECT_EQ(reader.isReading(), screen.dialog == 449);
        // Esc leaves the screen, whatever has the focus. Behind another key it is not the one before that
        // bounces.
        QTest::keyClick(terminal.window()->windowHandle(), Qt::Key_Shift);
        QTest::keyClick(terminal.window()->windowHandle(), Qt::Key_Escape);
        EXPECT_EQ(opened->isClosing(), screen.dialog != 102);
        opened.reset();
        EXPECT_FALSE(reader.isReading());
    }
}

TEST_F(Screens, EveryButtonDoesSomething) {
    closeWhatOpens(ui::Screen::Cancelled);
    // The copy that is chosen already, keys and amounts of which none was keyed, the products that are
    // listed.
    const QStringList idle{u"142.1089"_s, u"144.1225"_s, u"104.1001"_s, u"397.1001"_s};
    for (const Case& screen : kCases) {
        if (screen.keypadMode == kApproved) continue;
        auto opened = open(screen);
        QStringList buttons;
        for (const QWidget* control : controls(*opened)) {
            if (qobject_cast<const QAbstractButton*>(control) && control->isEnabled() &&
                !idle.contains(opened->objectName() + u'.' + control->objectName()))
                buttons << control->objectName();
        }
        for (const QString& id : buttons) {
            fillDevice();
            opened = open(screen);
            const QImage before = opened->grab().toImage();
            shown = 0;
            static_cast<QAbstractButton*>(opened->control(id.toInt()))->click();
            EXPECT_TRUE(shown > 0 || opened->isClosing() || opened->grab().toImage() != before)
                << screen.name << ' ' << id.toStdString();
        }
    }
    EXPECT_EQ(reports, int(std::size(totals::dailyReports())));
}

/// The longest that is said: of a payment in the way, of a price with a margin, of a wrong clock, of a
/// folder.
QStringList longestMessages() {
    books::JournalPayment payment;
    payment.slip.GName = kLongName.toString();
    payment.slip.JunNo = u"10000"_s;
    payment.slip.MSGSENDTIME = u"20261121090500"_s;
    payment.charged = platform::Won(999999999);
    const platform::Won most(-999999999);
    sales::PricedLine price;
    price.source = sales::PriceSource::CustomerMargin;
    price.marginPercent = 100;
    price.amounts = {most, most, most, most};
    price.prices.boxSupply = price.prices.boxVat = price.prices.bottleSupply = price.prices.bottleVat =
        9999999.5;
    return {
        books::refuseToPay(payment) + u" 지금 끝내려면 [외상처리]를 누르세요."_s,
        u"이미 승인된 결제가 있습니다..! %1 거래번호 : 000000000000  이 결제를 전표에 되돌릴까요?"_s.arg(
            books::describePayment(payment)),
        sales::priceOrigin(price, -999, -999) + u"\n전표의 금액은 수정된 금액입니다."_s,
        app::clockProblem(u"2026-11-20", QDateTime(QDate(2026, 11, 21), QTime(9, 5)), u"2026-11-22 10:00"),
        app::describeUnsaved({.userId = u"B"_s,
                              .date = kDay.toString(),
                              .gName = kLongName.toString(),
                              .lines = 99,
                              .total = most},
                             u"A", kDay, false),
        app::newDay(kDay, QDateTime(QDate(2026, 11, 22), QTime(0, 5))),
        u"저장 공간이 가득 차서 저장할 수 없습니다..! 관리자에게 알려 주세요 : /home/salesman-of-the-second-"
        "branch/.local/share/rovana/second-terminal/My Documents"_s};
}

TEST_F(Screens, HoldTheLongestMessages) {
    using ui::MessageBox;
    for (const QString& text : longestMessages()) {
        SCOPED_TRACE(text.toStdString());
        for (const auto& [buttons, caption] :
             {std::pair{MessageBox::Buttons::Ok, u""_s},
              {MessageBox::Buttons::OkCancel, u"카드결제된 입금표삭제"_s},
              {MessageBox::Buttons::YesNoCancel, u"구매자용 명세서출력"_s}}) {
            MessageBox box(text, caption, buttons, ui::MessageIcon::Question);
            terminal.show(&box);
            EXPECT_THAT(faults(box), testing::IsEmpty());
            terminal.remove(&box);
        }
    }
}

TEST_F(Screens, ImportAsksBeforeATableIsLostAndTellsWhatBecameOfEachFile) {
    device.execute(u"INSERT INTO PUMMOK (Pcode) VALUES ('1003'), ('1004'), ('1005')"_s);
    const QByteArray lines = "1001|a|\n1002|b|\n";
    struct Answer {
        int answer;
        const char* rows;
        bool isLeft;
    };
    for (const Answer& c : {Answer{ui::kMessageCancel, "5", true}, Answer{ui::kMessageOk, "2", false}}) {
        device.writeFile(u"\\My Documents\\PUMMOK.RVN", lines);
        device.writeFile(u"\\My Documents\\garaemajin.rvn", "0001|01|5|\n0001|0'2|5|\n0001|03|");
        QStringList said;
        QString report;
        QObject context;
        QObject::connect(&terminal, &ui::Terminal::topChanged, &context, [&](ui::Screen* front) {
            if (front == nullptr || front->id() == 435) return;
            int button = 1000;
            if (auto* message = qobject_cast<ui::MessageBox*>(front)) {
                button = message->caption().isEmpty() ? ui::kMessageOk : c.answer;
                said << message->text();
            } else {
                report = front->findChild<QPlainTextEdit*>()->toPlainText();
                EXPECT_THAT(faults(*front), testing::IsEmpty());
            }
            auto* pressed = static_cast<QAbstractButton*>(front->control(button));
            QTimer::singleShot(0, pressed, [pressed] { pressed->click(); });
        });
        QTimer::singleShot(0, &context,
                           [&] { static_cast<QAbstractButton*>(terminal.top()->control(1000))->click(); });
        ui::runScreen(435);
        EXPECT_EQ(said.size(), 2);
        EXPECT_TRUE(said.value(0).contains(u"5건에서 2건"_s)) << said.value(0).toStdString();
        EXPECT_EQ(said.value(1), u"TXT DB 업데이트가 완료되었습니다..!"_s);
        EXPECT_EQ(report.contains(u"상  품 : 나중에"_s), c.isLeft) << report.toStdString();
        for (const QString& part : {u"주류구분마진 : 2건 수신"_s, u"GARAEMAJIN.RVN.rejected"_s, u"2번째 줄"_s,
                                    u"0001|0'2|5|"_s, u"마지막 줄이 잘려"_s})
            EXPECT_TRUE(report.contains(part)) << report.toStdString();
        EXPECT_EQ(device.value(u"SELECT count(*) FROM PUMMOK"_s), QLatin1StringView(c.rows));
        EXPECT_EQ(QFile::exists(device.folder() + u"/My Documents/PUMMOK.RVN"_s), c.isLeft);
    }
}

/// Keeps every job, as one without paper does.
class EmptyPrinter : public platform::termdev::Printer {
  public:
    explicit EmptyPrinter(int* jobs) : jobs_(*jobs) {}
    int open() override { return 1; }
    int close() override { return ++jobs_; }
    int initialise() override { return 1; }
    int setSize(int) override { return 1; }
    int print(QStringView) override { return 1; }
    int feed(int) override { return 1; }
    platform::termdev::DeviceStatus status() const override {
        using Status = platform::termdev::DeviceStatus;
        return {Status::State::Fault, jobs_, u"out of paper"_s, Status::Cause::NoPaper};
    }

  private:
    int& jobs_;
};

TEST_F(Screens, PrintingTellsOfWaitingJobsAndAsksBeforeASecondCopy) {
    int jobs = 0;
    platform::termdev::setPrinter(std::make_unique<EmptyPrinter>(&jobs));
    const auto opened = open({"printing", 142});
    const auto text = [&](int id) { return static_cast<QLabel*>(opened->control(id))->text(); };
    QStringList asked;
    int answer = ui::kMessageNo;
    QObject::connect(&terminal, &ui::Terminal::topChanged, opened.get(), [&](ui::Screen* front) {
        auto* message = qobject_cast<ui::MessageBox*>(front);
        if (message == nullptr) return;
        asked << message->text();
        QTimer::singleShot(
            0, message, [&, message] { static_cast<QAbstractButton*>(message->control(answer))->click(); });
    });
    const auto press = [&](int id) { static_cast<QAbstractButton*>(opened->control(id))->click(); };
    press(1004);
    EXPECT_EQ(text(1057), u"출력 대기 1건: 용지 없음"_s);
    EXPECT_EQ(text(1056), u"거래명세서 공급자용 출력 대기"_s);
    EXPECT_THAT(asked, testing::IsEmpty());
    EXPECT_THAT(faults(*opened), testing::IsEmpty());
    press(1004);
    EXPECT_EQ(jobs, 1);
    EXPECT_EQ(asked.size(), 1);
    answer = ui::kMessageOk;
    press(1004);
    EXPECT_EQ(jobs, 2);
    press(1005);
    EXPECT_EQ(asked.size(), 2) << "the first print of another paper is no second copy";
    press(1008);
    answer = ui::kMessageNo;
    press(1008);
    EXPECT_EQ(asked.value(2), u"출력 대기중인 전표가 있습니다..! 한 장 더 출력할까요?"_s)
        << "nothing is printed yet";
    jobs = 0;
    EXPECT_TRUE(QTest::qWaitFor([&] { return text(1057).isEmpty(); }));
    EXPECT_EQ(text(1056), u"두 부 모두 2장 출력"_s);
    terminal.remove(opened.get());
    platform::termdev::setPrinter(nullptr);
}

TEST_F(Screens, LoginTellsAMissingFolderFromAWrongPassword) {
    const QString away = device.folder() + u".away"_s;
    QString said;
    QObject::connect(&terminal, &ui::Terminal::topChanged, &terminal, [&](ui::Screen* front) {
        if (auto* message = qobject_cast<ui::MessageBox*>(front)) {
            said = message->text();
            QTimer::singleShot(0, front, [front] { front->close(ui::Screen::Accepted); });
        }
    });
    const auto login = [&] {
        const auto opened = open({"login", 102});
        static_cast<QAbstractButton*>(opened->control(1000))->click();
        terminal.remove(opened.get());
        return said;
    };
    EXPECT_EQ(login(), u"로그인 사원의 ID와 PASS가 일치하지 않습니다..!"_s);
    platform::adoce::DatabaseFile::forgetAll();
    ASSERT_TRUE(QDir().rename(device.folder(), away));
    EXPECT_TRUE(login().contains(u"자료 폴더가 없습니다..!"_s)) << said.toStdString();
    EXPECT_TRUE(said.endsWith(device.folder())) << said.toStdString();
    QDir(device.folder()).removeRecursively();
    ASSERT_TRUE(QDir().rename(away, device.folder()));
}

TEST_F(Screens, MenuTellsWhatTheOfficeHas) {
    device.execute(u"DELETE FROM PAYJOURNAL"_s);
    device.writeFile(u"\\office.conf", {});
    ASSERT_TRUE(QDir(device.folder()).mkpath(u"office"_s));
    books::OfficeState state;
    state.syncedAt = QDateTime({2026, 11, 20}, {14, 5});
    state.days[u"2026-11-19"_s].waiting = 997;
    ASSERT_TRUE(books::writeOfficeState(state));
    const auto opened = open({"login", 102});
    QObject::connect(&terminal, &ui::Terminal::topChanged, &terminal, [&](ui::Screen* front) {
        if (front != nullptr && front != opened.get())
            QTimer::singleShot(0, front, [front] { front->close(ui::Screen::Accepted); });
    });
    static_cast<QLineEdit*>(opened->control(1006))->setText(u"1"_s);
    static_cast<QAbstractButton*>(opened->control(1000))->click();
    const auto* line = qobject_cast<QLabel*>(opened->control(1012));
    ASSERT_NE(line, nullptr);
    // The slips of another day than the one of the login count as the sync has left them.
    EXPECT_EQ(line->text(), u"사무실 11-20 14:05 · 대기 997"_s);
    EXPECT_THAT(faults(*opened), testing::IsEmpty());
    terminal.remove(opened.get());
}

TEST_F(Screens, LoginKeepsTheUnsavedSlipOfAnotherUser) {
    device.execute(
        uR"(DELETE FROM TEMP; DELETE FROM UNSAVED; DELETE FROM PDAUSER; INSERT INTO UNSAVED VALUES ('TEMP','B','1');
            INSERT INTO PDAUSER (userID, userNAME) VALUES ('B', '박');
            INSERT INTO TEMP VALUES ('2026-11-21','매출','0076','까치가든','5001','미처리','1001','소주','10','2','0','3000','300','0','0'))"_s);
    QStringList seen;
    QObject::connect(&terminal, &ui::Terminal::topChanged, &terminal, [&](ui::Screen* front) {
        if (front == nullptr) return;
        const auto* message = qobject_cast<ui::MessageBox*>(front);
        seen << (message
                     ? message->text()
                     : QString::number(front->id()) + u' ' + device.value(u"SELECT count(*) FROM TEMP"_s));
        QTimer::singleShot(0, front, [&] { terminal.top()->close(ui::Screen::Accepted); });
    });
    app::session().WorkDate = kDay.toString();
    for (const QString& user : {u"A"_s, u"B"_s}) {
        app::session().UserID = user;
        app::offerUnsaved();
        app::resetSession();
    }
    EXPECT_EQ(seen,
              (QStringList{
                  u"저장안된 주문서: 까치가든 1품목 3,300원..! 사번 B(박), 작업일자 2026-11-21의 전표라 따로 "
                  "두었습니다. 그렇게 로그인하면 계속할 수 있습니다."_s,
                  u"저장안된 주문서: 까치가든 1품목, 계속할까요?"_s, u"134 1"_s}));
}

TEST_F(Screens, TakeNoAnswerFromAKeyThatBounces) {
    const auto opened = open({"slips", 132});
    const auto strike = [&](int key, quint64 ms) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        press.setTimestamp(ms);
        QCoreApplication::sendEvent(terminal.top(), &press);
    };
    QTimer::singleShot(0, opened.get(), [&] {
        ui::Screen* slip = terminal.top();
        for (const quint64 bounce : {1080, 1300}) strike(Qt::Key_Enter, bounce);
        EXPECT_EQ(terminal.top(), slip) << "the slip that Enter opened was finished by its bounce";
        EXPECT_FALSE(slip->isClosing());
        strike(Qt::Key_Escape, 1310);
        EXPECT_TRUE(slip->isClosing());
    });
    strike(Qt::Key_Return, 1000);
    EXPECT_EQ(terminal.top(), opened.get());
    strike(Qt::Key_Escape, 1400);
    EXPECT_FALSE(opened->isClosing());
    strike(Qt::Key_Escape, 2000);
    EXPECT_TRUE(opened->isClosing());
    terminal.remove(opened.get());
}

}  // namespace
