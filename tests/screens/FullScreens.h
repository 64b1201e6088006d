#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QRadioButton>
#include <QTimer>
#include <memory>
#include <ostream>
#include <vector>

#include "Screens.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "books/TransactionRecord.h"
#include "db/Schema.h"
#include "sales/WorkingSlip.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "ui/BitmapButton.h"
#include "ui/Messages.h"
#include "ui/NarrowScreen.h"
#include "ui/Picture.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

/// Every screen at its fullest, and what is wrong with one.
namespace screens {

using namespace Qt::Literals::StringLiterals;

/// As long as names get: twice the paper's width would be 32 syllables.
inline constexpr QStringView kLongName = u"주식회사 한국종합주류유통 제삼지점";
inline constexpr QStringView kLongProduct = u"꿀빛복분자발효주 선물용 대병묶음";
inline constexpr QStringView kLargest = u"999999999";
inline constexpr QStringView kDebt = u"-999999999";
inline constexpr QStringView kDay = u"2026-11-21";
inline constexpr int kFingerHeight = 24;
inline constexpr int kRowHeight = 24;  ///< Of a list, without its second line.
/// In place of a keypad's mode: the consonants that narrow the list are open.
inline constexpr int kKeysOpen = 9;
/// The same: the payment has been approved.
inline constexpr int kApproved = 8;

/// A screen as it is at its fullest: what it is opened with, and the row that is chosen in its list.
struct Case {
    int dialog;
    int workMode = app::kSalesWork;
    int keypadMode = app::kOneNumber;
};

inline std::vector<Case> cases() {
    std::vector<Case> all{{130, 0, app::kTextField},
                          {130, 0, app::kTwoNumbers},
                          {130, app::kSalesWork, app::kTwoNumbers},
                          {130, 0, app::kThreeNumbers},
                          {130, app::kSalesWork, app::kThreeNumbers},
                          {143, app::kSimplePayment},
                          {144, app::kSalesWork, kKeysOpen},
                          {104, app::kSimplePayment},
                          {449, app::kSalesWork, kApproved},
                          {449, app::kBalanceInquiry}};
    for (const int dialog : {102, 130, 132, 134, 138, 139, 142, 144, 150, 391, 393, 394,
                             395, 397, 435, 437, 449, 450, 457, 459, 460, 461, 465})
        all.push_back({dialog});
    return all;
}

inline void PrintTo(const Case& screen, std::ostream* out) {
    *out << screen.dialog << " for work " << screen.workMode << ", keypad " << screen.keypadMode;
}

inline QString nameOf(const QWidget& control) {
    return u"%1 (%2)"_s.arg(control.objectName(), QLatin1StringView(control.metaObject()->className()));
}

/// Every control of the screen that shows, the parts of a control left out.
inline QList<QWidget*> controls(const ui::Screen& screen) {
    QList<QWidget*> shown = screen.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    shown.removeIf([](const QWidget* control) { return !control->isVisible(); });
    return shown;
}

/// The texts of a list that its cells and titles do not take.
inline QStringList cutTexts(const ui::ReportList& list) {
    QStringList cut;
    const QAbstractItemModel& model = *list.model();
    if (!list.horizontalHeader()->isVisible()) cut << u"its titles"_s;
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
inline QStringList cutTexts(QWidget& control) {
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

/// What a finger, an eye or a reader of the screen would miss on it.
inline QStringList faults(const ui::Screen& screen) {
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
            if (qobject_cast<const ui::Picture*>(other) == nullptr &&
                other->geometry().intersects(control->geometry()))
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
            if (const auto* message = qobject_cast<ui::MessageBox*>(front)) said << message->text();
            EXPECT_THAT(faults(*front), testing::IsEmpty());
            if (front->id() == 458) {
                ++reports;
                const auto* list = static_cast<ui::ReportList*>(front->control(1054));
                EXPECT_GT(list->rowCount(), 0);
                for (int column = 0; column < list->model()->columnCount(); ++column) {
                    // A figure that runs over the edge reads as a smaller one.
                    const int beyond = list->columnViewportPosition(column) + list->columnWidth(column) -
                                       list->viewport()->width();
                    EXPECT_FALSE(beyond > 0 && beyond < list->columnWidth(column) / 2) << column;
                }
            }
            QTimer::singleShot(0, front, [front, result] { front->close(result); });
        });
    }

    int shown = 0;
    int reports = 0;
    QStringList said;  ///< By messages.
    test::TestDevice device;
    ui::Terminal terminal;
    const ui::Screen* below = nullptr;  ///< The screen that was opened last by open().
};

}  // namespace screens
