#include "sales/PriceOrigin.h"

#include <QStringList>

#include "sales/Checkout.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

QString price(double won) {
    const auto whole = platform::Won(std::int64_t(won));
    return double(whole.value()) == won ? platform::groupThousands(whole) : QString::number(won, 'f', 2);
}

bool hasMargin(PriceSource source) {
    return source == PriceSource::ClassMargin || source == PriceSource::CustomerMargin;
}

}  // namespace

QString sourceName(PriceSource source) {
    switch (source) {
        case PriceSource::Contract: return u"계약단가"_s;
        case PriceSource::ClassMargin: return u"주류구분마진"_s;
        case PriceSource::CustomerMargin: return u"거래처마진"_s;
        case PriceSource::Tier: return u"판매단가"_s;
    }
    return {};
}

QString priceOrigin(const PricedLine& line, std::int64_t boxes, std::int64_t bottles) {
    const UnitPrices& unit = line.prices;
    QString source = sourceName(line.source);
    if (hasMargin(line.source)) source += u" : 원가 + %1%"_s.arg(line.marginPercent);
    if (line.source == PriceSource::Tier) source += line.isTierA ? u" A"_s : u" B"_s;
    QStringList lines{source};
    const auto part = [&](const QString& name, std::int64_t count, double supply, double vat) {
        if (count != 0) lines << u"%1 %2 × %3 (세 %4)"_s.arg(name).arg(count).arg(price(supply), price(vat));
    };
    part(u"상자"_s, boxes, unit.boxSupply, unit.boxVat);
    part(u"본"_s, bottles, unit.bottleSupply, unit.bottleVat);
    lines << u"공급가 "_s + platform::groupThousands(line.amounts.supply)
          << u"부가세 "_s + platform::groupThousands(line.amounts.vat)
          << u"용기 %1, 공병 %2"_s.arg(platform::groupThousands(line.amounts.crateDeposit),
                                       platform::groupThousands(line.amounts.bottleDeposit));
    return lines.join(u'\n');
}

QString totalOrigin(const SlipSums& lines, QStringView vatMode) {
    using platform::groupThousands;
    const SlipSums paid = slipSums(lines, vatMode);
    QStringList text{u"공급가 "_s + groupThousands(paid.supply), u"부가세 "_s + groupThousands(lines.vat)};
    const platform::Won rounding = paid.vat - lines.vat;
    if (!rounding.isZero()) {
        text << u"%1원 단위 맞춤 %2"_s.arg(vatMode == u"3" ? u"100"_s : u"10"_s, groupThousands(rounding));
    }
    text << u"용기 보증금 "_s + groupThousands(paid.crateDeposit)
         << u"공병 보증금 "_s + groupThousands(paid.bottleDeposit)
         << u"합계 "_s + groupThousands(paid.total());
    return text.join(u'\n');
}

}  // namespace sales
