#include "sales/screens/SlipAmounts.h"

namespace sales {
namespace {

constexpr QStringView kNoGoods = u"품목이 없으면 공급가액을 수정할수 없습니다..";
constexpr QStringView kNoGoodsToSum = u"품목이 없으면 합계금액을 수정할수 없습니다..";
constexpr SlipAmount kAmounts[] = {
    {u"공급가", 162, 1082, 1077, [](const LineAmounts& a) { return a.supply; }, 1076, u"공급가", withSupply,
     kNoGoods},
    // The VAT's refusal speaks of the supply amount.
    {u"부가세", 186, 1083, 1078, [](const LineAmounts& a) { return a.vat; }, 1090, u"부가세", withVat,
     kNoGoods},
    {u"용  기", 210, 1084, 1079, [](const LineAmounts& a) { return a.crateDeposit; }},
    {u"공  병", 224, 1085, 1080, [](const LineAmounts& a) { return a.bottleDeposit; }},
    {u"소계", 238, 1086, 1081, [](const LineAmounts& a) { return a.subtotal(); }, 1075, u"상품소계",
     withSubtotal, kNoGoodsToSum},
    {u"합계", 262, 1089, 1087, [](const LineAmounts& a) { return a.total(); }, 1074, u"상품합계", withTotal,
     kNoGoodsToSum},
};

}  // namespace

std::span<const SlipAmount> slipAmounts() {
    return kAmounts;
}

}  // namespace sales
