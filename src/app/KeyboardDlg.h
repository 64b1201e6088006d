#pragma once

#include <QElapsedTimer>

#include "app/Keypad.h"
#include "app/ScannedDigits.h"
#include "ui/Screen.h"

class QCheckBox;

namespace app {

/// The on-screen keypad (dialog 130). It reads the keypad request record when it opens and answers into it.
class CKeyboardDlg : public ui::Screen {
    Q_OBJECT

  public:
    CKeyboardDlg();
    ~CKeyboardDlg() override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    /// Tab goes from field to field: the keys of a keyboard stand for all buttons.
    bool focusNextPrevChild(bool next) override;

  private:
    /// Whom and what is asked for, where the request says so.
    void addTopic();
    void addFields();
    void addSelectors();
    void addKeys();
    void hideByMode();
    void refresh();
    void append(const QString& digits);
    void negate();
    /// True when Enter ended a bar code; what its digits did to the active field is taken back.
    bool takeScan();
    void chooseNextField();
    void activate(int field);
    void leave(Result result);

    Keypad keypad_;
    Keypad::State beforeScan_;
    ScannedDigits scanned_;
    QElapsedTimer sinceOpened_;
    ui::BitmapButton* minus_ = nullptr;
    QCheckBox* second_ = nullptr;
    QCheckBox* third_ = nullptr;
};

}  // namespace app
