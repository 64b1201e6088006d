#pragma once

#include "app/SlipListScreen.h"

namespace sales {

/// The list of the day's sales slips (dialog 132).
class CGaraeSeek : public app::SlipListScreen {
    Q_OBJECT

  public:
    CGaraeSeek();

  protected:
    app::ListedSlips loadSlips() override;
    void takeSlip(const platform::Rows& slips, int row) override;
    void deleteSlip() override;

  private:
    void pay();
    /// Opens the order that is chosen among those still to be delivered.
    void openUnvisited();

    ui::BitmapButton* unvisited_ = nullptr;
};

}  // namespace sales
