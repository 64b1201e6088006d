#include "Terminal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "books/PaymentJournal.h"
#include "books/SlipNumbers.h"
#include "container/ContainerStore.h"
#include "container/WorkingContainers.h"
#include "platform/Clock.h"
#include "platform/adoce/DatabaseFile.h"
#include "sales/CustomerQuery.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "support/PrintQt.h"
#include "totals/DayClose.h"

namespace days {

using namespace Qt::Literals::StringLiterals;

namespace {

const QDateTime kMorning({2026, 11, 20}, {8, 0});

constexpr Step kSteps[] = {
#define TAP(tap, name, weight, screen) {name, weight, Screen::screen},
#include "Taps.h"
#undef TAP
};

}  // namespace

const Step& stepOf(Tap tap) {
    return kSteps[int(tap)];
}

const Host::Decision& Host::decide(const std::string& message, Won amount, bool charges) {
    const auto [at, isNew] = decisions_.try_emplace(message);
    if (isNew && charges) at->second = {true, false, amount, std::to_string(700000 + ++approvals_)};
    if (isNew && !charges) at->second.isRefused = true;
    return at->second;
}

void Terminal::begin(Listener listener) {
    kill();
    device_.use();
    device_.clear();
    platform::clock::set(kMorning);
    listener_ = std::move(listener);
    host_ = {};
    messages_ = 0;
    user_ = users().first();
    date_ = kMorning.date().toString(u"yyyy-MM-dd"_s);
}

Visit Terminal::visit() const {
    return {{text(date_), text(number_), text(user_)}, text(customer_)};
}

Event Terminal::event(Event::Kind kind) const {
    Event event;
    event.kind = kind;
    event.visit = visit();
    event.mode = mode_;
    event.isAtMenu = isAtMenu();
    event.shown = event.before = shown();
    return event;
}

// --- the menu and the way through the screens

bool Terminal::can(Tap tap) const {
    const Screen screen = stepOf(tap).screen;
    return screen == Screen::Any || (screen == Screen::Open && !isAtMenu()) || isAt(screen);
}

bool Terminal::answer(QStringView caption, bool isYes) {
    hand_.answers[caption.toString()] = isYes;
    return isYes;
}

void Terminal::menu(int mode, Screen screen) {
    mode_ = mode;
    customer_.clear();
    number_.clear();
    state_.clear();
    handover_ = {};
    device_.execute("DELETE FROM TEMP; DELETE FROM YTEMP");
    screens_ = {screen};
}

/// A list that is come back to shows no choice.
void Terminal::back() {
    screens_.pop_back();
    if (isAt(Screen::SaleList) || isAt(Screen::CollectionList) || isAt(Screen::EmptiesList)) {
        number_.clear();
        customer_.clear();
    }
}

void Terminal::kill() {
    screens_.clear();
    number_.clear();
    customer_.clear();
    platform::adoce::DatabaseFile::forgetAll();
}

/// What the import appends to the sales slips.
void Terminal::loadOrder(unsigned pick) {
    constexpr const char* kNumbers[] = {"5003", "9999", "10000"};
    Goods order;
    order.visit = {{text(date_), kNumbers[pick % 3], "Z"}, text(customers()[pick / 3 % 3])};
    order.product = "1001";
    order.boxes = 1;
    order.supply = 30000;
    order.vat = 3000;
    device_.addOrder(order);
    Event loaded = event(Event::Kind::OfficeLoaded);
    loaded.goods = {order};
    hand_.order = order;
    tell(loaded);
}

void Terminal::login(unsigned pick, bool isOtherDay) {
    kill();
    user_ = users()[pick % unsigned(users().size())];
    const QDate today = platform::clock::now().date();
    date_ = (isOtherDay ? today.addDays(pick / 3 % 2 == 0 ? -1 : 1) : today).toString(u"yyyy-MM-dd"_s);
    if (books::hasUnsettledPayments()) inquire(pick / 8);
}

std::string Terminal::tap(const Action& action) {
    using enum Tap;
    if (!can(action.tap)) return {};
    hand_ = {};
    device_.use();
    const bool wasAtMenu = isAtMenu();
    const bool isArmed = std::exchange(isFaultArmed_, false);
    // What the office sends has a storage of its own.
    if (isArmed && action.tap != Office)
        Device::faults().arm(test::StorageFault::FullDisk, int(action.pick % 5), false);
    std::string said = action.tap <= Clock              ? menuTap(action)
                       : action.tap <= DeleteEmpties    ? listTap(action)
                       : action.tap <= FinishSale       ? goodsTap(action)
                       : action.tap <= FinishEmpties    ? emptiesTap(action)
                       : action.tap <= FinishCollection ? entryTap(action)
                       : action.tap <= AskAgain         ? cardTap(action)
                       : action.tap <= FinishSimple     ? simpleTap(action)
                                                        : backTap();
    if (isArmed) {
        if (Device::faults().hits > 0) said += " (디스크 가득)";
        Device::faults().disarm();
    }
    if (isAtMenu() && (!wasAtMenu || action.tap <= Kill)) takeBackUnpaid();
    if (isAtMenu() && !wasAtMenu) tell(event(Event::Kind::Screen));
    return said.empty() ? "-" : said;
}

std::string Terminal::backTap() {
    if (isAt(Screen::Card)) {
        backFromCard();
        return {};
    }
    if (isAt(Screen::Entry)) {
        handover_.kept = entry_.kept();
        takeBackUnpaid();
    }
    back();
    return {};
}

std::string Terminal::menuTap(const Action& action) {
    using enum Tap;
    switch (action.tap) {
        case Sales: menu(1, Screen::SaleList); break;
        case Collections: menu(2, Screen::CollectionList); break;
        case Containers: menu(3, Screen::EmptiesList); break;
        case Simple: openSimple(action.pick); return text(number_ + u' ' + customer_);
        case Close: closeDay(action.pick); break;
        case Office: loadOrder(action.pick); break;
        case Kill:
            kill();
            login(action.pick, false);
            break;
        case Fault: isFaultArmed_ = true; break;
        case Clock: platform::clock::set(platform::clock::now().addSecs(60 * (1 + action.pick % 400))); break;
        default: login(action.pick, action.tap == OtherDay); return text(user_ + u' ' + date_);
    }
    return {};
}

void Terminal::openSimple(unsigned pick) {
    menu(6, Screen::Simple);
    entry_ = {};
    isTold_ = false;
    customer_ = pick % 3 == 0 ? u"XXXX"_s : customers()[pick / 3 % 3];
    number_ = books::nextSimplePaymentNumber(date_);
    hand_.code = customer_;
    tell(event(Event::Kind::Numbered));
}

void Terminal::closeDay(unsigned pick) {
    if (books::hasUnsettledPayments()) inquire(pick);
    takeBackUnpaid();
    const auto closes = totals::closeDay(date_, user_, platform::Won());
    if (!closes) return;
    const totals::DayFigures& figures = closes->last().figures;
    Event closing = event(Event::Kind::Closed);
    closing.figures = {
        .card = figures.card.value(), .cash = figures.expectedCash.value(), .unpaid = figures.unpaid.value()};
    tell(closing);
}

Won Terminal::amountFrom(const Action& action) const {
    const Won total = (entry_.amounts().sales + entry_.amounts().deposit).value();
    const Won choices[] = {0,     total,         total + 10000, 5000 * Won(action.pick % 8),
                           30000, total - 30000, 35000,         -5000};
    return choices[action.amount % std::size(choices)];
}

// --- the lists

bool Terminal::chooseFromList(unsigned pick) {
    const bool isSales = isAt(Screen::SaleList);
    const platform::Rows list = isSales                     ? sales::slipsOfDay(user_, date_).slips
                                : isAt(Screen::EmptiesList) ? container::slipsOfDay(user_, date_)
                                                            : books::collectionsOfDay(user_, date_);
    if (list.count() == 0) return false;
    const int row = int(pick % unsigned(list.count()));
    hand_.row = row + 1;
    number_ = list.cell(row, isSales ? 2 : 0);
    state_ = isSales ? list.cell(row, 0) : QString();
    // The lists of sales and collections know the customer's name only.
    customer_ = isAt(Screen::EmptiesList) ? list.cell(row, 2) : QString();
    return true;
}

bool Terminal::chooseCustomer(unsigned pick) {
    customer_ = hand_.code = customers()[pick % unsigned(customers().size())];
    if (mode_ == 1 && books::customerHasSlip(date_, customer_)) return false;
    number_ = books::nextSlipNumber(mode_, date_).value_or(QString());
    tell(event(Event::Kind::Numbered));
    return true;
}

std::string Terminal::listTap(const Action& action) {
    using enum Tap;
    const bool isNew = action.tap == AddSale || action.tap == AddCollection || action.tap == AddEmpties;
    if (isNew ? !chooseCustomer(action.pick) : !chooseFromList(action.pick)) return "(nothing)";
    const std::string said = text(number_ + u' ' + customer_);
    switch (action.tap) {
        case AddSale:
        case OpenSale: openSale(); break;
        case PaySale: paySale(action.amount); break;
        case OpenCollection:
            // The list makes room for it.
            screens_.pop_back();
            [[fallthrough]];
        case AddCollection: openEntry(action.amount); break;
        case AddEmpties:
        case OpenEmpties: openEmpties(); break;
        case DeleteSale: deleteChosen(Event::Kind::SaleDeleted, action); break;
        case DeleteCollection: deleteChosen(Event::Kind::CollectionDeleted, action); break;
        default: deleteChosen(Event::Kind::EmptiesDeleted, action);
    }
    return said;
}

void Terminal::paySale(unsigned pick) {
    const auto slip = sales::openSlip(user_, date_, number_);
    if (!slip) return;
    customer_ = slip->GCode;
    openEntry(pick);
}

void Terminal::deleteChosen(Event::Kind kind, const Action& action) {
    if (!mayDelete(action.pick / 8)) return;
    handover_.kept.reset();
    Event deleted = event(kind);
    const bool alsoPayments = kind == Event::Kind::EmptiesDeleted ||
                              mayDeletePayments(&deleted, state_ == sales::kPaid, action.amount);
    if (kind == Event::Kind::CollectionDeleted && !alsoPayments) return;
    deleted.isRefused =
        kind == Event::Kind::SaleDeleted         ? !sales::deleteSlip(date_, number_, alsoPayments, user_)
        : kind == Event::Kind::CollectionDeleted ? !books::removeCollections(date_, number_, user_)
                                                 : !container::deleteSlip(date_, number_, user_);
    tell(deleted);
}

}  // namespace days
