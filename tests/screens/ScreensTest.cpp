#include <QAccessible>
#include <QFile>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QTest>

#include "FullScreens.h"
#include "app/ClockCheck.h"
#include "app/UnsavedWork.h"
#include "books/OpenPayments.h"
#include "platform/termdev/CardReader.h"
#include "platform/termdev/LinePrinter.h"
#include "platform/termdev/TermDev.h"
#include "sales/PriceOrigin.h"
#include "totals/DailyReports.h"

namespace screens {
namespace {

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
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    for (const Case& screen : cases()) {
        SCOPED_TRACE(testing::PrintToString(screen));
        auto opened = open(screen);
        EXPECT_THAT(faults(*opened), testing::IsEmpty());
        EXPECT_THAT(unspoken(*opened), testing::IsEmpty());
        EXPECT_EQ(reader.isReading(), screen.dialog == 449);
        // Esc leaves the screen, whatever has the focus.
        escape.setTimestamp(escape.timestamp() + 1000);
        QCoreApplication::sendEvent(terminal.window()->windowHandle(), &escape);
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
    for (const Case& screen : cases()) {
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
                << testing::PrintToString(screen) << ' ' << id.toStdString();
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
        QStringList told;
        QString report;
        QObject context;
        QObject::connect(&terminal, &ui::Terminal::topChanged, &context, [&](ui::Screen* front) {
            if (front == nullptr || front->id() == 435) return;
            int button = 1000;
            if (auto* message = qobject_cast<ui::MessageBox*>(front)) {
                button = message->caption().isEmpty() ? ui::kMessageOk : c.answer;
                told << message->text();
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
        EXPECT_EQ(told.size(), 2);
        EXPECT_TRUE(told.value(0).contains(u"5건에서 2건"_s)) << told.value(0).toStdString();
        EXPECT_EQ(told.value(1), u"TXT DB 업데이트가 완료되었습니다..!"_s);
        EXPECT_EQ(report.contains(u"상  품 : 나중에"_s), c.isLeft) << report.toStdString();
        for (const QString& part : {u"주류구분마진 : 2건 수신"_s, u"GARAEMAJIN.RVN.rejected"_s, u"2번째 줄"_s,
                                    u"0001|0'2|5|"_s, u"마지막 줄이 잘려"_s})
            EXPECT_TRUE(report.contains(part)) << report.toStdString();
        EXPECT_EQ(device.value(u"SELECT count(*) FROM PUMMOK"_s), QLatin1StringView(c.rows));
        EXPECT_EQ(QFile::exists(device.folder() + u"/My Documents/PUMMOK.RVN"_s), c.isLeft);
    }
}

/// Keeps every job, as one without paper does.
class EmptyPrinter : public platform::termdev::LinePrinter {
  public:
    explicit EmptyPrinter(int* jobs) : jobs_(*jobs) {}
    platform::termdev::DeviceStatus status() const override {
        using Status = platform::termdev::DeviceStatus;
        return {Status::State::Fault, jobs_, u"out of paper"_s, Status::Cause::NoPaper};
    }

  private:
    bool putOut(const QList<platform::termdev::PaperLine>&) override { return ++jobs_ > 0; }
    int& jobs_;
};

TEST_F(Screens, PrintingTellsOfWaitingJobsAndAsksBeforeASecondCopy) {
    int jobs = 0;
    platform::termdev::setPrinter(std::make_unique<EmptyPrinter>(&jobs));
    const auto opened = open({142});
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

TEST_F(Screens, TakeNoAnswerFromAKeyThatBounces) {
    const auto opened = open({132});
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
}  // namespace screens
