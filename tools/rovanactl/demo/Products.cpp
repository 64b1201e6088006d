#include <QStringBuilder>
#include <algorithm>
#include <array>

#include "rovanactl/demo/Parts.h"

namespace admin::demo {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::array kClasses{LiquorClass{u"01", u"소주"},   LiquorClass{u"02", u"맥주"},
                              LiquorClass{u"03", u"양주"},   LiquorClass{u"04", u"탁주"},
                              LiquorClass{u"05", u"과실주"}, LiquorClass{u"06", u"음료"}};

/// How a drink is packed. Glass in crates carries deposits and comes back.
struct Packing {
    QStringView size;
    QStringView suffix;  ///< What the name says of it.
    int bottlesPerBox;
    int cost;  ///< Of an ordinary bottle, in won.
    int crateDeposit;
    int bottleDeposit;

    bool isReturned() const { return crateDeposit > 0; }
};

struct Range {
    int share;  ///< Percent of all products.
    QStringView noun;
    std::span<const QStringView> brands;
    std::span<const Packing> packings;
};

constexpr QStringView kSojuBrands[] = {u"참솔",   u"이슬담", u"한빛재", u"푸른내",
                                       u"달무리", u"산들",   u"맑은골"};
constexpr QStringView kBeerBrands[] = {u"보리울", u"황금들", u"하얀거품", u"청보리", u"골든벨라", u"라온"};
constexpr QStringView kSpiritBrands[] = {u"로얄문", u"킹스베이", u"글렌하루", u"블랙포인트", u"올드하버"};
constexpr QStringView kMakgeolliBrands[] = {u"장독골", u"두물", u"똠방", u"산막골", u"누룩뜰", u"햅쌀"};
constexpr QStringView kWineBrands[] = {u"루나벨", u"포도원", u"펲톤밸리", u"산머루", u"복분골", u"쀍로제"};
constexpr QStringView kSoftBrands[] = {u"톡톡", u"콜라온", u"오렌지숲", u"하늘샘", u"토닉온", u"라임뜰"};

constexpr Packing kSojuPackings[] = {{u"360ml", u"", 20, 1300, 1500, 100},
                                     {u"640ml", u" 페트", 12, 2200, 0, 0},
                                     {u"1.8L", u" 대병", 6, 5600, 0, 0}};
constexpr Packing kBeerPackings[] = {{u"500ml", u"", 20, 1500, 2000, 130},
                                     {u"640ml", u" 대병", 12, 1900, 2000, 130},
                                     {u"355ml", u" 캔", 24, 1200, 0, 0},
                                     {u"20L", u" 생", 1, 42000, 30000, 0}};
constexpr Packing kSpiritPackings[] = {{u"700ml", u"", 6, 28000, 0, 0},
                                       {u"450ml", u" 17년", 6, 41000, 0, 0},
                                       {u"350ml", u" 하프", 12, 16000, 0, 0}};
constexpr Packing kMakgeolliPackings[] = {{u"750ml", u"", 20, 1000, 0, 0},
                                          {u"1.2L", u" 큰병", 10, 1600, 0, 0}};
constexpr Packing kWinePackings[] = {{u"750ml", u"", 6, 9500, 0, 0}, {u"375ml", u" 하프", 12, 5200, 0, 0}};
constexpr Packing kSoftPackings[] = {{u"355ml", u" 캔", 24, 600, 0, 0},
                                     {u"1.5L", u" 페트", 12, 1400, 0, 0},
                                     {u"250ml", u" 병", 30, 500, 1200, 50}};

constexpr std::array kRanges{Range{22, u"소주", kSojuBrands, kSojuPackings},
                             Range{24, u"맥주", kBeerBrands, kBeerPackings},
                             Range{16, u"위스키", kSpiritBrands, kSpiritPackings},
                             Range{12, u"막걸리", kMakgeolliBrands, kMakgeolliPackings},
                             Range{14, u"와인", kWineBrands, kWinePackings},
                             Range{12, u"음료", kSoftBrands, kSoftPackings}};

/// A brand's further products, each in all packings.
constexpr QStringView kVariants[] = {u"", u" 골드", u" 프레시", u" 라이트", u" 클래식"};

int roundToTen(int won) {
    return (won + 5) / 10 * 10;
}

QString variant(int series) {
    if (series < int(std::size(kVariants))) return kVariants[series].toString();
    return u" %1호"_s.arg(series + 1);
}

/// A product of a class; `place` walks the brands, then the packings, then the variants, so no two are alike.
Product inventProduct(int liquorClass, int place, Chance& chance) {
    const Range& range = kRanges[std::size_t(liquorClass)];
    const int brands = int(range.brands.size());
    const int packings = int(range.packings.size());
    const Packing& packing = range.packings[std::size_t(place / brands % packings)];
    Product product;
    product.liquorClass = liquorClass;
    product.name = range.brands[std::size_t(place % brands)] % range.noun %
                   variant(place / brands / packings) % packing.suffix;
    product.size = packing.size.toString();
    product.use = place % 7 == 3 ? u"일반"_s : place % 7 == 5 ? u"유흥"_s : u"공용"_s;
    product.mark = packing.isReturned() ? u"Z"_s : u""_s;
    product.bottlesPerBox = packing.bottlesPerBox;
    product.cost = roundToTen(packing.cost * chance.between(94, 116) / 100);
    product.tierA = roundToTen(product.cost * 108 / 100);
    product.tierB = roundToTen(product.cost * 115 / 100);
    product.crateDeposit = packing.crateDeposit;
    product.bottleDeposit = packing.bottleDeposit;
    product.crateFee = packing.isReturned() ? 200 : 0;
    product.bottleFee = packing.bottleDeposit > 0 ? 10 : 0;
    return product;
}

/// Turns a product into one that is only taken back: no price, the deposits of its packing.
void makeContainer(Product* product, int liquorClass) {
    const Range& range = kRanges[std::size_t(liquorClass)];
    const Packing& packing = range.packings.front();
    product->name = range.noun % u" 공병상자"_s;
    product->size = packing.size.toString();
    product->use = u"공용"_s;
    product->mark = u"Y"_s;
    product->bottlesPerBox = packing.bottlesPerBox;
    product->cost = product->tierA = product->tierB = 0;
    product->crateDeposit = packing.crateDeposit;
    product->bottleDeposit = packing.bottleDeposit;
    product->crateFee = 200;
    product->bottleFee = 10;
}

}  // namespace

