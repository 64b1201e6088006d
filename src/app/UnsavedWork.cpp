#include "app/UnsavedWork.h"

#include "app/Dialogs.h"
#include "app/Login.h"
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

void goOn(const books::UnsavedSlip& slip) {
    ActionValues& action = session().action;
    action = {};
    action.GCode = slip.gCode;
    action.GName = slip.gName;
    action.JunNo = slip.junNo;
    action.IsResumed = true;
    session().SlipDone = 0;
    session().WorkMode =
        slip.table == books::Working::Sale || slip.belongsToSale ? kSalesWork : kContainerWork;
    ui::runScreen(dialogOf(slip));
    takeBackUnpaid();
}

/// Offers the first slip of this work date that was kept aside, and tells of those of other dates.
void offerKept() {
    const SessionValues& values = session();
    for (books::UnsavedSlip& slip : books::keptSlips(values.UserID)) {
        const QString text = describeUnsaved(slip, values.UserID, values.WorkDate);
        if (!isOfSession(slip, values.UserID, values.WorkDate)) {
            ui::message(text);
        } else if (ui::confirm(text, u"저장안된 전표"_s)) {
            if (books::takeUp(&slip)) return goOn(slip);
            ui::message(u"저장안된 전표를 열지 못했습니다..!"_s);
        } else if (ui::confirm(u"따로 둔 전표를 지울까요? [취소]를 누르면 다음 로그인때 다시 묻습니다."_s,
                               u"전표삭제"_s)) {
            books::discardKept(slip);
        }
    }
}

}  // namespace

bool mayLeave(books::Working table) {
    if (!books::isUnsaved(table)) return true;
    if (!ui::confirm(u"저장하지 않은 내용이 있습니다. 저장하지 않고 나갈까요?"_s, u"저장안된 전표"_s))
        return false;
    books::noteGivenUp(table);
    return true;
}

QString describeUnsaved(const books::UnsavedSlip& slip, QStringView userId, QStringView workDate,
                        bool isKept) {
    const QString kind =
        slip.table == books::Working::Sale ? u"저장안된 주문서"_s : u"저장안된 용공회수전표"_s;
    const QString what = u"%1: %2 %3품목"_s.arg(kind, slip.gName).arg(slip.lines);
    if (isOfSession(slip, userId, workDate)) return what + u", 계속할까요?"_s;
    const QString whose = slip.userId == userId ? u"작업일자 %1"_s.arg(slip.date)
                                                : u"사번 %1(%2), 작업일자 %3"_s.arg(
                                                      slip.userId, userName(slip.userId), slip.date);
    return u"%1 %2원..! "_s.arg(what, platform::groupThousands(slip.total)) +
           (isKept ? u"%1의 전표라 따로 두었습니다. 그렇게 로그인하면 계속할 수 있습니다."_s
                   : u"계속하려면 지금 끝내고 %1로 로그인하세요!! 메뉴를 누르면 남지 않습니다."_s)
               .arg(whose);
}

void offerUnsaved() {
    // What is another user's or work date's makes way for this one's work.
    const SessionValues& values = session();
    for (auto slip = books::findUnsaved(); slip; slip = books::findUnsaved()) {
        if (isOfSession(*slip, values.UserID, values.WorkDate)) {
            const QString question = describeUnsaved(*slip, values.UserID, values.WorkDate);
            if (ui::confirm(question, u"저장안된 전표"_s)) goOn(*slip);
            return;
        }
        const bool isKept = books::keepAside(*slip);
        // Those of one's own are told with what was kept before.
        if (!isKept || slip->userId != values.UserID)
            ui::message(describeUnsaved(*slip, values.UserID, values.WorkDate, isKept));
        if (!isKept) return;
    }
    offerKept();
}

}  // namespace app
