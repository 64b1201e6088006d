#include "sales/PummokSeekBoard.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Terminal.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

CPummokSeekBoard::CPummokSeekBoard() : ConsonantBoard(app::dialogs::kProductBoard, u"상품 초성"_s) {
    ui::BitmapButton* cancel = addButton(1003, u"취  소"_s, {2, 282}, ui::bitmaps::kCancel);
    connect(cancel, &ui::BitmapButton::clicked, this, [this] { close(Cancelled); });
    setCancelButton(cancel);
}

void CPummokSeekBoard::seekChosen() {
    ui::runScreen(app::dialogs::kProductSearch);
    if (app::session().action.ProductChosen == 1) close(Accepted);
}

}  // namespace sales
