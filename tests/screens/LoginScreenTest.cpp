#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTableView>
#include <QTest>
#include <QToolButton>

#include "Screens.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

TEST(LoginScreen, TakesALetterOnceAndShowsItsCalendarWhole) {
    test::TestDevice device;
    ui::Terminal terminal;
    registerScreens();
    terminal.setVisible(true);
    const auto opened = ui::makeScreen(102);
    terminal.show(opened.get());
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
    const auto heading = [&](const char* part) {
        return calendar->findChild<QToolButton*>(QLatin1StringView(part));
    };
    const QToolButton* year = heading("qt_calendar_yearbutton");
    const QToolButton* month = heading("qt_calendar_monthbutton");
    EXPECT_EQ(year->text(), QString::number(date->date().year()) + u'년');
    EXPECT_LE(year->geometry().right(), month->x()) << "the year comes first";
    for (const auto* view : calendar->findChildren<QTableView*>()) {
        for (int column = 0; column < view->model()->columnCount(); ++column) {
            const QString text = view->model()->index(0, column).data().toString();
            EXPECT_FALSE(text.contains(QRegularExpression(u"[A-Za-z]"_s))) << text.toStdString();
            EXPECT_LE(view->fontMetrics().horizontalAdvance(text), view->columnWidth(column));
        }
        EXPECT_GE(view->rowHeight(1), 24);
    }
    terminal.remove(opened.get());
}

}  // namespace
