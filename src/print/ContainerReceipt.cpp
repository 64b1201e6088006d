#include "print/ContainerReceipt.h"

#include <QList>

#include "books/ContainerBalance.h"
#include "db/Query.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::parseInteger;
using platform::parseWon;
using platform::Won;

struct Line {
    QString gCode, gName;
    books::ContainerReturn returned;
    Won crates, bottles, crateFee, bottleFee;
};

QList<Line> readLines(QStringView date, QStringView junNo, QStringView userId) {
    // In the order of the slip's screen.
    static constexpr db::Statement<
        u"SELECT GCode, GName, PCode, PName, FBox, NBox, Bon, YMONEY, GMONEY, YSAMT, GSAMT FROM YTM "
        u"WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ORDER BY PCode DESC">
        kSelectLines;
    QList<Line> lines;
    db::forEachRow(kSelectLines(date, junNo, userId), [&](db::CVORecordset& row) {
        const auto count = [&](int column) { return parseInteger(row.GetFieldString(column)); };
        const auto amount = [&](int column) { return parseWon(row.GetFieldString(column)); };
        lines << Line{row.GetFieldString(0),
                      row.GetFieldString(1),
                      {row.GetFieldString(2), row.GetFieldString(3), count(4), count(5), count(6)},
                      amount(7),
                      amount(8),
                      amount(9),
                      amount(10)};
    });
    return lines;
}

Cell count(std::int64_t containers, int width) {
    return number(QString::number(containers), width);
}

/// Crates or bottles of a balance; none for what the customer never had.
void balanceRow(Document& document, QStringView label, const books::ContainerBalance& balance,
                std::int64_t books::Containers::*kind) {
    const books::Containers after = balance.after();
    if (balance.before.*kind == 0 && balance.delivered.*kind == 0 && balance.returned.*kind == 0) return;
    document.row({name(label, 4), count(balance.before.*kind, 6), count(balance.delivered.*kind, 10),
                  count(balance.returned.*kind, 6), count(after.*kind, 6)});
}

/// What the customer holds now, product by product.
void balanceBlock(Document& document, const QList<books::ContainerBalance>& balances) {
    document.line(u"[용공잔액]");
    document.row({number(u"전잔", 10), number(u"금일출고", 10), number(u"회수", 6), number(u"현잔", 6)});
    document.rule(Document::Rule::Thin);
    for (const books::ContainerBalance& balance : balances) {
        document.itemName(balance.PName, {});
        balanceRow(document, u"상자", balance, &books::Containers::crates);
        balanceRow(document, u"병", balance, &books::Containers::bottles);
        if (!balance.ordered.isZero()) {
            document.line(
                u"미배송주문 상자 %1 병 %2"_s.arg(balance.ordered.crates).arg(balance.ordered.bottles));
        }
    }
}

}  // namespace

std::optional<Document> containerReceipt(QStringView date, QStringView junNo, QStringView userId, Copy copy,
                                         bool reprint) {
    const QList<Line> lines = readLines(date, junNo, userId);
    if (lines.isEmpty()) return std::nullopt;
    const QString& gCode = lines.first().gCode;

    Document document =
        slipDocument(u"용 공 인 수 증", copy, reprint,
                     {date, {}, junNo, salesman(userId), customer(gCode, lines.first().gName)});
    document.line(u"품목");
    document.row({number(u"공상자", 6), number(u"입상자", 7), number(u"공병", 7), number(u"금액", 12)});
    document.rule(Document::Rule::Thin);
    Won crates, bottles, crateFees, bottleFees;
    QList<books::ContainerReturn> returned;
    for (const Line& line : lines) {
        document.itemName(line.returned.PName, {});
        document.row({count(line.returned.emptyCrates, 6), count(line.returned.filledCrates, 7),
                      count(line.returned.bottles, 7), number(formatWon(line.crates + line.bottles), 12)});
        crates += line.crates;
        bottles += line.bottles;
        crateFees += line.crateFee;
        bottleFees += line.bottleFee;
        returned << line.returned;
    }
    document.rule(Document::Rule::Thin);
    document.labelAmount(u"용기", crates);
    document.labelAmount(u"공병", bottles);
    document.labelAmount(u"합계", crates + bottles);
    document.rule(Document::Rule::Thin);
    document.labelAmount(u"용수수", crateFees);
    document.labelAmount(u"공수수", bottleFees);
    document.rule(Document::Rule::Double);
    balanceBlock(document, books::containerBalances(gCode, date, junNo, userId, returned));
    // Here it is the salesman who receives and the customer who hands over.
    closingBlock(document, {u"인계자 서명", u"인수자 서명"});
    return document;
}

}  // namespace print
