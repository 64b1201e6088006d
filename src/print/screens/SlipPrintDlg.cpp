#include "print/screens/SlipPrintDlg.h"

#include <QLabel>
#include <QRadioButton>
#include <QStringBuilder>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Messages.h"
#include "ui/WaitCursor.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using books::Paper;

enum Control { kSellerCopy = 1089, kBuyerCopy = 1090, kPrintedMark = 1056 };

}  // namespace

CSlipPrintDlg::CSlipPrintDlg()
    : Screen(app::dialogs::kSlipPrinting),
      papers_(app::session().WorkDate, app::session().action.JunNo, app::session().UserID) {
    const app::ActionValues& action = app::session().action;
    addLabel(0, u"전표 출력"_s, {4, 4, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(1059, {}, {12, 34, 168, 22}, ui::FontHeight::Medium);
    setFittedText(1059, action.GName, ui::FontHeight::Medium);
    addAmount(1088, u"전표번호"_s, {180, 34, 48, 22}, ui::FontHeight::Medium);
    setText(1088, action.JunNo);

    auto* seller = place(kSellerCopy, new QRadioButton(u"공급자용"_s, this), {12, 62, 96, 30});
    buyer_ = place(kBuyerCopy, new QRadioButton(u"공급받는자용"_s, this), {112, 62, 120, 30});
    for (QRadioButton* choice : {seller, buyer_}) choice->setFont(ui::font(ui::FontHeight::Small));
    seller->setChecked(true);

    const auto choice = [this](int controlId, const QString& caption, int row,
                               std::span<const Paper> papers) {
        addButton(controlId, caption, {12, 98 + row * 40}, ui::bitmaps::kDocument, [this, papers] {
            print(papers);
        })->setFont(ui::font(ui::FontHeight::Medium));
    };
    const std::span papers(books::kPapers);
    for (int row = 0; row < int(papers.size()); ++row) {
        choice(1004 + row, books::paperName(papers[row]).toString(), row, papers.subspan(row, 1));
    }
    choice(1007, u"전체출력"_s, int(papers.size()), papers);
    addLabel(kPrintedMark, {}, {12, 258, 216, 22}, ui::FontHeight::Small, Qt::AlignCenter);

    setCancelButton(addMainButton(1003, u"닫  기"_s, [this] {
        app::session().SlipDone = 1;
        close(Accepted);
    }));
}

void CSlipPrintDlg::print(std::span<const Paper> papers) {
    const books::Copy copy = buyer_->isChecked() ? books::Copy::Buyer : books::Copy::Seller;
    QStringList printed;
    {
        const ui::WaitCursor wait;
        for (const Paper paper : papers_.print(papers, copy, ui::WaitCursor::alive))
            printed << books::paperName(paper).toString();
    }
    if (printed.isEmpty()) {
        ui::message(u"출력할 전표가 없습니다..!"_s);
        return;
    }
    setFittedText(kPrintedMark, printed.join(u"·") % u' ' % books::copyName(copy) % u" 출력",
                  ui::FontHeight::Small);
}

}  // namespace print
