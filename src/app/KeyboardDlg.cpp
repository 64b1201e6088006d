#include "app/KeyboardDlg.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>

#include "app/Dialogs.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

struct FieldRow {
    int caption;
    int display;
    int erase;
    int top;
};
constexpr FieldRow kRows[] = {{1118, 1114, 1011, 4}, {1119, 1116, 1012, 40}, {1120, 1115, 1039, 76}};

constexpr int kSecondSelector = 1089;
constexpr int kThirdSelector = 1090;

struct Key {
    int control;
    QStringView text;
    int column;
    int row;
};
constexpr Key kDigitKeys[] = {{1029, u"1", 0, 0}, {1030, u"2", 1, 0}, {1031, u"3", 2, 0}, {1032, u"4", 0, 1},
                              {1033, u"5", 1, 1}, {1034, u"6", 2, 1}, {1035, u"7", 0, 2}, {1036, u"8", 1, 2},
                              {1037, u"9", 2, 2}, {1038, u"0", 0, 3}, {1040, u"00", 1, 3}};

/// Top left corner of a key in the grid of four columns and rows.
QPoint keyAt(int column, int row) {
    return {ui::kGridLeft + column * ui::kGridPitch, 146 + row * 44};
}

}  // namespace

CKeyboardDlg::CKeyboardDlg() : Screen(dialogs::kKeypad), keypad_(keypadRequest()) {
    addFields();
    addSelectors();
    addKeys();
    hideByMode();
    refresh();
    keypadRequest().StartAnew = [this] {
        keypad_.clear();
        refresh();
    };
}

CKeyboardDlg::~CKeyboardDlg() {
    keypadRequest().StartAnew = {};
    // The displays may have shown a password.
    for (const FieldRow& row : kRows) setText(row.display, {});
}

void CKeyboardDlg::addFields() {
    const QString captions[] = {keypadRequest().KeypadLabel1, keypadRequest().KeypadLabel2,
                                keypadRequest().KeypadLabel3};
    for (int i = 0; i < Keypad::kFields; ++i) {
        const FieldRow& row = kRows[i];
        addLabel(row.caption, captions[i], {4, row.top, 64, 32});
        QLabel* display = addAmount(row.display, {}, {70, row.top, 114, 32}, ui::FontHeight::Medium);
        // What may be a password is not read out.
        keypadRequest().KeypadMode == kTextField ? display->setAccessibleName(captions[i])
                                                 : describe(display, captions[i]);
        ui::BitmapButton* erase =
            addButton(row.erase, u"지움"_s, {190, row.top}, ui::bitmaps::kErase, [=, this] {
                keypad_.erase(i + 1);
                refresh();
            });
        describe(erase, captions[i] + u" 지움"_s);
        erase->setRepeated(true);
    }
}

void CKeyboardDlg::addSelectors() {
    second_ = place(kSecondSelector, new QCheckBox(keypadRequest().KeypadCheck2, this), {4, 112, 114, 28});
    third_ = place(kThirdSelector, new QCheckBox(keypadRequest().KeypadCheck3, this), {122, 112, 114, 28});
    for (QCheckBox* selector : {second_, third_}) selector->setFont(ui::font(ui::FontHeight::Small));
    connect(second_, &QCheckBox::clicked, this, [this] {
        keypad_.secondClicked(second_->isChecked(), third_->isChecked());
        refresh();
    });
    connect(third_, &QCheckBox::clicked, this, [this] {
        keypad_.thirdClicked(second_->isChecked(), third_->isChecked());
        refresh();
    });
}

void CKeyboardDlg::addKeys() {
    for (const Key& key : kDigitKeys) {
        const QString digits = key.text.toString();
        ui::BitmapButton* button = addButton(key.control, digits, keyAt(key.column, key.row),
                                             ui::bitmaps::kDigit, [this, digits] { append(digits); });
        button->setFont(ui::font(ui::FontHeight::Title));
        button->setRepeated(true);
    }
    ui::BitmapButton* minus = addButton(1001, u"ㅡ"_s, keyAt(2, 3), ui::bitmaps::kKeySpecial, [this] {
        keypad_.minus();
        refresh();
    });
    minus->setFont(ui::font(ui::FontHeight::Title));
    addButton(1002, u"다시입력"_s, keyAt(3, 0), ui::bitmaps::kEnterAgain, [this] {
        keypad_.clear();
        refresh();
    });
    setCancelButton(addButton(1003, u"취  소"_s, keyAt(3, 2) + QPoint(0, 8), ui::bitmaps::kCancel,
                              [this] { leave(Cancelled); }));
    addMainButton(1000, u"확  인"_s, [this] { leave(Accepted); });
    // Keys of a keyboard always go to the active field, wherever a finger was last.
    for (QAbstractButton* button : findChildren<QAbstractButton*>()) button->setFocusPolicy(Qt::NoFocus);
}

void CKeyboardDlg::hideByMode() {
    QList<int> hidden;
    switch (keypadRequest().KeypadMode) {
        case kTextField:
        case kOneNumber:
            hidden = {1012, 1039, kSecondSelector, kThirdSelector};
            break;
        case kTwoNumbers:
            hidden = {1039, kThirdSelector};
            break;
        default:
            break;
    }
    for (const int id : std::as_const(hidden)) control(id)->hide();
}

void CKeyboardDlg::refresh() {
    const int fieldsInUse = std::max(1, keypadRequest().KeypadMode);
    for (int field = 1; field <= Keypad::kFields; ++field) {
        QLabel* display = label(kRows[field - 1].display);
        display->setFrameShape(field > fieldsInUse ? QFrame::NoFrame : QFrame::Box);
        fitText(display, keypad_.display(field), ui::FontHeight::Medium);
        QPalette colours = palette();
        const bool isActive = field == keypad_.activeField();
        colours.setColor(QPalette::Window, isActive ? QColor(0xff, 0xf7, 0xd6) : QColor(Qt::white));
        colours.setColor(QPalette::WindowText, Qt::black);
        display->setPalette(colours);
        display->setAutoFillBackground(true);
        display->setLineWidth(isActive ? 2 : 1);
    }
}

void CKeyboardDlg::append(const QString& digits) {
    keypad_.append(digits);
    refresh();
}

void CKeyboardDlg::chooseNextField() {
    const int fields = std::max(1, keypadRequest().KeypadMode);
    const int next = keypad_.activeField() % fields + 1;
    second_->setChecked(next == 2);
    third_->setChecked(next == 3);
    keypad_.secondClicked(second_->isChecked(), third_->isChecked());
    refresh();
}

bool CKeyboardDlg::focusNextPrevChild(bool) {
    chooseNextField();
    return true;
}

void CKeyboardDlg::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    if (text.size() == 1 && text[0] >= u'0' && text[0] <= u'9') {
        append(text);
    } else if (text == u"-") {
        keypad_.minus();
        refresh();
    } else if (event->key() == Qt::Key_Backspace) {
        keypad_.erase(keypad_.activeField());
        refresh();
    } else if (event->key() == Qt::Key_Delete) {
        keypad_.clear();
        refresh();
    } else if (event->key() == Qt::Key_Down) {
        chooseNextField();
    } else {
        Screen::keyPressEvent(event);
    }
}

void CKeyboardDlg::leave(Result result) {
    result == Accepted ? keypad_.accept(&keypadRequest()) : keypad_.cancel(&keypadRequest());
    close(result);
}

}  // namespace app
