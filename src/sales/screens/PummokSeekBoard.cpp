#include "sales/screens/PummokSeekBoard.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Terminal.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

CPummokSeekBoard::CPummokSeekBoard() : ConsonantBoard(app::dialogs::kProductBoard, u"상품 초성"_s) {
    addLeaveButton(1003, u"취  소"_s);
}

void CPummokSeekBoard::seekChosen() {
    app::ActionValues& action = app::session().action;
    if (action.SeeksContainer) action.ContainerSearchKey = action.SeekValue;
    ui::runScreen(action.SeeksContainer ? app::dialogs::kContainerSearch : app::dialogs::kProductSearch);
    if ((action.SeeksContainer ? action.ContainerSearchResult : action.ProductChosen) == 1) close(Accepted);
}

}  // namespace sales
