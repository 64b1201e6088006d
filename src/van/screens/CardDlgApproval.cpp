#include <QLabel>
#include <tuple>

#include "app/Session.h"
#include "print/PrintJob.h"
#include "ui/BitmapButton.h"
#include "ui/Messages.h"
#include "ui/WaitCursor.h"
#include "van/screens/CardDlg.h"

/// What the card dialog shows and prints after an approval.
namespace van {
namespace {

using namespace Qt::Literals::StringLiterals;

/// What an approval shows.
enum Control { kApprovedMark = 1150, kApprovedAmount, kPrintVisit, kToList, kWaitingMark };
constexpr QColor kApprovedColour(0x1c, 0x7a, 0x3c);
constexpr int kMarkType = 36;
constexpr int kAmountType = 28;
/// How often the printer is looked at from then on.
constexpr int kLookMs = 500;

QFont largeFont(int pixels) {
    QFont font = ui::font(ui::FontHeight::Title);
    font.setPixelSize(pixels);
    return font;
}

}  // namespace

bool CCardDlg::isVisit() {
    const int mode = app::session().WorkMode;
    return mode != app::kSimplePayment && mode != app::kBalanceInquiry && mode != app::kPreviousTransaction;
}

void CCardDlg::addApprovalControls() {
    for (const auto& [id, top, type] :
         {std::tuple{kApprovedMark, 70, kMarkType}, {kApprovedAmount, 106, kAmountType}}) {
        QLabel* shown = addLabel(id, {}, {4, top, 232, 36}, ui::FontHeight::Title, Qt::AlignCenter);
        shown->setFont(largeFont(type));
        setTextColour(shown, kApprovedColour);
    }
    addButton(kPrintVisit, u"두 부 모두 출력"_s, {2, 144}, ui::bitmaps::kHalfDocument,
              [this] { printVisit(); });
    addButton(kToList, u"전표목록"_s, {122, 144}, ui::bitmaps::kHalfDocument, [this] {
        app::session().ReturnsToList = true;
        finish();
    });
    setTextColour(addLabel(kWaitingMark, {}, {4, 181, 232, 24}, ui::FontHeight::Medium, Qt::AlignCenter),
                  Qt::red);
    for (const int id :
         {int(kApprovedMark), int(kApprovedAmount), int(kPrintVisit), int(kToList), int(kWaitingMark)})
        control(id)->hide();
    look_.setInterval(kLookMs);
    connect(&look_, &QTimer::timeout, this, [this] { showPrinter(); });
}

void CCardDlg::showApproval(platform::Won amount) {
    picture_->hide();
    setText(kApprovedMark, u"승인"_s);
    setText(kApprovedAmount, platform::groupDigits(platform::formatWon(amount)) + u"원"_s);
    control(kApprovedMark)->show();
    control(kApprovedAmount)->show();
    control(kPrintVisit)->setVisible(papers_.has_value());
    control(kToList)->setVisible(isVisit());
    control(kWaitingMark)->show();
    look_.start();
}

void CCardDlg::showPrinter() {
    const QString waiting = print::waitingText();
    const bool isDone = waiting.isEmpty() && areCopiesPrinted_;
    setTextColour(control(kWaitingMark), isDone ? kApprovedColour : QColor(Qt::red));
    setFittedText(kWaitingMark, isDone ? u"두 부 모두 출력하였습니다."_s : waiting, ui::FontHeight::Medium);
}

void CCardDlg::printVisit() {
    int count = 0;
    {
        const ui::WaitCursor wait;
        count = papers_->printVisit(false, ui::WaitCursor::alive);
    }
    areCopiesPrinted_ = true;
    showPrinter();
    if (count > 0 || !ui::askYesNo(print::printAgainText(), u"다시 출력"_s)) return;
    const ui::WaitCursor wait;
    papers_->printVisit(true, ui::WaitCursor::alive);
    showPrinter();
}

void CCardDlg::printCopies(print::SlipPapers& papers) {
    if (!printSlip(papers, 1, books::Copy::Seller)) return;
    if (ui::askYesNo(u"구매자용 명세서를 출력할까요?"_s, u"구매자용 명세서출력"_s,
                     ui::MessageIcon::Question)) {
        printSlip(papers, 2, books::Copy::Buyer);
    }
}

bool CCardDlg::printSlip(print::SlipPapers& papers, int selector, books::Copy copy) {
    const ui::WaitCursor wait;
    books::transactionRecord().printSelector = selector;
    const auto print = [&](books::Paper paper) {
        return !papers.print({&paper, 1}, copy, ui::WaitCursor::alive).isEmpty();
    };
    if (print(books::Paper::Invoice)) return true;
    // Money that was taken without a sale has the collection slip for its paper.
    if (app::session().WorkMode != app::kPreviousTransaction) return print(books::Paper::CollectionSlip);
    const auto receipt = cardReceipt();
    // The terminal may have lost the slip; the paper then has what the host knows.
    print::printDocument(
        receipt ? *receipt : print::hostReceipt(app::session().WorkDate, app::session().UserID, exchange()),
        ui::WaitCursor::alive);
    return true;
}

}  // namespace van
