#include "books/VisitChecks.h"

#include <QSet>
#include <algorithm>
#include <map>
#include <tuple>

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;
using Kind = DifferenceKind;

/// How a collection's total came about besides cash, card, unpaid and recovery, in won.
struct CollectionParts {
    Won creditedExcess;       ///< A recovery above the total that no cash makes up for.
    Won receivedWithoutSale;  ///< Money of a collection that has no total.
    Won difference;           ///< What of the total is left after all parts; 0 where they agree.
};

CollectionParts partsOf(const CollectionSlip& slip) {
    const Won total = slip.amounts().total;
    const Won paid = slip.WonMoney + slip.CardMoney + slip.UnderMoney;
    CollectionParts parts;
    const Won excess = std::max(Won(), slip.YDMoney - total);
    // A keyed excess stands with cash below 0, which makes up for it; one that a button booked does not.
    parts.creditedExcess = std::clamp(paid + excess, Won(), excess);
    if (total.isZero() && excess.isZero()) parts.receivedWithoutSale = std::max(Won(), paid);
    parts.difference = total + parts.creditedExcess + parts.receivedWithoutSale - paid - slip.YDMoney;
    return parts;
}

/// Gathers what is not true of one visit.
class Checks {
  public:
    explicit Checks(const Visit& visit) : visit_(visit) {}

    QList<VisitDifference> run() {
        checkPayments();
        checkSale();
        checkContainers();
        for (const CollectionSlip& slip : visit_.collections) checkCollection(slip);
        const auto collections = std::ranges::count_if(
            visit_.collections, [](const CollectionSlip& slip) { return !slip.isSimplePayment(); });
        if (collections > 1) add(Kind::SeveralCollections, visit_.collection()->amounts().total);
        std::ranges::stable_sort(found_, {}, &VisitDifference::kind);
        return found_;
    }

  private:
    void add(Kind kind, Won amount) { found_.append({kind, amount, {}, {}}); }
    void compare(Kind kind, Won expected, Won found) {
        if (expected != found) found_.append({kind, found - expected, expected, found});
    }

    void checkPayments() {
        for (const JournalPayment& payment : visit_.payments) {
            if (payment.isUnsettled()) add(Kind::PaymentOpen, payment.charged);
            if (payment.state != PaymentState::Approved) continue;
            const auto slip =
                std::ranges::find(visit_.collections, payment.slip.BANKTRANNO, &CollectionSlip::BANKTRANNO);
            if (slip == visit_.collections.end()) {
                add(Kind::ApprovalNotShown, payment.charged);
            } else if (payment.isCard) {
                // Cash that was entered at the host may move with the sale afterwards.
                compare(Kind::ApprovedAmountDiffers, payment.charged, slip->CardMoney);
            }
        }
    }

    void checkSale() {
        const CollectionSlip* collection = visit_.collection();
        if (visit_.goods.isEmpty()) {
            if (collection != nullptr && collection->Gubun == kCollectionOfSale)
                add(Kind::CollectionWithoutSale, collection->amounts().total);
        } else if (collection != nullptr) {
            compare(Kind::TotalDiffers, visit_.goodsTotal(), collection->amounts().total);
        } else if (!visit_.isUndelivered) {
            add(Kind::SaleWithoutCollection, visit_.goodsTotal());
        }
    }

    void checkContainers() {
        if (visit_.containers.isEmpty()) return;
        const CollectionSlip* collection = visit_.collection();
        const Won worth = visit_.containerWorth();
        if (collection != nullptr) {
            compare(Kind::RecoveryDiffers, worth, collection->YDMoney);
        } else if (!worth.isZero()) {
            add(Kind::ContainersWithoutCollection, worth);
        }
    }

    void checkCollection(const CollectionSlip& slip) {
        if (!slip.CardMoney.isZero() && !slip.isApproved() && !visit_.hasOpenPayment())
            add(Kind::CardNotApproved, slip.CardMoney);
        if (const Won difference = partsOf(slip).difference; !difference.isZero()) {
            const Won total = slip.amounts().total;
            compare(Kind::PartsDiffer, total, total - difference);
        }
        if (!visit_.balance && !slip.receivableEffect().isZero())
            add(Kind::NoReceivable, slip.receivableEffect());
    }

    const Visit& visit_;
    QList<VisitDifference> found_;
};

