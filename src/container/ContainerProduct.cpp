#include "container/ContainerProduct.h"

#include <algorithm>

#include "db/Query.h"
#include "db/Statement.h"

namespace container {
namespace {

/// The two marks of the products that are taken back.
constexpr QStringView kMarks[] = {u"Y", u"Z"};
/// Keeps an imported figure, however long, from overflowing a product with a count.
constexpr std::int64_t kMostBottles = 1'000'000;

}  // namespace

platform::RowSource containerProducts(QStringView seek) {
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE (TTT = '%s' OR TTT = '%s') ORDER BY PName DESC">
        kAll;
    static constexpr db::Statement<
        u"SELECT PCode, PName, Size, Gubun  FROM PUMMOK WHERE seek = '%s' AND (TTT = '%s' OR TTT = '%s') "
        u"ORDER BY PName DESC">
        kBySeek;
    return db::selectPieces(seek.isEmpty() ? kAll(kMarks[0], kMarks[1]) : kBySeek(seek, kMarks[0], kMarks[1]),
                            4);
}

bool isContainer(QStringView pCode) {
    static constexpr db::Statement<
        u"SELECT PCode FROM PUMMOK WHERE PCODE = '%s' AND (TTT = '%s' OR TTT = '%s')">
        kIsContainer;
    return db::hasRow(kIsContainer(pCode, kMarks[0], kMarks[1]));
}

std::optional<ContainerProduct> containerProduct(QStringView pCode) {
    static constexpr db::Statement<
        u"SELECT pname,gubun,YGMoney1,YGMoney2,boxbonea,GBoxMoney1,GBonMoney1    FROM PUMMOK WHERE PCODE= "
        u"'%s' ">
        kProduct;
    const auto row = db::firstRow(kProduct(pCode));
    if (!row) return std::nullopt;
    const auto won = [&](int column) { return platform::parseWon(row->at(column)); };
    const std::int64_t bottles =
        std::clamp(platform::parseInteger(row->at(4)), std::int64_t(0), kMostBottles);
    return ContainerProduct{row->at(0), {won(2), won(3), bottles, won(5), won(6)}};
}

}  // namespace container
