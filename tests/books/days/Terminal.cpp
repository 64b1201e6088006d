#include "Terminal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "books/ContainerBalance.h"
#include "books/SlipNumbers.h"
#include "books/TransactionRecord.h"
#include "container/ContainerProduct.h"
#include "container/ContainerStore.h"
#include "container/WorkingContainers.h"
#include "platform/Clock.h"
#include "platform/adoce/DatabaseFile.h"
#include "sales/Checkout.h"
#include "sales/CustomerQuery.h"
#include "sales/Pricing.h"
#include "sales/ProductQuery.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "support/PrintQt.h"
#include "totals/DayClose.h"

namespace days {

using namespace Qt::Literals::StringLiterals;

namespace {

const QStringList kCustomers{u"0001"_s, u"0002"_s, u"0003"_s};
const QStringList kProducts{u"1001"_s, u"1002"_s, u"1003"_s, u"1004"_s};
const QDateTime kMorning({2026, 11, 20}, {8, 0});

/// A salesman with his VAT mode and what follows his sales slips.
struct User {
    const char* id;
    const char* vatMode;
    const char* followOn;
};
constexpr User kUsers[] = {{"A", "1", "A"}, {"B", "2", "Y"}, {"C", "3", "Z"}};

const User& userOf(const QString& id) {
    return *std::ranges::find_if(kUsers, [&](const User& user) { return id == QLatin1StringView(user.id); });
}

constexpr const char* kNames[] = {
    "매출작업",       "입금작업",        "용공작업",       "단순결제",     "일마감",       "사무실 주문",
    "로그인",         "다른날 로그인",   "꺼짐",           "디스크 고장",  "시계",         "132 추가",
    "132 확인",       "132 결제",        "132 삭제",       "150 추가",     "150 확인",     "150 삭제",
    "391 추가",       "391 확인",        "391 삭제",       "134 등록",     "134 수량",     "134 금액",
    "134 삭제",       "134 주문서 저장", "134 완료",       "394 등록",     "394 수량",     "394 금액",
    "394 삭제",       "394 완료",        "450 주류매출액", "450 공급가액", "450 부가세액", "450 비주류",
    "450 용공회수액", "450 전미수",      "450 카드입금",   "450 현금입금", "450 외상처리", "450 전표삭제",
    "450 완료",       "449 카드",        "449 완료",       "104 금액",     "104 완료",     "이전"};
static_assert(std::size(kNames) == std::size_t(Tap::Count));

test::StorageFaultPlan thePlan;

std::string text(const QString& from) {
    return from.toStdString();
}

}  // namespace

const char* name(Tap tap) {
    return kNames[int(tap)];
}

const Host::Decision& Host::decide(const std::string& message, Won amount, bool charges) {
    const auto [at, isNew] = decisions_.try_emplace(message);
    if (isNew && charges) at->second = {true, amount, std::to_string(700000 + ++approvals_)};
    return at->second;
}

std::map<std::string, std::string> Terminal::vatModes() {
    std::map<std::string, std::string> modes;
    for (const User& user : kUsers) modes[user.id] = user.vatMode;
    return modes;
}

Terminal::Terminal() {
    thePlan.skipsSync = true;
    thePlan.disarm();
    test::putFaultsBelowSqlite(&thePlan);
    EXPECT_EQ(sqlite3_open_v2(device_.databaseFile().toUtf8().constData(), &reader_, SQLITE_OPEN_READWRITE,
                              nullptr),
              SQLITE_OK);
    for (int i = 0; i < kProducts.size(); ++i) {
        // Odd prices: what is rounded shows.
        const auto won = [i](int base) { return QString::number(base + 37 * i); };
        device_.insert(u"PUMMOK", {{u"Pcode", kProducts[i]},
                                   {u"Pname", kProducts[i]},
                                   {u"BoxBonEa", u"20"},
                                   {u"ABoxMMoney", won(30000)},
                                   {u"ABoxBMoney", won(3000)},
                                   {u"ABonMMoney", won(1500)},
                                   {u"ABonBMoney", won(150)},
                                   {u"BBoxMMoney", won(31111)},
                                   {u"BBoxBMoney", won(3011)},
                                   {u"BBonMMoney", won(1601)},
                                   {u"BBonBMoney", won(161)},
                                   {u"YGMoney1", i % 2 == 0 ? u"4000" : u"0"},
                                   {u"YGMoney2", i % 2 == 0 ? u"2000" : u"0"},
                                   {u"GBoxMoney1", u"100"},
                                   {u"GBonMoney1", u"10"},
                                   {u"GBonMoney2", i % 2 == 0 ? u"100" : u"0"},
                                   {u"TTT", i % 2 == 0 ? u"Y" : u""}});
    }
    for (const QString& customer : kCustomers) {
        device_.insert(u"GARAE", {{u"GCODE", customer},
                                  {u"GNAME", customer},
                                  {u"GUBUN", customer == kCustomers[0] ? u"일반" : u"공용"}});
    }
}

Terminal::~Terminal() {
    thePlan.disarm();
    sqlite3_close(reader_);
    platform::clock::set({});
}

void Terminal::begin(Listener listener) {
    thePlan.disarm();
    kill();
    sqlite3_exec(
        reader_,
        "BEGIN; DELETE FROM MTM; DELETE FROM MTMOK; DELETE FROM YTM; DELETE FROM TEMP; DELETE FROM "
        "YTEMP; DELETE FROM PAYJOURNAL; DELETE FROM PRINTLOG; DELETE FROM DAYCLOSE; UPDATE GARAE SET "
        "CJMONEY = '100000'; COMMIT",
        nullptr, nullptr, nullptr);
    platform::clock::set(kMorning);
    listener_ = std::move(listener);
    host_ = {};
    messages_ = 0;
    user_ = u"A"_s;
    date_ = u"2026-11-20"_s;
}

template <typename Row, typename Read>
std::vector<Row> Terminal::rows(const char* select, Read&& read) {
    std::vector<Row> found;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(reader_, select, -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(reader_);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        int column = 0;
        const auto next = [&] {
            const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(statement, column++));
            return std::string(value != nullptr ? value : "");
        };
        found.push_back(read(next));
    }
    sqlite3_finalize(statement);
    std::ranges::sort(found);
    return found;
}

