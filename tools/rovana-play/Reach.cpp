#include "rovana-play/Reach.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>

#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace pilot {
namespace {

using namespace Qt::Literals::StringLiterals;

bool isIn(const QWidget& control, const QWidget* widget) {
    return widget == &control || control.isAncestorOf(widget);
}

QString describe(const QWidget& widget) {
    const QString kind = QString::fromLatin1(widget.metaObject()->className());
    return widget.objectName().isEmpty() ? kind : u"%1 %2"_s.arg(kind, widget.objectName());
}

/// Why a finger at `place` of the window would not touch the control; empty when it would.
QString obstacle(const QWidget& control, QPoint place) {
    const ui::Terminal* terminal = ui::Terminal::current();
    const QPoint onTerminal = terminal->mapFrom(terminal->window(), place);
    if (!terminal->rect().contains(onTerminal))
        return u"is outside the terminal, at %1,%2"_s.arg(onTerminal.x()).arg(onTerminal.y());
    const QWidget* touched = terminal->childAt(onTerminal);
    if (isIn(control, touched)) return {};
    return u"is covered by "_s + (touched == nullptr ? u"nothing that is its own"_s : describe(*touched));
}

QLineEdit* lineEdit(QWidget& control) {
    if (auto* combo = qobject_cast<QComboBox*>(&control)) return combo->lineEdit();
    return qobject_cast<QLineEdit*>(&control);
}

}  // namespace

ui::MessageBox* openMessage() {
    const ui::Terminal* terminal = ui::Terminal::current();
    return terminal == nullptr ? nullptr : qobject_cast<ui::MessageBox*>(terminal->top());
}

QString inFront() {
    const ui::Terminal* terminal = ui::Terminal::current();
    const ui::Screen* top = terminal == nullptr ? nullptr : terminal->top();
    if (top == nullptr) return u"no dialog is open"_s;
    if (const ui::MessageBox* message = openMessage())
        return u"the message %1 is open"_s.arg(quoted(message->text()));
    return u"dialog %1 is in front"_s.arg(top->id());
}

Found findControl(Address at) {
    const ui::Terminal* terminal = ui::Terminal::current();
    ui::Screen* screen = nullptr;
    if (terminal != nullptr) {
        // Later children are newer dialogs.
        for (QObject* child : terminal->children()) {
            auto* candidate = qobject_cast<ui::Screen*>(child);
            if (candidate != nullptr && candidate->id() == at.dialog) screen = candidate;
        }
    }
    if (screen == nullptr) return {nullptr, u"dialog %1 is not open: %2"_s.arg(at.dialog).arg(inFront())};
    QWidget* control = screen->control(at.control);
    if (control == nullptr) return {nullptr, u"dialog %1 has no control %2"_s.arg(at.dialog).arg(at.control)};
    return {control, {}};
}

Found reachControl(Address at) {
    Found found = findControl(at);
    if (!found.control) return found;
    const QWidget& control = *found.control;
    const auto unreachable = [&](const QString& reason) {
        return Found{nullptr, toString(at) + u' ' + reason};
    };
    if (control.parentWidget() != ui::Terminal::current()->top())
        return unreachable(u"is behind: "_s + inFront());
    if (!control.isVisible()) return unreachable(u"is hidden"_s);
    if (!control.isEnabled()) return unreachable(u"is disabled"_s);
    // A list is reached where its row is.
    if (qobject_cast<const QAbstractItemView*>(&control)) return found;
    const QString reason = obstacle(control, placeOf(control));
    return reason.isEmpty() ? found : unreachable(reason);
}

QString shownText(const QWidget& control) {
    if (const auto* label = qobject_cast<const QLabel*>(&control)) return label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control)) return button->text();
    if (const auto* edit = qobject_cast<const QLineEdit*>(&control)) return edit->displayText();
    if (const auto* box = qobject_cast<const QPlainTextEdit*>(&control)) return box->toPlainText();
    if (const auto* combo = qobject_cast<const QComboBox*>(&control)) return combo->currentText();
    if (const auto* date = qobject_cast<const QDateTimeEdit*>(&control))
        return date->date().toString(Qt::ISODate);
    if (const auto* bar = qobject_cast<const QProgressBar*>(&control)) return QString::number(bar->value());
    return {};
}

