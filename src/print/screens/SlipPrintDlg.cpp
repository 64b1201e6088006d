#include "print/screens/SlipPrintDlg.h"

#include <QLabel>
#include <QRadioButton>
#include <QStringBuilder>
#include <algorithm>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Messages.h"
#include "ui/WaitCursor.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using books::Paper;

enum Control { kSellerCopy = 1089, kBuyerCopy = 1090, kPrintedMark = 1056, kWaitingMark = 1057 };

/// How often a printer with waiting jobs is looked at.
constexpr int kLookMs = 500;

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

    addPaperButtons();
    addLabel(kPrintedMark, {}, {12, 222, 216, 22}, ui::FontHeight::Small, Qt::AlignCenter);
    setTextColour(addLabel(kWaitingMark, {}, {4, 246, 232, 30}, ui::FontHeight::Medium, Qt::AlignCenter),
                  Qt::red);

    const auto finish = [this](bool returnsToList) {
        app::session().ReturnsToList = returnsToList;
        app::session().SlipDone = 1;
        close(Accepted);
    };
    setCancelButton(addMainButton(1003, u"닫  기"_s, [finish] { finish(false); }));
    addBottomButton(1009, u"전표목록"_s, 2, ui::bitmaps::kAdd, [finish] { finish(true); });

    connect(&look_, &QTimer::timeout, this, [this] { showPrinter(); });
    look_.setInterval(kLookMs);
    showPrinter();
}

void CSlipPrintDlg::addPaperButtons() {
    const auto add = [this](int controlId, const QString& caption, QPoint at, ui::ButtonBitmaps bitmaps,
                            std::function<void()> pressed) {
        addButton(controlId, caption, at, bitmaps, std::move(pressed))
            ->setFont(ui::font(ui::FontHeight::Medium));
    };
    const std::span papers(books::kPapers);
    const auto place = [](int index) { return QPoint(2 + index % 2 * 120, 138 + index / 2 * 40); };
    for (int i = 0; i < int(papers.size()); ++i) {
        add(1004 + i, books::paperName(papers[i]).toString(), place(i), ui::bitmaps::kHalfDocument,
            [this, paper = papers.subspan(i, 1)] { print(paper); });
    }
    add(1007, u"전체출력"_s, place(int(papers.size())), ui::bitmaps::kHalfDocument,
        [this, papers] { print(papers); });
    add(1008, u"두 부 모두 출력"_s, {12, 98}, ui::bitmaps::kDocument, [this] { printVisit(); });
}

bool CSlipPrintDlg::mayPrint(std::span<const Paper> papers, books::Copy copy) const {
    const bool isAgain =
        std::ranges::any_of(papers, [&](Paper paper) { return papers_.isReprint(paper, copy); });
    return !isAgain || isSecondCopyMeant();
}

bool CSlipPrintDlg::isSecondCopyMeant() {
    return waitingJobs() == 0 ||
           ui::askYesNo(u"출력 대기중인 전표가 있습니다..! 한 장 더 출력할까요?"_s, u"다시 출력"_s);
}

void CSlipPrintDlg::printVisit() {
    if (papers_.isVisitReprint() && !isSecondCopyMeant()) return;
    int count = 0;
    {
        const ui::WaitCursor wait;
        count = papers_.printVisit(false, ui::WaitCursor::alive);
    }
    if (count == 0) {
        if (!ui::askYesNo(print::printAgainText(), u"다시 출력"_s)) return;
        const ui::WaitCursor wait;
        count = papers_.printVisit(true, ui::WaitCursor::alive);
    }
    if (count == 0) return ui::message(u"출력할 전표가 없습니다..!"_s);
    sent_ = u"두 부 모두 %1장"_s.arg(count);
    showPrinter();
}

void CSlipPrintDlg::showPrinter() {
    const QString waiting = waitingText();
    setFittedText(kWaitingMark, waiting, ui::FontHeight::Medium);
    if (!sent_.isEmpty())
        setFittedText(kPrintedMark, sent_ + (waiting.isEmpty() ? u" 출력"_s : u" 출력 대기"_s),
                      ui::FontHeight::Small);
    waiting.isEmpty() ? look_.stop() : look_.start();
}

void CSlipPrintDlg::print(std::span<const Paper> papers) {
    const books::Copy copy = buyer_->isChecked() ? books::Copy::Buyer : books::Copy::Seller;
    if (!mayPrint(papers, copy)) return;
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
    sent_ = printed.join(u"·") % u' ' % books::copyName(copy);
    showPrinter();
}

}  // namespace print
