#include "Judge.h"

#include <algorithm>
#include <utility>

namespace days {

const RuleWords kRuleWords[] = {
    {Rule::Lines,
     "a save leaves the lines on the screen, and a deletion takes the number's lines of that date"},
    {Rule::Empty, "the same of the containers taken back"},
    {Rule::Numbers, "a new slip gets the day's highest number and one, from the first of its range on"},
    {Rule::Row, "a collection says what its screen showed, once per number, date and user"},
    {Rule::Balance, "1: a balance moves by what its collections say"},
    {Rule::SettledTotal, "2: a collection has its sale's present total, wherever it is opened from"},
    {Rule::SaleMoves, "2: saving a sale moves its collection by the difference"},
    {Rule::KeyedSurvives, "2: keyed sales amounts survive a reopening"},
    {Rule::Worth, "3: what was taken back is worth what the collection says, or was keyed"},
    {Rule::CardApproved,
     "4: a card amount of a visit has an approval, or a payment that may still become one"},
    {Rule::OneAmount, "5: what is shown, kept, asked of the host and booked is one amount"},
    {Rule::RefuseDifference, "5: what card or cash leave of the total is refused"},
    {Rule::Excess, "5: keying a recovery first takes back what the last one had booked as excess"},
    {Rule::ExcessOnce, "6: an excess moves the debt once"},
    {Rule::ApprovalTold, "7: who pays what the journal has as approved is told so first"},
    {Rule::FoundLater, "7: an approval found later without its sale is money received"},
    {Rule::OneOpen, "8: one open payment per customer"},
    {Rule::DeleteOpen, "8: a slip with an open payment is not deleted"},
    {Rule::CardQuestion, "9: deleting asks about an approval of any row of the number"},
    {Rule::TakenNumber, "9: a number that holds another customer's lines is refused"},
    {Rule::Vat, "10: VAT is the payable total less the supply"},
    {Rule::Settle, "the settling buttons and keyed amounts divide the total by their rules"},
    {Rule::NothingToSettle, "where nothing is to be settled the buttons leave a keyed payment alone"},
    {Rule::Foots, "a settlement foots: total = card, cash, unpaid and recovery"},
    {Rule::Lost, "what the host charged, the journal has as approved or asks about"},
    {Rule::Doubled, "an approval stands on one collection, and a sale is charged once"},
    {Rule::Closing, "a close says what the collections of its day and user come to"},
    {Rule::Nothing, "what has nothing to do with a table leaves it alone"},
};

const char* words(Rule rule) {
    return kRuleWords[static_cast<int>(rule)].words;
}

std::string words(const Amounts& a) {
    const auto n = [](Won won) { return std::to_string(won); };
    return "sales " + n(a.sales) + " deposits " + n(a.deposits) + " recovery " + n(a.recovery) + " card " +
           n(a.card) + " cash " + n(a.cash) + " unpaid " + n(a.unpaid) + " earlier " + n(a.earlier);
}

std::string words(const Visit& v) {
    return v.key.date + " " + v.key.number + " " + v.key.user + " " + v.customer;
}

namespace {

// The customers of simple payments without one have no balance.
constexpr auto kUnregistered = "XXXX";

std::string words(const Goods& g) {
    return words(g.visit) + " " + g.product + " " + std::to_string(g.boxes) + "/" +
           std::to_string(g.bottles) + " " + std::to_string(g.supply + g.vat + g.crates + g.deposit);
}
std::string words(const Empties& e) {
    return words(e.visit) + " " + e.product + " " + std::to_string(e.crates + e.deposit);
}
std::string words(const Collection& c) {
    return words(c.visit) + " " + words(c.amounts) + " " + c.approval;
}

template <typename Row>
const Row* find(const std::vector<Row>& rows, const Visit& visit) {
    const auto at = std::ranges::find(rows, visit, &Row::visit);
    return at == rows.end() ? nullptr : &*at;
}

template <typename Row>
void erase(std::vector<Row>& rows, const Key& key) {
    std::erase_if(rows, [&key](const Row& row) { return row.visit.key == key; });
}

template <typename Row>
void eraseOfAll(std::vector<Row>& rows, const Key& key) {
    std::erase_if(rows, [&key](const Row& row) {
        return row.visit.key.date == key.date && row.visit.key.number == key.number;
    });
}

// Rows that were found under a number given twice keep everything but that number: from 4001 on, or from
// 7001.
template <typename Row>
std::vector<Row> numberless(std::vector<Row> rows, const std::set<Visit>& moved) {
    for (Row& row : rows) {
        const std::string& number = row.visit.key.number;
        if (moved.contains(row.visit) || (number > "4000" && number < "4999")) {
            row.visit.key.number = "moved";
        }
    }
    std::ranges::sort(rows);
    return rows;
}

// The first row that only one side has.
template <typename Row>
std::string difference(const std::vector<Row>& want, const std::vector<Row>& is) {
    std::vector<Row> missing, surplus;
    std::ranges::set_difference(want, is, std::back_inserter(missing));
    std::ranges::set_difference(is, want, std::back_inserter(surplus));
    std::string text;
    for (const Row& row : missing) {
        text += " must be: " + words(row) + ";";
    }
    for (const Row& row : surplus) {
        text += " is: " + words(row) + ";";
    }
    return text;
}

// Supply and tax of a row are judged by the VAT rule, and follow the salesman's keys otherwise.
std::vector<Collection> comparable(std::vector<Collection> rows) {
    for (Collection& row : rows) {
        row.amounts.supply = row.amounts.vat = row.amounts.other = 0;
    }
    std::ranges::sort(rows);
    return rows;
}

bool hasMessage(const Page& page, const std::string& message) {
    return std::ranges::find(page.payments, message, &Payment::message) != page.payments.end();
}

Won worth(const Page& page, const Visit& visit) {
    Won sum = 0;
    for (const Empties& line : page.empties) {
        sum += line.visit == visit ? line.crates + line.deposit : 0;
    }
    return sum;
}

Won depositsOf(const Page& page, const Visit& visit) {
    Won sum = 0;
    for (const Goods& line : page.goods) {
        sum += line.visit == visit ? line.crates + line.deposit : 0;
    }
    return sum;
}

}  // namespace

Won payableTotal(Won supply, Won vat, const std::string& mode) {
    if (mode != "2" && mode != "3") {
        return supply + vat;
    }
    const Won unit = mode == "2" ? 10 : 100;
    const Won whole = static_cast<Won>(static_cast<double>(supply) * 1.1);
    const Won rest = whole % unit;
    return rest < unit / 2 ? whole - rest : whole + (unit - rest);
}

// What the last keyed recovery or settling button had booked beyond the total goes first.
static Amounts withoutExcess(Amounts a) {
    const Won excess = -a.due();
    if (excess > 0 && a.earlier == excess) {
        a.earlier = 0;
        a.cash = a.cash == -excess ? 0 : a.cash;
    }
    return a;
}

static Amounts recoveryKeyed(Won keyed, Amounts a) {
    a = withoutExcess(a);
    a.recovery = keyed;
    if (keyed > a.total()) {
        a.unpaid = 0;
        a.earlier = keyed - a.total();
        a.cash = a.total() - keyed;
        return a;
    }
    if (a.cash != 0) {
        a.cash = a.due() - a.card;
    } else if (a.card != 0) {
        a.card = a.due() - a.cash;
    }
    a.unpaid = a.total() >= 1 ? a.due() - a.card - a.cash : 0;
    return a;
}

Amounts settled(Event::Kind kind, Won keyed, Amounts a) {
    using enum Event::Kind;
    if (kind == KeyRecovery) {
        return recoveryKeyed(keyed, a);
    }
    if (kind == KeyEarlier) {
        a.earlier = keyed;
        a.unpaid = a.total() >= 1 ? a.due() - a.card - a.cash : 0;
        return a;
    }
    a.card = a.cash = a.unpaid = 0;
    if (a.due() <= 0) {
        a.earlier = -a.due();
    } else {
        (kind == Card ? a.card : kind == Cash ? a.cash : a.unpaid) = a.due();
    }
    return a;
}

std::vector<Finding> Judge::judge(const Page& before, const Event& event, const Page& after) {
    findings_.clear();
    screen(before, event);
    number(before, event);
    tables(before, event, after);
    balances(before, after);
    closed(event, after);
    std::erase_if(keyedSales_,
                  [&after](const Visit& visit) { return find(after.collections, visit) == nullptr; });
    std::erase_if(keyedRecovery_,
                  [&after](const Visit& visit) { return find(after.collections, visit) == nullptr; });
    if (event.isAtMenu) {
        auto now = broken(after);
        for (const auto& [rule, what] : now) {
            if (!told_.contains({rule, what})) {
                found(rule, what);
            }
        }
        told_ = std::move(now);
    }
    return findings_;
}

Won Judge::payable(const Page& page, const Visit& visit) const {
    Won supply = 0;
    Won vat = 0;
    for (const Goods& line : page.goods) {
        if (line.visit == visit) {
            supply += line.supply;
            vat += line.vat;
        }
    }
    const auto mode = vatModes_.find(visit.key.user);
    return payableTotal(supply, vat, mode == vatModes_.end() ? "" : mode->second);
}

void Judge::screen(const Page& before, const Event& event) {
    using enum Event::Kind;
    const Amounts& is = event.shown;
    switch (event.kind) {
        case KeySales:
        case KeySupply:
        case KeyVat:
            hasKeyedSales_ = true;
            break;
        case TookWorth:
            hasTakenWorth_ = true;
            break;
        case KeptRecovery:
            hasKeyedRecovery_ = true;
            break;
        case OpenCollection:
            hasKeyedSales_ = hasKeyedRecovery_ = hasTakenWorth_ = false;
            opened(before, event);
            break;
        case Card:
        case Cash:
        case Credit:
            if (event.before.total() == 0 && event.before.recovery == 0) {
                if (is != event.before) {
                    found(Rule::NothingToSettle, words(event.before) + " became " + words(is));
                }
                return;
            }
            [[fallthrough]];
        case KeyRecovery:
        case KeyEarlier: {
            hasKeyedRecovery_ |= event.kind == KeyRecovery;
            // What is divided around an approved card is the screen's.
            if (event.isRefused || event.isApproved) {
                return;
            }
            const Amounts want = settled(event.kind, event.keyed, event.before);
            if (is != want) {
                const bool had = event.kind == KeyRecovery && withoutExcess(event.before) != event.before;
                found(had ? Rule::Excess : Rule::Settle,
                      "must show: " + words(want) + "; shows: " + words(is));
            }
            break;
        }
        default:
            break;
    }
}

// A collection whose sales amounts were keyed opens with them.
void Judge::opened(const Page& before, const Event& event) {
    const Collection* const row = find(before.collections, event.visit);
    if (row != nullptr && keyedSales_.contains(event.visit) && event.shown.total() != row->amounts.total()) {
        found(Rule::KeyedSurvives,
              words(row->visit) + " " + words(row->amounts) + " opens with " + words(event.shown));
    }
}

void Judge::closed(const Event& event, const Page& after) {
    if (event.kind != Event::Kind::Closed) {
        return;
    }
    Won cash = 0;
    Won card = 0;
    Won unpaid = 0;
    for (const Collection& row : after.collections) {
        if (row.visit.key.date == event.visit.key.date && row.visit.key.user == event.visit.key.user) {
            const Amounts& a = row.amounts;
            cash += !row.isSimple && a.bookedByButton() ? 0 : a.cash + a.earlier;
            card += a.card;
            unpaid += a.unpaid;
        }
    }
    if (event.figures != std::vector<Won>{cash, card, unpaid}) {
        found(Rule::Closing, "must be " + std::to_string(cash) + " " + std::to_string(card) + " " +
                                 std::to_string(unpaid) + ", is " + std::to_string(event.figures[0]) + " " +
                                 std::to_string(event.figures[1]) + " " + std::to_string(event.figures[2]));
    }
}

// The number of a sale, collection or container slip that the hand has just begun.
void Judge::number(const Page& before, const Event& event) {
    if (event.kind != Event::Kind::Numbered) {
        return;
    }
    const char* const first = event.mode == 1 ? "5001" : event.mode == 3 ? "6001" : "7001";
    std::string highest;
    const auto look = [&](const auto& rows) {
        for (const auto& row : rows) {
            if (row.visit.key.date == event.visit.key.date) {
                highest = std::max(highest, row.visit.key.number);
            }
        }
    };
    if (event.mode == 1) {
        look(before.goods);
    } else if (event.mode == 3) {
        look(before.empties);
    } else {
        look(before.collections);
    }
    const int next = highest.empty() ? 0 : std::stoi(highest) + 1;
    // A simple payment's number is 7000 or more, a collection's too.
    std::string want = next >= std::stoi(first) - 1 ? std::to_string(next) : first;
    // An open payment's number is given to nobody.
    const auto isOpen = [&](const Payment& payment) {
        return payment.open() && payment.visit.key.date == event.visit.key.date &&
               payment.visit.key.number == want;
    };
    while (event.mode != 1 && event.mode != 3 && std::ranges::any_of(before.payments, isOpen)) {
        want = std::to_string(std::stoi(want) + 1);
    }
    if (event.visit.key.number != want) {
        found(Rule::Numbers, "must be " + want + ", is " + event.visit.key.number);
    }
}

void Judge::tables(Page before, const Event& event, const Page& after) {
    using enum Event::Kind;
    Page want = std::move(before);
    rowRule_ = Rule::Nothing;
    if (!event.isRefused) {
        switch (event.kind) {
            case SaleSaved:
                saleSaved(want, event, after);
                break;
            case OfficeLoaded:
                want.goods.insert(want.goods.end(), event.goods.begin(), event.goods.end());
                std::ranges::sort(want.goods);
                break;
            case SaleDeleted:
                saleDeleted(want, event, after);
                break;
            case CollectionSaved:
                collectionSaved(want, event);
                break;
            case CollectionBack:
                collectionBack(want, event, after);
                break;
            case CollectionDeleted:
                eraseOfAll(want.collections, event.visit.key);
                break;
            case CollectionForgotten:
                erase(want.collections, event.visit.key);
                break;
            case EmptiesSaved:
            case EmptiesDeleted:
                emptiesChanged(want, event);
                break;
            case PaymentSent:
                paymentSent(want, event, after);
                break;
            case Inquired:
                inquired(want, event, after);
                break;
            default:
                break;
        }
    }
    compare(want, after);
}

void Judge::saleSaved(Page& want, const Event& event, const Page& after) {
    const Visit& visit = event.visit;
    const bool taken = std::ranges::any_of(want.goods, [&visit](const Goods& line) {
        return line.visit.key.date == visit.key.date && line.visit.key.number == visit.key.number &&
               line.visit.customer != visit.customer;
    });
    if (taken) {
        found(Rule::TakenNumber, words(visit) + " was saved");
    }
    const Won sales = payable(want, visit);
    const Won deposits = depositsOf(want, visit);
    erase(want.goods, visit.key);
    want.goods.insert(want.goods.end(), event.goods.begin(), event.goods.end());
    std::ranges::sort(want.goods);
    moveCollection(want, event, after, payable(want, visit) - sales, depositsOf(want, visit) - deposits);
    rowRule_ = Rule::SaleMoves;
}

// The row keeps what was paid; what the sale became dearer or cheaper is unpaid. Where empties exceed the
// total before or after, only its effect is told: what was booked as excess may move.
void Judge::moveCollection(Page& want, const Event& event, const Page& after, Won sales, Won deposits) {
    const auto at = std::ranges::find(want.collections, event.visit, &Collection::visit);
    if (at == want.collections.end() || (sales == 0 && deposits == 0)) {
        return;
    }
    Amounts moved = at->amounts;
    moved.sales += sales;
    moved.deposits += deposits;
    moved.unpaid += sales + deposits;
    const Collection* const row = find(after.collections, event.visit);
    if (row != nullptr && (at->amounts.due() < 0 || moved.due() < 0) &&
        row->amounts.total() == moved.total() &&
        row->amounts.effect() - at->amounts.effect() == sales + deposits) {
        moved = row->amounts;
    }
    at->amounts = moved;
    if (row == nullptr && moved.total() == 0 && moved.unpaid == 0 && moved.recovery == 0 &&
        moved.earlier == 0 && moved.card == 0 && moved.cash == 0) {
        want.collections.erase(at);
    }
}

void Judge::saleDeleted(Page& want, const Event& event, const Page&) {
    const Key& key = event.visit.key;
    const auto under = [&key](const auto& row) {
        return row.visit.key.date == key.date && row.visit.key.number == key.number;
    };
    for (const Payment& payment : want.payments) {
        if (under(payment) && payment.open()) {
            found(Rule::DeleteOpen, words(payment.visit) + " went with its open payment");
        }
    }
    const bool approved = std::ranges::any_of(
        want.collections, [&](const Collection& row) { return under(row) && !row.approval.empty(); });
    if (approved && !event.hasCardQuestion) {
        found(Rule::CardQuestion, words(event.visit) + " went without the question");
    }
    eraseOfAll(want.goods, key);
    if (!event.hasCardQuestion || event.isCardConfirmed) {
        eraseOfAll(want.collections, key);
        eraseOfAll(want.empties, key);
    }
    rowRule_ = Rule::Row;
}

void Judge::collectionSaved(Page& want, const Event& event) {
    const Visit& visit = event.visit;
    const Amounts& a = event.shown;
    if (!event.isApproved && (a.card != 0 || a.cash != 0) && a.card + a.cash + a.unpaid != a.due()) {
        this->found(Rule::RefuseDifference, words(visit) + " " + words(a));
    }
    const Collection* const found = find(want.collections, visit);
    const std::optional<Collection> old = found != nullptr ? std::optional(*found) : std::nullopt;
    replacing_[visit] = old;
    Collection row{visit, a, old ? old->approval : "", old && old->isSimple};
    std::erase_if(want.collections, [&visit](const Collection& own) { return own.visit == visit; });
    want.collections.push_back(row);
    std::ranges::sort(want.collections);
    const auto note = [&visit](std::set<Visit>& visits, bool is) {
        is ? void(visits.insert(visit)) : void(visits.erase(visit));
    };
    note(byCollectionWork_, event.mode == 2 || event.mode == 3);
    // A keyed amount that a collection has opened with is still keyed.
    note(keyedSales_, hasKeyedSales_ || (keyedSales_.contains(visit) && old));
    note(keyedRecovery_, hasKeyedRecovery_ || (keyedRecovery_.contains(visit) && old && !hasTakenWorth_));
    rowRule_ = Rule::Row;
}

// What 이전 does with a payment that was not made: the collection goes, and the one that it had replaced is
// back.
void Judge::collectionBack(Page& want, const Event& event, const Page& after) {
    const bool isOpen = std::ranges::any_of(want.payments, [&event](const Payment& payment) {
        return payment.open() && payment.visit == event.visit;
    });
    if (isOpen && find(after.collections, event.visit) != nullptr) {
        // A stuck visit may stay, on credit.
        want.collections = after.collections;
        return;
    }
    erase(want.collections, event.visit.key);
    const auto replaced = replacing_.find(event.visit);
    if (replaced != replacing_.end() && replaced->second) {
        want.collections.push_back(*replaced->second);
        std::ranges::sort(want.collections);
    }
    rowRule_ = Rule::Row;
}

void Judge::emptiesChanged(Page& want, const Event& event) {
    const std::vector<Empties> before = want.empties;
    if (event.kind == Event::Kind::EmptiesDeleted) {
        eraseOfAll(want.empties, event.visit.key);
    } else {
        std::erase_if(want.empties, [&event](const Empties& line) { return line.visit == event.visit; });
        want.empties.insert(want.empties.end(), event.empties.begin(), event.empties.end());
        std::ranges::sort(want.empties);
    }
    // A container slip that goes takes the recovery of its collection along, keyed or not; what was paid
    // stays.
    for (Collection& row : want.collections) {
        const bool isGone = find(before, row.visit) != nullptr && find(want.empties, row.visit) == nullptr;
        if (!isGone || row.isSimple || row.amounts.recovery == 0) continue;
        row.amounts = withoutExcess(row.amounts);
        row.amounts.recovery = 0;
        const Amounts& a = row.amounts;
        row.amounts.unpaid = a.total() >= 1 ? a.total() - a.card - a.cash : 0;
    }
    std::erase_if(want.collections, [](const Collection& row) {
        const Amounts& a = row.amounts;
        return row.approval.empty() && a.total() == 0 && a.card == 0 && a.cash == 0 && a.earlier == 0 &&
               a.recovery == 0 && a.other == 0;
    });
    std::ranges::sort(want.collections);
    rowRule_ = Rule::Worth;
}

void Judge::paymentSent(Page& want, const Event& event, const Page& after) {
    const Visit& visit = event.visit;
    for (const Payment& payment : want.payments) {
        if (payment.open() && payment.visit.customer == visit.customer) {
            found(Rule::OneOpen, words(payment.visit) + " was open when " + words(visit) + " was sent");
        }
        if (payment.state == "approved" && payment.visit == visit && !event.isTold) {
            found(Rule::ApprovalTold, words(visit) + " was paid with " + payment.approval);
        }
    }
    const Won shown = event.shown.card != 0 ? event.shown.card : event.shown.cash;
    const Payment* kept = nullptr;
    for (const Payment& payment : after.payments) {
        const bool is = payment.visit == visit && !hasMessage(want, payment.message);
        kept = is ? &payment : kept;
    }
    const Collection* const row = find(after.collections, visit);
    const Won booked = row == nullptr           ? event.asked
                       : row->amounts.card != 0 ? row->amounts.card
                                                : row->amounts.cash;
    if (kept == nullptr || kept->amount != event.asked ||
        (event.mode != 6 && (shown != event.asked || booked != shown))) {
        found(Rule::OneAmount, words(visit) + " shown " + std::to_string(shown) + " kept " +
                                   std::to_string(kept != nullptr ? kept->amount : 0) + " asked " +
                                   std::to_string(event.asked) + " booked " + std::to_string(booked));
    }
    if (kept != nullptr) {
        totals_[kept->message] = payable(want, visit) + depositsOf(want, visit);
        if (event.mode == 6) {
            simple_.insert(kept->message);
        }
        if (event.charged) {
            Charge charge = *event.charged;
            charge.visit = visit;
            charge.message = kept->message;
            charges_.push_back(charge);
        }
    }
    if (event.charged && event.isAnswered) {
        for (Collection& own : want.collections) {
            own.approval = own.visit == visit ? event.charged->approval : own.approval;
        }
        if (event.mode == 6 && row != nullptr) {  // its row comes with the approval
            want.collections.push_back(*row);
            std::ranges::sort(want.collections);
        }
    }
    want.payments = after.payments;
    rowRule_ = Rule::Row;
}

// Each open payment becomes what the host says of it, and the slips follow. What was booked for a card that
// was never charged is taken back, as 이전 does.
void Judge::inquired(Page& want, const Event& event, const Page& after) {
    const std::vector<Payment> asked = std::exchange(want.payments, after.payments);
    for (const Payment& payment : asked) {
        const auto answer = event.answers.find(payment.message);
        if (answer != event.answers.end() && answer->second == Event::Answer::Approved) {
            approvedLater(want, payment, after);
        }
    }
    for (const Collection& row : std::vector(want.collections)) {
        const bool isAnswered = std::ranges::any_of(asked, [&](const Payment& payment) {
            return payment.visit == row.visit && event.answers.contains(payment.message);
        });
        if (lacksApproval(want, row) && row.visit != event.visit && (event.isAtMenu || isAnswered)) {
            std::erase(want.collections, row);
            if (const auto& replaced = replacing_[row.visit]) {
                want.collections.push_back(*replaced);
            }
            rowRule_ = Rule::CardApproved;
        }
    }
    std::ranges::sort(want.collections);
}

// The slip is put back as it was charged; without its sale, or with another total, the money is received.
void Judge::approvedLater(Page& want, const Payment& payment, const Page& after) {
    const Visit& visit = payment.visit;
    const auto charge = std::ranges::find(charges_, payment.message, &Charge::message);
    const auto row = std::ranges::find(after.collections, charge->approval, &Collection::approval);
    const bool isThere = row != after.collections.end();
    const Won present = payable(want, visit) + depositsOf(want, visit);
    const bool isSame = simple_.contains(payment.message) ||
                        (find(want.goods, visit) != nullptr && present == totals_[payment.message]);
    const auto adopt = [&] {
        std::erase_if(want.collections, [&](const Collection& own) {
            return own.visit == row->visit && own.approval.empty() && !row->isSimple;
        });
        want.collections.push_back(*row);
    };
    if (isSame || (isThere && row->visit == visit && row->amounts.total() == present &&
                   std::max(row->amounts.card, row->amounts.cash) == payment.amount)) {
        if (isThere) {
            adopt();
        } else {
            found(Rule::Lost, words(visit) + " was approved and its slip does not say so");
        }
    } else if (!isThere) {
        credited_[visit.customer] += payment.amount;
    } else if (row->effect() == -payment.amount) {
        want.collections.push_back(*row);
    } else {
        found(Rule::FoundLater, words(*row) + " for " + std::to_string(payment.amount) + ", the sale is " +
                                    std::to_string(present));
        adopt();
    }
}

// A card amount of a visit that no approval stands for, nor a payment that may still become one.
bool Judge::lacksApproval(const Page& page, const Collection& row) const {
    return row.amounts.card > 0 && row.approval.empty() && !row.isSimple &&
           !byCollectionWork_.contains(row.visit) &&
           std::ranges::none_of(page.payments, [&row](const Payment& payment) {
               return payment.open() && payment.visit == row.visit;
           });
}

void Judge::compare(const Page& want, const Page& after) {
    // Another customer's rows under a number given twice may have got one of their own.
    std::set<Visit> moved;
    const auto look = [&moved](const auto& rows, const auto& now) {
        for (const auto& row : rows) {
            if (find(now, row.visit) == nullptr) {
                moved.insert(row.visit);
            }
        }
    };
    look(want.collections, after.collections);
    look(want.empties, after.empties);
    const auto goods = difference(want.goods, after.goods);
    const auto empties = difference(numberless(want.empties, moved), numberless(after.empties, moved));
    const auto rows = difference(numberless(comparable(want.collections), moved),
                                 numberless(comparable(after.collections), moved));
    if (!goods.empty()) {
        found(Rule::Lines, goods);
    }
    if (!empties.empty()) {
        found(Rule::Empty, empties);
    }
    if (!rows.empty()) {
        found(rowRule_, rows);
    }
    for (const Payment& payment : want.payments) {
        if (!hasMessage(after, payment.message)) {
            found(Rule::Lost, words(payment.visit) + " left the journal");
        }
    }
}

// Every balance moves by the effects of its collections, and by what was received without a sale.
void Judge::balances(const Page& before, const Page& after) {
    std::map<std::string, Won> moves;
    bool excess = false;
    const auto add = [&](const Page& page, int sign) {
        for (const Collection& row : page.collections) {
            moves[row.visit.customer] += sign * row.effect();
            const bool changed =
                std::ranges::count(sign < 0 ? after.collections : before.collections, row) == 0;
            excess |= changed && !row.isSimple && row.amounts.bookedByButton();
        }
    };
    add(before, -1);
    add(after, 1);
    for (const auto& [customer, won] : credited_) {
        moves[customer] -= won;
    }
    const bool received = !credited_.empty();
    credited_.clear();
    for (const auto& [customer, debt] : after.debt) {
        const Won was = before.debt.at(customer);
        if (customer != kUnregistered && debt - was != moves[customer]) {
            found(received ? Rule::FoundLater
                  : excess ? Rule::ExcessOnce
                           : Rule::Balance,
                  customer + " must move by " + std::to_string(moves[customer]) + ", moved by " +
                      std::to_string(debt - was));
        }
    }
}

// What does not agree on a page, by rule and visit.
std::set<std::pair<Rule, std::string>> Judge::broken(const Page& page) const {
    std::set<std::pair<Rule, std::string>> all;
    std::map<std::string, int> approvals;
    for (const Collection& row : page.collections) {
        const Amounts& a = row.amounts;
        const bool sale = find(page.goods, row.visit) != nullptr;
        const std::string& number = row.visit.key.number;
        // What was found under a number given twice stands alone.
        const bool isAlone = row.isSimple || (number > "4000" && number < "4999");
        const bool keyed = keyedSales_.contains(row.visit);
        if (sale && !keyed && a.total() != payable(page, row.visit) + depositsOf(page, row.visit)) {
            all.insert({Rule::SettledTotal, words(row)});
        }
        if (!sale && !keyed && !isAlone && a.total() != 0) {
            all.insert({Rule::SettledTotal, words(row) + " without a sale"});
        }
        if (a.recovery != worth(page, row.visit) && !keyedRecovery_.contains(row.visit) && !isAlone) {
            all.insert({Rule::Worth, words(row) + " took back " + std::to_string(worth(page, row.visit))});
        }
        if (sale && a.vat != a.sales - a.supply) {
            all.insert({Rule::Vat, words(row) + " VAT " + std::to_string(a.vat)});
        }
        const bool foots = a.total() < 1 || a.card + a.cash + a.unpaid == a.due() ||
                           (a.due() < 0 && a.card + a.cash + a.unpaid == 0);
        if (!foots && !row.isSimple) {
            all.insert({Rule::Foots, words(row)});
        }
        if (lacksApproval(page, row)) {
            all.insert({Rule::CardApproved, words(row)});
        }
        if (!row.approval.empty() && ++approvals[row.approval] > 1) {
            all.insert({Rule::Doubled, row.approval + " stands twice"});
        }
    }
    for (const Charge& charge : charges_) {
        const auto kept = std::ranges::find(page.payments, charge.message, &Payment::message);
        if (kept == page.payments.end() || (kept->state != "approved" && !kept->open())) {
            all.insert({Rule::Lost, words(charge.visit) + " charged " + std::to_string(charge.amount)});
        }
    }
    return all;
}

}  // namespace days