namespace {

Won won(const std::string& text) {
    return text.empty() ? 0 : std::stoll(text);
}

template <typename Next>
Visit readVisit(Next& next) {
    Visit visit;
    visit.key.date = next();
    visit.key.number = next();
    visit.key.user = next();
    visit.customer = next();
    return visit;
}

template <typename Next>
Goods readGoods(Next& next) {
    Goods line;
    line.visit = readVisit(next);
    line.product = next();
    line.boxes = int(won(next()));
    line.bottles = int(won(next()));
    for (Won* amount : {&line.supply, &line.vat, &line.crates, &line.deposit}) *amount = won(next());
    return line;
}

template <typename Next>
Empties readEmpties(Next& next) {
    Empties line;
    line.visit = readVisit(next);
    line.product = next();
    for (int* count : {&line.full, &line.mixed, &line.bottles}) *count = int(won(next()));
    for (Won* amount : {&line.crates, &line.deposit}) *amount = won(next());
    return line;
}

}  // namespace

Page Terminal::page() {
    Page page;
    page.goods =
        rows<Goods>("SELECT DDate,JunNo,UserID,GCode,PCode,Box,Bon,MMoney,BMoney,YMoney,GMoney FROM MTM",
                    [](auto& next) { return readGoods(next); });
    page.empties = rows<Empties>("SELECT DDate,JunNo,UserID,GCode,PCode,FBox,NBox,Bon,YMONEY,GMONEY FROM YTM",
                                 [](auto& next) { return readEmpties(next); });
    page.collections = rows<Collection>(
        "SELECT DDate,JunNo,UserID,GCode,MMoney,PMoney,BMoney,GDMoney,YGMoney,YDMoney,CardMoney,WonMoney,"
        "UnderMoney,MisuInMoney,BANKTRANNO,Gubun FROM MTMOK",
        [](auto& next) {
            Collection row;
            row.visit = readVisit(next);
            Amounts& a = row.amounts;
            for (Won* amount : {&a.sales, &a.supply, &a.vat, &a.other, &a.deposits, &a.recovery, &a.card,
                                &a.cash, &a.unpaid, &a.earlier})
                *amount = won(next());
            row.approval = next();
            row.isSimple = next() == "단순결제";
            return row;
        });
    page.payments = rows<Payment>(
        "SELECT Number,DDate,JunNo,UserID,GCode,State,Charged,BANKTRANNO FROM PAYJOURNAL", [](auto& next) {
            Payment payment;
            payment.message = next();
            payment.visit = readVisit(next);
            payment.state = next();
            payment.amount = won(next());
            payment.approval = next();
            return payment;
        });
    for (const auto& [customer, debt] :
         rows<std::pair<std::string, Won>>("SELECT GCODE,CJMONEY FROM GARAE", [](auto& next) {
             std::pair<std::string, Won> balance;
             balance.first = next();
             balance.second = won(next());
             return balance;
         }))
        page.debt[customer] = debt;
    return page;
}

