#pragma once

#include "ui/Screen.h"

namespace sales {

/// The customer list (dialog 144): the customers of one consonant. Confirming allots the slip number and
/// opens the work screen in its place.
class CGaeaeDlg : public ui::Screen {
    Q_OBJECT

  public:
    CGaeaeDlg();

  private:
    void fill();
    void choose(int row);
    void confirm();

    /// The key that the list was opened for: confirming clears the session's, also when it is refused.
    QString seek_;
    bool ownOnly_ = true;
};

}  // namespace sales
