#include "sales/PastOrder.h"

#include "sales/Pricing.h"
#include "sales/WorkingSlip.h"

namespace sales {

SlipLine newLine(const SlipHead& head, QStringView pCode, const ProductName& product,
                 const Quantities& quantities) {
    SlipLine line;
    line.DDate = head.DDate;
    line.GCode = head.GCode;
    line.GName = head.GName;
    line.JunNo = head.JunNo;
    line.PCode = pCode.toString();
    line.PName = product.Pname;
    line.JGubun = product.JGubun;
    line.Box = QString::number(quantities.boxes);
    line.Bon = QString::number(quantities.bottles);
    line.setAmounts(
        priceLine(head.GCode, head.CustomerKind, pCode, quantities.boxes, quantities.bottles).amounts);
    return line;
}

std::optional<TakenOver> takeOver(const SlipHead& head, const PastSlip& slip) {
    TakenOver taken;
    QList<SlipLine> lines;
    for (const Purchase& purchase : slip.products) {
        const auto product = listedProduct(purchase.PCode);
        const bool isTooMuch =
            purchase.quantities.boxes > kHighestQuantity || purchase.quantities.bottles > kHighestQuantity;
        if (!product || !product->isOfferedTo(head.CustomerKind) || isTooMuch) {
            taken.leftOut << purchase.PName;
            continue;
        }
        lines << newLine(head, purchase.PCode, {product->Pname, product->JGubun}, purchase.quantities);
    }
    const qsizetype withdrawn = taken.leftOut.size();
    if (!lines.isEmpty() && !replaceLines(lines, &taken.leftOut)) return std::nullopt;
    taken.lines = int(lines.size() - (taken.leftOut.size() - withdrawn));
    return taken;
}

}  // namespace sales
