#pragma once

#include "sales/screens/ConsonantBoard.h"

namespace sales {

/// The consonant board of the products. A key opens the product search for it, or the search for container
/// products when the container slip asked; a product chosen there closes the board as well.
class CPummokSeekBoard : public ConsonantBoard {
    Q_OBJECT

  public:
    CPummokSeekBoard();

  protected:
    void seekChosen() override;
};

}  // namespace sales
