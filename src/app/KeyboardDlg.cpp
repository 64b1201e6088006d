#include "app/KeyboardDlg.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>

#include "app/Dialogs.h"
#include "ui/PressableText.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kFields = Keypad::kFields;

struct FieldRow {
    int caption;
    int display;
    int erase;
    int present;  ///< Our own: the number that stays where nothing is keyed.
};
constexpr FieldRow kRows[] = {{1118, 1114, 1011, 1301}, {1119, 1116, 1012, 1302}, {1120, 1115, 1039, 1303}};

constexpr int kSecondSelector = 1089;
constexpr int kThirdSelector = 1090;

/// Our own: whom and what the keypad asks for, and what follows from it.
constexpr int kWhom = 1304;
constexpr int kWhat = 1305;
constexpr int kNote = 1306;

/// Where the rows of fields and the selectors stand.
struct FieldPlaces {
    int firstRow = 4;
    int pitch = 36;
    int selectors = 112;
    int selectorHeight = 28;
};
/// Below the topic's lines: three beside two fields, one beside three.
constexpr FieldPlaces kBelowThreeLines{.firstRow = 50, .pitch = 34, .selectors = 118, .selectorHeight = 27};
constexpr FieldPlaces kBelowOneLine{.firstRow = 18, .pitch = 33, .selectors = 118, .selectorHeight = 27};

int fieldsInUse() {
    return std::max(1, keypadRequest().KeypadMode);
}

FieldPlaces fieldPlaces() {
    if (keypadRequest().Topic.isEmpty()) return {};
    return fieldsInUse() == kFields ? kBelowOneLine : kBelowThreeLines;
}

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
    addTopic();
    addFields();
    addSelectors();
    addKeys();
    hideByMode();
    refresh();
    sinceOpened_.start();
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

void CKeyboardDlg::addTopic() {
    constexpr int kTopicLine = 16;
    const KeypadTopic& topic = keypadRequest().Topic;
    if (topic.isEmpty()) return;
    const auto line = [&](int id, int number) {
        return addLabel(id, {}, {4, 1 + number * kTopicLine, 232, kTopicLine});
    };
    // Beside three fields there is room for one line.
    if (fieldsInUse() == kFields)
        return fitText(line(kWhom, 0), topic.what.isEmpty() ? topic.whom : topic.what, ui::FontHeight::Small);
    fitText(line(kWhom, 0), topic.whom, ui::FontHeight::Small);
    fitText(line(kWhat, 1), topic.what, ui::FontHeight::Small);
    setTextColour(line(kNote, 2), QColor(0x1c, 0x5b, 0xa8));
}

void CKeyboardDlg::addFields() {
    constexpr QColor kGrey(0x6b, 0x77, 0x85);
    const QString captions[] = {keypadRequest().KeypadLabel1, keypadRequest().KeypadLabel2,
                                keypadRequest().KeypadLabel3};
    const FieldPlaces places = fieldPlaces();
    for (int i = 0; i < kFields; ++i) {
        const FieldRow& row = kRows[i];
        const int top = places.firstRow + i * places.pitch;
        const bool isInUse = i < fieldsInUse();
        const QString present = isInUse ? keypad_.present(i + 1) : QString();
        const int left = present.isEmpty() ? 70 : 112;
        QLabel* caption = addLabel(row.caption, captions[i], {4, top, 64, 32});
        auto* display = place(row.display, new ui::PressableText(this), {left, top, 184 - left, 32});
        // An empty field that the mode leaves out makes way for what the keypad says.
        caption->setVisible(isInUse || keypadRequest().Topic.isEmpty());
        display->setVisible(isInUse || keypadRequest().Topic.isEmpty());
        display->setAlignment(ui::kRight);
        display->setTextFormat(Qt::PlainText);
        connect(display, &ui::PressableText::pressed, this, [this, i, isInUse] {
            if (isInUse) activate(i + 1);
        });
        // What may be a password is not read out.
        keypadRequest().KeypadMode == kTextField ? display->setAccessibleName(captions[i])
                                                 : describe(display, captions[i]);
        if (!present.isEmpty()) {
            QLabel* stays = addAmount(row.present, u"지금 "_s + captions[i], {70, top, 40, 32});
            setTextColour(stays, kGrey);
            setFittedText(row.present, present + u" →"_s, ui::FontHeight::Small);
        }
        ui::BitmapButton* erase = addButton(row.erase, u"지움"_s, {190, top}, ui::bitmaps::kErase, [=, this] {
            keypad_.erase(i + 1);
            refresh();
        });
        describe(erase, captions[i] + u" 지움"_s);
        erase->setRepeated(true);
    }
}

