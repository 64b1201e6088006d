#include "ui/Screen.h"

#include <QComboBox>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStyledItemDelegate>

#include "ui/AmountTable.h"
#include "ui/Picture.h"
#include "ui/PressableText.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace ui {
namespace {

/// Type is not set smaller than this many pixels to make a text fit.
constexpr int kSmallestType = 8;

/// The colour of amounts of the chosen line.
constexpr QColor kChosenColour(0x1c, 0x5b, 0xa8);

/// The property of a label that holds its name for a reader of the screen.
constexpr char kSpokenName[] = "spokenName";

void speak(QLabel* label) {
    const QString name = label->property(kSpokenName).toString();
    if (!name.isEmpty()) label->setAccessibleName(name + u' ' + label->text());
}

constexpr int kEntryHeight = 24;

class EntryDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index).expandedTo({0, kEntryHeight});
    }
};

}  // namespace

Screen::Screen(int id) : id_(id) {
    setObjectName(QString::number(id));
    setFocusPolicy(Qt::NoFocus);
    // What it covers need not be painted: the dialogs below, and each of their controls.
    setAttribute(Qt::WA_OpaquePaintEvent);
    resize(kScreenSize);
}

Screen::~Screen() {
    // A screen that dies while it runs, at the end of the program, must not stay on the terminal.
    if (Terminal* terminal = Terminal::current()) terminal->remove(this);
}

Screen::Result Screen::run() {
    Terminal* terminal = Terminal::current();
    if (terminal == nullptr) return Cancelled;
    result_ = Cancelled;
    isClosing_ = false;
    terminal->show(this);
    loop_.exec();
    terminal->remove(this);
    return result_;
}

void Screen::close(Result result) {
    result_ = result;
    isClosing_ = true;
    loop_.quit();
}

void Screen::closeAndOpen(int dialogId) {
    successor_ = dialogId;
    close(Accepted);
}

QWidget* Screen::control(int controlId) const {
    return findChild<QWidget*>(QString::number(controlId), Qt::FindDirectChildrenOnly);
}

void Screen::adopt(int controlId, QWidget* widget) {
    widget->setParent(this);
    if (controlId != 0) widget->setObjectName(QString::number(controlId));
}

BitmapButton* Screen::addButton(int controlId, const QString& caption, QPoint at, ButtonBitmaps pictures,
                                std::function<void()> pressed) {
    auto* button = new BitmapButton(caption, pictures, this);
    adopt(controlId, button);
    button->move(at);
    button->setEnabled(bool(pressed));
    if (pressed) connect(button, &BitmapButton::clicked, this, std::move(pressed));
    return button;
}

BitmapButton* Screen::addBottomButton(int controlId, const QString& caption, int place,
                                      ButtonBitmaps pictures, std::function<void()> pressed) {
    return addButton(controlId, caption, {kGridLeft + place * kGridPitch, kBottomRow}, pictures,
                     std::move(pressed));
}

BitmapButton* Screen::addLeaveButton(int controlId, const QString& caption, std::function<void()> pressed) {
    if (!pressed) pressed = [this] { close(Cancelled); };
    cancel_ = addBottomButton(controlId, caption, 0, bitmaps::kCancel, std::move(pressed));
    return cancel_;
}

BitmapButton* Screen::addMainButton(int controlId, const QString& caption, std::function<void()> pressed) {
    default_ = addBottomButton(controlId, caption, 3, bitmaps::kConfirm, std::move(pressed));
    return default_;
}

QLabel* Screen::addLabel(int controlId, const QString& text, const QRect& area, FontHeight height,
                         Qt::Alignment alignment) {
    auto* result = place(controlId, new QLabel(text, this), area);
    result->setTextFormat(Qt::PlainText);
    result->setFont(ui::font(height));
    result->setAlignment(alignment);
    return result;
}

QLabel* Screen::addAmount(int controlId, const QString& name, const QRect& area, FontHeight height) {
    QLabel* result = addLabel(controlId, {}, area, height, kRight);
    describe(result, name);
    return result;
}

void Screen::addAmountTitles(const AmountTable& table, int top, int height) {
    for (const AmountColumn& column : table.columns)
        addLabel(0, column.title, {column.left, top, column.width, height}, FontHeight::Small, kRight);
}

