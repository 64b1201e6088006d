#pragma once

#include <QHash>

#include "app/ProductSearchScreen.h"
#include "sales/Pricing.h"
#include "sales/PurchaseHistory.h"
#include "ui/ReportList.h"

class QComboBox;

namespace sales {

/// The product search (dialog 139).
class CPummokCheck : public app::ProductSearchScreen {
    Q_OBJECT

  public:
    CPummokCheck();
    ~CPummokCheck() override;

  protected:
    void confirmed(const QString& product) override;

  private:
    /// What the list shows.
    enum List { kByClass, kFrequent, kRegular };

    void addClasses();
    void show(List list);
    platform::RowSource load(List list) const;
    /// What the customer buys, most recent first.
    platform::Rows regularProducts() const;
    /// Goes on where the search was left with a product.
    void resume();
    void markProducts();
    /// Price and size below a name, quantities below a code, the day below a size.
    ui::CellDetail below(const platform::Rows& rows, int row, int column);
    const QString& priceOf(const QString& product);

    QComboBox* class_ = nullptr;
    QStringList classCodes_;  ///< By combo entry; the first, empty, stands for all classes.
    ui::ReportList* list_ = nullptr;
    List shown_ = kByClass;
    QString seek_;
    QHash<QString, PurchaseHistory::LastPurchase> last_;  ///< By product.
    QStringList regular_;
    QHash<QString, Quantities> onSlip_;
    QHash<QString, QString> prices_;  ///< Of the products that were seen.
};

}  // namespace sales
