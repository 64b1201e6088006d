// Where the terminal takes money: the collection, the card, the simple payment, and the question about
// payments.
#include <array>
#include <utility>

#include "Terminal.h"
#include "books/Charge.h"
#include "books/ContainerBalance.h"
#include "books/OpenPayments.h"
#include "books/PayableTotal.h"
#include "collect/CollectionEntry.h"
#include "collect/Settlement.h"
#include "collect/SimplePayment.h"
#include "platform/Clock.h"
#include "sales/Checkout.h"
#include "sales/WorkingSlip.h"
#include "van/PaymentInquiry.h"

namespace days {

using namespace Qt::Literals::StringLiterals;

namespace {

platform::Won netTotal(const books::SettlementAmounts& amounts) {
    return amounts.total - amounts.containerRecovery;
}

}  // namespace

// --- the collection

Amounts Terminal::shown() const {
    const books::SettlementAmounts& a = isAt(Screen::Card) ? charged_ : amounts_;
    return {.sales = a.sales.value(),
            .supply = a.supply.value(),
            .vat = a.vat.value(),
            .other = a.nonLiquor.value(),
            .deposits = a.deposit.value(),
            .recovery = a.containerRecovery.value(),
            .card = a.card.value(),
            .cash = a.cash.value(),
            .unpaid = a.unpaid.value(),
            .earlier = a.earlierReceivable.value()};
}

void Terminal::openEntry(unsigned pick) {
    open(Screen::Entry);
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
    approvedCard_.reset();
    if (isApproved_) approvedCard_ = amounts_.card;
    auto recovery = std::exchange(handedOver_, std::nullopt);
    const bool isHandedOver = recovery.has_value();
    if (!isHandedOver && !(saved && saved->isSimplePayment()))
        recovery = books::savedRecovery(date_, number_, user_, customer_);
    tell(event(Event::Kind::OpenCollection));
    if (recovery == amounts_.containerRecovery) recovery.reset();
    const bool isAsked = recovery && !isHandedOver && saved;
    if (recovery && (!isAsked || pick % 2 == 0)) {
        collect::takeOverRecovery(amounts_, *recovery, mode_ != 1);
        tell(event(Event::Kind::TookWorth));
    } else if (recovery) {
        tell(event(Event::Kind::KeptRecovery));
    }
    holdCard();
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
        done.kind = kind;
        done.isRefused = approvedCard_ && kind == Event::Kind::Card;
        if (done.isRefused) return;
        rule(amounts_);
        holdCard();
    };
    switch (action.tap) {
        case KeySales:
            key(Event::Kind::KeySales, collect::keySales);
            break;
        case KeySupply:
            key(Event::Kind::KeySupply, collect::keySupply);
            break;
        case KeyVat:
            key(Event::Kind::KeyVat, collect::keyVat);
            break;
        case KeyOther:
            key(Event::Kind::KeyOther, collect::keyNonLiquor);
            break;
        case KeyRecovery:
            key(Event::Kind::KeyRecovery, collect::keyRecovery);
            break;
        case KeyEarlier:
            key(Event::Kind::KeyEarlier, collect::keyEarlierReceivable);
            break;
        case ByCard:
            settle(Event::Kind::Card, collect::settleByCard);
            break;
        case InCash:
            settle(Event::Kind::Cash, collect::settleInCash);
            break;
        case OnCredit:
            settle(Event::Kind::Credit, collect::settleOnCredit);
            break;
        case ForgetCollection: {
            done.kind = Event::Kind::CollectionForgotten;
            done.isRefused = (isApproved_ && action.pick % 3 == 0) || isOthers_ ||
                             !books::removeCollection(date_, number_, user_);
            if (!done.isRefused) {
                isApproved_ = false;
                approvedCard_.reset();
                amounts_.previousReceivable = books::previousReceivable(customer_, date_, number_, user_);
            }
            break;
        }
        default:
            return finishEntry(action.pick) ? words(done.shown) : "(refused)";
    }
    done.shown = shown();
    tell(done);
    return std::to_string(keyed) + " -> " + words(done.shown);
}

/// False when the slip may not be settled: its payment is open, or has become known meanwhile.
bool Terminal::isPaymentSettled(unsigned pick) {
    const auto isUnsettled = [&] { return books::hasUnsettledPayment(date_, number_, user_); };
    if (!isUnsettled()) return true;
    inquire(pick);
    if (isUnsettled()) return false;
    const auto last = books::lastPayment(date_, number_, user_);
    if (!last || last->state != books::PaymentState::Approved) return true;
    const books::SettlementAmounts paid = last->slip.amounts();
    if (paid.total != amounts_.total || paid.containerRecovery != amounts_.containerRecovery) {
        loadEntry(pick);
    } else {
        done();
    }
    return false;
}

