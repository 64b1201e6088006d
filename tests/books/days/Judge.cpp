#include "Judge.h"

#include <algorithm>
#include <utility>

#include "Rows.h"

namespace days {

namespace {

void note(std::set<Visit>* visits, const Visit& visit, bool is) {
    is ? void(visits->insert(visit)) : void(visits->erase(visit));
}

void withoutRecovery(Amounts* amounts) {
    Amounts& a = *amounts;
    if (a.recovery == 0) return;
    a = withoutExcess(a);
    a.recovery = 0;
    a.unpaid = a.total() >= 1 ? a.total() - a.card - a.cash : 0;
}

bool isUnder(const Visit& visit, const Event& event) {
    const Key& key = event.visit.key;
    return visit.key.date == key.date && visit.key.number == key.number &&
           (visit.key.user == key.user || event.kind != Event::Kind::CollectionForgotten);
}

}  // namespace

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
    switch (event.kind) {
        case KeySales:
        case KeySupply:
        case KeyVat: hasKeyedSales_ = true; break;
        case TookWorth: hasTakenWorth_ = true; break;
        case KeptRecovery: hasKeyedRecovery_ = true; break;
        case GoneOn: goneOn(event); break;
        case OpenCollection:
            hadKeyedSales_ = hasKeyedSales_ || wasKeyedSales_;
            hadKeyedRecovery_ = hasKeyedRecovery_ || wasKeyedRecovery_;
            // What was keyed before it was saved counts too, when that is taken back.
            wasKeyedSales_ = keyedSales_.contains(event.visit);
            wasKeyedRecovery_ = keyedRecovery_.contains(event.visit);
            hadTakenWorth_ = hasTakenWorth_;
            before_ = left_;
            hasKeyedSales_ = hasKeyedRecovery_ = hasTakenWorth_ = false;
            opened(before, event);
            break;
        case Card:
        case Cash:
        case Credit:
        case KeyRecovery:
        case KeyEarlier: settling(event); break;
        default: break;
    }
    if (event.mode != 6) left_ = event.shown;
}

void Judge::settling(const Event& event) {
    using enum Event::Kind;
    const bool isKeyed = event.kind == KeyRecovery || event.kind == KeyEarlier;
    hasKeyedRecovery_ |= event.kind == KeyRecovery;
    // What is divided around an approved card is the screen's.
    if (event.isRefused || event.isApproved) return;
    const bool hasNothing = !isKeyed && event.before.total() == 0 && event.before.recovery == 0;
    const Amounts want = hasNothing ? event.before : settled(event.kind, event.keyed, event.before);
    if (event.shown == want) return;
    const bool hadExcess = event.kind == KeyRecovery && withoutExcess(event.before) != event.before;
    found(hasNothing  ? Rule::NothingToSettle
          : hadExcess ? Rule::Excess
                      : Rule::Settle,
          "must show: " + words(want) + "; shows: " + words(event.shown));
}

// A collection that was left and opens again.
void Judge::goneOn(const Event& event) {
    hasKeyedSales_ = event.isSame && hadKeyedSales_;
    hasKeyedRecovery_ = hadKeyedRecovery_;
    hasTakenWorth_ = hadTakenWorth_;
    const Amounts& shown = event.shown;
    // A sale that has changed is settled in the same way; what does not depend on it stays.
    const bool isKept = event.isSame ? shown == before_
                                     : shown.recovery == before_.recovery &&
                                           shown.earlier == before_.earlier && shown.other == before_.other;
    if (!isKept) found(Rule::Kept, "left with: " + words(before_) + "; shows: " + words(shown));
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
    if (event.kind != Event::Kind::Closed) return;
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
    if (event.kind != Event::Kind::Numbered) return;
    const char* const first = event.mode == 1 ? "5001" : event.mode == 3 ? "6001" : "7001";
    std::string highest;
    const auto look = [&](const auto& rows) {
        for (const auto& row : rows) {
            if (row.visit.key.date == event.visit.key.date) highest = std::max(highest, row.visit.key.number);
        }
    };
    if (event.mode == 1) look(before.goods);
    if (event.mode == 3) look(before.empties);
    if (event.mode == 2 || event.mode == 6) look(before.collections);
    const int next = highest.empty() ? 0 : std::stoi(highest) + 1;
    // A simple payment's number is 7000 or more, a collection's too.
    std::string want = next >= std::stoi(first) - 1 ? std::to_string(next) : first;
    // An open payment's number is given to nobody.
    const auto isOpen = [&](const Payment& payment) {
        return payment.open() && payment.visit.key.date == event.visit.key.date &&
               payment.visit.key.number == want;
    };
    while (event.mode != 1 && event.mode != 3 && std::ranges::any_of(before.payments, isOpen))
        want = std::to_string(std::stoi(want) + 1);
    if (event.visit.key.number != want)
        found(Rule::Numbers, "must be " + want + ", is " + event.visit.key.number);
}

