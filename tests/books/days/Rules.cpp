#include "Judge.h"
#include "Rows.h"

namespace days {

const char* words(Rule rule) {
    constexpr const char* kWords[] = {
#define RULE(rule, words) words,
#include "RuleWords.h"
#undef RULE
    };
    return kWords[int(rule)];
}

std::string words(const Amounts& a) {
    std::string text;
    const auto add = [&text](const char* what, Won won) {
        if (won != 0) text += (text.empty() ? "" : " ") + std::string(what) + " " + std::to_string(won);
    };
    add("sales", a.sales);
    add("deposits", a.deposits);
    add("recovery", a.recovery);
    add("card", a.card);
    add("cash", a.cash);
    add("unpaid", a.unpaid);
    add("earlier", a.earlier);
    return text.empty() ? "nothing" : text;
}

std::string words(const Visit& v) {
    return v.key.date + " " + v.key.number + " " + v.key.user + " " + v.customer;
}

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

bool hasMessage(const Page& page, const std::string& message) {
    return std::ranges::find(page.payments, message, &Payment::message) != page.payments.end();
}

Won worth(const std::vector<Empties>& lines, const Visit& visit) {
    Won sum = 0;
    for (const Empties& line : lines) sum += line.visit == visit ? line.crates + line.deposit : 0;
    return sum;
}

Won depositsOf(const Page& page, const Visit& visit) {
    Won sum = 0;
    for (const Goods& line : page.goods) sum += line.visit == visit ? line.crates + line.deposit : 0;
    return sum;
}

Won payableTotal(Won supply, Won vat, const std::string& mode) {
    if (mode != "2" && mode != "3") return supply + vat;
    const Won unit = mode == "2" ? 10 : 100;
    const Won whole = static_cast<Won>(static_cast<double>(supply) * 1.1);
    const Won rest = whole % unit;
    return rest < unit / 2 ? whole - rest : whole + (unit - rest);
}

// What the last keyed recovery or settling button had booked beyond the total goes first.
Amounts withoutExcess(Amounts a) {
    const Won excess = -a.due();
    if (excess > 0 && a.earlier == excess && (a.bookedByButton() || a.cash == -excess))
        a.earlier = a.cash = 0;
    return a;
}

namespace {

Amounts recoveryKeyed(Won keyed, Amounts a) {
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

}  // namespace

Amounts settled(Event::Kind kind, Won keyed, Amounts a) {
    using enum Event::Kind;
    if (kind == KeyRecovery) return recoveryKeyed(keyed, a);
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

}  // namespace days
