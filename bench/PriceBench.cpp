// One price of a slip line beside what it needs in bare SQLite: its look-ups as bound statements, prepared
// once, and its sums. Every price source weighs the same.

#include <sqlite3.h>

#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "Bench.h"
#include "Folder.h"
#include "platform/Sqlite.h"
#include "sales/Pricing.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;
using sales::PriceSource;

constexpr int kRuns = 45;
constexpr int kPricesOfASource = 1000;
constexpr int kCustomersOfASource = 100;
constexpr int kProducts = 400;
constexpr double kMicrosecondsPerMillisecond = 1000;
constexpr int kBoxes = 3;
constexpr int kBottles = 5;

/// What a price comes to: its source and, as one figure, its amounts.
struct Priced {
    PriceSource source;
    long long sum;
};

constexpr std::array kSources{PriceSource::Contract, PriceSource::ClassMargin, PriceSource::CustomerMargin,
                              PriceSource::Tier};

/// A customer or product code of four characters.
std::string code(char kind, int number) {
    const std::string digits = std::to_string(1000 + number % 1000);
    return kind + digits.substr(1);
}

/// Customers of the source begin with this letter.
char kindOf(PriceSource source) {
    return "KCMT"[int(source)];
}

void fill(platform::SqliteFile& file) {
    platform::SqliteTransaction transaction(file);
    const auto run = [&](const std::string& sql) { file.run(QByteArray::fromStdString(sql)); };
    for (int product = 0; product < kProducts; ++product) {
        std::string values = "'" + code('P', product) + "','Soju','','360',20";
        for (int column = 5; column < 23; ++column)
            values += ",'" + std::to_string(column * 100 + product) + "'";
        run("INSERT INTO PUMMOK VALUES (" + values + ",'0" + std::to_string(product % 5) + "','','','')");
    }
    for (const PriceSource source : kSources) {
        for (int customer = 0; customer < kCustomersOfASource; ++customer) {
            const std::string gcode = code(kindOf(source), customer);
            const std::string margin = source == PriceSource::CustomerMargin ? "7" : "";
            run("INSERT INTO GARAE (GCODE,GNAME,MAJIN) VALUES ('" + gcode + "','Customer','" + margin + "')");
            for (int product = 0; source == PriceSource::Contract && product < kProducts; ++product) {
                run("INSERT INTO GARAEDANGA VALUES ('" + gcode + "','" + code('P', product) +
                    "','5','15000','1500','900','90','2000','3000','50')");
            }
            for (int liquorClass = 0; source == PriceSource::ClassMargin && liquorClass < 5; ++liquorClass) {
                run("INSERT INTO GARAEMAJIN VALUES ('" + gcode + "','0" + std::to_string(liquorClass) +
                    "','5')");
            }
        }
    }
    transaction.commit();
}

/// A prepared statement whose first row is read as texts, by SQLite's own calls alone.
class LookUp {
  public:
    LookUp(sqlite3* handle, const char* sql) {
        if (sqlite3_prepare_v2(handle, sql, -1, &statement_, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(handle));
        }
    }
    ~LookUp() { sqlite3_finalize(statement_); }
    Q_DISABLE_COPY_MOVE(LookUp)

    /// True when there is a row; every column's text is then taken.
    bool find(std::initializer_list<const std::string*> values) {
        int place = 0;
        for (const std::string* value : values) {
            sqlite3_bind_text(statement_, ++place, value->data(), int(value->size()), SQLITE_STATIC);
        }
        const bool found = sqlite3_step(statement_) == SQLITE_ROW;
        columns_.resize(found ? std::size_t(sqlite3_column_count(statement_)) : 0);
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, int(i)));
            columns_[i].assign(text == nullptr ? "" : text);
        }
        sqlite3_reset(statement_);
        return found;
    }
    const std::string& column(std::size_t index) const { return columns_[index]; }
    /// The column's number; 0 without one.
    template <typename Number>
    Number number(std::size_t index) const {
        Number number = 0;
        std::from_chars(columns_[index].data(), columns_[index].data() + columns_[index].size(), number);
        return number;
    }

  private:
    sqlite3_stmt* statement_ = nullptr;
    std::vector<std::string> columns_;
};

/// The look-ups of a price, in the order in which the sources are tried, and its amounts.
class LookUps {
  public:
    explicit LookUps(sqlite3* handle)
        : contract_(handle, "SELECT * FROM GARAEDANGA WHERE GCODE = ? AND PCODE = ?"),
          product_(handle, "SELECT Pname, JGubun FROM PUMMOK WHERE PCode = ?"),
          classMargin_(handle, "SELECT Majin FROM GARAEMAJIN WHERE GCODE = ? AND GUBUN = ?"),
          customerMargin_(handle, "SELECT Majin FROM GARAE WHERE GCODE = ?"),
          costPrices_(handle,
                      "SELECT BoxSMoney, BonSMoney, BoxBMoney, BonBMoney, YGMoney1, YGMoney2, GBonMoney2 "
                      "FROM PUMMOK WHERE PCODE = ?"),
          tierPrices_(handle,
                      "SELECT ABoxMMoney, BBoxMMoney, ABonMMoney, BBonMMoney, ABoxBMoney, BBoxBMoney, "
                      "ABonBMoney, BBonBMoney, YGMoney1, YGMoney2, GBonMoney2 FROM PUMMOK WHERE PCODE = ?") {}

