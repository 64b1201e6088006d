#include "sales/screens/PastOrderChoice.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

QString listed(const QStringList& names) {
    constexpr qsizetype kMost = 3;
    const QString shown = names.mid(0, kMost).join(u", "_s);
    return names.size() > kMost ? shown + u" 외 %1"_s.arg(names.size() - kMost) : shown;
}

bool takePastOrder(const PurchaseHistory& history, const SlipHead& head, bool hasLines, bool isLost) {
    const QList<PastSlip>& slips = history.slips();
    if (slips.isEmpty()) {
        ui::message(u"지난 주문이 없습니다..!"_s);
        return false;
    }
    int which = 0;
    if (hasLines) {
        if (ui::runScreen(app::dialogs::kPastOrders) != ui::Screen::Accepted) return false;
        which = app::session().action.PastOrder;
        if (which < 0 || which >= slips.size()) return false;
        if (isLost && !ui::confirm(u"주문서의 품목을 모두 지난 주문으로 바꿀까요?"_s, u"지난주문"_s))
            return false;
    }
    const auto taken = takeOver(head, slips[which]);
    if (!taken) {
        ui::message(u"지난 주문을 가져오지 못했습니다..!"_s);
        return false;
    }
    if (!taken->leftOut.isEmpty())
        ui::message(u"지금 팔지 않는 상품은 뺐습니다..! [%1]"_s.arg(listed(taken->leftOut)));
    return taken->lines > 0;
}

}  // namespace sales
