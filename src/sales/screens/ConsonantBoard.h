#pragma once

#include "ui/Screen.h"

namespace sales {

/// What the consonant boards share: the fifteen keys that set the session's seek value.
class ConsonantBoard : public ui::Screen {
    Q_OBJECT

  protected:
    ConsonantBoard(int dialogId, const QString& title);

    /// A key was pressed; the seek value is set.
    virtual void seekChosen() = 0;

    /// Top left corner of a key's place, counted from 0 in rows of four.
    static QPoint keyAt(int place);

    void keyPressEvent(QKeyEvent* event) override;

  private:
    void choose(const QString& seek);
};

}  // namespace sales
