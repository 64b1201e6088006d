#include "print/SalesInvoice.h"

#include <QList>
#include <QStringBuilder>

#include "books/CollectionSlip.h"
#include "books/PayableTotal.h"
#include "db/Query.h"
#include "print/CollectionReceipt.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::parseWon;
using platform::Won;

struct Line {
    QString gCode, gName, time, pCode, pName, box, bon;
    Won supply, vat, crateDeposit, bottleDeposit;
};

QList<Line> readLines(QStringView date, QStringView junNo, QStringView userId) {
    // In the order of the slip's screen.
    static constexpr db::Statement<
        u"SELECT GCode, GName, DTime, PCode, PName, Box, Bon, MMoney, BMoney, YMoney, GMoney "
        u"FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ORDER BY PCode DESC">
        kSelectLines;
    QList<Line> lines;
    db::forEachRow(kSelectLines(date, junNo, userId), [&](db::CVORecordset& row) {
        lines << Line{
            row.GetFieldString(0),           row.GetFieldString(1),           row.GetFieldString(2),
            row.GetFieldString(3),           row.GetFieldString(4),           row.GetFieldString(5),
            row.GetFieldString(6),           parseWon(row.GetFieldString(7)), parseWon(row.GetFieldString(8)),
            parseWon(row.GetFieldString(9)), parseWon(row.GetFieldString(10))};
    });
    return lines;
}

/// "30000/상자 1500/본": what one costs of what the line has. It keeps no price, so that of boxes and bottles
/// together is told only where contract or price list come to the line's supply; empty where none does.
QString unitPrice(const Line& line, std::int64_t boxes, std::int64_t bottles, const QStringList& product) {
    static constexpr db::Statement<
        u"SELECT boxmoney, bonmoney FROM GARAEDANGA WHERE gcode = '%s' AND pcode = '%s'">
        kSelectContract;
    const std::int64_t supply = line.supply.value();
    const auto box = [](std::int64_t price) { return u"%1/상자"_s.arg(price); };
    const auto bottle = [](std::int64_t price) { return u"%1/본"_s.arg(price); };
    if (boxes != 0 && bottles != 0) {
        const QStringList prices =
            db::firstRow(kSelectContract(line.gCode, line.pCode)).value_or(QStringList()) + product.mid(1);
        for (qsizetype i = 0; i + 1 < prices.size(); i += 2) {
            const Won ofBox = parseWon(prices[i]), ofBottle = parseWon(prices[i + 1]);
            if (boxes * ofBox + bottles * ofBottle == line.supply)
                return QString(box(ofBox.value()) % u' ' % bottle(ofBottle.value()));
        }
        return {};
    }
    const std::int64_t count = boxes + bottles;
    if (count == 0 || supply == 0 || supply == INT64_MIN || supply % count != 0) return {};
    return boxes != 0 ? box(supply / count) : bottle(supply / count);
}

void itemRow(Document& document, const Line& line) {
    static constexpr db::Statement<
        u"SELECT Size, ABoxMMoney, ABonMMoney, BBoxMMoney, BBonMMoney FROM PUMMOK WHERE PCode = '%s' ">
        kSelectProduct;
    const QStringList product = db::firstRow(kSelectProduct(line.pCode)).value_or(QStringList());
    const std::int64_t boxes = platform::parseInteger(line.box);
    const std::int64_t bottles = platform::parseInteger(line.bon);
    document.itemName(line.pName, product.value(0).trimmed(), unitPrice(line, boxes, bottles, product));
    document.row({number(QString::number(boxes), 5), number(QString::number(bottles), 5),
                  number(formatWon(line.supply), 12), number(formatWon(line.vat), 10)});
}

}  // namespace

std::optional<Document> salesInvoice(QStringView date, QStringView junNo, QStringView userId, Copy copy,
                                     bool reprint) {
    const QList<Line> lines = readLines(date, junNo, userId);
    if (lines.isEmpty()) return std::nullopt;
    const Line& first = lines.first();
    const Salesman user = salesman(userId);

    Document document = slipDocument(u"거 래 명 세 서", copy, reprint,
                                     {date, first.time, junNo, user, customer(first.gCode, first.gName)});
    document.itemName(u"품목", u"규격", u"단가");
    document.row({number(u"상자", 5), number(u"본", 5), number(u"공급가액", 12), number(u"세액", 10)});
    document.rule(Document::Rule::Thin);

    Won supply, vat, crateDeposit, bottleDeposit;
    for (const Line& line : lines) {
        itemRow(document, line);
        supply += line.supply;
        vat += line.vat;
        crateDeposit += line.crateDeposit;
        bottleDeposit += line.bottleDeposit;
    }
    vat = books::payableVat(supply, vat, user.vatMode);

    document.rule(Document::Rule::Thin);
    document.labelAmount(u"공급가액", supply);
    document.labelAmount(u"부가세", vat);
    document.labelAmount(u"상자 보증금", crateDeposit);
    document.labelAmount(u"공병 보증금", bottleDeposit);
    document.rule(Document::Rule::Thin);
    document.labelAmount(u"합계", supply + vat + crateDeposit + bottleDeposit);
    const std::optional<books::CollectionSlip> paid = books::loadCollection(date, junNo, userId);
    if (paid && paid->GCode == first.gCode) {
        document.rule(Document::Rule::Thin);
        paymentBlock(document, *paid);
    } else {
        document.labelAmount(u"전미수", books::receivable(first.gCode));
    }
    closingBlock(document);
    return document;
}

}  // namespace print