void Screen::addAmountRow(const AmountTable& table, const AmountRow& row) {
    const int height = row.height != 0 ? row.height : table.rowHeight;
    const QString name = row.name.isEmpty() ? row.caption : row.name;
    for (qsizetype i = 0; i < row.values.size(); ++i) {
        const AmountColumn& column = table.columns[i];
        QLabel* value = column.pressed ? new PressableText(this) : new QLabel(this);
        place(row.values[i], value,
              {column.left, row.top + table.captionHeight, column.width, height - table.captionHeight});
        value->setFont(ui::font(table.font));
        value->setAlignment(kRight);
        describe(value, column.title.isEmpty() ? name : name + u' ' + column.title);
        if (column.isOfChosenLine) setTextColour(value, kChosenColour);
        if (auto* text = qobject_cast<PressableText*>(value))
            connect(text, &PressableText::pressed, this, column.pressed);
    }
    if (row.button != 0) {
        addButton(row.button, row.caption, {table.left, row.top}, table.bitmaps, row.pressed);
    } else if (table.captionHeight != 0) {
        addLabel(0, row.caption, {table.left, row.top, table.captionWidth, table.captionHeight},
                 FontHeight::Small, Qt::AlignCenter);
    } else {
        addLabel(0, row.caption, {table.left + kGridLeft, row.top, table.captionWidth, height});
    }
}

QLabel* Screen::addPicture(int controlId, int bitmapNumber, QPoint at) {
    return place(controlId, new Picture(bitmapNumber, this), QRect(at, bitmapSize(bitmapNumber)));
}

void Screen::addHeading(int pictureId, int bitmapNumber, const QString& title) {
    addPicture(pictureId, bitmapNumber, {0, 0});
    setTextColour(addLabel(0, title, {38, 0, 198, 31}, FontHeight::Title), Qt::white);
}

ReportList* Screen::addList(int controlId, const QRect& area, const QString& name,
                            const QList<ListColumn>& columns, std::function<void(int row)> chosen,
                            std::function<void()> opened) {
    auto* result = place(controlId, new ReportList(this), area);
    result->setColumns(columns);
    describe(result, name);
    if (chosen) connect(result, &ReportList::rowClicked, this, chosen);
    if (opened) {
        connect(result, &ReportList::rowDoubleClicked, this, [chosen, opened](int row) {
            chosen(row);
            opened();
        });
    }
    return result;
}

QComboBox* Screen::addCombo(int controlId, const QRect& area) {
    auto* result = place(controlId, new QComboBox(this), area);
    result->setFont(ui::font(FontHeight::Medium));
    result->setItemDelegate(new EntryDelegate(result));
    return result;
}

QLabel* Screen::label(int controlId) const {
    return qobject_cast<QLabel*>(control(controlId));
}

void Screen::describe(QWidget* control, const QString& name) {
    control->setAccessibleName(name);
    auto* text = qobject_cast<QLabel*>(control);
    if (text == nullptr) return;
    text->setProperty(kSpokenName, name);
    speak(text);
}

void Screen::setTextColour(QWidget* widget, const QColor& colour) {
    QPalette colours = widget->palette();
    colours.setColor(QPalette::WindowText, colour);
    widget->setPalette(colours);
}

void Screen::setText(int controlId, const QString& text) {
    QLabel* target = label(controlId);
    if (target == nullptr) return;
    target->setText(text);
    speak(target);
}

void Screen::setAmount(int controlId, platform::Won amount) {
    setFittedText(controlId, platform::groupThousands(amount), FontHeight::Small);
}

void Screen::setFittedText(int controlId, const QString& text, FontHeight height) {
    if (QLabel* target = label(controlId)) fitText(target, text, height);
}

void Screen::fitText(QLabel* target, const QString& text, FontHeight height) {
    QFont fitted = ui::font(height);
    while (fitted.pixelSize() > kSmallestType &&
           QFontMetrics(fitted).horizontalAdvance(text) > target->contentsRect().width()) {
        fitted.setPixelSize(fitted.pixelSize() - 1);
    }
    target->setFont(fitted);
    target->setText(text);
    speak(target);
}

void Screen::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Qt::white);
}

void Screen::keyPressEvent(QKeyEvent* event) {
    QAbstractButton* button = nullptr;
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        auto* focused = qobject_cast<QAbstractButton*>(focusWidget());
        button = focused != nullptr && showsFocusRing(*focused) ? focused : default_.data();
    }
    if (event->key() == Qt::Key_Escape) button = cancel_;
    // A key held down answers one dialog, not all that open one after the other.
    if (button != nullptr && event->isAutoRepeat()) return;
    if (button == nullptr || !button->isVisible() || !button->isEnabled())
        return QWidget::keyPressEvent(event);
    button->click();
}

bool Screen::focusNextPrevChild(bool next) {
    // Tab stays on this screen: the ones below are covered, not closed.
    QWidget* from = focusWidget() != nullptr ? focusWidget() : this;
    QWidget* candidate = from;
    do {
        candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain();
        if (candidate != this && isAncestorOf(candidate) && (candidate->focusPolicy() & Qt::TabFocus) != 0 &&
            candidate->isVisible() && candidate->isEnabled() && candidate->focusProxy() == nullptr) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (candidate != from);
    return true;
}

}  // namespace ui