    Priced price(const std::string& gcode, const std::string& pcode) {
        if (contract_.find({&gcode, &pcode})) {
            const auto won = [&](std::size_t column) { return contract_.number<long long>(column); };
            return {PriceSource::Contract,
                    kBoxes * (won(3) + won(4) + won(7) + won(8)) + kBottles * (won(5) + won(6) + won(9))};
        }
        product_.find({&pcode});
        if (classMargin_.find({&gcode, &product_.column(1)})) {
            costPrices_.find({&pcode});
            // The VAT of boxes is that of bottles.
            return {PriceSource::ClassMargin,
                    amounts(costPrices_, {0, 1, 3, 3}, 4, classMargin_.number<double>(0))};
        }
        customerMargin_.find({&gcode});
        const double margin = customerMargin_.number<double>(0);
        if (margin != 0) {
            costPrices_.find({&pcode});
            return {PriceSource::CustomerMargin, amounts(costPrices_, {0, 1, 2, 3}, 4, margin)};
        }
        tierPrices_.find({&pcode});
        return {PriceSource::Tier, amounts(tierPrices_, {1, 3, 5, 7}, 8, 0)};
    }

  private:
    /// Supply and VAT of boxes and bottles, each rounded up, and the deposits.
    static long long amounts(const LookUp& row, const std::array<std::size_t, 4>& prices,
                             std::size_t deposits, double margin) {
        long long sum = 0;
        for (std::size_t i = 0; i < prices.size(); ++i) {
            const auto price = row.number<double>(prices[i]);
            sum += (long long)std::ceil((i % 2 == 0 ? kBoxes : kBottles) * (price + price * margin * 0.01));
        }
        const auto won = [&](std::size_t column) { return row.number<long long>(deposits + column); };
        return sum + kBoxes * (won(0) + won(1)) + kBottles * won(2);
    }

    LookUp contract_, product_, classMargin_, customerMargin_, costPrices_, tierPrices_;
};

/// Microseconds of one call of `price`, which prices a product for a customer, as the mean over the sources.
/// Adds the amounts of all to `sum`.
template <typename Text, typename Price>
double microsecondsOfAPrice(const std::vector<Text>& customers, const std::vector<Text>& products,
                            Price&& price, long long* sum) {
    const double time = millisecondsOf([&] {
        for (std::size_t i = 0; i < kSources.size() * kPricesOfASource; ++i) {
            const std::size_t source = i / kPricesOfASource;
            const Text& customer = customers[source * kCustomersOfASource + i % kCustomersOfASource];
            const Priced priced = price(customer, products[i * 7 % kProducts]);
            if (priced.source != kSources[source]) throw std::runtime_error("a price has the wrong source");
            *sum += priced.sum;
        }
    });
    return time * kMicrosecondsPerMillisecond / double(kSources.size() * kPricesOfASource);
}

}  // namespace

Result measurePrice() {
    const Folder folder;
    platform::SqliteFile file(folder.databaseFile(), platform::SqliteFile::Mode::Existing);
    fill(file);
    LookUps lookUps(file.handle());

    std::vector<std::string> customers;
    std::vector<std::string> products;
    for (const PriceSource source : kSources) {
        for (int i = 0; i < kCustomersOfASource; ++i) customers.push_back(code(kindOf(source), i));
    }
    for (int i = 0; i < kProducts; ++i) products.push_back(code('P', i));
    const auto toQt = [](const std::vector<std::string>& texts) {
        std::vector<QString> converted;
        for (const std::string& text : texts) converted.push_back(QString::fromStdString(text));
        return converted;
    };
    const std::vector<QString> qtCustomers = toQt(customers);
    const std::vector<QString> qtProducts = toQt(products);

    long long sums[2] = {};
    const Result result = compare(
        kRuns, "us",
        [&] {
            const auto price = [](const QString& gcode, const QString& pcode) {
                const sales::PricedLine line = sales::priceLine(gcode, u"", pcode, kBoxes, kBottles);
                const sales::LineAmounts& amounts = line.amounts;
                return Priced{
                    line.source,
                    (amounts.supply + amounts.vat + amounts.crateDeposit + amounts.bottleDeposit).value()};
            };
            return microsecondsOfAPrice(qtCustomers, qtProducts, price, &sums[0]);
        },
        [&] {
            const auto price = [&](const std::string& gcode, const std::string& pcode) {
                return lookUps.price(gcode, pcode);
            };
            return microsecondsOfAPrice(customers, products, price, &sums[1]);
        });
    if (sums[0] != sums[1]) throw std::runtime_error("the two sides come to different amounts");
    return result;
}

}  // namespace bench
