#include "app/ApprovedPayments.h"

#include "app/Session.h"
#include "books/CollectionSlip.h"
#include "ui/Messages.h"

namespace app {

using namespace Qt::Literals::StringLiterals;

bool mayDeletePayments(bool isPaid) {
    const SessionValues& session = app::session();
    const QList<books::CollectionSlip> approved =
        books::approvedUnder(session.WorkDate, session.action.JunNo);
    for (const books::CollectionSlip& slip : approved) {
        if (slip.UserID == session.UserID && slip.GName == session.action.GName) continue;
        ui::message(u"이 전표번호에 사원 %1, %2의 카드결제 %3원이 있습니다..! 거래번호 : %4"_s.arg(
            slip.UserID, slip.GName, platform::groupDigits(platform::formatWon(slip.InMoney)),
            slip.BANKTRANNO));
    }
    if (approved.isEmpty() && !isPaid) return true;
    return ui::confirm(u"카드결제된 입금표를 삭제할까요?"_s, u"카드결제된 입금표삭제"_s);
}

}  // namespace app
