#pragma once

#include <QList>

#include "platform/Rows.h"
#include "ui/NarrowScreen.h"

class QComboBox;

namespace ui {
class ReportList;
}

namespace sales {

/// The product search (dialog 139). The chosen product is left in the session.
class CPummokCheck : public ui::NarrowScreen {
    Q_OBJECT

  public:
    CPummokCheck();

  private:
    void search();
    void showFrequent();
    /// A list filled anew shows no choice, so none is kept.
    void forgetChoice();
    void choose(int row);
    void confirm();
    void cancel();

    QComboBox* class_ = nullptr;
    ui::ReportList* list_ = nullptr;
    QStringList classCodes_;  ///< By combo entry; the first, empty, stands for all classes.
};

}  // namespace sales