void CKeyboardDlg::addSelectors() {
    const FieldPlaces places = fieldPlaces();
    const auto add = [&](int id, const QString& caption, int left) {
        return place(id, new QCheckBox(caption, this), {left, places.selectors, 114, places.selectorHeight});
    };
    second_ = add(kSecondSelector, keypadRequest().KeypadCheck2, 4);
    third_ = add(kThirdSelector, keypadRequest().KeypadCheck3, 122);
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
    minus_ = addButton(1001, u"ㅡ"_s, keyAt(2, 3), ui::bitmaps::kKeySpecial, [this] { negate(); });
    minus_->setFont(ui::font(ui::FontHeight::Title));
    addButton(1002, u"다시입력"_s, keyAt(3, 0), ui::bitmaps::kEnterAgain, [this] {
        keypad_.clear();
        refresh();
    });
    setCancelButton(addButton(1003, u"취  소"_s, keyAt(3, 2) + QPoint(0, 8), ui::bitmaps::kCancel,
                              [this] { leave(Cancelled); }));
    addMainButton(1000, u"확  인"_s, [this] { leave(Accepted); });
    // Keys of a keyboard always go to the active field, wherever a finger was last.
    for (QAbstractButton* button : findChildren<QAbstractButton*>()) button->setFocusPolicy(Qt::NoFocus);
    for (ui::PressableText* display : findChildren<ui::PressableText*>())
        display->setFocusPolicy(Qt::NoFocus);
}

void CKeyboardDlg::hideByMode() {
    QList<int> hidden;
    switch (keypadRequest().KeypadMode) {
        case kTextField:
        case kOneNumber: hidden = {1012, 1039, kSecondSelector, kThirdSelector}; break;
        case kTwoNumbers: hidden = {1039, kThirdSelector}; break;
        default: break;
    }
    for (const int id : std::as_const(hidden)) control(id)->hide();
}

void CKeyboardDlg::refresh() {
    minus_->setEnabled(keypad_.canNegate());
    const auto& note = keypadRequest().Topic.note;
    if (note && label(kNote)) setFittedText(kNote, note(keypad_.entries()), ui::FontHeight::Small);
    for (int field = 1; field <= kFields; ++field) {
        QLabel* display = label(kRows[field - 1].display);
        display->setFrameShape(field > fieldsInUse() ? QFrame::NoFrame : QFrame::Box);
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

void CKeyboardDlg::negate() {
    // Of nothing it makes 0, which is still nothing.
    if (!keypad_.canNegate()) return;
    keypad_.minus();
    refresh();
}

void CKeyboardDlg::chooseNextField() {
    activate(keypad_.activeField() % fieldsInUse() + 1);
}

void CKeyboardDlg::activate(int field) {
    second_->setChecked(field == 2);
    third_->setChecked(field == 3);
    keypad_.activate(field);
    refresh();
}

bool CKeyboardDlg::focusNextPrevChild(bool) {
    chooseNextField();
    return true;
}

void CKeyboardDlg::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    if (text.size() == 1 && text[0] >= u'0' && text[0] <= u'9') {
        if (keypadRequest().Topic.scanned && scanned_.add(text[0], sinceOpened_.elapsed()))
            beforeScan_ = keypad_.state();
        return append(text);
    }
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && takeScan()) return;
    scanned_ = {};
    if (text == u"-") {
        negate();
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

bool CKeyboardDlg::takeScan() {
    const QString code = scanned_.take(sinceOpened_.elapsed());
    const auto scanned = keypadRequest().Topic.scanned;
    if (code.isEmpty() || !scanned) return false;
    const Keypad::State keyed = keypad_.state();
    keypad_.restore(beforeScan_);
    refresh();
    auto entries = keypad_.entries();
    switch (scanned(code, &entries)) {
        case Scan::None: keypad_.restore(keyed); return false;
        case Scan::Counted: keypad_.count(entries); break;
        case Scan::Next: leave(Accepted); return true;
        case Scan::Refused: break;
    }
    refresh();
    return true;
}

void CKeyboardDlg::leave(Result result) {
    result == Accepted ? keypad_.accept(&keypadRequest()) : keypad_.cancel(&keypadRequest());
    close(result);
}

}  // namespace app
