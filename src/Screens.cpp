#include "Screens.h"

#include <memory>

#include "app/Dialogs.h"
#include "app/ImportDlg.h"
#include "app/ImportResultDlg.h"
#include "app/KeyboardDlg.h"
#include "app/RovanaDlg.h"
#include "collect/screens/CollectionEntryDlg.h"
#include "collect/screens/CollectionListDlg.h"
#include "collect/screens/SimplePaymentDlg.h"
#include "container/screens/ContainerBalanceDlg.h"
#include "container/screens/ContainerDepositDlg.h"
#include "container/screens/ContainerListDlg.h"
#include "container/screens/ContainerSearchDlg.h"
#include "container/screens/ContainerSlipDlg.h"
#include "print/screens/SlipPrintDlg.h"
#include "sales/screens/CustomerBoardDlg.h"
#include "sales/screens/GaeaeDlg.h"
#include "sales/screens/GaraeSeek.h"
#include "sales/screens/MtmDlg.h"
#include "sales/screens/PastOrdersDlg.h"
#include "sales/screens/PummokCheck.h"
#include "sales/screens/PummokSeekBoard.h"
#include "sales/screens/UnvisitedDlg.h"
#include "totals/screens/ReportDlg.h"
#include "totals/screens/TotalsDlg.h"
#include "totals/screens/VisitCheckDlg.h"
#include "ui/Terminal.h"
#include "van/screens/CardDlg.h"
#include "van/screens/PaymentCheckDlg.h"

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
    {dialogs::kImportResult, make<app::CImportResultDlg>},
    {dialogs::kCard, make<van::CCardDlg>},
    {dialogs::kCollectionEntry, make<collect::CCollectionEntryDlg>},
    {dialogs::kTotals, make<totals::CTotalsDlg>},
    {dialogs::kReport, make<totals::CReportDlg>},
    {dialogs::kPaymentCheck, make<van::CPaymentCheckDlg>},
    {dialogs::kVisitCheck, make<totals::CVisitCheckDlg>},
    {dialogs::kUnvisited, make<sales::CUnvisitedDlg>},
    {dialogs::kPastOrders, make<sales::CPastOrdersDlg>},
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
