#include "Screens.h"

#include <memory>

#include "app/Dialogs.h"
#include "app/ImportDlg.h"
#include "app/KeyboardDlg.h"
#include "app/RovanaDlg.h"
#include "collect/CollectionEntryDlg.h"
#include "collect/CollectionListDlg.h"
#include "collect/SimplePaymentDlg.h"
#include "container/ContainerBalanceDlg.h"
#include "container/ContainerDepositDlg.h"
#include "container/ContainerListDlg.h"
#include "container/ContainerSearchDlg.h"
#include "container/ContainerSlipDlg.h"
#include "print/SlipPrintDlg.h"
#include "sales/CustomerBoardDlg.h"
#include "sales/GaeaeDlg.h"
#include "sales/GaraeSeek.h"
#include "sales/MtmDlg.h"
#include "sales/PummokCheck.h"
#include "sales/PummokSeekBoard.h"
#include "totals/ReportDlg.h"
#include "totals/TotalsDlg.h"
#include "ui/Terminal.h"
#include "van/CardDlg.h"
#include "van/PaymentCheckDlg.h"

namespace {

namespace dialogs = app::dialogs;

template <typename Dialog>
std::unique_ptr<ui::Screen> make() {
    return std::make_unique<Dialog>();
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
    {dialogs::kContainerList, make<container::CContainerListDlg>},
    {dialogs::kContainerDeposit, make<container::CContainerDepositDlg>},
    {dialogs::kContainerSlip, make<container::CContainerSlipDlg>},
    {dialogs::kContainerBalance, make<container::CContainerBalanceDlg>},
    {dialogs::kContainerSearch, make<container::CContainerSearchDlg>},
    {dialogs::kImport, make<app::CImportDlg>},
    {dialogs::kCard, make<van::CCardDlg>},
    {dialogs::kCollectionEntry, make<collect::CCollectionEntryDlg>},
    {dialogs::kTotals, make<totals::CTotalsDlg>},
    {dialogs::kReport, make<totals::CReportDlg>},
    {dialogs::kPaymentCheck, make<van::CPaymentCheckDlg>},
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