bool Terminal::finishEntry(unsigned pick) {
    if (collect::nothingToSettle(amounts_)) return false;
    if (mode_ != 2 && mode_ != 3 && !isApproved_ && !books::isChargeOneAmount(amounts_)) return false;
    if (!isPaymentSettled(pick)) return false;
    books::CollectionSlip slip;
    slip.DDate = date_;
    slip.GCode = slip.GName = customer_;
    slip.JunNo = number_;
    slip.UserID = user_;
    slip.setAmounts(amounts_, crateDeposit_);
    Event saved = event(Event::Kind::CollectionSaved);
    saved.isApproved = isApproved_;
    const bool isOnLine = mode_ != 2 && mode_ != 3 && !isApproved_;
    saved.isRefused = !(isOnLine && amounts_.card > platform::Won() ? books::saveForCard(slip)
                                                                    : books::saveCollection(slip));
    tell(saved);
    if (saved.isRefused) return false;
    if (isOnLine) {
        charged_ = amounts_;
        openCard();
    } else {
        done();
    }
    return true;
}

// --- the card

void Terminal::openCard() {
    // A simple payment's total already has the recovery taken off; it is taken off a second time here.
    if (mode_ == 6) charged_.card = netTotal(charged_);
    payment_.clear();
    isPaid_ = false;
    if (mode_ == 6) {
        open(Screen::Card);
    } else {
        replace(Screen::Card);
    }
}

bool Terminal::isPaymentFree(unsigned pick) {
    const books::JournalPayment wanted = journalPayment({});
    const auto inTheWay = [&] { return books::findInTheWay(books::unsettledPayments(), wanted); };
    const auto before = inTheWay();
    if (!before && !books::hasUnsettledPayments()) return true;
    inquire(pick);
    if (!before) return true;
    if (inTheWay()) return false;
    const auto settled = books::findPayment(before->number);
    if (!settled || settled->state != books::PaymentState::Approved) return true;
    const auto last = books::lastPayment(date_, number_, user_);
    isPaid_ = last && last->number == before->number;
    return false;
}

books::JournalPayment Terminal::journalPayment(const QString& number) const {
    books::JournalPayment payment;
    payment.number = number;
    payment.isCard = charged_.card > platform::Won();
    payment.charged = netTotal(charged_);
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
    if (isPaid_ || !isPaymentFree(pick / 8)) return;
    if (charged_.card <= platform::Won() && charged_.cash < platform::Won(1)) return;
    const QString number = QStringLiteral("%1").arg(++messages_, 32, 10, QLatin1Char('0'));
    if (!books::notePayment(journalPayment(number))) return;
    Event sent = event(Event::Kind::PaymentSent);
    payment_ = number.toStdString();
    sent.asked = netTotal(charged_).value();
    // Approved; refused; the request was lost; the answer was lost; no link; killed before or after the host.
    enum Fate { Approved, AlsoApproved, Refused, LostRequest, LostAnswer, NoLink, KilledBefore, KilledAfter };
    const auto fate = Fate(pick % 8);
    if (fate == Approved || fate == AlsoApproved || fate == LostAnswer || fate == KilledAfter) {
        const Host::Decision& decision = host_.decide(payment_, sent.asked, true);
        sent.charged = Charge{payment_, decision.approval, decision.amount, visit()};
    } else if (fate == Refused) {
        host_.decide(payment_, sent.asked, false);
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
        done();
    } else {
        back();
    }
}

void Terminal::finishCard() {
    if (isPaid_ || (charged_.card <= platform::Won() && mode_ != 6)) {
        done();
    } else if (charged_.card <= platform::Won()) {
        back();
    }
}

std::string Terminal::cardTap(const Action& action) {
    const std::string said = words(shown()) + " " + std::to_string(action.pick % 8);
    if (action.tap == Tap::Swipe) {
        swipe(action.pick);
    } else {
        finishCard();
    }
    return said;
}

/// What the question about every open payment does with the answers.
void Terminal::inquire(unsigned pick) {
    Event asked = event(Event::Kind::Inquired);
    books::closeStoppedPayments();
    for (const books::JournalPayment& payment : books::unsettledPayments()) {
        if (pick++ % 3 == 0) break;  // No link any more.
        const std::string message = payment.number.toStdString();
        const Host::Decision& decision = host_.recall(message);
        books::HostReply reply;
        reply.responseCode = decision.isCharged ? u"0000"_s : u"0019"_s;
        reply.transactionNumber = QString::fromStdString(decision.approval);
        const bool isTold = van::judge(payment, reply, payment.number) == van::PaymentVerdict::Approved
                                ? books::approvePayment(payment.number, reply.transactionNumber).has_value()
                                : books::settlePayment(payment.number, books::PaymentState::Released);
        if (isTold) {
            asked.answers[message] = decision.isCharged ? Event::Answer::Approved : Event::Answer::NotCharged;
        }
    }
    tell(asked);
}

// --- the simple payment

std::string Terminal::simpleTap(const Action& action) {
    if (action.tap == Tap::FinishSimple) {
        charged_ = amounts_;
        openCard();
        return words(shown());
    }
    const Won keyed = action.amount % 4 == 3 ? 2000 : 11000 * Won(action.amount % 4);
    collect::keySimpleAmount(amounts_, collect::SimpleAmount(action.pick % 5), platform::Won(keyed));
    return std::to_string(keyed);
}

}  // namespace days
