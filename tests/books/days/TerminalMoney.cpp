// Where the terminal takes money: the collection, the card, the simple payment, and the question about
// payments.
#include <utility>

#include "Terminal.h"
#include "books/Charge.h"
#include "books/ContainerBalance.h"
#include "books/OpenPayments.h"
#include "collect/Settlement.h"
#include "collect/SimplePayment.h"
#include "platform/Clock.h"
#include "van/PaymentInquiry.h"

namespace days {

using namespace Qt::Literals::StringLiterals;

// --- the collection

Amounts Terminal::shown() const {
    const books::SettlementAmounts& a = isAt(Screen::Card) ? charged_ : amounts_;
    return {a.sales.value(),   a.supply.value(),
            a.vat.value(),     a.nonLiquor.value(),
            a.deposit.value(), a.containerRecovery.value(),
            a.card.value(),    a.cash.value(),
            a.unpaid.value(),  a.earlierReceivable.value()};
}

void Terminal::openEntry(unsigned pick) {
    screens_.push_back(Screen::Entry);
    loadEntry(pick);
}

/// What the dialog of the collection does when it is made.
void Terminal::loadEntry(unsigned pick) {
    const collect::OpenedEntry entry = collect::openEntry({date_, number_, user_, customer_});
    const auto& saved = entry.saved;
    amounts_ = entry.amounts;
    customer_ = entry.gCode;
    crateDeposit_ = entry.crateDeposit;
    isOthers_ = entry.isOthers;
    isApproved_ = saved && saved->isApproved();
    isSimple_ = saved && saved->isSimplePayment();
    isTold_ = false;
    approvedCard_.reset();
    if (isApproved_) approvedCard_ = amounts_.card;
    auto recovery = std::exchange(handedOver_, std::nullopt);
    const bool isHandedOver = recovery.has_value();
    const bool isMoved = std::exchange(isRecoveryMoved_, false);
    if (!isHandedOver && !isSimple_) recovery = books::savedRecovery(date_, number_, user_, customer_);
    if (isMoved && !amounts_.total.isZero()) collect::keyRecovery(amounts_, amounts_.containerRecovery);
    tell(event(Event::Kind::OpenCollection));
    opened_ = {{date_, number_, user_, customer_}, entry.amounts, {}, std::nullopt};
    opened_.recovery = recovery;
    goOnWithKept(entry);
    if (recovery == amounts_.containerRecovery || recovery == keptRecovery_) recovery.reset();
    const bool isAsked = recovery && !isHandedOver && saved;
    if (recovery && (!isAsked || answer(u"용공회수액", pick % 2 == 0))) {
        collect::takeOverRecovery(amounts_, *recovery, mode_ != 1);
        tell(event(Event::Kind::TookWorth));
    } else if (recovery) {
        tell(event(Event::Kind::KeptRecovery));
    }
    holdCard();
}

/// What the dialog shows of the settlement that was left before.
void Terminal::goOnWithKept(const collect::OpenedEntry& entry) {
    const auto before = std::exchange(kept_, std::nullopt);
    keptRecovery_.reset();
    if (!before || isApproved_ || isSimple_) return;
    const auto goneOn = collect::goOn(*before, opened_.slip, entry, opened_.recovery);
    if (!goneOn) return;
    amounts_ = *goneOn;
    keptRecovery_ = before->recovery;
    Event shownAgain = event(Event::Kind::GoneOn);
    shownAgain.isSame = before->opened == entry.amounts;
    tell(shownAgain);
}

void Terminal::keepSettlement() {
    if (isApproved_ || isSimple_) return;
    opened_.keyed = amounts_;
    kept_ = opened_;
}

void Terminal::holdCard() {
    if (approvedCard_) collect::holdCard(amounts_, *approvedCard_);
}

std::string Terminal::entryTap(const Action& action) {
    using enum Tap;
    const Won keyed = amountFrom(action);
    Event done = event(Event::Kind::Screen);
    done.keyed = keyed;
    done.isApproved = approvedCard_.has_value();
    const auto key = [&](Event::Kind kind, auto rule) {
        done.kind = kind;
        rule(amounts_, platform::Won(keyed));
        holdCard();
    };
    const auto settle = [&](Event::Kind kind, auto rule) {
        // The buttons are disabled.
        if (!collect::hasSomethingToSettle(amounts_)) return;
        done.kind = kind;
        done.isRefused = approvedCard_ && kind == Event::Kind::Card;
        if (done.isRefused) return;
        rule(amounts_);
        holdCard();
    };
    if (isSimple_ && action.tap <= OnCredit) return "(disabled)";
    if (action.tap <= KeyEarlier) hand_.keyed << QString::number(keyed);
    switch (action.tap) {
        case KeySales: key(Event::Kind::KeySales, collect::keySales); break;
        case KeySupply: key(Event::Kind::KeySupply, collect::keySupply); break;
        case KeyVat: key(Event::Kind::KeyVat, collect::keyVat); break;
        case KeyOther: key(Event::Kind::KeyOther, collect::keyNonLiquor); break;
        case KeyRecovery: key(Event::Kind::KeyRecovery, collect::keyRecovery); break;
        case KeyEarlier:
            done.kind = Event::Kind::KeyEarlier;
            collect::keyEarlierReceivable(amounts_, platform::Won(keyed));
            break;
        case ByCard: settle(Event::Kind::Card, collect::settleByCard); break;
        case InCash: settle(Event::Kind::Cash, collect::settleInCash); break;
        case OnCredit: settle(Event::Kind::Credit, collect::settleOnCredit); break;
        case ForgetCollection: return forgetCollection(action.pick) ? words(shown()) : "(refused)";
        default: return finishEntry(action.pick) ? words(done.shown) : "(refused)";
    }
    done.shown = shown();
    tell(done);
    return std::to_string(keyed) + " -> " + words(done.shown);
}

bool Terminal::forgetCollection(unsigned pick) {
    const Answer asked = askAboutSlip(pick / 8, user_);
    if (asked == Answer::Approved) takeApproval(pick);
    if (asked != Answer::Free || (isApproved_ && !answer(u"카드결제된 입금표삭제", pick % 3 != 0)))
        return false;
    Event forgotten = event(Event::Kind::CollectionForgotten);
    forgotten.hasCardQuestion = isApproved_;
    forgotten.isRefused = isOthers_ || !books::removeCollection(date_, number_, user_);
    if (!forgotten.isRefused || isOthers_) {
        isApproved_ = false;
        approvedCard_.reset();
        if (std::exchange(isSimple_, false)) amounts_ = {};
        amounts_.previousReceivable = books::previousReceivable(customer_, date_, number_, user_);
    }
    forgotten.shown = shown();
    tell(forgotten);
    return !forgotten.isRefused;
}

bool Terminal::isPaidOnLine() const {
    return mode_ != 2 && mode_ != 3 && !isApproved_;
}

/// False when the slip may not be settled: its payment is open, or has become known meanwhile.
bool Terminal::isPaymentSettled(unsigned pick) {
    switch (askAboutSlip(pick / 8, user_)) {
        case Answer::Free: return !isApprovalPutBack(pick);
        case Answer::Approved: takeApproval(pick); return false;
        case Answer::Open: break;
    }
    // Credit asks nobody for money twice.
    return amounts_.card.isZero() && amounts_.cash.isZero() && answer(u"카드결제 확인중", pick % 4 != 0);
}

bool Terminal::isApprovalPutBack(unsigned pick) {
    const books::SlipIdentity slip{date_, number_, user_, customer_};
    const bool isSimple = isAt(Screen::Simple);
    const auto lost = isSimple ? books::deletedPayment(slip) : books::approvalWithoutSlip(slip);
    if (!lost || (!isSimple && isApproved_)) return false;
    isTold_ = true;
    if (!answer(u"승인된 결제", pick % 2 != 0)) return false;
    Event back = event(Event::Kind::ApprovalBack);
    back.answers[text(lost->number)] = Event::Answer::Approved;
    const auto row = books::putApprovalBack(lost->number);
    back.isRefused = !row;
    tell(back);
    if (back.isRefused) return true;
    if (isSimple) {
        screens_.clear();
    } else if (row->JunNo == number_ && row->UserID == user_) {
        takeApproval(pick);
    } else {
        kept_.reset();
        loadEntry(pick);
    }
    return true;
}

/// The visit is paid already. Where it was changed meanwhile the screen has to show it first.
void Terminal::takeApproval(unsigned pick) {
    const auto paid = books::loadCollection(date_, number_, user_);
    if (!paid || paid->amounts().total != amounts_.total || paid->YDMoney != amounts_.containerRecovery ||
        !paid->UnderMoney.isZero()) {
        loadEntry(pick);
    } else {
        screens_.clear();
    }
}

bool Terminal::finishEntry(unsigned pick) {
    if (collect::nothingToSettle(amounts_)) return false;
    if (isPaidOnLine() && !books::isChargeOneAmount(amounts_)) return false;
    if (!isApproved_ && (collect::hasCardBesideExcess(amounts_) || collect::isOutdated(amounts_)))
        return false;
    if (!isPaymentSettled(pick)) return false;
    keepSettlement();
    books::CollectionSlip slip;
    slip.DDate = date_;
    slip.GCode = slip.GName = customer_;
    slip.JunNo = number_;
    slip.UserID = user_;
    slip.setAmounts(amounts_, crateDeposit_);
    Event saved = event(Event::Kind::CollectionSaved);
    saved.isApproved = isApproved_;
    const bool isOnLine = isPaidOnLine();
    saved.isRefused = !(isOnLine && amounts_.card > platform::Won() ? books::saveForCard(slip)
                                                                    : books::saveCollection(slip));
    tell(saved);
    if (saved.isRefused) return false;
    if (isOnLine) {
        charged_ = amounts_;
        openCard();
    } else {
        screens_.clear();
    }
    return true;
}

// --- the card

void Terminal::openCard() {
    // A simple payment has no other way to be settled.
    if (mode_ == 6) charged_.card = books::amountToSettle(charged_);
    payment_.clear();
    isPaid_ = false;
    if (mode_ == 6) {
        screens_.push_back(Screen::Card);
    } else {
        screens_.back() = Screen::Card;
    }
}

bool Terminal::isPaymentFree(unsigned pick) {
    const books::JournalPayment wanted = journalPayment({});
    const auto inTheWay = [&] { return books::findInTheWay(books::unsettledPayments(), wanted); };
    if (!inTheWay() && books::hasUnsettledPayments()) inquire(pick);
    QString found;
    const Answer asked = ask(pick / 3, inTheWay, &found);
    if (asked == Answer::Approved) {
        const auto last = books::lastPayment(date_, number_, user_);
        isPaid_ = last && last->number == found;
    }
    return asked == Answer::Free;
}

books::JournalPayment Terminal::journalPayment(const QString& number) const {
    books::JournalPayment payment;
    payment.number = number;
    payment.isCard = books::chargeKind(charged_) == books::ChargeKind::Card;
    payment.charged = books::amountToCharge(charged_);
    books::CollectionSlip& slip = payment.slip;
    slip.Gubun = books::kSimplePaymentSlip.toString();
    slip.DDate = date_;
    slip.GCode = slip.GName = customer_;
    slip.JunNo = number_;
    slip.UserID = user_;
    slip.setAmounts(charged_, {});
    if (mode_ != 6) {
        if (const auto saved = books::loadCollection(date_, number_, user_)) slip = *saved;
    }
    slip.MSGSENDTIME = platform::clock::now().toString(u"yyyyMMddHHmmss"_s);
    slip.BANKTRANNO.clear();
    return payment;
}

void Terminal::swipe(unsigned pick) {
    if (isPaid_) return;
    hand_.code = u"good"_s;
    if (!isPaymentFree(pick / 8)) return;
    hand_.keyed << u"1234"_s;
    if (books::chargeKind(charged_) == books::ChargeKind::Nothing) return;
    const QString number = QStringLiteral("%1").arg(++messages_, 32, 10, QLatin1Char('0'));
    if (!books::notePayment(journalPayment(number))) return;
    Event sent = event(Event::Kind::PaymentSent);
    payment_ = number.toStdString();
    sent.asked = books::amountToCharge(charged_).value();
    sent.isTold = isTold_;
    using enum Fate;
    // The host takes no amount below 0.
    const Amounts& told = sent.shown;
    const bool isTaken = told.supply >= 0 && told.vat >= 0 && told.deposits >= 0 && told.recovery >= 0;
    auto fate = Fate(pick % 8);
    if (!isTaken && (fate == Approved || fate == AlsoApproved)) fate = Refused;
    hand_.host.push_back(fate);
    hand_.paid = fate;
    if (fate != LostRequest && fate != NoLink && fate != KilledBefore) {
        const Host::Decision& decision = host_.decide(payment_, sent.asked, isTaken && fate != Refused);
        if (decision.isCharged) sent.charged = Charge{payment_, decision.approval, decision.amount, visit()};
    }
    if (fate == Approved || fate == AlsoApproved) {
        isPaid_ = true;
        sent.isAnswered =
            books::approvePayment(number, QString::fromStdString(sent.charged->approval)).has_value();
    } else if (fate == Refused || fate == LostRequest || fate == LostAnswer || fate == NoLink) {
        books::settlePayment(number, fate == Refused  ? books::PaymentState::Refused
                                     : fate == NoLink ? books::PaymentState::Released
                                                      : books::PaymentState::Unknown);
    }
    tell(sent);
    if (fate == KilledBefore || fate == KilledAfter) {
        kill();
        login(pick / 8, false);
    }
}

void Terminal::backFromCard() {
    if (mode_ != 6 && !isPaid_ && charged_.card > platform::Won()) {
        Event taken = event(Event::Kind::CollectionBack);
        taken.isRefused = !books::takeBackCollection(date_, number_, user_);
        tell(taken);
    }
    if (isPaid_) {
        screens_.clear();
    } else {
        back();
    }
}

void Terminal::finishCard() {
    if (isPaid_ || (charged_.card <= platform::Won() && mode_ != 6)) {
        screens_.clear();
    } else if (charged_.card <= platform::Won()) {
        back();
    }
}

std::string Terminal::cardTap(const Action& action) {
    const std::string said = words(shown()) + " " + std::to_string(action.pick % 8);
    if (action.tap == Tap::Swipe) {
        swipe(action.pick);
    } else if (action.tap == Tap::FinishCard) {
        finishCard();
    } else if (!isPaid_ && books::hasUnsettledPayment(date_, number_, user_)) {
        isPaymentFree(action.pick / 8);
    }
    return said;
}

/// What the question about every open payment does with the answers.
void Terminal::inquire(unsigned pick) {
    Event asked = event(Event::Kind::Inquired);
    // What was not charged is taken back before the menu is left alone.
    asked.isAtMenu = false;
    books::closeStoppedPayments();
    for (const books::JournalPayment& payment : books::unsettledPayments()) {
        const bool isAnswered = pick++ % 3 != 0;
        hand_.host.push_back(isAnswered ? Fate::Approved : Fate::LostRequest);
        if (!isAnswered) break;
        const std::string message = payment.number.toStdString();
        const Host::Decision& decision = host_.recall(message);
        books::HostReply reply;
        reply.responseCode = decision.isCharged ? u"0000"_s : decision.isRefused ? u"0099"_s : u"0019"_s;
        reply.transactionNumber = QString::fromStdString(decision.approval);
        const bool isTold =
            van::judge(payment, reply, payment.number) == van::PaymentVerdict::Approved
                ? books::approvePayment(payment.number, reply.transactionNumber).has_value()
                : books::settlePayment(payment.number, decision.isRefused ? books::PaymentState::Refused
                                                                          : books::PaymentState::Released);
        if (isTold) {
            asked.answers[message] = decision.isCharged ? Event::Answer::Approved : Event::Answer::NotCharged;
        }
    }
    tell(asked);
}

Terminal::Answer Terminal::ask(unsigned pick, const Find& find, QString* found) {
    const auto before = find();
    if (!before) return Answer::Free;
    if (found != nullptr) *found = before->number;
    inquire(pick);
    if (find()) return Answer::Open;
    const auto settled = books::findPayment(before->number);
    const bool isApproved = settled && settled->state == books::PaymentState::Approved;
    return isApproved ? Answer::Approved : Answer::Free;
}

Terminal::Answer Terminal::askAboutSlip(unsigned pick, const QString& user) {
    return ask(pick, [&] { return books::unsettledPayment(date_, number_, user); });
}

void Terminal::takeBackUnpaid() {
    Event back = event(Event::Kind::UnpaidBack);
    back.isAtMenu = false;
    for (const books::CollectionSlip& slip : books::takeBackUnpaid()) {
        back.takenBack.push_back({{text(slip.DDate), text(slip.JunNo), text(slip.UserID)}, text(slip.GCode)});
    }
    if (!back.takenBack.empty()) tell(back);
}

bool Terminal::mayDelete(unsigned pick) {
    const bool isOpen = books::hasUnsettledPayment(date_, number_, {});
    const Answer asked = askAboutSlip(pick, {});
    if (isOpen) takeBackUnpaid();
    return asked == Answer::Free;
}

/// Asks the question of a number that carries an approval; true without one.
bool Terminal::mayDeletePayments(Event* deleted, bool isPaid, unsigned pick) {
    deleted->hasCardQuestion = isPaid || !books::approvedUnder(date_, number_).isEmpty();
    deleted->isCardConfirmed = answer(u"카드결제된 입금표삭제", pick % 2 == 0);
    return !deleted->hasCardQuestion || deleted->isCardConfirmed;
}

// --- the simple payment

std::string Terminal::simpleTap(const Action& action) {
    if (action.tap == Tap::FinishSimple) {
        if (isApprovalPutBack(action.pick)) return "(put back)";
        charged_ = amounts_;
        openCard();
        return words(shown());
    }
    const Won keyed = action.amount % 4 == 3 ? 2000 : 11000 * Won(action.amount % 4);
    hand_.keyed << QString::number(keyed);
    collect::keySimpleAmount(amounts_, collect::SimpleAmount(action.pick % 5), platform::Won(keyed));
    return std::to_string(keyed);
}

}  // namespace days