std::vector<Goods> Terminal::draft() {
    auto lines =
        rows<Goods>("SELECT DDate,JunNo,'',GCode,PCode,Box,Bon,MMoney,BMoney,YMoney,GMoney FROM TEMP",
                    [](auto& next) { return readGoods(next); });
    for (Goods& line : lines) line.visit.key.user = text(user_);
    return lines;
}

std::vector<Empties> Terminal::returns() {
    auto lines = rows<Empties>("SELECT DDate,JunNo,'',GCode,PCode,FBox,NBox,Bon,YMONEY,GMONEY FROM YTEMP",
                               [](auto& next) { return readEmpties(next); });
    for (Empties& line : lines) line.visit.key.user = text(user_);
    return lines;
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
// ------------------------------------------------------------------

bool Terminal::can(Tap tap) const {
    using enum Tap;
    if (tap == Kill || tap == Fault || tap == Clock) return true;
    if (tap == Back) return !isAtMenu();
    if (tap <= OtherDay) return isAtMenu();
    if (tap <= DeleteSale) return isAt(Screen::SaleList);
    if (tap <= DeleteCollection) return isAt(Screen::CollectionList);
    if (tap <= DeleteEmpties) return isAt(Screen::EmptiesList);
    if (tap <= FinishSale) return isAt(Screen::Sale);
    if (tap <= FinishEmpties) return isAt(Screen::Empties);
    if (tap <= FinishCollection) return isAt(Screen::Entry);
    if (tap <= FinishCard) return isAt(Screen::Card);
    return isAt(Screen::Simple);
}

void Terminal::menu(int mode, Screen screen) {
    mode_ = mode;
    customer_.clear();
    number_.clear();
    state_.clear();
    handedOver_.reset();
    checkout_ = {};
    crateDeposit_ = {};
    sqlite3_exec(reader_, "DELETE FROM TEMP; DELETE FROM YTEMP", nullptr, nullptr, nullptr);
    screens_ = {screen};
}

void Terminal::open(Screen screen) {
    screens_.push_back(screen);
}

void Terminal::replace(Screen screen) {
    screens_.back() = screen;
}

/// A list that is come back to shows no choice.
void Terminal::back() {
    screens_.pop_back();
    if (isAt(Screen::SaleList) || isAt(Screen::CollectionList) || isAt(Screen::EmptiesList)) {
        number_.clear();
        customer_.clear();
    }
}

void Terminal::done() {
    screens_.clear();
}

void Terminal::kill() {
    screens_.clear();
    number_.clear();
    customer_.clear();
    books::replacedCollection().reset();
    books::resetTransactionRecord();
    platform::adoce::DatabaseFile::forgetAll();
}

/// What the import appends to the sales slips.
void Terminal::loadOrder(unsigned pick) {
    constexpr const char* kNumbers[] = {"5003", "9999", "10000"};
    Goods order;
    order.visit = {{text(date_), kNumbers[pick % 3], "Z"}, text(kCustomers[pick / 3 % 3])};
    order.product = "1001";
    order.boxes = 1;
    order.supply = 30000;
    order.vat = 3000;
    const Visit& visit = order.visit;
    device_.insert(u"MTM", {{u"DDate", date_},
                            {u"JunNo", QString::fromStdString(visit.key.number)},
                            {u"UserID", u"Z"},
                            {u"GCode", QString::fromStdString(visit.customer)},
                            {u"WorkGubun", u"미처리"},
                            {u"PCode", u"1001"},
                            {u"Box", u"1"},
                            {u"Bon", u"0"},
                            {u"MMoney", u"30000"},
                            {u"BMoney", u"3000"},
                            {u"YMoney", u"0"},
                            {u"GMoney", u"0"}});
    Event loaded = event(Event::Kind::OfficeLoaded);
    loaded.goods = {order};
    tell(loaded);
}

void Terminal::login(unsigned pick, bool isOtherDay) {
    kill();
    user_ = QString::fromLatin1(kUsers[pick % std::size(kUsers)].id);
    const QDate today = platform::clock::now().date();
    date_ = (isOtherDay ? today.addDays(pick / 3 % 2 == 0 ? -1 : 1) : today).toString(u"yyyy-MM-dd"_s);
    inquire(pick / 8);
}

std::string Terminal::tap(const Action& action) {
    using enum Tap;
    if (!can(action.tap)) return {};
    std::string said = name(action.tap);
    const bool wasAtMenu = isAtMenu();
    const bool isArmed = std::exchange(isFaultArmed_, false);
    // What the office sends has a storage of its own.
    if (isArmed && action.tap != Office)
        thePlan.arm(test::StorageFault::FullDisk, int(action.pick % 5), false);
    switch (action.tap) {
        case Sales:
            menu(1, Screen::SaleList);
            break;
        case Collections:
            menu(2, Screen::CollectionList);
            break;
        case Containers:
            menu(3, Screen::EmptiesList);
            break;
        case Simple: {
            menu(6, Screen::Simple);
            amounts_ = {};
            customer_ = action.pick % 3 == 0 ? u"XXXX"_s : kCustomers[action.pick / 3 % 3];
            number_ = books::nextSimplePaymentNumber(date_);
            tell(event(Event::Kind::Numbered));
            said += " " + text(customer_);
            break;
        }
        case Close: {
            Event closing = event(Event::Kind::Closed);
            if (const auto closes = totals::closeDay(date_, user_, platform::Won())) {
                const totals::DayFigures& f = closes->last().figures;
                closing.figures = {f.expectedCash.value(), f.card.value(), f.unpaid.value()};
                tell(closing);
            }
            break;
        }
        case Office:
            loadOrder(action.pick);
            break;
        case Login:
        case OtherDay:
            login(action.pick, action.tap == OtherDay);
            said += " " + text(user_ + u' ' + date_);
            break;
        case Kill:
            kill();
            login(action.pick, false);
            break;
        case Fault:
            isFaultArmed_ = true;
            break;
        case Clock:
            platform::clock::set(platform::clock::now().addSecs(60 * (1 + action.pick % 400)));
            break;
        case Back:
            if (isAt(Screen::Card)) {
                backFromCard();
            } else {
                back();
            }
            break;
        default:
            said += " ";
            said += action.tap <= DeleteEmpties      ? listTap(action)
                    : action.tap <= FinishSale       ? goodsTap(action)
                    : action.tap <= FinishEmpties    ? emptiesTap(action)
                    : action.tap <= FinishCollection ? entryTap(action)
                    : action.tap <= FinishCard       ? cardTap(action)
                                                     : simpleTap(action);
    }
    if (!wasAtMenu && isAtMenu()) tell(event(Event::Kind::Screen));
    if (isArmed) {
        said += thePlan.hits > 0 ? " (디스크 가득)" : "";
        thePlan.disarm();
    }
    return said;
}

Won Terminal::amountFrom(const Action& action) const {
    const Won total = (amounts_.sales + amounts_.deposit).value();
    const Won choices[] = {0,     total,         total + 10000, 5000 * Won(action.pick % 8),
                           30000, total - 30000, 35000,         -5000};
    return choices[action.amount % std::size(choices)];
}

// --- the lists
// ----------------------------------------------------------------------------------------------------

bool Terminal::chooseFromList(unsigned pick) {
    const bool isSales = isAt(Screen::SaleList);
    const platform::Rows list = isSales                     ? sales::slipsOfDay(user_, date_).slips
                                : isAt(Screen::EmptiesList) ? container::slipsOfDay(user_, date_)
                                                            : books::collectionsOfDay(user_, date_);
    if (list.count() == 0) return false;
    const int row = int(pick % unsigned(list.count()));
    number_ = list.cell(row, isSales ? 2 : 0);
    state_ = isSales ? list.cell(row, 0) : QString();
    // The lists of sales and collections know the customer's name only.
    customer_ = isAt(Screen::EmptiesList) ? list.cell(row, 2) : QString();
    return true;
}

bool Terminal::chooseCustomer(unsigned pick) {
    customer_ = kCustomers[pick % unsigned(kCustomers.size())];
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
        case OpenSale:
            openSale();
            break;
        case PaySale: {
            const auto slip = sales::openSlip(user_, date_, number_);
            if (!slip) return "(failed)";
            customer_ = slip->GCode;
            hasUnsavedLines_ = false;
            openEntry(action.amount);
            break;
        }
        case DeleteSale:
            deleteSale(action.amount);
            break;
        case AddCollection:
        case OpenCollection:
            openEntry(action.amount);
            break;
        case AddEmpties:
        case OpenEmpties:
            openEmpties();
            break;
        case DeleteCollection: {
            Event deleted = event(Event::Kind::CollectionDeleted);
            deleted.isRefused = !books::removeCollections(date_, number_);
            tell(deleted);
            break;
        }
        default: {
            Event deleted = event(Event::Kind::EmptiesDeleted);
            deleted.isRefused = !container::deleteSlip(date_, number_);
            tell(deleted);
        }
    }
    return said;
}

