#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTableView>
#include <QTest>
#include <QTreeView>

#include "Screens.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

TEST(KoreanTexts, ReplaceTheLibrarys) {
    const auto foreign = [](const QWidget& window) {
        QStringList found;
        static const QRegularExpression word(u"[A-Za-z]{2,}"_s);
        const auto look = [&](const QString& text) {
            // What stands after a tab is the name of keys.
            if (text.section(u'\t', 0, 0).contains(word)) found << text;
        };
        for (const auto* label : window.findChildren<QLabel*>()) look(label->text());
        for (const auto* button : window.findChildren<QAbstractButton*>()) {
            look(button->text());
            look(button->toolTip().section(u'(', 0, 0));
        }
        for (const auto* action : window.findChildren<QAction*>()) look(action->text());
        for (const auto* view : window.findChildren<QTreeView*>()) {
            for (int i = 0; i < view->model()->columnCount(); ++i)
                look(view->model()->headerData(i, Qt::Horizontal).toString());
        }
        return found;
    };
    QFileDialog files(nullptr, u"용지 저장"_s, QDir::tempPath(), u"*.png"_s);
    for (const auto mode : {QFileDialog::AcceptSave, QFileDialog::AcceptOpen}) {
        files.setAcceptMode(mode);
        files.setVisible(true);
        EXPECT_THAT(foreign(files), testing::IsEmpty());
    }
    QMessageBox box(QMessageBox::Warning, u"용지"_s, u"?"_s, QMessageBox::StandardButtons(0x7ffffc00));
    EXPECT_THAT(foreign(box), testing::IsEmpty());
    QLineEdit line;
    const std::unique_ptr<QMenu> menu(line.createStandardContextMenu());
    EXPECT_THAT(foreign(*menu), testing::IsEmpty());
}

TEST(LoginScreen, TakesALetterOnceAndShowsItsCalendarWhole) {
    test::TestDevice device;
    ui::Terminal terminal;
    registerScreens();
    terminal.setVisible(true);
    const auto opened = ui::makeScreen(102);
    terminal.show(opened.get());
    QApplication::setActiveWindow(&terminal);
    auto* user = static_cast<QComboBox*>(opened->control(1005));
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
