#include "sales/screens/SlipWords.h"

#include "sales/screens/PastOrderChoice.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

ui::CellDetail detailText(const LineDetail& line) {
    ui::CellDetail detail;
    detail.text = (line.isFree ? u"※ "_s : line.Size + u' ') + platform::groupThousands(line.total) + u"원"_s;
    detail.isMarked = line.isFree;
    return detail;
}

QString countText(const platform::Rows& lines) {
    if (lines.isEmpty()) return {};
    Won boxes;
    Won bottles;
    for (int row = 0; row < lines.count(); ++row) {
        boxes += platform::parseWon(lines.at(row, 2));
        bottles += platform::parseWon(lines.at(row, 3));
    }
    return u"%1품목 %2상자 %3본"_s.arg(lines.count()).arg(boxes.value()).arg(bottles.value());
}

QString freeLinesQuestion(const QHash<QStringList, LineDetail>& details) {
    QStringList names;
    for (const LineDetail& line : details) {
        if (line.isFree) names << line.PName;
    }
    names.sort();
    return names.isEmpty() ? QString()
                           : u"금액이 0원인 품목이 있습니다..! [%1] 그대로 진행할까요?"_s.arg(listed(names));
}

QString movedText(Won moved) {
    const bool isMore = moved > Won();
    return u"입금전표가 이미 있어 미결제액을 ['%1'원] %2..! 결제금액을 다시 확인하세요..!!"_s.arg(
        platform::groupThousands(isMore ? moved : -moved), isMore ? u"늘렸습니다"_s : u"줄였습니다"_s);
}

}  // namespace sales
