#include "app/SlipListScreen.h"

#include "app/Dialogs.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace app {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Below the list: how many slips, and what they come to.
enum Control { kCount = 1060, kTotal = 1061 };
constexpr int kTotalHeight = 24;

}  // namespace

QString wonText(platform::Won amount) {
    return platform::groupDigits(platform::formatWon(amount)) + u'원';
}

void SlipListScreen::addSlips(const QRect& area, const QString& name, const QList<ui::ListColumn>& columns,
                              bool isCounted) {
    list_ = addList(
        1054, area.adjusted(0, 0, 0, -kTotalHeight), name, columns,
        [this](int row) { takeSlip(slips_.rows, row); }, [this] { runWork(workDialog_); });
    list_->setDetail([this](const platform::Rows&, int row) { return slips_.details.value(row); });
    list_->setEmptyText(u"오늘 전표가 없습니다.\n[추가]를 누르면 새로 씁니다."_s);
    const int top = area.bottom() + 1 - kTotalHeight;
    if (isCounted) describe(addLabel(kCount, {}, {4, top, 52, kTotalHeight}), u"전표수"_s);
    const int left = ui::kGridLeft + (isCounted ? 1 : 2) * ui::kGridPitch;
    describe(addLabel(kTotal, {}, {left, top, 236 - left, kTotalHeight}, ui::FontHeight::Small, ui::kRight),
             u"오늘"_s);
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
    list_->setRows(slips_.rows);
    setText(kCount, u"%1건"_s.arg(slips_.rows.count()));
    setFittedText(kTotal, slips_.total, ui::FontHeight::Small);
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
    if (mayDelete(session().WorkDate, session().action.JunNo, {})) {
        deleteSlip();
        // The number is given again, and what was keyed belongs to what is gone.
        session().action.KeptSettlement.reset();
    }
    fill();
}

}  // namespace app