void Judge::tables(Page before, const Event& event, const Page& after) {
    using enum Event::Kind;
    Page want = std::move(before);
    rowRule_ = Rule::Nothing;
    if (!event.isRefused) {
        switch (event.kind) {
            case SaleSaved: saleSaved(want, event, after); break;
            case OfficeLoaded:
                want.goods.insert(want.goods.end(), event.goods.begin(), event.goods.end());
                std::ranges::sort(want.goods);
                break;
            case SaleDeleted: saleDeleted(want, event); break;
            case CollectionSaved: collectionSaved(want, event); break;
            case CollectionBack: collectionBack(want, event, after); break;
            case UnpaidBack: unpaidBack(want, event); break;
            case ApprovalBack:
                for (const Payment& payment : std::vector(want.payments)) {
                    if (event.answers.contains(payment.message)) approvedLater(want, payment, after);
                }
                std::ranges::sort(want.collections);
                want.payments = after.payments;
                break;
            case CollectionDeleted:
                mayDelete(want, event);
                eraseOfAll(want.collections, event.visit.key);
                break;
            case CollectionForgotten:
                mayDelete(want, event);
                // What was keyed is still on the screen.
                hasKeyedSales_ |= keyedSales_.contains(event.visit);
                hasKeyedRecovery_ |= keyedRecovery_.contains(event.visit);
                erase(want.collections, event.visit.key);
                break;
            case EmptiesSaved:
            case EmptiesDeleted: emptiesChanged(want, event, after); break;
            case PaymentSent: paymentSent(want, event, after); break;
            case Inquired: inquired(want, event, after); break;
            default: break;
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
    // The office may have brought an order under a number that the terminal had given before.
    if (taken && find(want.goods, visit) == nullptr) found(Rule::TakenNumber, words(visit) + " was saved");
    Won sales = payable(want, visit);
    Won deposits = depositsOf(want, visit);
    const Collection* const row = find(want.collections, visit);
    if (row != nullptr && find(want.goods, visit) == nullptr && !event.goods.empty() &&
        orphans_.erase(visit) > 0) {
        // The collection that outlived its sale is this one's now.
        sales = row->amounts.sales;
        deposits = row->amounts.deposits;
        keyedSales_.erase(visit);
    }
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
    if (at == want.collections.end() || at->isSimple || (sales == 0 && deposits == 0)) return;
    const auto moved = [&](Amounts amounts) {
        // Without a total nothing was unpaid, whatever was due.
        const bool hadNoTotal = amounts.total() < 1;
        amounts.sales += sales;
        amounts.deposits += deposits;
        amounts.unpaid += sales + deposits;
        if (hadNoTotal && amounts.total() >= 1) amounts.unpaid = amounts.due() - amounts.card - amounts.cash;
        return amounts;
    };
    const auto replaced = replacing_.find(event.visit);
    if (replaced != replacing_.end() && replaced->second.collection)
        replaced->second.collection->amounts = moved(replaced->second.collection->amounts);
    const Amounts before = std::exchange(at->amounts, moved(at->amounts));
    Amounts& is = at->amounts;
    const Collection* const row = find(after.collections, event.visit);
    if (row != nullptr && (before.due() < 0 || is.due() < 0) && row->amounts.total() == is.total() &&
        row->amounts.effect() - before.effect() == sales + deposits) {
        is = row->amounts;
    }
    // Nothing is left of it, nor of what was booked as excess.
    const bool isBooked = withoutExcess(before) != before && -before.effect() == sales + deposits;
    if (row == nullptr && is.total() == 0 && is.recovery == 0 && is.card == 0 &&
        (isBooked || (is.unpaid == 0 && is.earlier == 0 && is.cash == 0))) {
        want.collections.erase(at);
    }
}

// What a deletion must have asked before: of everybody's rows, and on the screen of the user's own.
void Judge::mayDelete(const Page& page, const Event& event) {
    for (const Payment& payment : page.payments) {
        if (isUnder(payment.visit, event) && payment.open())
            found(Rule::DeleteOpen, words(payment.visit) + " went with its open payment");
    }
    const bool isApproved = std::ranges::any_of(page.collections, [&](const Collection& row) {
        return isUnder(row.visit, event) && !row.approval.empty();
    });
    if (isApproved && !event.hasCardQuestion && event.kind != Event::Kind::EmptiesDeleted)
        found(Rule::CardQuestion, words(event.visit) + " went without the question");
}

void Judge::saleDeleted(Page& want, const Event& event) {
    mayDelete(want, event);
    const Key& key = event.visit.key;
    eraseOfAll(want.goods, key);
    if (!event.hasCardQuestion || event.isCardConfirmed) {
        eraseOfAll(want.collections, key);
        eraseOfAll(want.empties, key);
    } else {
        // Who declines the card question keeps the collection without its sale.
        for (const Collection& row : want.collections)
            if (isUnder(row.visit, event)) orphans_.insert(row.visit);
    }
    rowRule_ = Rule::Row;
}

void Judge::collectionSaved(Page& want, const Event& event) {
    const Visit& visit = event.visit;
    const Amounts& a = event.shown;
    if (!event.isApproved && (a.card != 0 || a.cash != 0) && a.card + a.cash + a.unpaid != a.due())
        this->found(Rule::RefuseDifference, words(visit) + " " + words(a));
    const Collection* const found = find(want.collections, visit);
    const std::optional<Collection> old = found != nullptr ? std::optional(*found) : std::nullopt;
    // What waits for its card has taken the place of something itself, which is what comes back.
    const bool isWaiting = old && old->amounts.card > 0 && old->approval.empty() &&
                           !byCollectionWork_.contains(visit) && replacing_.contains(visit);
    if (!isWaiting)
        replacing_[visit] = {old, byCollectionWork_.contains(visit), keyedSales_.contains(visit),
                             keyedRecovery_.contains(visit)};
    Collection row{visit, a, old ? old->approval : "", old && old->isSimple};
    std::erase_if(want.collections, [&visit](const Collection& own) { return own.visit == visit; });
    want.collections.push_back(row);
    std::ranges::sort(want.collections);
    note(&byCollectionWork_, visit, event.mode == 2 || event.mode == 3);
    // A keyed amount that a collection has opened with is still keyed.
    note(&keyedSales_, visit, hasKeyedSales_ || (keyedSales_.contains(visit) && old));
    note(&keyedRecovery_, visit,
         hasKeyedRecovery_ || (keyedRecovery_.contains(visit) && old && !hasTakenWorth_));
    rowRule_ = Rule::Row;
}

// The collection that the visit's last settlement took the place of, with what is known of it.
void Judge::putBack(Page& want, const Visit& visit) {
    const auto at = replacing_.find(visit);
    if (at == replacing_.end() || !at->second.collection) return;
    want.collections.push_back(*at->second.collection);
    knowAgain(visit);
}

// What was known of the collection that is back.
void Judge::knowAgain(const Visit& visit) {
    const auto at = replacing_.find(visit);
    note(&byCollectionWork_, visit, at->second.isByCollectionWork);
    note(&keyedSales_, visit, at->second.hasKeyedSales);
    note(&keyedRecovery_, visit, at->second.hasKeyedRecovery);
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
        const auto replaced = replacing_.find(event.visit);
        const bool isBack = replaced != replacing_.end() && replaced->second.collection &&
                            std::ranges::count(after.collections, *replaced->second.collection) > 0;
        if (isBack) knowAgain(event.visit);
        return;
    }
    erase(want.collections, event.visit.key);
    putBack(want, event.visit);
    std::ranges::sort(want.collections);
    rowRule_ = Rule::Row;
}

void Judge::unpaidBack(Page& want, const Event& event) {
    for (const Visit& visit : event.takenBack) {
        erase(want.collections, visit.key);
        putBack(want, visit);
    }
    std::ranges::sort(want.collections);
    rowRule_ = Rule::CardApproved;
}

// The recovery follows what the empties are worth; what was paid stays. Where empties exceed the total before
// or after, what was booked as excess may move.
void Judge::moveRecovery(Collection* row, Won difference, const Page& after) {
    Amounts moved = row->amounts;
    moved.recovery += difference;
    if (moved.total() >= 1) moved.unpaid -= difference;
    const Collection* const is = find(after.collections, row->visit);
    if (is != nullptr && (row->amounts.due() < 0 || moved.due() < 0) &&
        is->amounts.total() == moved.total() && is->amounts.recovery == moved.recovery &&
        is->amounts.card == moved.card && is->amounts.effect() - row->amounts.effect() == -difference) {
        moved = is->amounts;
    }
    row->amounts = moved;
}

// A container slip that goes takes the recovery of its collection along, keyed or not; what was paid stays.
// One that changes moves it where it was what the slip is worth.
void Judge::emptiesChanged(Page& want, const Event& event, const Page& after) {
    const std::vector<Empties> before = want.empties;
    if (event.kind == Event::Kind::EmptiesDeleted) {
        mayDelete(want, event);
        eraseOfAll(want.empties, event.visit.key);
    } else {
        std::erase_if(want.empties, [&event](const Empties& line) { return line.visit == event.visit; });
        want.empties.insert(want.empties.end(), event.empties.begin(), event.empties.end());
        std::ranges::sort(want.empties);
    }
    const auto change = [&](Collection& row) {
        const Won was = worth(before, row.visit);
        const Won is = worth(want.empties, row.visit);
        const bool isGone = find(before, row.visit) != nullptr && find(want.empties, row.visit) == nullptr;
        if (row.isSimple) return;
        if (isGone) {
            withoutRecovery(&row.amounts);
        } else if (row.amounts.recovery == was && is != was) {
            moveRecovery(&row, is - was, after);
        }
    };
    for (Collection& row : want.collections) {
        change(row);
        const auto replaced = replacing_.find(row.visit);
        if (replaced != replacing_.end() && replaced->second.collection) change(*replaced->second.collection);
    }
    std::erase_if(want.collections, [](const Collection& row) {
        const Amounts& a = row.amounts;
        return row.approval.empty() && a.total() == 0 && a.card == 0 && a.cash == 0 && a.earlier == 0 &&
               a.recovery == 0 && a.other == 0;
    });
    std::ranges::sort(want.collections);
    rowRule_ = Rule::Worth;
}

}  // namespace days
