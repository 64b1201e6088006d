#pragma once

#include "app/Session.h"
#include "platform/Rows.h"
#include "ui/NarrowScreen.h"
#include "ui/ReportList.h"

namespace app {

/// A search for a product (dialogs 139 and 397), which leaves the chosen one in the session.
class ProductSearchScreen : public ui::NarrowScreen {
    Q_OBJECT

  protected:
    /// The session's values of a search: what it is for, the product and whether one was chosen.
    struct Values {
        QString ActionValues::*seek;
        QString ActionValues::*product;
        int ActionValues::*isChosen;
    };
    ProductSearchScreen(int dialogId, const Values& values) : NarrowScreen(dialogId), values_(values) {}

    /// The list of products, in columns for code, name, size and use.
    ui::ReportList* addProducts(const QRect& area, const QString& name, int nameWidth);
    /// The row of buttons, with one that lists other products.
    void addButtons(const QString& listCaption, ui::ButtonBitmaps bitmaps, std::function<void()> list);
    /// Lists what `load` gives, in addProducts' columns, without a choice.
    void listProducts(const std::function<platform::RowSource()>& load);
    void forgetChoice();

    /// The screen is about to be left with that product.
    virtual void confirmed(const QString&) {}

  private:
    void choose(int row);
    void confirm();

    Values values_;
    ui::ReportList* list_ = nullptr;
};

}  // namespace app
