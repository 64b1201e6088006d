// Where the terminal takes money: the collection, the card, the simple payment, and the question about
// payments.
#include <utility>

#include "Terminal.h"
#include "books/Charge.h"
#include "books/OpenPayments.h"
#include "collect/Settlement.h"
#include "collect/SimplePayment.h"
#include "platform/Clock.h"
#include "van/PaymentInquiry.h"

namespace days {

using namespace Qt::Literals::StringLiterals;
using books::PaymentAnswer;

// --- the collection

static Amounts told(const books::SettlementAmounts& a) {
    return {a.sales.value(),   a.supply.value(),
            a.vat.value(),     a.nonLiquor.value(),
            a.deposit.value(), a.containerRecovery.value(),
            a.card.value(),    a.cash.value(),
            a.unpaid.value(),  a.earlierReceivable.value()};
}

Amounts Terminal::shown() const {
    return told(isAt(Screen::Card) ? charged_ : entry_.amounts());
}

void Terminal::openEntry(unsigned pick) {
    screens_.push_back(Screen::Entry);
    loadEntry(pick);
}

void Terminal::loadEntry(unsigned pick) {
    const auto handover = std::exchange(handover_, {});
    const auto opening = entry_.open({date_, number_, user_, customer_}, mode_ == 1, handover);
    customer_ = entry_.slip().gCode;
    isTold_ = false;
    Event opened = event(Event::Kind::OpenCollection);
    if (opening.isGoneOn) opened.shown = told(entry_.opened());
    tell(opened);
    if (opening.isGoneOn) {
        Event shownAgain = event(Event::Kind::GoneOn);
        shownAgain.isSame = handover.kept->opened == entry_.opened();
        tell(shownAgain);
    }
    const bool isTaken = opening.asked && answer(u"용공회수액", pick % 2 == 0);
    if (isTaken) entry_.takeOver(*opening.asked);
    if (isTaken || opening.hasTakenOver) tell(event(Event::Kind::TookWorth));
    if (opening.asked && !isTaken) tell(event(Event::Kind::KeptRecovery));
}

std::string Terminal::entryTap(const Action& action) {
    using enum Tap;
    const Won keyed = amountFrom(action);
    Event done = event(Event::Kind::Screen);
    done.keyed = keyed;
    done.isApproved = entry_.isApproved();
    const auto key = [&](Event::Kind kind, auto rule) {
        done.kind = kind;
        rule(entry_.amounts(), platform::Won(keyed));
        entry_.holdApprovedCard();
    };
    const auto settle = [&](Event::Kind kind, auto rule) {
        // The buttons are disabled.
        if (!collect::hasSomethingToSettle(entry_.amounts())) return;
        done.kind = kind;
        done.isRefused = entry_.isApproved() && kind == Event::Kind::Card;
        if (done.isRefused) return;
        rule(entry_.amounts());
        entry_.holdApprovedCard();
    };
    if (entry_.isSimplePayment() && action.tap <= OnCredit) return "(disabled)";
    if (action.tap <= KeyEarlier) hand_.keyed << QString::number(keyed);
    switch (action.tap) {
        case KeySales: key(Event::Kind::KeySales, collect::keySales); break;
        case KeySupply: key(Event::Kind::KeySupply, collect::keySupply); break;
        case KeyVat: key(Event::Kind::KeyVat, collect::keyVat); break;
        case KeyOther: key(Event::Kind::KeyOther, collect::keyNonLiquor); break;
        case KeyRecovery: key(Event::Kind::KeyRecovery, collect::keyRecovery); break;
        case KeyEarlier:
            done.kind = Event::Kind::KeyEarlier;
            collect::keyEarlierReceivable(entry_.amounts(), platform::Won(keyed));
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
    const PaymentAnswer asked = askAboutSlip(pick / 8, user_);
    if (asked == PaymentAnswer::Approved) takeApproval(pick);
    if (asked != PaymentAnswer::Free ||
        (entry_.isApproved() && !answer(u"카드결제된 입금표삭제", pick % 3 != 0)))
        return false;
    Event forgotten = event(Event::Kind::CollectionForgotten);
    forgotten.hasCardQuestion = entry_.isApproved();
    forgotten.isRefused = !entry_.remove() || entry_.isOthers();
    forgotten.shown = shown();
    tell(forgotten);
    return !forgotten.isRefused;
}

/// False when the slip may not be settled: its payment is open, or has become known meanwhile.
bool Terminal::isPaymentSettled(unsigned pick) {
    switch (askAboutSlip(pick / 8, user_)) {
        case PaymentAnswer::Free: return !isApprovalPutBack(pick);
        case PaymentAnswer::Approved: takeApproval(pick); return false;
        case PaymentAnswer::Open: break;
    }
    // Credit asks nobody for money twice.
    return entry_.amounts().card.isZero() && entry_.amounts().cash.isZero() &&
           answer(u"카드결제 확인중", pick % 4 != 0);
}

bool Terminal::isApprovalPutBack(unsigned pick) {
    const books::SlipIdentity slip{date_, number_, user_, customer_};
    const bool isSimple = isAt(Screen::Simple);
    const auto lost = isSimple ? books::deletedPayment(slip) : books::approvalWithoutSlip(slip);
    if (!lost || (!isSimple && entry_.isApproved())) return false;
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
        handover_.kept.reset();
        loadEntry(pick);
    }
    return true;
}

/// The visit is paid already. Where it was changed meanwhile the screen has to show it first.
void Terminal::takeApproval(unsigned pick) {
    entry_.isPaidAsShown() ? screens_.clear() : loadEntry(pick);
}

bool Terminal::finishEntry(unsigned pick) {
    if (collect::nothingToSettle(entry_.amounts()) || entry_.isToSettleAgain() || !isPaymentSettled(pick))
        return false;
    handover_.kept = entry_.kept();
    Event saved = event(Event::Kind::CollectionSaved);
    saved.isApproved = entry_.isApproved();
    saved.isRefused = !entry_.save(customer_);
    tell(saved);
    if (saved.isRefused) return false;
    if (entry_.isPaidOnLine()) {
        charged_ = entry_.amounts();
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
    const books::JournalPayment wanted = journalPayment();
    bool isOthersFirst = !books::findInTheWay(books::unsettledPayments(), wanted);
    const auto question = books::askBeforePaying(
        wanted, [&] { inquire(std::exchange(isOthersFirst, false) ? pick : pick / 3); });
    isPaid_ = question.isPaid;
    return question.answer == PaymentAnswer::Free;
}

books::JournalPayment Terminal::journalPayment() const {
    return books::paymentToSend({date_, number_, user_, customer_}, customer_, charged_, 0, mode_ != 6,
                                platform::clock::now().toString(u"yyyyMMddHHmmss"_s));
}

void Terminal::swipe(unsigned pick) {
    if (isPaid_) return;
    hand_.code = u"good"_s;
    if (!isPaymentFree(pick / 8)) return;
    hand_.keyed << u"1234"_s;
    if (books::chargeKind(charged_) == books::ChargeKind::Nothing) return;
    const QString number = QStringLiteral("%1").arg(++messages_, 32, 10, QLatin1Char('0'));
    books::JournalPayment payment = journalPayment();
    payment.number = number;
    if (!books::notePayment(payment)) return;
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
        if (van::settle(payment, reply, payment.number).isKept)
            asked.answers[message] = decision.isCharged ? Event::Answer::Approved : Event::Answer::NotCharged;
    }
    tell(asked);
}

books::PaymentAnswer Terminal::askAboutSlip(unsigned pick, const QString& user) {
    return books::askAboutPayments([&] { return books::unsettledPayment(date_, number_, user); },
                                   [&] { inquire(pick); })
        .answer;
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
    const PaymentAnswer asked = askAboutSlip(pick, {});
    if (isOpen) takeBackUnpaid();
    return asked == PaymentAnswer::Free;
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
        charged_ = entry_.amounts();
        openCard();
        return words(shown());
    }
    const Won keyed = action.amount % 4 == 3 ? 2000 : 11000 * Won(action.amount % 4);
    hand_.keyed << QString::number(keyed);
    collect::keySimpleAmount(entry_.amounts(), collect::SimpleAmount(action.pick % 5), platform::Won(keyed));
    return std::to_string(keyed);
}

}  // namespace days