QAbstractItemView* listOf(QWidget* control) {
    if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->view();
    return qobject_cast<QAbstractItemView*>(control);
}

FoundRow findRow(QWidget* control, int number, const QString& text) {
    QAbstractItemView* list = listOf(control);
    if (list == nullptr) return {nullptr, {}, describe(*control) + u" has no rows"_s};
    const QAbstractItemModel* model = list->model();
    int row = number - 1;
    if (number == 0) {
        const auto holdsText = [&](int candidate) {
            for (int column = 0; column < model->columnCount(); ++column) {
                if (model->index(candidate, column).data().toString() == text) return true;
            }
            return false;
        };
        row = 0;
        while (row < model->rowCount() && !holdsText(row)) ++row;
        if (row == model->rowCount())
            return {nullptr, {}, u"none of %1 rows holds %2"_s.arg(model->rowCount()).arg(quoted(text))};
    }
    if (row >= model->rowCount()) return {nullptr, {}, u"there are only %1 rows"_s.arg(model->rowCount())};
    int column = 0;
    if (!qobject_cast<QComboBox*>(control)) {
        while (column < model->columnCount() && list->visualRect(model->index(row, column)).isEmpty())
            ++column;
        if (column == model->columnCount()) return {nullptr, {}, u"all columns are hidden"_s};
    }
    return {list, model->index(row, column), {}};
}

QPoint placeOf(const FoundRow& row) {
    row.list->scrollTo(row.cell);
    const QWidget* viewport = row.list->viewport();
    const QRect shown = row.list->visualRect(row.cell) & viewport->rect();
    if (shown.isEmpty()) return {};
    const QPoint place = viewport->mapTo(viewport->window(), shown.center());
    return obstacle(*viewport, place).isEmpty() ? place : QPoint();
}

QPoint placeOf(const QWidget& control) {
    QPoint middle = control.rect().center();
    if (const auto* box = qobject_cast<const QCheckBox*>(&control)) {
        QStyleOptionButton option;
        option.initFrom(box);
        option.text = box->text();
        const QRect reacting = box->style()->subElementRect(QStyle::SE_CheckBoxClickRect, &option, box);
        middle = (reacting & box->rect()).center();
    }
    return control.mapTo(control.window(), middle);
}

QString typeInto(QWidget& control, const QString& text) {
    control.setFocus(Qt::MouseFocusReason);
    if (auto* date = qobject_cast<QDateTimeEdit*>(&control)) {
        const QDate wanted = QDate::fromString(text, Qt::ISODate);
        if (!wanted.isValid()) return u"no date: %1"_s.arg(quoted(text));
        date->setDate(wanted);
        return date->date() == wanted ? QString() : u"the date picker shows "_s + shownText(control);
    }
    QLineEdit* edit = lineEdit(control);
    if (edit == nullptr) {
        auto* combo = qobject_cast<QComboBox*>(&control);
        if (combo == nullptr) return describe(control) + u" takes no text"_s;
        const FoundRow entry = findRow(combo, 0, text);
        if (entry.problem.isEmpty()) chooseEntry(*combo, entry.cell);
        return entry.problem;
    }
    if (edit->isReadOnly()) return u"can only be read"_s;
    const QPointer<QLineEdit> stillThere = edit;
    edit->selectAll();
    // As a Korean keyboard hands it over. An empty text would keep the selection.
    if (text.isEmpty()) {
        edit->del();
    } else {
        QInputMethodEvent commit;
        commit.setCommitString(text);
        QCoreApplication::sendEvent(edit, &commit);
    }
    if (stillThere.isNull() || edit->text() == text) return {};
    return u"the control took "_s + quoted(edit->displayText());
}

void chooseEntry(QComboBox& combo, const QModelIndex& entry) {
    combo.setFocus(Qt::MouseFocusReason);
    combo.showPopup();
    combo.view()->setCurrentIndex(entry);
    QTest::keyClick(combo.view(), Qt::Key_Return);
}

}  // namespace pilot