std::span<const LiquorClass> liquorClasses() {
    return kClasses;
}

std::vector<Product> inventProducts(const Options& options, Chance& chance) {
    std::vector<Product> products;
    products.reserve(std::size_t(options.products));
    for (int liquorClass = 0; liquorClass < int(kRanges.size()); ++liquorClass) {
        const bool isLast = liquorClass + 1 == int(kRanges.size());
        const int left = options.products - int(products.size());
        const int share = kRanges[std::size_t(liquorClass)].share;
        const int count = isLast ? left : std::max(1, int(qint64(options.products) * share / 100));
        const bool isCrated = kRanges[std::size_t(liquorClass)].packings.front().isReturned();
        for (int place = 0; place < count; ++place) {
            Product product = inventProduct(liquorClass, place, chance);
            // One container product, and a withdrawn one whose empties still come back.
            if (isCrated && count >= 4 && place + 1 == count) makeContainer(&product, liquorClass);
            if (isCrated && count >= 6 && place == 2) product.mark = u"Y"_s;
            product.code = codeOf(int(products.size()), options.products, 1001);
            products.push_back(std::move(product));
        }
    }
    return products;
}

QList<QStringList> frequentProducts(const Data& data) {
    QList<QStringList> rows;
    int count = 980;
    const std::size_t step = std::max<std::size_t>(1, data.products.size() / 20);
    for (std::size_t i = 0; i < data.products.size() && count > 100; i += step) {
        const Product& product = data.products[i];
        if (!product.isOnSale()) continue;
        rows.append({product.code, product.name, product.size, product.use, QString::number(count)});
        count -= 37;
    }
    return rows;
}

}  // namespace admin::demo
