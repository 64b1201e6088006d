#pragma once

#include <QList>

#include "ui/Screen.h"

class QLineEdit;

namespace ui {

/// Control ids of what narrows a list: the line, the button of its consonants, and the first of these.
inline constexpr int kNarrowLine = 1201;
inline constexpr int kNarrowButton = 1202;
inline constexpr int kNarrowFirstKey = 1211;

/// A screen whose list can be narrowed to the names that part of one is typed of.
class NarrowScreen : public Screen {
    Q_OBJECT

  protected:
    using Screen::Screen;

    /// Says whether a row's name goes with what is typed.
    using Match = bool (*)(QStringView name, QStringView typed);

    /// A line at `top`, 28 pixels high. What is typed into it, or on the list, leaves the rows of `list`
    /// whose column 1 goes with it, or whose column 0 begins with it. A button beside it opens consonants to
    /// touch.
    void addNarrowing(ReportList* list, int top, Match match, int lineWidth = 176);

    void keyPressEvent(QKeyEvent* event) override;

  private:
    void showKeys(bool isShown);

    ReportList* list_ = nullptr;
    QRect wholeList_;
    QLineEdit* line_ = nullptr;
    QList<BitmapButton*> keys_;
};

}  // namespace ui
