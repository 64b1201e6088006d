// The sales slip and the container slip of the terminal without widgets.
#include <array>
#include <utility>

#include "Terminal.h"
#include "books/Customer.h"
#include "container/ContainerStore.h"
#include "container/WorkingContainers.h"
#include "sales/PastOrder.h"
#include "sales/Pricing.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"

namespace days {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Never none of both; what comes back is written with a minus.
sales::Quantities quantities(const Action& action, int sign = 1) {
    const int boxes = int(action.amount % 4);
    return {sign * boxes, sign * (boxes == 0 ? 7 : int(action.amount / 4 % 3))};
}

bool hasProduct(const platform::Rows& lines, QStringView code) {
    return lines.find([&](int row) { return lines.at(row, 0) == code; }) >= 0;
}

}  // namespace

// --- the sales slip

std::vector<Goods> Terminal::draft() {
    return device_.goods('\'' + user_.toUtf8() + '\'', "TEMP");
}

std::vector<Empties> Terminal::returns() {
    return device_.empties('\'' + user_.toUtf8() + '\'', "YTEMP");
}

void Terminal::openSale() {
    if (!customer_.isEmpty() && sales::isOtherCustomers(user_, date_, number_, customer_)) return;
    const auto slip = sales::openSlip(user_, date_, number_);
    if (!slip) return;
    if (customer_.isEmpty()) customer_ = slip->GCode;
    kind_ = books::slipCustomer(customer_).value_or(books::Customer()).Gubun;
    hasUnsavedLines_ = false;
    screens_.push_back(Screen::Sale);
}

bool Terminal::saveSale() {
    Event saved = event(Event::Kind::SaleSaved);
    saved.goods = draft();
    const sales::SaveOutcome outcome = sales::saveSlip(user_, date_, number_);
    saved.isRefused = outcome != sales::SaveOutcome::Saved && outcome != sales::SaveOutcome::Empty;
    if (!saved.isRefused) hasUnsavedLines_ = false;
    tell(saved);
    return !saved.isRefused;
}

void Terminal::finishSale() {
    if (sales::isWorkingSlipEmpty() || (hasUnsavedLines_ && !saveSale())) return;
    if (isFollowedByContainers(user_)) {
        openEmpties();
    } else {
        openEntry(0);
    }
}

std::string Terminal::addGoods(const Action& action, const platform::Rows& lines) {
    hand_.code = products()[action.pick % unsigned(products().size())];
    if (hasProduct(lines, hand_.code)) return "(there already)";
    const sales::SlipLine line =
        sales::newLine({date_, number_, customer_, customer_, kind_}, hand_.code, {hand_.code, {}},
                       quantities(action, action.amount % 16 == 15 ? -1 : 1));
    hand_.keyed << line.Box << line.Bon;
    hasUnsavedLines_ |= sales::insertLine(line);
    return text(line.PCode + u' ' + line.Box + u'/' + line.Bon);
}

std::string Terminal::goodsTap(const Action& action) {
    if (action.tap == Tap::SaveSale) return saveSale() ? "" : "(refused)";
    if (action.tap == Tap::FinishSale) {
        finishSale();
        return "";
    }
    const platform::Rows lines = sales::workingLines();
    if (action.tap == Tap::AddGoods) return addGoods(action, lines);
    if (lines.count() == 0) return "(no line)";
    const int row = int(action.pick % unsigned(lines.count()));
    hand_.row = row + 1;
    const sales::LineKey key = sales::keyAt(lines, row);
    if (action.tap == Tap::ChangeGoods) {
        const auto [boxes, bottles] = quantities(action);
        hand_.keyed << QString::number(boxes) << QString::number(bottles);
        const auto amounts = sales::priceLine(customer_, kind_, key.PCode, boxes, bottles).amounts;
        hasUnsavedLines_ |= sales::replaceQuantities(key, boxes, bottles, amounts);
        return text(key.PCode) + " " + std::to_string(boxes) + "/" + std::to_string(bottles);
    }
    if (action.tap == Tap::EditAmount) {
        constexpr std::array kEdits{sales::withSupply, sales::withVat, sales::withSubtotal, sales::withTotal};
        const auto now = sales::lineAmounts(key).value_or(sales::LineAmounts{});
        const platform::Won keyed =
            now.subtotal() + platform::Won(1000 * std::int64_t(action.amount % 5) - 1700);
        hand_.keyed << platform::formatWon(keyed);
        hasUnsavedLines_ |= sales::replaceAmounts(key, kEdits[action.amount % 4](now, keyed));
        return text(key.PCode + u' ' + platform::formatWon(keyed));
    }
    sales::deleteLine(key);
    hasUnsavedLines_ = true;
    return text(key.PCode);
}

// --- the container slip

void Terminal::openEmpties() {
    // A slip that could not be opened closes its screen at once.
    if (!container::reloadSlip(user_, date_, number_)) return;
    if (container::isOtherCustomers(customer_)) container::emptySlip();
    screens_.push_back(Screen::Empties);
}

void Terminal::finishEmpties() {
    Event saved = event(Event::Kind::EmptiesSaved);
    saved.empties = returns();
    bool isMoved = false;
    const container::SaveOutcome outcome = container::saveSlip(user_, date_, number_, customer_, &isMoved);
    saved.isRefused = outcome == container::SaveOutcome::Failed;
    tell(saved);
    if (saved.isRefused || (outcome == container::SaveOutcome::Empty && mode_ != 1)) return;
    handover_.recovery = container::workingSums().recovery();
    handover_.isRecoveryMoved = isMoved;
    openEntry(0);
}

std::string Terminal::emptiesTap(const Action& action) {
    const platform::Rows lines = container::workingLines();
    const container::ContainerCounts counts{.bottles = action.amount % 5,
                                            .emptyCrates = action.amount % 3,
                                            .filledCrates = 1 + action.amount / 2 % 6};
    const QStringList keyed{QString::number(counts.bottles), QString::number(counts.emptyCrates),
                            QString::number(counts.filledCrates)};
    if (action.tap == Tap::FinishEmpties) {
        finishEmpties();
        return "";
    }
    if (action.tap == Tap::AddReturn) {
        hand_.code = products()[2 * (action.pick % 2)];
        if (hasProduct(lines, hand_.code)) return "(there already)";
        hand_.keyed = keyed;
        container::addProduct({date_, number_, user_, customer_}, customer_, hand_.code, counts);
        return text(hand_.code + u' ' + keyed[1]);
    }
    if (lines.count() == 0) return "(no line)";
    const int row = int(action.pick % unsigned(lines.count()));
    hand_.row = row + 1;
    const auto key = container::keyAt(lines, row);
    if (action.tap == Tap::ChangeReturn) {
        hand_.keyed = keyed;
        container::recount(key, counts);
    } else if (action.tap == Tap::EditReturn) {
        const platform::Won keyedAmount(amountFrom(action));
        hand_.keyed << platform::formatWon(keyedAmount);
        container::replaceAmount(key, &container::ContainerAmounts::crates, keyedAmount);
    } else {
        container::deleteLine(key);
    }
    return text(key.PCode);
}

}  // namespace days
