#pragma once

#include <optional>
#include <set>

#include "Page.h"

namespace days {

enum class Rule {
#define RULE(rule, words) rule,
#include "RuleWords.h"
#undef RULE
};
const char* words(Rule rule);

/// What the hand and the host have done, as far as it bears on the books.
struct Event {
    enum class Kind {
        Screen,  ///< only a screen changed
        OpenCollection,
        GoneOn,        ///< it shows what was keyed when it was left
        TookWorth,     ///< the recovery is what the container slip is worth
        KeptRecovery,  ///< the question for the containers' worth was answered with no
        KeySales,
        KeySupply,
        KeyVat,
        KeyOther,
        KeyRecovery,
        KeyEarlier,
        Card,
        Cash,
        Credit,
        Numbered,
        OfficeLoaded,  ///< the office's orders
        SaleSaved,
        SaleDeleted,
        CollectionSaved,
        CollectionBack,       ///< what an unapproved payment had booked was taken back
        UnpaidBack,           ///< the same of every visit that no payment is open for
        ApprovalBack,         ///< an approval that the journal knows was put back on its slip
        CollectionDeleted,    ///< list: of every salesman
        CollectionForgotten,  ///< on the screen: the user's own
        EmptiesSaved,
        EmptiesDeleted,
        PaymentSent,
        Inquired,
        Closed
    };
    Kind kind = Kind::Screen;
    Visit visit;
    int mode = 1;            // 1 sales, 2 collection, 3 containers, 6 simple payment
    bool isRefused = false;  ///< the screen said no and stayed
    std::vector<Goods> goods;
    std::vector<Empties> empties;
    Amounts before, shown;  ///< the collection screen around the event
    Won keyed = 0;
    bool hasCardQuestion = false, isCardConfirmed = false;
    bool isTold = false;      ///< that the journal knows an approval for it
    bool isApproved = false;  ///< the collection on the screen has an approval
    bool isAtMenu = false;    ///< no screen is open any more
    bool isSame = false;      ///< the sale is as it was when the collection was left
    /// An exchange.
    Won asked = 0;
    std::optional<Charge> charged;  ///< what the host did
    bool isAnswered = false;
    /// A close: expected cash, card and unpaid.
    std::vector<Won> figures;
    /// Of each open payment that was asked about: what the host said.
    enum class Answer { Approved, NotCharged };
    std::map<std::string, Answer> answers;
    std::vector<Visit> takenBack;
};

struct Finding {
    Rule rule;
    std::string what;
};

/// Says after each event what must be on the page. It starts from the page as it is, so that a broken rule is
/// told once, and remembers what no table holds: what was keyed, what a settlement replaced, what the host
/// charged.
class Judge {
  public:
    /// `vatMode`: the salesman's rounding of the payable total, by user.
    explicit Judge(std::map<std::string, std::string> vatModes) : vatModes_(std::move(vatModes)) {}

    std::vector<Finding> judge(const Page& before, const Event& event, const Page& after);

  private:
    using Broken = std::set<std::pair<Rule, std::string>>;

    /// What a settlement took the place of.
    struct Replaced {
        std::optional<Collection> collection;
        bool isByCollectionWork = false, hasKeyedSales = false, hasKeyedRecovery = false;
    };

    void screen(const Page& before, const Event& event);
    void settling(const Event& event);
    void opened(const Page& before, const Event& event);
    void goneOn(const Event& event);
    void closed(const Event& event, const Page& after);
    void number(const Page& before, const Event& event);
    void tables(Page before, const Event& event, const Page& after);
    void saleSaved(Page& want, const Event& event, const Page& after);
    void moveCollection(Page& want, const Event& event, const Page& after, Won sales, Won deposits);
    void mayDelete(const Page& page, const Event& event);
    void saleDeleted(Page& want, const Event& event);
    void collectionSaved(Page& want, const Event& event);
    void putBack(Page& want, const Visit& visit);
    void knowAgain(const Visit& visit);
    void collectionBack(Page& want, const Event& event, const Page& after);
    void unpaidBack(Page& want, const Event& event);
    void emptiesChanged(Page& want, const Event& event, const Page& after);
    static void moveRecovery(Collection* row, Won difference, const Page& after);
    void paymentSent(Page& want, const Event& event, const Page& after);
    const Payment* amountsOf(const Page& want, const Event& event, const Page& after);
    void inquired(Page& want, const Event& event, const Page& after);
    void approvedLater(Page& want, const Payment& payment, const Page& after);
    bool lacksApproval(const Page& page, const Collection& row) const;
    void compare(const Page& want, const Page& after);
    void balances(const Page& before, const Page& after);
    void brokenOn(const Page& page, const Collection& row, Broken* all) const;
    Broken broken(const Page& page) const;
    Won payable(const Page& page, const Visit& visit) const;
    void found(Rule rule, std::string what) { findings_.push_back({rule, std::move(what)}); }

    std::map<std::string, std::string> vatModes_;
    std::vector<Charge> charges_;
    std::set<Visit> keyedSales_, keyedRecovery_, byCollectionWork_;
    bool hasKeyedSales_ = false, hasKeyedRecovery_ = false, hasTakenWorth_ = false;  ///< on the screen
    bool hadKeyedSales_ = false, hadKeyedRecovery_ = false, hadTakenWorth_ = false;  ///< the time before
    bool wasKeyedSales_ = false, wasKeyedRecovery_ = false;  ///< on the saved one as it opened
    Amounts left_;                                           ///< What the collection screen showed last.
    Amounts before_;
    std::map<Visit, Replaced> replacing_;
    std::map<std::string, Won> totals_;                     ///< of the sale, when its payment was sent
    std::map<std::string, Won> settledTotals_;              ///< of the collection then
    std::set<std::string> keyedSalesOf_, keyedRecoveryOf_;  ///< the same by the number of the exchange
    std::set<std::string> simple_;                          ///< numbers of exchanges without a sale
    std::map<std::string, Won> credited_;                   ///< received without a sale, by customer
    Broken told_;
    std::set<Visit> orphans_;  ///< whose sale went while the card question kept them
    std::vector<Finding> findings_;
    Rule rowRule_ = Rule::Row;
};

/// What an amount button makes of the screen's amounts.
Amounts settled(Event::Kind kind, Won keyed, Amounts amounts);
/// The settlement without what its last keyed recovery or settling button had booked beyond the total.
Amounts withoutExcess(Amounts amounts);
/// Supply and VAT as they are to be paid, rounded by the salesman's mode.
Won payableTotal(Won supply, Won vat, const std::string& mode);

}  // namespace days
