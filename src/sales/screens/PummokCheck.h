#pragma once

#include "app/ProductSearchScreen.h"

class QComboBox;

namespace sales {

/// The product search (dialog 139).
class CPummokCheck : public app::ProductSearchScreen {
    Q_OBJECT

  public:
    CPummokCheck();

  protected:
    void confirmed(const QString& product) override;

  private:
    void search();

    QComboBox* class_ = nullptr;
    QStringList classCodes_;  ///< By combo entry; the first, empty, stands for all classes.
};

}  // namespace sales
