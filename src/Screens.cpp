#include "Screens.h"

#include <memory>

#include "app/Dialogs.h"
#include "app/ImportDlg.h"
#include "app/KeyboardDlg.h"
#include "app/RovanaDlg.h"
#include "app/Session.h"
#include "collect/CollectionEntryDlg.h"
#include "collect/CollectionListDlg.h"
#include "collect/SimplePaymentDlg.h"
#include "print/SlipPrintDlg.h"
#include "sales/CustomerBoardDlg.h"
#include "sales/GaeaeDlg.h"
#include "sales/GaraeSeek.h"
#include "sales/MtmDlg.h"
#include "sales/PummokCheck.h"
#include "sales/PummokSeekBoard.h"
#include "totals/TotalsDlg.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"
#include "van/CardDlg.h"

namespace {

using namespace Qt::Literals::StringLiterals;
namespace dialogs = app::dialogs;

/// Says that a work is not there yet. After a sales slip the way goes on to the collection.
class NotReadyScreen : public ui::MessageBox {
  public:
    explicit NotReadyScreen(bool followsSlip)
        : MessageBox(u"아직 준비되지 않은 화면입니다..!"_s, {}, Buttons::Ok) {
        if (followsSlip) setSuccessor(dialogs::kCollectionEntry);
    }
};

template <typename Dialog>
std::unique_ptr<ui::Screen> make() {
    return std::make_unique<Dialog>();
}

std::unique_ptr<ui::Screen> makeNotReady() {
    return std::make_unique<NotReadyScreen>(false);
}

std::unique_ptr<ui::Screen> makeNotReadyAfterSlip() {
    return std::make_unique<NotReadyScreen>(app::session().WorkMode == app::kSalesWork);
}

struct Entry {
    int dialogId;
    std::unique_ptr<ui::Screen> (*create)();
};

constexpr Entry kScreens[] = {
    {dialogs::kMain, make<app::CRovanaDlg>},
    {dialogs::kSimplePayment, make<collect::CSimplePaymentDlg>},
    {dialogs::kKeypad, make<app::CKeyboardDlg>},
    {dialogs::kSlipList, make<sales::CGaraeSeek>},
    {dialogs::kSalesSlip, make<sales::CMtmDlg>},
    {dialogs::kProductBoard, make<sales::CPummokSeekBoard>},
    {dialogs::kProductSearch, make<sales::CPummokCheck>},
    {dialogs::kSlipPrinting, make<print::CSlipPrintDlg>},
    {dialogs::kConsonantBoard, make<sales::CCustomerBoardDlg>},
    {dialogs::kCustomerList, make<sales::CGaeaeDlg>},
    {dialogs::kCollectionList, make<collect::CCollectionListDlg>},
    {dialogs::kContainerList, makeNotReady},
    {dialogs::kContainerDeposit, makeNotReadyAfterSlip},
    {dialogs::kContainerSlip, makeNotReadyAfterSlip},
    {dialogs::kImport, make<app::CImportDlg>},
    {dialogs::kCard, make<van::CCardDlg>},
    {dialogs::kCollectionEntry, make<collect::CCollectionEntryDlg>},
    {dialogs::kTotals, make<totals::CTotalsDlg>},
};

}  // namespace

void registerScreens() {
    ui::setScreenFactory([](int dialogId) -> std::unique_ptr<ui::Screen> {
        for (const Entry& entry : kScreens) {
            if (entry.dialogId == dialogId) return entry.create();
        }
        return nullptr;
    });
}
