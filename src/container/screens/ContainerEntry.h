#pragma once

#include <optional>

#include "container/ContainerLine.h"
#include "ui/Screen.h"

namespace container {

/// What the two screens share on which empties are taken back: the customer, the working slip, the counts on
/// the keypad, and the way on to the collection of money.
class ContainerEntry : public ui::Screen {
    Q_OBJECT

  protected:
    explicit ContainerEntry(int dialogId);

    /// Asks the three counts; an empty entry is 0. Nothing when the keypad was left with "취  소", or with a
    /// count below 0, which is told.
    std::optional<ContainerCounts> askCounts(const ContainerCounts& start);

    /// Prices a line of the product and adds it to the working slip. False when the database did not take
    /// it.
    bool addLine(const QString& pCode, const ContainerCounts& counts);
    /// Gives the line other counts and prices it anew. False also, and told, when the product is gone.
    bool recount(const ContainerKey& key, const ContainerCounts& counts);

    /// Saves the working slip and goes on to the collection of money with what it is worth. The screen
    /// closes when the visit is finished there.
    void finish();
    /// Closes the screen, unless changes that are not saved are to be kept.
    void leave();

  private:
    void showCustomer();
};

}  // namespace container
