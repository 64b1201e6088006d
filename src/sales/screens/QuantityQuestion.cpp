#include "sales/screens/QuantityQuestion.h"

#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "sales/PastOrder.h"
#include "sales/Pricing.h"
#include "sales/ProductQuery.h"
#include "ui/Messages.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::groupThousands;
using platform::parseInteger;

/// What one costs and what as many would: "상자 41,020 본 2,051 = 123,060원".
QString costLine(const QString& pCode, const UnitCost& unit, const Quantities& quantities) {
    const QString prices = u"상자 %1 본 %2"_s.arg(groupThousands(unit.box), groupThousands(unit.bottle));
    if (quantities.isNothing()) return prices;
    const app::ActionValues& action = app::session().action;
    const LineAmounts line =
        priceLine(action.GCode, action.CustomerKind, pCode, quantities.boxes, quantities.bottles).amounts;
    return prices + u" = "_s + groupThousands(line.subtotal()) + u"원"_s +
           (line.deposits().isZero() ? QString() : u" +보증금 "_s + groupThousands(line.deposits()));
}

bool isTooMany(std::int64_t count) {
    return count > kHighestQuantity || count < -kHighestQuantity;
}

}  // namespace

const PurchaseHistory& QuantityQuestion::history() {
    const app::SessionValues& session = app::session();
    if (!history_) {
        history_ =
            PurchaseHistory::of(session.action.GCode, session.WorkDate, session.action.JunNo, session.UserID);
    }
    return *history_;
}

std::optional<Quantities> QuantityQuestion::ask(const QString& pCode,
                                                const std::optional<Quantities>& present, bool isScanned) {
    const app::ActionValues& action = app::session().action;
    const UnitCost unit = unitCost(action.GCode, action.CustomerKind, pCode);
    app::KeypadTopic topic;
    topic.what = listedProduct(pCode).value_or(ListedProduct()).title();
    if (present) topic.present = {QString::number(present->boxes), QString::number(present->bottles), {}};
    topic.note = [&](const std::array<QString, 3>& entries) {
        const Quantities keyed{parseInteger(entries[0]), parseInteger(entries[1])};
        // What is refused has no price.
        const bool isPriced = !isTooMany(keyed.boxes) && !isTooMany(keyed.bottles);
        return costLine(pCode, unit, isPriced ? keyed : Quantities());
    };
    if (isScanned) topic.counted[1] = u"1"_s;
    topic.scanned = [&](const QString& code, std::array<QString, 3>* entries) {
        return scan(code, pCode, entries);
    };
    scanned_.clear();
    if (!app::askTwoNumbers(u"박스수량"_s, u"본  수량"_s, topic)) return std::nullopt;
    const Quantities quantities{parseInteger(app::keypadRequest().KeypadValue1),
                                parseInteger(app::keypadRequest().KeypadValue2)};
    if (isTaken(pCode, quantities)) return quantities;
    scanned_.clear();
    return std::nullopt;
}

app::Scan QuantityQuestion::scan(const QString& code, const QString& pCode, std::array<QString, 3>* entries) {
    constexpr qsizetype kShortestBarcode = 8;
    const QString pcode = productOfBarcode(code);
    if (pcode.isEmpty()) {
        if (code.size() < kShortestBarcode) return app::Scan::None;
        ui::message(u"등록되지 않은 바코드입니다..! [%1]"_s.arg(code));
        return app::Scan::Refused;
    }
    QString& bottles = entries->at(1);
    if (pcode == pCode) {
        const std::int64_t before = parseInteger(bottles);
        // Of what comes back it is one more that does.
        bottles = QString::number(before < 0 ? before - 1 : before + 1);
        return app::Scan::Counted;
    }
    if (Quantities{parseInteger(entries->at(0)), parseInteger(bottles)}.isNothing()) {
        ui::message(u"이 상품의 수량을 먼저 넣으세요..! 찍은 상품은 그다음에 다시 찍으세요!!"_s);
        return app::Scan::Refused;
    }
    scanned_ = pcode;
    return app::Scan::Next;
}

bool QuantityQuestion::isTaken(const QString& pCode, const Quantities& quantities) {
    // A line of nothing is no line.
    if (quantities.isNothing()) {
        ui::message(u"박스, 본 수량이 없으면 등록되지 않습니다..!"_s);
        return false;
    }
    if (isTooMany(quantities.boxes) || isTooMany(quantities.bottles)) {
        ui::message(u"박스, 본 수량을 3자리까지만 지원합니다.. ^^!"_s);
        return false;
    }
    if (meant_.contains(pCode)) return true;
    const ListedProduct product = listedProduct(pCode).value_or(ListedProduct());
    const auto usual = history().unusual(pCode, product.BoxBonEa, quantities);
    if (!usual) return true;
    const bool isMeant =
        ui::confirm(u"평소 수량의 10배가 넘습니다..! [%1] 평소 %2, 지금 %3. 맞습니까?"_s.arg(
                        product.title(), quantityText(usual->quantities), quantityText(quantities)),
                    u"수량확인"_s);
    if (isMeant) meant_.insert(pCode);
    return isMeant;
}

bool QuantityQuestion::mayReprice(const LineKey& line, const LineAmounts& present) {
    const app::ActionValues& action = app::session().action;
    const PricedLine priced = priceLine(action.GCode, action.CustomerKind, line.PCode, parseInteger(line.Box),
                                        parseInteger(line.Bon));
    return priced.amounts == present ||
           ui::confirm(u"수정된 금액입니다..! 수량을 바꾸면 오늘 단가로 다시 계산합니다. 바꿀까요?"_s,
                       u"금액확인"_s);
}

}  // namespace sales
