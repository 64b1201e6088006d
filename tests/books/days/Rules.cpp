#include "Judge.h"
#include "Rows.h"

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
    {Rule::Kept, "a settlement that was left shows what was keyed when it opens again"},
    {Rule::NothingToSettle, "where nothing is to be settled the buttons leave a keyed payment alone"},
    {Rule::Foots, "a settlement foots: total = card, cash, unpaid and recovery"},
    {Rule::Lost, "what the host charged, the journal has as approved or asks about"},
    {Rule::Doubled, "an approval stands on one collection"},
    {Rule::Journal, "the journal keeps every payment as the host answered it"},
    {Rule::Closing, "a close says what the collections of its day and user come to"},
    {Rule::Nothing, "what has nothing to do with a table leaves it alone"},
};

static_assert(std::size(kRuleWords) == static_cast<std::size_t>(Rule::Count));

const char* words(Rule rule) {
    return kRuleWords[static_cast<int>(rule)].words;
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
