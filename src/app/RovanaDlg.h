#pragma once

#include <QDate>
#include <QList>
#include <functional>

#include "ui/Screen.h"

class QComboBox;
class QDateEdit;
class QLineEdit;

namespace app {

/// The main dialog (102): the login first, the menu once a user has logged in.
class CRovanaDlg : public ui::Screen {
    Q_OBJECT

  public:
    CRovanaDlg();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void addLoginControls();
    /// Hidden ones; nothing when there are some.
    void addMenuControls();
    void logIn();
    void answerLogin();
    /// Shows the visits of earlier days without a close that do not agree.
    void checkEarlierDays();
    /// Tells what may be wrong with the clock or the work date.
    void tellClock();
    /// Tells once that the day has changed while the terminal was at work.
    void tellNewDay();
    void setWaiting(bool isWaiting);
    void enterPassword();
    void showMenu();
    void showUserName();
    void showOldData();
    /// What of the day the office has, as the sync beside the terminal has noted it.
    void addOfficeLine();
    void showOffice();
    /// To the list that a visit which login went on with was to end at.
    void goOnToList();
    /// With `isNext` a list has the orders to be delivered on top.
    void runMenuAction(int button, int workMode, int dialog, bool isNext = false);
    void runCardAction(int button, int workMode);
    void runSimplePayment();
    void runBehind(int button, const std::function<void()>& action);

    QComboBox* userId_ = nullptr;
    QLineEdit* password_ = nullptr;
    QDateEdit* date_ = nullptr;
    QDate loginDay_;          ///< By the clock; a later one once that was told.
    bool isWaiting_ = false;  ///< For the answer to a login.
    QList<QWidget*> loginControls_;
    QList<QWidget*> menuControls_;
};

}  // namespace app
