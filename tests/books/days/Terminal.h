#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Device.h"
#include "Judge.h"
#include "books/OpenPayments.h"
#include "books/TransactionRecord.h"
#include "collect/CollectionEntry.h"
#include "platform/Rows.h"
#include "sales/SlipLine.h"

namespace days {

enum class Tap {
#define TAP(tap, name, weight, screen) tap,
#include "Taps.h"
#undef TAP
    Count
};

/// The dialogs, by their ids, and where a step can be done that none is named for.
enum class Screen {
    Any,
    Open,  ///< Any dialog but the menu.
    Menu = 102,
    Simple = 104,
    SaleList = 132,
    Sale = 134,
    CollectionList = 150,
    EmptiesList = 391,
    Empties = 394,
    Card = 449,
    Entry = 450
};

/// One step of a day. What it chooses follows from its numbers and from what is there, so a step means much
/// the same when others before it are left out.
struct Action {
    Tap tap = Tap::Back;
    unsigned pick = 0;
    unsigned amount = 0;
};

/// What becomes of a request to the host. The question about a payment is answered or gets no answer.
enum class Fate {
    Approved,
    AlsoApproved,
    Refused,
    LostRequest,
    LostAnswer,
    NoLink,
    KilledBefore,
    KilledAfter
};

/// What a hand has to do on the real screens for the step just made, and what the host does meanwhile.
struct Hand {
    int row = 0;                      ///< In the list, from 1; 0 where nothing is chosen.
    QString code;                     ///< The customer, product or card.
    QStringList keyed;                ///< On the keypad, field by field; empty where none opens.
    std::map<QString, bool> answers;  ///< To the questions with these captions; yes to all others.
    std::vector<Fate> host;           ///< Of each request in their order.
    std::optional<Fate> paid;         ///< Of these, that of a payment.
    std::optional<Goods> order;       ///< The office's.
};

/// The host of a random day: what it has decided about each message, for ever.
class Host {
  public:
    struct Decision {
        bool isCharged = false;
        bool isRefused = false;  ///< Else it has never come.
        Won amount = 0;
        std::string approval;
    };
    const Decision& decide(const std::string& message, Won amount, bool charges);
    /// Decides about a message that never came that it will be refused.
    const Decision& recall(const std::string& message) { return decisions_[message]; }

  private:
    std::map<std::string, Decision> decisions_;
    int approvals_ = 0;
};

/// A terminal without widgets: the stores and rules in the order in which the screens call them, on a
/// database of its own. It says what was done, never what should come of it.
class Terminal {
  public:
    using Listener = std::function<void(const Event&)>;

    /// An empty day with its customers and products.
    void begin(Listener listener);
    bool can(Tap tap) const;
    /// Does the step and returns it in words; nothing where it means nothing here.
    std::string tap(const Action& action);
    Page page() { return device_.page(); }
    bool isAtMenu() const { return screens_.empty(); }
    /// The dialog in front, by its id.
    int dialog() const { return int(front()); }
    const Hand& hand() const { return hand_; }
    const QString& user() const { return user_; }
    const QString& date() const { return date_; }

  private:
    Screen front() const { return isAtMenu() ? Screen::Menu : screens_.back(); }
    bool isAt(Screen screen) const { return front() == screen; }
    void menu(int mode, Screen screen);
    void back();
    void login(unsigned pick, bool isOtherDay);
    void kill();
    void loadOrder(unsigned pick);
    void openSimple(unsigned pick);
    void closeDay(unsigned pick);
    std::string menuTap(const Action& action);
    std::string backTap();
    bool chooseFromList(unsigned pick);
    bool chooseCustomer(unsigned pick);
    std::string listTap(const Action& action);
    std::string goodsTap(const Action& action);
    std::string emptiesTap(const Action& action);
    std::string entryTap(const Action& action);
    std::string cardTap(const Action& action);
    std::string simpleTap(const Action& action);
    void paySale(unsigned pick);
    void deleteChosen(Event::Kind kind, const Action& action);
    std::string addGoods(const Action& action, const platform::Rows& lines);
    bool saveSale();
    void finishSale();
    void openSale();
    void openEmpties();
    void finishEmpties();
    void openEntry(unsigned pick);
    void loadEntry(unsigned pick);
    bool finishEntry(unsigned pick);
    bool forgetCollection(unsigned pick);
    bool isPaymentSettled(unsigned pick);
    bool isApprovalPutBack(unsigned pick);
    void takeApproval(unsigned pick);
    void openCard();
    bool isPaymentFree(unsigned pick);
    void swipe(unsigned pick);
    books::JournalPayment journalPayment() const;
    void backFromCard();
    void finishCard();
    void inquire(unsigned pick);
    books::PaymentAnswer askAboutSlip(unsigned pick, const QString& user);
    void takeBackUnpaid();
    bool mayDelete(unsigned pick);
    bool mayDeletePayments(Event* deleted, bool isPaid, unsigned pick);
    /// Notes how a question is answered.
    bool answer(QStringView caption, bool isYes);
    Event event(Event::Kind kind) const;
    void tell(const Event& event) { listener_(event); }
    Amounts shown() const;
    Visit visit() const;
    std::vector<Goods> draft();
    std::vector<Empties> returns();
    Won amountFrom(const Action& action) const;

    Device device_;
    Hand hand_;
    Listener listener_;
    Host host_;
    int messages_ = 0;
    bool isFaultArmed_ = false;

    // What a kill takes.
    std::vector<Screen> screens_;
    QString user_, date_;
    int mode_ = 0;
    QString customer_, number_, state_, kind_;
    collect::CollectionEntry::Handover handover_;
    collect::CollectionEntry entry_;  ///< Its amounts are the simple payment's, too.
    bool hasUnsavedLines_ = false, isTold_ = false;
    books::SettlementAmounts charged_;  ///< The record of the card dialog.
    std::string payment_;               ///< The number of its exchange.
    bool isPaid_ = false;
};

/// What is fixed for a step, see Taps.h.
struct Step {
    const char* name;
    double weight;
    Screen screen;
};
const Step& stepOf(Tap tap);
inline const char* name(Tap tap) {
    return stepOf(tap).name;
}

inline std::string text(const QString& from) {
    return from.toStdString();
}

}  // namespace days
