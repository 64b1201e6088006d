#include "sales/screens/CustomerBoardDlg.h"

#include <QLabel>

#include "app/Dialogs.h"
#include "app/Session.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

}  // namespace

CCustomerBoardDlg::CCustomerBoardDlg() : ConsonantBoard(app::dialogs::kConsonantBoard, u"거래처 초성"_s) {
    constexpr int kBlankKey = 1050;
    constexpr int kCancelHint = 1134;
    addButton(kBlankKey, {}, keyAt(15), ui::bitmaps::kConsonant, {});
    addLabel(kCancelHint, u"[취소]클릭시 미등록거래처로 세팅!"_s, {4, 254, 232, 24}, ui::FontHeight::Small,
             Qt::AlignCenter)
        ->setVisible(app::session().WorkMode == app::kSimplePayment);

    addLeaveButton(1003, u"취  소"_s, [this] {
        if (app::session().WorkMode == app::kSimplePayment) {
            closeAndOpen(app::dialogs::kSimplePayment);
        } else {
            close(Cancelled);
        }
    });
    addMainButton(1000, u"확  인"_s, [this] { seekChosen(); });
}

void CCustomerBoardDlg::seekChosen() {
    closeAndOpen(app::dialogs::kCustomerList);
}

}  // namespace sales
