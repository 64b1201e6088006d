// What the judge says of payments, and of the whole page.
#include <algorithm>
#include <utility>

#include "Judge.h"
#include "Rows.h"

namespace days {

namespace {

// The customers of simple payments without one have no balance.
constexpr auto kUnregistered = "XXXX";

bool isOfDayAndCustomer(const Visit& a, const Visit& b) {
    return a.key.date == b.key.date && a.key.user == b.key.user && a.customer == b.customer;
}

// Supply and tax of a row are judged by the VAT rule, and follow the salesman's keys otherwise.
std::vector<Collection> comparable(std::vector<Collection> rows) {
    for (Collection& row : rows) {
        row.amounts.supply = row.amounts.vat = row.amounts.other = 0;
        row.isSum = true;
    }
    std::ranges::sort(rows);
    return rows;
}

}  // namespace

// The journal's row of the payment; null where it has none.
const Payment* Judge::amountsOf(const Page& want, const Event& event, const Page& after) {
    const Visit& visit = event.visit;
    const Won shown = event.shown.card != 0 ? event.shown.card : event.shown.cash;
    const Payment* kept = nullptr;
    for (const Payment& payment : after.payments) {
        if (payment.visit == visit && !hasMessage(want, payment.message)) kept = &payment;
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
    return kept;
}

void Judge::paymentSent(Page& want, const Event& event, const Page& after) {
    const Visit& visit = event.visit;
    for (const Payment& payment : want.payments) {
        if (payment.open() && payment.visit.customer == visit.customer)
            found(Rule::OneOpen, words(payment.visit) + " was open when " + words(visit) + " was sent");
        // A simple payment has a number of its own each time, but for a customer who is not registered.
        const bool isDeleted = std::ranges::find(want.collections, payment.approval, &Collection::approval) ==
                               want.collections.end();
        const bool isHisSimple = event.mode == 6 && simple_.contains(payment.message) && isDeleted &&
                                 isOfDayAndCustomer(payment.visit, visit) && visit.customer != kUnregistered;
        // So has a sale that was deleted and written again, whoever writes it.
        const bool isHisSale = !simple_.contains(payment.message) && isDeleted &&
                               payment.visit.key.date == visit.key.date &&
                               payment.visit.customer == visit.customer;
        if (payment.state == "approved" && (payment.visit == visit || isHisSimple || isHisSale) &&
            !event.isTold)
            found(Rule::ApprovalTold, words(visit) + " was paid with " + payment.approval);
    }
    const Payment* const kept = amountsOf(want, event, after);
    const Collection* const row = find(after.collections, visit);
    if (kept != nullptr) {
        totals_[kept->message] = payable(want, visit) + depositsOf(want, visit);
        settledTotals_[kept->message] = event.shown.total();
        if (keyedSales_.contains(visit)) keyedSalesOf_.insert(kept->message);
        if (keyedRecovery_.contains(visit)) keyedRecoveryOf_.insert(kept->message);
        if (event.mode == 6) simple_.insert(kept->message);
        if (event.charged) {
            Charge charge = *event.charged;
            charge.visit = visit;
            charge.message = kept->message;
            charges_.push_back(charge);
        }
    }
    if (kept != nullptr && (event.charged && event.isAnswered) != (kept->state == "approved"))
        found(Rule::Journal, words(visit) + " is " + kept->state + " after the answer");
    if (event.charged && event.isAnswered) {
        for (Collection& own : want.collections)
            own.approval = own.visit == visit ? event.charged->approval : own.approval;
        if (event.mode == 6 && row != nullptr) {  // its row comes with the approval
            want.collections.push_back(*row);
            std::ranges::sort(want.collections);
        }
    }
    want.payments = after.payments;
    rowRule_ = Rule::Row;
}

// Each open payment becomes what the host says of it, and the slips of the approved follow.
void Judge::inquired(Page& want, const Event& event, const Page& after) {
    const std::vector<Payment> asked = std::exchange(want.payments, after.payments);
    for (const Payment& payment : asked) {
        const auto answer = event.answers.find(payment.message);
        if (answer == event.answers.end()) continue;
        const bool isApproved = answer->second == Event::Answer::Approved;
        const auto kept = std::ranges::find(after.payments, payment.message, &Payment::message);
        if (kept == after.payments.end() || kept->open() || (kept->state == "approved") != isApproved)
            found(Rule::Journal, words(payment.visit) + " is not what the host said");
        if (isApproved) approvedLater(want, payment, after);
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
        if (keyedSalesOf_.contains(payment.message)) keyedSales_.insert(row->visit);
        if (keyedRecoveryOf_.contains(payment.message)) keyedRecovery_.insert(row->visit);
    };
    // Keyed sales amounts move with the sale.
    const Won moved = settledTotals_[payment.message] + present - totals_[payment.message];
    // What stands there on credit is paid.
    const Collection* const own = find(want.collections, visit);
    const bool isCredit = own != nullptr && own->amounts.card == 0 && own->amounts.cash == 0;
    const Won total =
        isThere && isCredit && row->amounts.total() == own->amounts.total() ? row->amounts.total() : moved;
    if (isSame || (isThere && row->visit == visit && row->amounts.total() == total &&
                   std::max(row->amounts.card, row->amounts.cash) == payment.amount)) {
        if (isThere) {
            adopt();
        } else {
            found(Rule::Lost, words(visit) + " was approved and its slip does not say so");
        }
    } else if (!isThere) {
        credited_[visit.customer] += payment.amount;
    } else if (row->amounts.total() == 0 && row->effect() == -payment.amount) {
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
            if (find(now, row.visit) == nullptr) moved.insert(row.visit);
        }
    };
    look(want.collections, after.collections);
    look(want.empties, after.empties);
    // What is known of such a row is known under its new number: that it was a collection work's, and what it
    // has taken the place of.
    for (const Collection& row : want.collections) {
        if (!moved.contains(row.visit)) continue;
        for (const Collection& now : after.collections) {
            if (now.visit.customer != row.visit.customer || now.amounts != row.amounts ||
                find(want.collections, now.visit) != nullptr)
                continue;
            if (byCollectionWork_.contains(row.visit)) byCollectionWork_.insert(now.visit);
            if (const auto at = replacing_.find(row.visit); at != replacing_.end()) {
                Replaced replaced = at->second;
                if (replaced.collection) replaced.collection->visit = now.visit;
                replacing_[now.visit] = replaced;
            }
        }
    }
    const auto goods = difference(want.goods, after.goods);
    const auto empties = difference(numberless(want.empties, moved), numberless(after.empties, moved));
    const auto rows = difference(numberless(comparable(want.collections), moved),
                                 numberless(comparable(after.collections), moved));
    if (!goods.empty()) found(Rule::Lines, goods);
    if (!empties.empty()) found(Rule::Empty, empties);
    if (!rows.empty()) found(rowRule_, rows);
    for (const Payment& payment : want.payments) {
        const auto kept = std::ranges::find(after.payments, payment.message, &Payment::message);
        const bool isThere = kept != after.payments.end();
        if (!isThere || std::tie(kept->state, kept->amount, kept->approval) !=
                            std::tie(payment.state, payment.amount, payment.approval))
            found(Rule::Journal, words(payment.visit) + " was " + payment.state + ", is " +
                                     (isThere ? kept->state : "gone"));
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
    for (const auto& [customer, won] : credited_) moves[customer] -= won;
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

// What does not agree on a collection.
void Judge::brokenOn(const Page& page, const Collection& row, Broken* all) const {
    const Amounts& a = row.amounts;
    const bool hasSale = find(page.goods, row.visit) != nullptr;
    const std::string& number = row.visit.key.number;
    // What was found under a number given twice stands alone, as does what outlived its sale or was received
    // without one.
    const bool isReceived = !row.approval.empty() && a.total() == 0 && row.effect() == -(a.card + a.cash);
    const bool isAlone = row.isSimple || (!hasSale && isReceived) || (number > "4000" && number < "4999") ||
                         (!hasSale && orphans_.contains(row.visit));
    const Won present = payable(page, row.visit) + depositsOf(page, row.visit);
    if (!isAlone && !keyedSales_.contains(row.visit) && a.total() != present)
        all->insert({Rule::SettledTotal, words(row) + ", the sale is " + std::to_string(present)});
    if (!isAlone && !keyedRecovery_.contains(row.visit) && a.recovery != worth(page.empties, row.visit))
        all->insert(
            {Rule::Worth, words(row) + " took back " + std::to_string(worth(page.empties, row.visit))});
    if (hasSale && a.vat != a.sales - a.supply)
        all->insert({Rule::Vat, words(row) + " VAT " + std::to_string(a.vat)});
    const Won paid = a.card + a.cash + a.unpaid;
    const bool foots = a.total() < 1 || paid == a.due() || (a.due() < 0 && paid == 0);
    if ((!foots && !row.isSimple) || !row.isSum) all->insert({Rule::Foots, words(row)});
    if (lacksApproval(page, row)) all->insert({Rule::CardApproved, words(row)});
}

// What does not agree on a page, by rule and visit.
Judge::Broken Judge::broken(const Page& page) const {
    Broken all;
    std::map<std::string, int> approvals;
    for (const Collection& row : page.collections) {
        brokenOn(page, row, &all);
        if (!row.approval.empty() && ++approvals[row.approval] > 1)
            all.insert({Rule::Doubled, row.approval + " stands twice"});
    }
    for (const Charge& charge : charges_) {
        const auto kept = std::ranges::find(page.payments, charge.message, &Payment::message);
        if (kept == page.payments.end() || (kept->state != "approved" && !kept->open()))
            all.insert({Rule::Lost, words(charge.visit) + " charged " + std::to_string(charge.amount)});
    }
    return all;
}

}  // namespace days
