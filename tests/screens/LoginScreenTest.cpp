#include <QApplication>
#include <QDateEdit>
#include <QDir>
#include <QLineEdit>
#include <QTest>

#include "FullScreens.h"
#include "app/UnsavedWork.h"
#include "books/OfficeState.h"
#include "platform/Clock.h"
#include "platform/adoce/DatabaseFile.h"

namespace screens {
namespace {

TEST_F(Screens, LoginTakesALetterOnceAndShowsItsCalendarWhole) {
    const auto opened = open({102});
    QApplication::setActiveWindow(&terminal);
    auto* user = static_cast<QComboBox*>(opened->control(1005));
    EXPECT_EQ(user->lineEdit()->selectedText(), u"A"_s);
    user->setFocus();
    QCoreApplication::processEvents();
    QTest::keyClick(user, Qt::Key_B);
    EXPECT_EQ(user->currentText(), u"b"_s);
    QTest::mouseClick(user->lineEdit(), Qt::LeftButton);
    QCoreApplication::processEvents();
    QTest::keyClick(user, 'C');
    EXPECT_EQ(user->currentText(), u"C"_s);

    auto* date = static_cast<QDateEdit*>(opened->control(1004));
    QTest::mouseClick(date, Qt::LeftButton, {}, QPoint(date->width() - 8, date->height() / 2));
    const QWidget* calendar = QApplication::activePopupWidget();
    ASSERT_NE(calendar, nullptr);
    const QRect screen(terminal.mapToGlobal(QPoint()), terminal.size());
    EXPECT_TRUE(screen.contains(calendar->geometry())) << testing::PrintToString(calendar->width());
}

TEST_F(Screens, LoginTellsAMissingFolderFromAWrongPassword) {
    const QString away = device.folder() + u".away"_s;
    closeWhatOpens(ui::Screen::Accepted);
    const auto login = [&] {
        const auto opened = open({102});
        static_cast<QAbstractButton*>(opened->control(1000))->click();
        terminal.remove(opened.get());
        return said.takeLast();
    };
    EXPECT_EQ(login(), u"로그인 사원의 ID와 PASS가 일치하지 않습니다..!"_s);
    platform::adoce::DatabaseFile::forgetAll();
    ASSERT_TRUE(QDir().rename(device.folder(), away));
    const QString missing = login();
    EXPECT_TRUE(missing.contains(u"자료 폴더가 없습니다..!"_s) && missing.endsWith(device.folder()))
        << missing.toStdString();
    QDir(device.folder()).removeRecursively();
    ASSERT_TRUE(QDir().rename(away, device.folder()));
}

TEST_F(Screens, MenuTellsOfTheClockAndTheOffice) {
    device.execute(u"DELETE FROM PAYJOURNAL; UPDATE PDAUSER SET containerWork = 'X'"_s);
    device.writeFile(u"\\office.conf", {});
    ASSERT_TRUE(QDir(device.folder()).mkpath(u"office"_s));
    books::OfficeState state;
    state.syncedAt = QDateTime({2026, 11, 20}, {14, 5});
    state.days[u"2026-11-19"_s].waiting = 997;
    ASSERT_TRUE(books::writeOfficeState(state));
    const auto opened = open({102});
    closeWhatOpens(ui::Screen::Accepted);
    static_cast<QLineEdit*>(opened->control(1006))->setText(u"1"_s);
    static_cast<QDateEdit*>(opened->control(1004))->setDate({2026, 11, 21});
    platform::clock::set(QDateTime({2026, 11, 23}, {9, 0}));
    static_cast<QAbstractButton*>(opened->control(1000))->click();
    platform::clock::set({});
    const auto* line = qobject_cast<QLabel*>(opened->control(1012));
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(said.value(0),
              u"작업일자(2026-11-21)가 오늘(2026-11-23)과 다릅니다..! 전표는 작업일자로 저장됩니다."_s);
    EXPECT_FALSE(opened->control(1046)->isVisible()) << "he takes no containers back";
    // The slips of the day, and of other days what the sync has left.
    EXPECT_EQ(line->text(), u"사무실 11-20 14:05 · 대기 999"_s);
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

}  // namespace
}  // namespace screens
