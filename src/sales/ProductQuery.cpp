#include "sales/ProductQuery.h"

#include <QHash>
#include <algorithm>
#include <functional>
#include <numeric>
#include <vector>

#include "books/Product.h"
#include "db/Query.h"
#include "platform/Won.h"

namespace sales {
namespace {

constexpr QStringView kWithdrawn = u"Y";
constexpr int kColumns = 4;

/// The rows by their products' use counters, highest first; equal ones stay in their order. The statements
/// sort the counters as texts, 943 before 1002.
platform::Rows mostUsedFirst(const platform::Rows& rows) {
    static constexpr db::Statement<u"SELECT PCode, AUTOCNT FROM MPUMMOK"> kUses;
    QHash<QString, std::int64_t> uses;
    db::forEachRow(kUses(), [&](db::CVORecordset& row) {
        std::int64_t& count = uses[row.GetFieldString(0)];
        count = std::max(count, platform::parseInteger(row.GetFieldString(1)));
    });
    std::vector<int> order(std::size_t(rows.count()));
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, std::greater(), [&](int row) { return uses.value(rows.cell(row, 0)); });
    platform::Rows sorted = rows;
    sorted.cells.clear();
    for (const int row : order) sorted.cells += rows.cells.mid(row * kColumns, kColumns);
    return sorted;
}

/// The intended use (`Gubun` of a product) that a customer of this kind is not offered; nothing for "공용",
/// who is offered everything.
std::optional<QStringView> excludedUse(QStringView customerKind) {
    if (customerKind == u"공용") return std::nullopt;
    return customerKind == u"일반" ? QStringView(u"유흥") : QStringView(u"일반");
}

db::Sql productSearch(QStringView seek, QStringView classCode, QStringView customerKind) {
    // "Any" offers every use, "Some" leaves one out; then what the rows must match.
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE seek = '%s'"
        u"                                     AND (TTT IS NULL OR TTT <> '%s') "
        u"ORDER BY PName DESC">
        kAnyBySeek;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE seek = '%s' AND JGubun= '%s'"
        u"                    AND (TTT IS NULL OR TTT <> '%s') ORDER BY PName DESC">
        kAnyBySeekAndClass;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE Gubun <> '%s' AND seek = '%s'"
        u"                   AND (TTT IS NULL OR TTT <> '%s') ORDER BY PName DESC">
        kSomeBySeek;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE Gubun <> '%s' AND seek = '%s' "
        u"AND JGubun= '%s'  AND (TTT IS NULL OR TTT <> '%s') ORDER BY PName DESC">
        kSomeBySeekAndClass;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE JGubun= '%s'"
        u"                                        AND (TTT IS NULL OR TTT <> '%s') "
        u"ORDER BY PCode DESC ">
        kAnyByClass;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE JGubun= '%s' AND Gubun <> '%s'"
        u"                      AND (TTT IS NULL OR TTT <> '%s') ORDER BY PCode DESC ">
        kSomeByClass;
    // Neither key nor class: the class statements without their class condition.
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE (TTT IS NULL OR TTT <> '%s') "
        u"ORDER BY PCode DESC ">
        kAny;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE Gubun <> '%s' "
        u"AND (TTT IS NULL OR TTT <> '%s') ORDER BY PCode DESC ">
        kSome;
    const auto use = excludedUse(customerKind);
    if (seek.isEmpty()) {
        if (classCode.isEmpty()) return use ? kSome(*use, kWithdrawn) : kAny(kWithdrawn);
        return use ? kSomeByClass(classCode, *use, kWithdrawn) : kAnyByClass(classCode, kWithdrawn);
    }
    if (classCode.isEmpty()) return use ? kSomeBySeek(*use, seek, kWithdrawn) : kAnyBySeek(seek, kWithdrawn);
    return use ? kSomeBySeekAndClass(*use, seek, classCode, kWithdrawn)
               : kAnyBySeekAndClass(seek, classCode, kWithdrawn);
}

}  // namespace

platform::RowSource products(QStringView seek, QStringView classCode, QStringView customerKind) {
    return db::selectPieces(productSearch(seek, classCode, customerKind), kColumns);
}

platform::Rows frequentProducts(QStringView customerKind) {
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM MPUMMOK                     "
        u"ORDER BY AUTOCNT DESC ">
        kAnyFrequent;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM MPUMMOK WHERE Gubun <> '%s' "
        u"ORDER BY AUTOCNT DESC  ">
        kSomeFrequent;
    const auto use = excludedUse(customerKind);
    return mostUsedFirst(db::selectRows(use ? kSomeFrequent(*use) : kAnyFrequent(), kColumns));
}

QList<ProductClass> productClasses() {
    static constexpr db::Statement<u"SELECT * FROM JGUBUN ORDER BY CODE"> kClasses;
    QList<ProductClass> classes;
    db::forEachRow(kClasses(), [&](db::CVORecordset& row) {
        classes.append({row.GetFieldString(0), row.GetFieldString(1)});
    });
    return classes;
}

db::Sql productNameSearch(QStringView pcode) {
    static constexpr db::Statement<u"SELECT Pname,JGubun FROM PUMMOK WHERE PCode = '%s' "> kName;
    return kName(pcode);
}

std::optional<ProductName> productName(QStringView pcode) {
    const auto row = db::firstRow(productNameSearch(pcode));
    if (!row) return std::nullopt;
    return ProductName{row->at(0), row->at(1)};
}

bool ListedProduct::isOfferedTo(QStringView customerKind) const {
    return !isWithdrawn && excludedUse(customerKind) != Gubun;
}

std::optional<ListedProduct> listedProduct(QStringView pcode) {
    static constexpr db::Statement<
        u"SELECT Pname, JGubun, Size, Gubun, BoxBonEa, TTT FROM PUMMOK WHERE PCode = '%s'">
        kListed;
    const auto row = db::firstRow(kListed(pcode));
    if (!row) return std::nullopt;
    return ListedProduct{row->at(0),
                         row->at(1),
                         row->at(2),
                         row->at(3),
                         platform::parseInteger(row->at(4)),
                         row->at(5) == kWithdrawn};
}

QString productOfBarcode(QStringView barcode) {
    static constexpr db::Statement<u"SELECT PCode FROM BARCODE WHERE Barcode = '%s' ORDER BY PCode">
        kOfBarcode;
    // A reader may give the twelve digits of the American code with the zero that makes it thirteen, or
    // without.
    QStringList forms{barcode.toString(), u'0' + barcode.toString()};
    if (barcode.startsWith(u'0')) forms << barcode.sliced(1).toString();
    for (const QString& form : forms) {
        if (const auto row = db::firstRow(kOfBarcode(form))) return row->first();
    }
    return books::productExists(barcode) ? barcode.toString() : QString();
}

QString productClass(QStringView pcode) {
    static constexpr db::Statement<u"SELECT JGubun FROM Pummok WHERE PCODE = '%s'  ORDER BY PCODE"> kClassOf;
    const auto row = db::firstRow(kClassOf(pcode));
    return row ? row->first() : QString();
}

}  // namespace sales