/// What the salesman is told of a kind: the reason, and what its two amounts are called.
constexpr struct Wording {
    Kind kind;
    QStringView reason;
    QStringView expected = {};
    QStringView found = {};
} kWordings[] = {
    {Kind::PaymentOpen, u"카드결제 확인중"},
    {Kind::ApprovalNotShown, u"승인이 전표에 없음"},
    {Kind::ApprovedAmountDiffers, u"승인금액과 다름", u"승인", u"전표"},
    {Kind::CardNotApproved, u"카드 미승인"},
    {Kind::SaleWithoutCollection, u"수금없는 판매"},
    {Kind::CollectionWithoutSale, u"판매없는 입금"},
    {Kind::TotalDiffers, u"판매합계와 다름", u"판매", u"입금"},
    {Kind::ContainersWithoutCollection, u"입금없는 용공"},
    {Kind::RecoveryDiffers, u"용공금액과 다름", u"용공", u"입금"},
    {Kind::PartsDiffer, u"입금내역과 다름", u"합계", u"내역"},
    {Kind::SeveralCollections, u"입금전표 두장"},
    {Kind::SeveralCustomers, u"번호에 다른 거래처"},
    {Kind::NoReceivable, u"거래처 채권 없음"},
};
static_assert(std::size(kWordings) == std::size_t(Kind::NoReceivable) + 1);

const Wording& wordingOf(Kind kind) {
    return *std::ranges::find(kWordings, kind, &Wording::kind);
}

using Number = std::tuple<QString, QString, QString>;

Number numberOf(const Visit& visit) {
    return {visit.date, visit.junNo, visit.userId};
}

/// True for what claims its number: a simple payment shares it.
bool hasSlip(const Visit& visit) {
    return !visit.goods.isEmpty() || !visit.containers.isEmpty() || visit.collection() != nullptr;
}

}  // namespace

QStringView reasonOf(DifferenceKind kind) {
    return wordingOf(kind).reason;
}

QString detailOf(const VisitDifference& difference) {
    const Wording& wording = wordingOf(difference.kind);
    if (wording.expected.isEmpty()) return {};
    return u"%1 %2 %3 %4"_s.arg(wording.expected, platform::groupThousands(difference.expected),
                                wording.found, platform::groupThousands(difference.found));
}

QList<VisitDifference> differencesOf(const Visit& visit) {
    return Checks(visit).run();
}

QList<CheckedVisit> checkVisits(const QList<Visit>& visits) {
    QSet<QString> shown;
    std::map<Number, int> customers;
    for (const Visit& visit : visits) {
        customers[numberOf(visit)] += hasSlip(visit);
        for (const CollectionSlip& slip : visit.collections) shown << slip.BANKTRANNO;
    }
    QList<CheckedVisit> checked;
    for (const Visit& visit : visits) {
        QList<VisitDifference> differences = differencesOf(visit);
        if (std::ranges::all_of(visit.payments, [&](const JournalPayment& payment) {
                return payment.state != PaymentState::Approved || shown.contains(payment.slip.BANKTRANNO);
            })) {
            differences.removeIf(
                [](const VisitDifference& each) { return each.kind == Kind::ApprovalNotShown; });
        }
        if (hasSlip(visit) && customers[numberOf(visit)] > 1) {
            const CollectionSlip* collection = visit.collection();
            const Won amount = !visit.goods.isEmpty()  ? visit.goodsTotal()
                               : collection != nullptr ? collection->amounts().total
                                                       : visit.containerWorth();
            differences.append({Kind::SeveralCustomers, amount, {}, {}});
        }
        if (!differences.isEmpty()) checked.append({visit, differences});
    }
    return checked;
}

Won CrossFoot::difference() const {
    return sales - uncollected + keyedSales + creditedExcess + receivedWithoutSale - settled();
}

CrossFoot crossFoot(const QList<Visit>& visits) {
    CrossFoot foot;
    for (const Visit& visit : visits) {
        const bool isCollected = visit.collection() != nullptr;
        if (!visit.goods.isEmpty() && !visit.isUndelivered) {
            foot.sales += visit.goodsTotal();
            if (!isCollected) foot.uncollected += visit.goodsTotal();
        }
        for (const CollectionSlip& slip : visit.collections) {
            const CollectionParts parts = partsOf(slip);
            if (slip.isSimplePayment() || visit.goods.isEmpty()) foot.keyedSales += slip.amounts().total;
            foot.creditedExcess += parts.creditedExcess;
            foot.receivedWithoutSale += parts.receivedWithoutSale;
            foot.cash += slip.WonMoney;
            foot.card += slip.CardMoney;
            foot.unpaid += slip.UnderMoney;
            foot.recovery += slip.YDMoney;
        }
    }
    return foot;
}

}  // namespace books
