#include "app/SlipListScreen.h"

#include "app/Dialogs.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace app {

using namespace Qt::Literals::StringLiterals;

void SlipListScreen::addSlips(const QRect& area, const QString& name, const QList<ui::ListColumn>& columns) {
    list_ = addList(
        1054, area, name, columns, [this](int row) { takeSlip(slips_, row); },
        [this] { runWork(workDialog_); });
}

void SlipListScreen::addButtons(const QString& addCaption, const QString& deleteQuestion,
                                const QString& deleteCaption, ui::MessageIcon icon) {
    addLeaveButton(1003, u"취  소"_s);
    addBottomButton(1001, u"삭  제"_s, 1, ui::bitmaps::kDelete,
                    [=, this] { deleteChosen(deleteQuestion, deleteCaption, icon); });
    addBottomButton(1002, addCaption, 2, ui::bitmaps::kAdd, [this] { runWork(dialogs::kConsonantBoard); });
    addMainButton(1000, u"확  인"_s, [this] {
        if (isSlipChosen()) openSlip();
    });
    fill();
    list_->setFocus();
}

void SlipListScreen::fill() {
    const ui::WaitCursor wait;
    slips_ = loadSlips();
    list_->setRows(slips_);
}

void SlipListScreen::runWork(int dialogId) {
    ui::runScreen(dialogId);
    if (session().SlipDone == 1) {
        close(Accepted);
    } else {
        fill();
    }
}

bool SlipListScreen::isSlipChosen() {
    if (!session().action.JunNo.isEmpty()) return true;
    ui::message(u"전표를 선택하세요!"_s);
    return false;
}

void SlipListScreen::deleteChosen(const QString& question, const QString& caption, ui::MessageIcon icon) {
    // The question comes first, also when nothing is chosen.
    if (!ui::confirm(question, caption, icon)) return;
    if (session().action.JunNo.isEmpty()) {
        ui::message(u"삭제할 전표를 선택하세요!"_s);
        return;
    }
    if (mayDelete(session().WorkDate, session().action.JunNo, {})) deleteSlip();
    fill();
}

}  // namespace app
