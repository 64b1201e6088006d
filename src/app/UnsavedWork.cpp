#include "app/UnsavedWork.h"

#include "app/Dialogs.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

bool isOfSession(const books::UnsavedSlip& slip, QStringView userId, QStringView workDate) {
    return slip.userId == userId && slip.date == workDate;
}

/// The screen on which the slip was written.
int dialogOf(const books::UnsavedSlip& slip) {
    if (slip.table == books::Working::Sale) return dialogs::kSalesSlip;
    return slip.belongsToSale && session().UserField4 == u"N" ? dialogs::kContainerDeposit
                                                              : dialogs::kContainerSlip;
}

/// What is said of the slip: the question to its user on its work date, else where it goes on.
QString describeUnsaved(const books::UnsavedSlip& slip, QStringView userId, QStringView workDate) {
    const QString kind =
        slip.table == books::Working::Sale ? u"저장안된 주문서"_s : u"저장안된 용공회수전표"_s;
    const QString what = u"%1: %2 %3품목"_s.arg(kind, slip.gName).arg(slip.lines);
    if (isOfSession(slip, userId, workDate)) return what + u", 계속할까요?"_s;
    return u"%1..! 계속하려면 지금 끝내고 사번 %2, 작업일자 %3로 로그인하세요!!"_s.arg(what, slip.userId,
                                                                                       slip.date);
}

}  // namespace

bool mayLeave(books::Working table) {
    if (!books::isUnsaved(table)) return true;
    if (!ui::confirm(u"저장하지 않은 내용이 있습니다. 저장하지 않고 나갈까요?"_s, u"저장안된 전표"_s))
        return false;
    books::noteGivenUp(table);
    return true;
}

void offerUnsaved() {
    const auto slip = books::findUnsaved();
    if (!slip) return;
    const QString text = describeUnsaved(*slip, session().UserID, session().WorkDate);
    if (!isOfSession(*slip, session().UserID, session().WorkDate)) {
        ui::message(text);
        return;
    }
    if (!ui::confirm(text, u"저장안된 전표"_s)) return;
    ActionValues& action = session().action;
    action = {};
    action.GCode = slip->gCode;
    action.GName = slip->gName;
    action.JunNo = slip->junNo;
    action.IsResumed = true;
    session().SlipDone = 0;
    session().WorkMode =
        slip->table == books::Working::Sale || slip->belongsToSale ? kSalesWork : kContainerWork;
    ui::runScreen(dialogOf(*slip));
    takeBackUnpaid();
}

}  // namespace app
