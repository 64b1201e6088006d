#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <functional>
#include <optional>

#include "totals/DayClose.h"
#include "totals/screens/SummaryExchange.h"
#include "ui/Screen.h"

namespace totals {

/// The end-of-day dialog (457): shows the reports of the day, asks the card host for its totals, which it
/// prints or sets against the slips, and closes the day.
class CTotalsDlg : public ui::Screen {
    Q_OBJECT

  public:
    CTotalsDlg();

  private:
    /// Puts a button on the next free place, two beside each other.
    void addWork(int controlId, const QString& caption, std::function<void()> work);
    /// Asks the card host for that day, today without one; `answered` runs when it has answered well.
    void ask(const QString& opening, const QDate& day, std::function<void()> answered);
    /// During an exchange no button can be pressed.
    void enableButtons(bool areEnabled);
    void exchangeEnded();
    void printSummary();
    void reconcile(const QDate& day);
    /// Shows the visits of the day that do not agree; nothing where all do.
    void checkVisits();
    void closeDay();
    void showClose(const QList<DayClose>& closes);
    /// Says beside the user and the date whether the day has changed since its close.
    void showChanges();

    std::optional<SummaryExchange> exchange_;
    std::function<void()> answered_;
    QList<ui::BitmapButton*> buttons_;
};

}  // namespace totals
