#pragma once

#include "Page.h"

#include <optional>
#include <set>

namespace days {

// The rules by which a page is judged. Each has a number of words in `kRuleWords`.
enum class Rule {
    Lines,            // goods
    Empty,            // empties
    Numbers,          // of new slips
    Row,              // of a collection
    Balance,          // 1
    SettledTotal,     // 2
    SaleMoves,        // 2
    KeyedSurvives,    // 2
    Worth,            // 3
    CardApproved,     // 4
    OneAmount,        // 5
    RefuseDifference, // 5
    Excess,           // 5 and 6
    ExcessOnce,       // 6
    ApprovalTold,     // 7
    FoundLater,       // 7
    OneOpen,          // 8
    DeleteOpen,       // 8
    CardQuestion,     // 9
    TakenNumber,      // 9
    Vat,              // 10
    Settle,           // amounts of the settling buttons
    NothingToSettle,
    Foots,
    Lost,
    Doubled,
    Nothing, // what must not change anything
    Count
};

struct RuleWords {
    Rule rule;
    const char *words;
};
extern const RuleWords kRuleWords[];
const char *words(Rule rule);

// What the hand and the host have done, as far as it bears on the books.
struct Event {
    enum class Kind {
        Screen, // only a screen changed
        OpenCollection,
        KeySales,
        KeySupply,
        KeyVat,
        KeyOther,
        KeyRecovery,
        KeyEarlier,
        Card,
        Cash,
        Credit,
        SaleNumbered,
        SaleSaved,
        SaleDeleted,
        CollectionSaved,
        CollectionBack,      // what an unapproved payment had booked was taken back
        CollectionDeleted,   // list: of every salesman
        CollectionForgotten, // on the screen: the user's own
        EmptiesSaved,
        EmptiesDeleted,
        PaymentSent,
        Inquired,
        Closed
    };
    Kind kind = Kind::Screen;
    Visit visit;
    int mode = 1;         // 1 sales, 2 collection, 3 containers, 6 simple payment
    bool refused = false; // the screen said no and stayed
    std::vector<Goods> goods;
    std::vector<Empties> empties;
    Amounts before, shown; // the collection screen around the event
    Won keyed = 0;
    bool cardQuestion = false, cardConfirmed = false;
    bool told = false; // that the journal knows an approval for it
    // An exchange.
    Won asked = 0;
    std::optional<Charge> charged; // what the host did
    bool answered = false;
    // Of each open payment that was asked about: what the host said.
    enum class Answer { Silent, Approved, NotCharged };
    std::map<std::string, Answer> answers;
};

struct Finding {
    Rule rule;
    std::string what;
};

// Says after each event what must be on the page. It starts from the page as it is, so that a broken rule is told
// once, and remembers what no table tells: what was keyed, what a settlement replaced, what the host charged.
class Judge {
public:
    // `vatMode`: the salesman's rounding of the payable total, by user.
    explicit Judge(std::map<std::string, std::string> vatModes) : m_vatModes(std::move(vatModes)) {}

    std::vector<Finding> judge(const Page &before, const Event &event, const Page &after);
    const std::vector<Charge> &charges() const { return m_charges; }

private:
    void screen(const Event &event);
    void number(const Page &before, const Event &event);
    void tables(Page before, const Event &event, const Page &after);
    void saleSaved(Page &want, const Event &event, const Page &after);
    void moveCollection(Page &want, const Event &event, const Page &after, Won sales, Won deposits);
    void saleDeleted(Page &want, const Event &event, const Page &after);
    void collectionSaved(Page &want, const Event &event);
    void collectionBack(Page &want, const Event &event);
    void emptiesChanged(Page &want, const Event &event);
    void paymentSent(Page &want, const Event &event, const Page &after);
    void inquired(Page &want, const Event &event, const Page &after);
    void compare(const Page &want, const Page &after);
    void balances(const Page &before, const Page &after);
    std::set<std::pair<Rule, std::string>> broken(const Page &page) const;
    Won payable(const Page &page, const Visit &visit) const;
    void found(Rule rule, std::string what) { m_findings.push_back({rule, std::move(what)}); }

    std::map<std::string, std::string> m_vatModes;
    std::vector<Charge> m_charges;
    std::set<Visit> m_keyedSales, m_keyedRecovery, m_byCollectionWork;
    std::map<std::string, std::optional<Collection>> m_replaced; // by the number of the exchange
    std::map<Visit, std::optional<Collection>> m_replacing;      // by the settlement that is being paid
    std::map<Visit, Won> m_received;                             // approved, without a sale
    std::map<std::string, Won> m_credited;                       // the same, by customer
    std::set<std::string> m_moneyReceived;                       // numbers of exchanges that became that
    std::vector<Finding> m_findings;
    Rule m_rowRule = Rule::Row;
};

// What an amount button makes of the screen's amounts.
Amounts settled(Event::Kind kind, Won keyed, Amounts amounts);
// Supply and VAT as they are to be paid, rounded by the salesman's mode.
Won payableTotal(Won supply, Won vat, const std::string &mode);

} // namespace days
