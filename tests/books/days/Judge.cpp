#include "Judge.h"

#include <algorithm>
#include <cmath>

namespace days {

const RuleWords kRuleWords[] = {
    {Rule::Lines, "a save leaves the lines on the screen, and a deletion takes the number's lines of that date"},
    {Rule::Empty, "the same of the containers taken back"},
    {Rule::Numbers, "a new slip gets the day's highest number and one, from the first of its range on"},
    {Rule::Row, "a collection says what its screen showed, once per number, date and user"},
    {Rule::Balance, "1: a balance moves by what its collections say"},
    {Rule::SettledTotal, "2: a collection has its sale's present total, wherever it is opened from"},
    {Rule::SaleMoves, "2: saving a sale moves its collection by the difference"},
    {Rule::KeyedSurvives, "2: keyed sales amounts survive a reopening"},
    {Rule::Worth, "3: what was taken back is worth what the collection says, or was keyed"},
    {Rule::CardApproved, "4: a card amount of a visit has an approval, or a payment that may still become one"},
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
    {Rule::Nothing, "what has nothing to do with a table leaves it alone"},
};

const char *words(Rule rule) { return kRuleWords[static_cast<int>(rule)].words; }

std::string words(const Amounts &a) {
    const auto n = [](Won won) { return std::to_string(won); };
    return "sales " + n(a.sales) + " deposits " + n(a.deposits) + " recovery " + n(a.recovery) + " card " + n(a.card) +
           " cash " + n(a.cash) + " unpaid " + n(a.unpaid) + " earlier " + n(a.earlier);
}

std::string words(const Visit &v) { return v.key.date + " " + v.key.number + " " + v.key.user + " " + v.customer; }

namespace {

// The customers of simple payments without one have no balance.
constexpr auto kUnregistered = "XXXX";

std::string words(const Goods &g) {
    return words(g.visit) + " " + g.product + " " + std::to_string(g.boxes) + "/" + std::to_string(g.bottles) + " " +
           std::to_string(g.supply + g.vat + g.crates + g.deposit);
}
std::string words(const Empties &e) {
    return words(e.visit) + " " + e.product + " " + std::to_string(e.crates + e.deposit);
}
std::string words(const Collection &c) { return words(c.visit) + " " + words(c.amounts) + " " + c.approval; }

template <typename Row>
const Row *find(const std::vector<Row> &rows, const Visit &visit) {
    const auto at = std::ranges::find(rows, visit, &Row::visit);
    return at == rows.end() ? nullptr : &*at;
}

template <typename Row>
void erase(std::vector<Row> &rows, const Key &key) {
    std::erase_if(rows, [&key](const Row &row) { return row.visit.key == key; });
}

template <typename Row>
void eraseOfAll(std::vector<Row> &rows, const Key &key) {
    std::erase_if(rows, [&key](const Row &row) {
        return row.visit.key.date == key.date && row.visit.key.number == key.number;
    });
}

// Rows that were found under a number given twice keep everything but that number: from 4001 on, or from 7001.
template <typename Row>
std::vector<Row> numberless(std::vector<Row> rows, const std::set<Visit> &moved) {
    for (Row &row : rows) {
        const std::string &number = row.visit.key.number;
        if (moved.contains(row.visit) || (number > "4000" && number < "4999")) {
            row.visit.key.number = "moved";
        }
    }
    std::ranges::sort(rows);
    return rows;
}

// The first row that only one side has.
template <typename Row>
std::string difference(const std::vector<Row> &want, const std::vector<Row> &is) {
    std::vector<Row> missing, surplus;
    std::ranges::set_difference(want, is, std::back_inserter(missing));
    std::ranges::set_difference(is, want, std::back_inserter(surplus));
    std::string text;
    for (const Row &row : missing) {
        text += " must be: " + words(row) + ";";
    }
    for (const Row &row : surplus) {
        text += " is: " + words(row) + ";";
    }
    return text;
}

// Supply and tax of a row are judged by the VAT rule, and follow the salesman's keys otherwise.
std::vector<Collection> comparable(std::vector<Collection> rows) {
    for (Collection &row : rows) {
        row.amounts.supply = row.amounts.vat = row.amounts.other = 0;
    }
    std::ranges::sort(rows);
    return rows;
}

Won worth(const Page &page, const Visit &visit) {
    Won sum = 0;
    for (const Empties &line : page.empties) {
        sum += line.visit == visit ? line.crates + line.deposit : 0;
    }
    return sum;
}

Won depositsOf(const Page &page, const Visit &visit) {
    Won sum = 0;
    for (const Goods &line : page.goods) {
        sum += line.visit == visit ? line.crates + line.deposit : 0;
    }
    return sum;
}

} // namespace

Won payableTotal(Won supply, Won vat, const std::string &mode) {
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

std::vector<Finding> Judge::judge(const Page &before, const Event &event, const Page &after) {
    m_findings.clear();
    screen(event);
    number(before, event);
    tables(before, event, after);
    balances(before, after);
    const auto then = broken(before);
    for (const auto &[rule, what] : broken(after)) {
        if (!then.contains({rule, what})) {
            found(rule, what);
        }
    }
    return m_findings;
}

Won Judge::payable(const Page &page, const Visit &visit) const {
    Won supply = 0;
    Won vat = 0;
    for (const Goods &line : page.goods) {
        if (line.visit == visit) {
            supply += line.supply;
            vat += line.vat;
        }
    }
    const auto mode = m_vatModes.find(visit.key.user);
    return payableTotal(supply, vat, mode == m_vatModes.end() ? "" : mode->second);
}

void Judge::screen(const Event &event) {
    using enum Event::Kind;
    const Amounts &is = event.shown;
    switch (event.kind) {
    case KeySales:
    case KeySupply:
    case KeyVat:
    case KeyOther:
        m_keyedSales.insert(event.visit);
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
        if (event.kind == KeyRecovery) {
            m_keyedRecovery.insert(event.visit);
        }
        if (event.refused) {
            return;
        }
        const Amounts want = settled(event.kind, event.keyed, event.before);
        if (is != want) {
            const bool had = event.kind == KeyRecovery && withoutExcess(event.before) != event.before;
            found(had ? Rule::Excess : Rule::Settle, "must show: " + words(want) + "; shows: " + words(is));
        }
        break;
    }
    default:
        break;
    }
}

// The number of a sale, collection or container slip that the hand has just begun.
void Judge::number(const Page &before, const Event &event) {
    if (event.kind != Event::Kind::SaleNumbered) {
        return;
    }
    const char *const first = event.mode == 1 ? "5001" : event.mode == 3 ? "6001" : "7001";
    std::string highest;
    const auto look = [&](const auto &rows) {
        for (const auto &row : rows) {
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
        // An open payment's number is given to nobody.
        std::vector<Payment> open = before.payments;
        std::erase_if(open, [](const Payment &payment) { return !payment.open(); });
        look(open);
    }
    const int next = highest.empty() ? 0 : std::stoi(highest) + 1;
    const std::string want = next >= std::stoi(first) - 1 ? std::to_string(next) : first;
    if (event.visit.key.number != want) {
        found(Rule::Numbers, "must be " + want + ", is " + event.visit.key.number);
    }
}

void Judge::tables(Page before, const Event &event, const Page &after) {
    using enum Event::Kind;
    Page want = std::move(before);
    m_rowRule = Rule::Nothing;
    if (!event.refused) {
        switch (event.kind) {
        case SaleSaved: saleSaved(want, event, after); break;
        case SaleDeleted: saleDeleted(want, event, after); break;
        case CollectionSaved: collectionSaved(want, event); break;
        case CollectionBack: collectionBack(want, event); break;
        case CollectionDeleted: eraseOfAll(want.collections, event.visit.key); break;
        case CollectionForgotten: erase(want.collections, event.visit.key); break;
        case EmptiesSaved:
        case EmptiesDeleted: emptiesChanged(want, event); break;
        case PaymentSent: paymentSent(want, event, after); break;
        case Inquired: inquired(want, event, after); break;
        default: break;
        }
    }
    compare(want, after);
}

void Judge::saleSaved(Page &want, const Event &event, const Page &after) {
    const Visit &visit = event.visit;
    const bool taken = std::ranges::any_of(want.goods, [&visit](const Goods &line) {
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
    m_rowRule = Rule::SaleMoves;
}

// The row keeps what was paid; what the sale became dearer or cheaper is unpaid. Where empties exceed the total
// before or after, only its effect is told: what was booked as excess may move.
void Judge::moveCollection(Page &want, const Event &event, const Page &after, Won sales, Won deposits) {
    const auto at = std::ranges::find(want.collections, event.visit, &Collection::visit);
    if (at == want.collections.end() || (sales == 0 && deposits == 0)) {
        return;
    }
    Amounts moved = at->amounts;
    moved.sales += sales;
    moved.deposits += deposits;
    moved.unpaid += sales + deposits;
    const Collection *const row = find(after.collections, event.visit);
    if (row != nullptr && (at->amounts.due() < 0 || moved.due() < 0) && row->amounts.total() == moved.total() &&
        row->amounts.effect() - at->amounts.effect() == sales + deposits) {
        moved = row->amounts;
    }
    at->amounts = moved;
    const Amounts nothing;
    if (row == nullptr && moved.total() == 0 && moved.unpaid == 0 && moved.recovery == 0 && moved.earlier == 0 &&
        moved.card == 0 && moved.cash == 0) {
        want.collections.erase(at);
    }
}

void Judge::saleDeleted(Page &want, const Event &event, const Page &) {
    const Key &key = event.visit.key;
    const auto under = [&key](const auto &row) {
        return row.visit.key.date == key.date && row.visit.key.number == key.number;
    };
    for (const Payment &payment : want.payments) {
        if (under(payment) && payment.open()) {
            found(Rule::DeleteOpen, words(payment.visit) + " went with its open payment");
        }
    }
    const bool approved = std::ranges::any_of(
        want.collections, [&](const Collection &row) { return under(row) && !row.approval.empty(); });
    if (approved && !event.cardQuestion) {
        found(Rule::CardQuestion, words(event.visit) + " went without the question");
    }
    eraseOfAll(want.goods, key);
    if (!event.cardQuestion || event.cardConfirmed) {
        eraseOfAll(want.collections, key);
        eraseOfAll(want.empties, key);
    }
    m_rowRule = Rule::Row;
}

void Judge::collectionSaved(Page &want, const Event &event) {
    const Visit &visit = event.visit;
    const Amounts &a = event.shown;
    if ((a.card != 0 || a.cash != 0) && a.card + a.cash + a.unpaid != a.due()) {
        found(Rule::RefuseDifference, words(visit) + " " + words(a));
    }
    const Collection *const old = find(want.collections, visit);
    m_replacing[visit] = old != nullptr ? std::optional(*old) : std::nullopt;
    Collection row{visit, a, old != nullptr ? old->approval : ""};
    erase(want.collections, visit.key);
    want.collections.push_back(row);
    std::ranges::sort(want.collections);
    (event.mode == 2 || event.mode == 3) ? m_byCollectionWork.insert(visit) : m_byCollectionWork.erase(visit);
    m_rowRule = Rule::Row;
}

// What 이전 does with a payment that was not made: the collection goes, and the one that it had replaced is back.
void Judge::collectionBack(Page &want, const Event &event) {
    erase(want.collections, event.visit.key);
    const auto replaced = m_replacing.find(event.visit);
    if (replaced != m_replacing.end() && replaced->second) {
        want.collections.push_back(*replaced->second);
        std::ranges::sort(want.collections);
    }
    m_rowRule = Rule::Row;
}

void Judge::emptiesChanged(Page &want, const Event &event) {
    if (event.kind == Event::Kind::EmptiesDeleted) {
        eraseOfAll(want.empties, event.visit.key);
    } else {
        erase(want.empties, event.visit.key);
        want.empties.insert(want.empties.end(), event.empties.begin(), event.empties.end());
        std::ranges::sort(want.empties);
    }
    // A container slip that goes takes the recovery of its collections along; what was paid stays.
    for (Collection &row : want.collections) {
        const bool under = row.visit.key.date == event.visit.key.date && row.visit.key.number == event.visit.key.number;
        if (under && worth(want, row.visit) == 0 && !m_keyedRecovery.contains(row.visit)) {
            row.amounts = withoutExcess(row.amounts);
            row.amounts.unpaid += row.amounts.recovery;
            row.amounts.recovery = 0;
        }
    }
    std::erase_if(want.collections, [](const Collection &row) {
        const Amounts &a = row.amounts;
        return a.total() == 0 && a.card == 0 && a.cash == 0 && a.unpaid == 0 && a.earlier == 0 && a.recovery == 0;
    });
    std::ranges::sort(want.collections);
    m_rowRule = Rule::Worth;
}

void Judge::paymentSent(Page &want, const Event &event, const Page &after) {
    const Visit &visit = event.visit;
    for (const Payment &payment : want.payments) {
        if (payment.open() && payment.visit.customer == visit.customer) {
            found(Rule::OneOpen, words(payment.visit) + " was open when " + words(visit) + " was sent");
        }
        if (payment.state == "approved" && payment.visit == visit && !event.told) {
            found(Rule::ApprovalTold, words(visit) + " was paid with " + payment.approval);
        }
    }
    const Won shown = event.shown.card != 0 ? event.shown.card : event.shown.cash;
    const Payment *kept = nullptr;
    for (const Payment &payment : after.payments) {
        const bool is = payment.visit == visit && !std::ranges::contains(want.payments, payment.message, &Payment::message);
        kept = is ? &payment : kept;
    }
    const Collection *const row = find(after.collections, visit);
    const Won booked = row == nullptr ? event.asked : row->amounts.card != 0 ? row->amounts.card : row->amounts.cash;
    if (kept == nullptr || kept->amount != event.asked || (event.mode != 6 && (shown != event.asked || booked != shown))) {
        found(Rule::OneAmount, words(visit) + " shown " + std::to_string(shown) + " kept " +
                                   std::to_string(kept != nullptr ? kept->amount : 0) + " asked " +
                                   std::to_string(event.asked) + " booked " + std::to_string(booked));
    }
    if (kept != nullptr) {
        m_replaced[kept->message] = m_replacing[visit];
        if (event.charged) {
            Charge charge = *event.charged;
            charge.visit = visit;
            charge.message = kept->message;
            m_charges.push_back(charge);
        }
    }
    if (event.charged && event.answered) {
        for (Collection &own : want.collections) {
            own.approval = own.visit == visit ? event.charged->approval : own.approval;
        }
        if (event.mode == 6 && row != nullptr) { // its row comes with the approval
            want.collections.push_back(*row);
            std::ranges::sort(want.collections);
        }
    }
    want.payments = after.payments;
    m_rowRule = Rule::Row;
}

// Each open payment becomes what the host says of it, and the slips follow.
void Judge::inquired(Page &want, const Event &event, const Page &after) {
    for (const Payment &payment : want.payments) {
        const auto answer = event.answers.find(payment.message);
        if (!payment.open() || answer == event.answers.end()) {
            continue;
        }
        const Visit &visit = payment.visit;
        const auto own = std::ranges::find(want.collections, visit, &Collection::visit);
        if (answer->second == Event::Answer::NotCharged) {
            if (own == want.collections.end() || !own->approval.empty()) {
                continue;
            }
            m_rowRule = Rule::CardApproved;
            want.collections.erase(own);
            if (const auto &replaced = m_replaced[payment.message]) {
                want.collections.push_back(*replaced);
                std::ranges::sort(want.collections);
            }
        } else if (answer->second == Event::Answer::Approved) {
            const Goods *const sale = find(want.goods, visit);
            const bool same = own != want.collections.end() && own->amounts.total() == payable(want, visit) + depositsOf(want, visit);
            if (payment.visit.key.number < "6000" && (sale == nullptr || (own != want.collections.end() && !same))) {
                m_rowRule = Rule::FoundLater;
                m_credited[visit.customer] += payment.amount;
                continue;
            }
            // The slip is as it was charged.
            m_rowRule = m_rowRule == Rule::FoundLater ? m_rowRule : Rule::Row;
            const Collection *const row = find(after.collections, visit);
            if (row == nullptr || row->approval.empty()) {
                found(Rule::Lost, words(visit) + " was approved and its slip does not say so");
            } else if (own != want.collections.end()) {
                *own = *row;
            } else {
                want.collections.push_back(*row);
            }
            std::ranges::sort(want.collections);
        }
    }
    want.payments = after.payments;
}

void Judge::compare(const Page &want, const Page &after) {
    // Another customer's rows under a number given twice may have got one of their own.
    std::set<Visit> moved;
    const auto look = [&moved](const auto &rows, const auto &now) {
        for (const auto &row : rows) {
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
        found(m_rowRule, rows);
    }
    for (const Payment &payment : want.payments) {
        if (!std::ranges::contains(after.payments, payment.message, &Payment::message)) {
            found(Rule::Lost, words(payment.visit) + " left the journal");
        }
    }
}

// Every balance moves by the effects of its collections, and by what was received without a sale.
void Judge::balances(const Page &before, const Page &after) {
    std::map<std::string, Won> moves;
    bool excess = false;
    const auto add = [&](const Page &page, int sign) {
        for (const Collection &row : page.collections) {
            moves[row.visit.customer] += sign * row.amounts.effect();
            const bool changed = !std::ranges::contains(sign < 0 ? after.collections : before.collections, row);
            excess |= changed && row.amounts.bookedByButton();
        }
    };
    add(before, -1);
    add(after, 1);
    for (const auto &[customer, won] : m_credited) {
        moves[customer] -= won;
    }
    const bool received = !m_credited.empty();
    m_credited.clear();
    for (const auto &[customer, debt] : after.debt) {
        const Won was = before.debt.at(customer);
        if (customer != kUnregistered && debt - was != moves[customer]) {
            found(received ? Rule::FoundLater : excess ? Rule::ExcessOnce : Rule::Balance,
                  customer + " must move by " + std::to_string(moves[customer]) + ", moved by " +
                      std::to_string(debt - was));
        }
    }
}

// What does not agree on a page, by rule and visit.
std::set<std::pair<Rule, std::string>> Judge::broken(const Page &page) const {
    std::set<std::pair<Rule, std::string>> all;
    std::map<std::string, int> approvals;
    for (const Collection &row : page.collections) {
        const Amounts &a = row.amounts;
        const bool sale = find(page.goods, row.visit) != nullptr;
        const bool simple = !sale && row.visit.key.number >= "7000";
        const bool keyed = m_keyedSales.contains(row.visit);
        if (sale && !keyed && a.total() != payable(page, row.visit) + depositsOf(page, row.visit)) {
            all.insert({Rule::SettledTotal, words(row)});
        }
        if (!sale && !keyed && a.total() != 0 && row.visit.key.number < "7000") {
            all.insert({Rule::SettledTotal, words(row) + " without a sale"});
        }
        if (a.recovery != worth(page, row.visit) && !m_keyedRecovery.contains(row.visit) && !simple) {
            all.insert({Rule::Worth, words(row) + " took back " + std::to_string(worth(page, row.visit))});
        }
        if (sale && a.vat != a.sales - a.supply) {
            all.insert({Rule::Vat, words(row) + " VAT " + std::to_string(a.vat)});
        }
        const bool foots = a.card + a.cash + a.unpaid == a.due() || (a.due() < 0 && a.card + a.cash + a.unpaid == 0);
        if (!foots && !simple) {
            all.insert({Rule::Foots, words(row)});
        }
        if (!row.approval.empty() && ++approvals[row.approval] > 1) {
            all.insert({Rule::Doubled, row.approval + " stands twice"});
        }
    }
    for (const Charge &charge : m_charges) {
        const auto kept = std::ranges::find(page.payments, charge.message, &Payment::message);
        if (kept == page.payments.end() || (kept->state != "approved" && !kept->open())) {
            all.insert({Rule::Lost, words(charge.visit) + " charged " + std::to_string(charge.amount)});
        }
    }
    return all;
}

} // namespace days