void Terminal::deleteSale(unsigned pick) {
    const auto collection = books::loadCollection(date_, number_, user_);
    Event deleted = event(Event::Kind::SaleDeleted);
    deleted.hasCardQuestion = state_ == sales::kPaid || (collection && collection->isApproved());
    deleted.isCardConfirmed = pick % 2 == 0;
    deleted.isRefused =
        !sales::deleteSlip(date_, number_, !deleted.hasCardQuestion || deleted.isCardConfirmed);
    tell(deleted);
}

// --- the sales slip
// -----------------------------------------------------------------------------------------------

void Terminal::openSale() {
    const auto slip = sales::openSlip(user_, date_, number_);
    if (!slip) return;
    if (customer_.isEmpty()) customer_ = slip->GCode;
    kind_ = sales::customerAccount(customer_).Gubun;
    hasUnsavedLines_ = false;
    open(Screen::Sale);
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
    const QLatin1StringView follows(userOf(user_).followOn);
    if (follows == "Y"_L1 || follows == "Z"_L1) {
        openEmpties();
    } else {
        openEntry(0);
    }
}

std::string Terminal::goodsTap(const Action& action) {
    const platform::Rows lines = sales::workingLines();
    const int row = lines.count() > 0 ? int(action.pick % unsigned(lines.count())) : -1;
    const int boxes = int(action.amount % 4);
    const int bottles = boxes == 0 ? 7 : int(action.amount / 4 % 3);
    if (action.tap == Tap::SaveSale) return saveSale() ? "" : "(refused)";
    if (action.tap == Tap::FinishSale) {
        finishSale();
        return "";
    }
    if (action.tap == Tap::AddGoods) {
        sales::SlipLine line;
        line.PCode = kProducts[action.pick % unsigned(kProducts.size())];
        for (int at = 0; at < lines.count(); ++at) {
            if (lines.cell(at, 0) == line.PCode) return "(there already)";
        }
        line.DDate = date_;
        line.GCode = line.GName = customer_;
        line.JunNo = number_;
        line.PName = line.PCode;
        // What comes back is written with a minus.
        const int sign = action.amount % 16 == 15 ? -1 : 1;
        line.Box = QString::number(sign * boxes);
        line.Bon = QString::number(sign * bottles);
        line.setAmounts(sales::priceLine(customer_, kind_, line.PCode, sign * boxes, sign * bottles).amounts);
        hasUnsavedLines_ |= sales::insertLine(line);
        return text(line.PCode + u' ' + line.Box + u'/' + line.Bon);
    }
    if (row < 0) return "(no line)";
    const sales::LineKey key{lines.cell(row, 0), lines.cell(row, 2), lines.cell(row, 3)};
    const sales::LineAmounts now = sales::lineAmounts(key).value_or(sales::LineAmounts{});
    if (action.tap == Tap::ChangeGoods) {
        hasUnsavedLines_ |= sales::replaceQuantities(
            key, boxes, bottles, sales::priceLine(customer_, kind_, key.PCode, boxes, bottles).amounts);
    } else if (action.tap == Tap::EditAmount) {
        constexpr std::array kEdits{sales::withSupply, sales::withVat, sales::withSubtotal, sales::withTotal};
        const platform::Won keyed =
            now.subtotal() + platform::Won(1000 * std::int64_t(action.amount % 5) - 1700);
        hasUnsavedLines_ |= sales::replaceAmounts(key, kEdits[action.amount % 4](now, keyed));
    } else {
        sales::deleteLine(key);
        hasUnsavedLines_ = true;
    }
    return text(key.PCode) + " " + std::to_string(boxes) + "/" + std::to_string(bottles);
}

