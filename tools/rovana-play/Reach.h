#pragma once

#include <QModelIndex>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QWidget>

#include "rovana-play/Script.h"

class QAbstractItemView;
class QComboBox;

namespace ui {
class MessageBox;
class Screen;
}  // namespace ui

/// Finding controls on the terminal, and the places at which a finger would touch them.
namespace pilot {

/// A control, or why there is none.
struct Found {
    QPointer<QWidget> control;
    QString problem;  ///< Empty when the control is there.
};

/// The control on the newest open dialog with the address's id, whether or not it can be seen.
Found findControl(Address at);

/// The control, if a finger could touch its middle: its dialog is in front, and it is visible, enabled,
/// inside the terminal and covered by nothing.
Found reachControl(Address at);

/// The message box in front; null when another dialog is.
ui::MessageBox* openMessage();

/// What is in front, for a report: the dialog's id, or the message's text.
QString inFront();

/// What the control shows: its caption, text, entry, date ("yyyy-MM-dd") or progress. A password shows as its
/// dots. Nothing for a control without a text.
QString shownText(const QWidget& control);

/// A row of a list or a combo box, or why it cannot be touched.
struct FoundRow {
    QPointer<QAbstractItemView> list;
    QModelIndex cell;  ///< In the row's first visible column.
    QString problem;
};

/// The view of a list or of a combo box's entries; null for any other control.
QAbstractItemView* listOf(QWidget* control);

/// The row by its number from 1, or, with number 0, the first one in which a cell is `text`.
FoundRow findRow(QWidget* control, int number, const QString& text);

/// The place of a row in the window, after scrolling to it; a null point when no part of it can be touched.
QPoint placeOf(const FoundRow& row);

/// The middle of a control in its window. Of a check box, the middle of the part that reacts.
QPoint placeOf(const QWidget& control);

/// Gives the control the focus and replaces its text. Returns why it did not take the text, else an empty
/// text.
QString typeInto(QWidget& control, const QString& text);

/// Chooses an entry of a combo box.
void chooseEntry(QComboBox& combo, const QModelIndex& entry);

}  // namespace pilot
