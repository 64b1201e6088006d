#include "print/SlipPrintDlg.h"

#include <QLabel>
#include <QRadioButton>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "print/CollectionSlip.h"
#include "print/PrintJob.h"
#include "print/PrintState.h"
#include "print/SalesInvoice.h"
#include "ui/Messages.h"
#include "ui/WaitCursor.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSellerCopy = 1089;
constexpr int kBuyerCopy = 1090;
constexpr int kPrintedMark = 1056;

}  // namespace

CSlipPrintDlg::CSlipPrintDlg() : Screen(app::dialogs::kSlipPrinting) {
    const app::ActionValues& action = app::session().action;
    wasPrinted_ = isPrinted(app::session().WorkDate, action.JunNo, app::session().UserID);
    addLabel(0, u"전표 출력"_s, {4, 4, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(1059, {}, {12, 34, 168, 22}, ui::FontHeight::Medium);
    setFittedText(1059, action.GName, ui::FontHeight::Medium);
    addLabel(1088, action.JunNo, {180, 34, 48, 22}, ui::FontHeight::Medium,
             Qt::AlignRight | Qt::AlignVCenter);

    auto* seller = place(kSellerCopy, new QRadioButton(u"공급자용"_s, this), {12, 62, 96, 30});
    buyer_ = place(kBuyerCopy, new QRadioButton(u"공급받는자용"_s, this), {112, 62, 120, 30});
    for (QRadioButton* choice : {seller, buyer_}) choice->setFont(ui::font(ui::FontHeight::Small));
    seller->setChecked(true);

    const auto document = [this](int controlId, const QString& caption, int row, auto&& onPress) {
        ui::BitmapButton* button = addButton(controlId, caption, {12, 98 + row * 40}, ui::bitmaps::kDocument);
        button->setFont(ui::font(ui::FontHeight::Medium));
        connect(button, &ui::BitmapButton::clicked, this, onPress);
    };
    const auto notReady = [] { ui::message(u"아직 준비되지 않은 전표입니다..!"_s); };
    document(1004, u"거래명세서"_s, 0, [this] { printInvoice(); });
    document(1005, u"용공인수증"_s, 1, notReady);
    document(1006, u"입금표"_s, 2, [this] { printCollection(); });
    document(1007, u"전체출력"_s, 3, notReady);
    addLabel(kPrintedMark, {}, {12, 258, 216, 22}, ui::FontHeight::Small, Qt::AlignCenter);

    ui::BitmapButton* closeButton = addButton(1003, u"닫  기"_s, {182, 284}, ui::bitmaps::kConfirm);
    connect(closeButton, &ui::BitmapButton::clicked, this, [this] {
        app::session().SlipDone = 1;
        close(Accepted);
    });
    setDefaultButton(closeButton);
    setCancelButton(closeButton);
}

Copy CSlipPrintDlg::chosenCopy() const {
    return buyer_->isChecked() ? Copy::Buyer : Copy::Seller;
}

void CSlipPrintDlg::printInvoice() {
    const app::SessionValues& session = app::session();
    const QString& date = session.WorkDate;
    const QString& number = session.action.JunNo;
    // The two copies of one print belong together: neither makes the other a reprint.
    const bool isReprint = wasPrinted_ || printed_.contains(chosenCopy());
    if (!print(u"거래명세서"_s, salesInvoice(date, number, session.UserID, chosenCopy(), isReprint))) return;
    markPrinted(date, number, session.UserID);
    printed_.insert(chosenCopy());
}

void CSlipPrintDlg::printCollection() {
    const app::SessionValues& session = app::session();
    const bool isReprint = printedCollections_.contains(chosenCopy());
    if (print(u"입금표"_s, collectionSlip(session.WorkDate, session.action.JunNo, session.UserID,
                                          chosenCopy(), isReprint))) {
        printedCollections_.insert(chosenCopy());
    }
}

bool CSlipPrintDlg::print(const QString& name, const std::optional<Document>& slip) {
    if (!slip) {
        ui::message(u"출력할 전표가 없습니다..!"_s);
        return false;
    }
    const ui::WaitCursor wait;
    printDocument(*slip);
    setText(kPrintedMark,
            name + (chosenCopy() == Copy::Buyer ? u" 공급받는자용 출력"_s : u" 공급자용 출력"_s));
    return true;
}

}  // namespace print