// --- the container slip
// ---------------------------------------------------------------------------------------------

void Terminal::openEmpties() {
    // A slip that could not be opened closes its screen at once.
    if (!container::openSlip(user_, date_, number_)) return;
    if (container::isOtherCustomers(customer_)) container::emptySlip();
    open(Screen::Empties);
}

void Terminal::finishEmpties() {
    Event saved = event(Event::Kind::EmptiesSaved);
    saved.empties = returns();
    const container::SaveOutcome outcome = container::saveSlip(user_, date_, number_, customer_);
    saved.isRefused = outcome == container::SaveOutcome::Failed;
    tell(saved);
    if (saved.isRefused || (outcome == container::SaveOutcome::Empty && mode_ != 1)) return;
    handedOver_ = container::workingSums().recovery();
    openEntry(0);
}

std::string Terminal::emptiesTap(const Action& action) {
    const platform::Rows lines = container::workingLines();
    const container::ContainerCounts counts{.bottles = action.amount % 5,
                                            .emptyCrates = action.amount % 3,
                                            .filledCrates = 1 + action.amount / 2 % 6};
    if (action.tap == Tap::FinishEmpties) {
        finishEmpties();
        return "";
    }
    if (action.tap == Tap::AddReturn) {
        container::ContainerLine line;
        line.PCode = kProducts[2 * (action.pick % 2)];
        for (int at = 0; at < lines.count(); ++at) {
            if (lines.cell(at, 0) == line.PCode) return "(there already)";
        }
        line.DDate = date_;
        line.GCode = line.GName = customer_;
        line.JunNo = number_;
        const auto product = container::containerProduct(line.PCode).value_or(container::ContainerProduct{});
        line.setCounts(counts);
        line.setAmounts(container::containerAmounts(counts, product.prices));
        container::insertLine(line);
        return text(line.PCode + u' ' + line.NBox);
    }
    if (lines.count() == 0) return "(no line)";
    const auto key = container::keyAt(lines, int(action.pick % unsigned(lines.count())));
    const auto product = container::containerProduct(key.PCode).value_or(container::ContainerProduct{});
    if (action.tap == Tap::ChangeReturn) {
        container::replaceCounts(key, counts, container::containerAmounts(counts, product.prices));
    } else if (action.tap == Tap::EditReturn) {
        container::replaceAmount(key, &container::ContainerAmounts::crates,
                                 platform::Won(amountFrom(action)));
    } else {
        container::deleteLine(key);
    }
    return text(key.PCode);
}

}  // namespace days
