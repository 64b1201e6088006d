#include "container/screens/ContainerEntry.h"

#include <QLabel>
#include <QTimer>
#include <utility>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "app/UnsavedWork.h"
#include "books/Customer.h"
#include "container/ContainerProduct.h"
#include "container/ContainerStore.h"
#include "container/WorkingContainers.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace container {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kCustomerName = 1059;
constexpr int kReceivable = 1088;

}  // namespace

ContainerEntry::ContainerEntry(int dialogId) : Screen(dialogId) {
    addLabel(kCustomerName, {}, {4, 0, 232, 22});
    addLabel(0, u"채권잔액"_s, {4, 22, 60, 18});
    addAmount(kReceivable, u"채권잔액"_s, {66, 22, 170, 18});
    showCustomer();
    app::SessionValues& session = app::session();
    if (std::exchange(session.action.IsResumed, false)) return;
    if (!reloadSlip(session.UserID, session.WorkDate, session.action.JunNo)) {
        QTimer::singleShot(0, this, [this] {
            ui::message(u"용공회수 전표를 열지 못했습니다..!"_s);
            close(Cancelled);
        });
    }
    // A number is given again once its sale is deleted, but the containers may have stayed.
    if (isOtherCustomers(session.action.GCode)) emptySlip();
}

void ContainerEntry::leave() {
    if (app::mayLeave(books::Working::Containers)) close(Cancelled);
}

void ContainerEntry::showCustomer() {
    app::ActionValues& action = app::session().action;
    const auto customer = books::containerCustomer(action.GCode).value_or(books::Customer());
    action.CustomerKind = customer.Gubun;
    setFittedText(kCustomerName, action.GName, ui::FontHeight::Medium);
    setAmount(kReceivable, customer.receivable());
}

std::optional<ContainerCounts> ContainerEntry::askCounts(const QString& pCode, const ContainerCounts& start) {
    std::array<QString, 3> starts;
    if (!start.isZero()) {
        starts = {QString::number(start.bottles), QString::number(start.emptyCrates),
                  QString::number(start.filledCrates)};
    }
    const QString product = containerProduct(pCode).value_or(ContainerProduct{}).pname;
    if (!app::askThreeNumbers({u"공  병"_s, u"공상자"_s, u"입상자"_s}, starts, product)) return std::nullopt;
    const app::KeypadRequest& keyed = app::keypadRequest();
    const ContainerCounts counts{.bottles = platform::parseInteger(keyed.KeypadValue1),
                                 .emptyCrates = platform::parseInteger(keyed.KeypadValue2),
                                 .filledCrates = platform::parseInteger(keyed.KeypadValue3)};
    for (const std::int64_t count : {counts.bottles, counts.emptyCrates, counts.filledCrates}) {
        if (count < 0) {
            ui::message(u"회수수량은 0보다 작을수 없습니다..!"_s);
            return std::nullopt;
        }
    }
    return counts;
}

bool ContainerEntry::addLine(const QString& pCode, const ContainerCounts& counts) {
    const app::SessionValues& session = app::session();
    return addProduct({session.WorkDate, session.action.JunNo, session.UserID, session.action.GCode},
                      session.action.GName, pCode, counts);
}

bool ContainerEntry::recount(const ContainerKey& key, const ContainerCounts& counts) {
    if (!containerProduct(key.PCode)) ui::message(u"품목코드에서 해당품목이 없습니다..!"_s);
    return container::recount(key, counts);
}

void ContainerEntry::finish() {
    app::SessionValues& session = app::session();
    bool isMoved = false;
    const SaveOutcome outcome =
        saveSlip(session.UserID, session.WorkDate, session.action.JunNo, session.action.GCode, &isMoved);
    // Money follows what is saved.
    if (outcome == SaveOutcome::Failed) {
        ui::message(u"용공회수 전표를 저장하지 못했습니다..!"_s);
        return;
    }
    // On a visit taking nothing back is the normal case.
    if (outcome == SaveOutcome::Empty && session.WorkMode != app::kSalesWork) {
        // What the slip had been worth is off the balance.
        showCustomer();
        ui::message(u"용공회수 전표에 등록된 상품이 없습니다..!"_s);
        return;
    }
    session.action.ContainerRecovery = workingSums().recovery();
    session.action.IsRecoveryMoved = isMoved;
    ui::runScreen(app::dialogs::kCollectionEntry);
    if (session.SlipDone == 1) {
        close(Accepted);
        return;
    }
    // The collection may have moved the balance.
    showCustomer();
}

}  // namespace container
