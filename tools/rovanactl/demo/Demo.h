#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>
#include <span>
#include <vector>

#include "db/ImportFile.h"

/// An invented liquor wholesaler: customers, products, prices and open orders that resemble the real ones and
/// name nobody. The same options give the same data on every machine.
namespace admin::demo {

struct Options {
    int customers = 120;
    int products = 90;
    int prices = 400;  ///< Contract prices.
    quint64 seed = 1;
    QString date;  ///< "yyyy-MM-dd": the day of the open orders.
};

/// Why nothing can be invented for the options; empty when it can.
QString findFault(const Options& options);

struct LiquorClass {
    QStringView code;
    QStringView name;
};
std::span<const LiquorClass> liquorClasses();

/// Prices are the supply price of one bottle in won; a box costs its bottles, and VAT is a tenth.
struct Product {
    QString code;
    QString name;
    QString size;
    QString use;   ///< "공용", "일반" or "유흥".
    QString mark;  ///< "Y" not for sale but taken back, "Z" sold and its empties taken back, "" sold.
    int liquorClass = 0;
    int bottlesPerBox = 1;
    int cost = 0;
    int tierA = 0;
    int tierB = 0;
    int crateDeposit = 0;
    int bottleDeposit = 0;
    int crateFee = 0;
    int bottleFee = 0;

    bool isOnSale() const { return mark != u"Y"; }
};

/// How a customer's prices come about where no contract names one.
enum class PriceGroup { Tier, ClassMargin, CustomerMargin };

struct Customer {
    QString code;
    QString name;
    QString owner;
    QString lastTrade;
    QString registration;
    QString address;
    QString telephone;
    QString kind;  ///< "일반", "유흥" or "공용".
    QString user;
    PriceGroup group = PriceGroup::Tier;
    int margin = 0;      ///< Percent.
    int receivable = 0;  ///< Won.
};

/// Customers and products are told by their place in the data.
struct ContractPrice {
    int customer;
    int product;
    int bottle;  ///< Supply price of a bottle in won.
};

struct ClassMargin {
    int customer;
    int liquorClass;
    int percent;
};

struct OrderLine {
    QString number;
    int customer;
    int product;
    int boxes;
    int bottles;
};

struct Data {
    Options options;
    std::vector<Product> products;
    std::vector<Customer> customers;
    std::vector<ContractPrice> contractPrices;
    std::vector<ClassMargin> classMargins;
    std::vector<OrderLine> orders;
};

/// Invents everything. The options must be without fault.
Data invent(const Options& options);

/// The lines of one import file in code page 949. Nothing when a row does not come back from its line as it
/// went in: too long, or with a character that the file cannot hold.
std::optional<QByteArray> importFileContent(const Data& data, const db::ImportFile& file);

/// Rows of PDAUSER and MPUMMOK, and the one row of config.
QList<QStringList> users();
QList<QStringList> frequentProducts(const Data& data);
QStringList distributor();

/// The key under which the consonant boards find a name: the initial consonant of its first syllable, ㄲ ㄸ
/// ㅃ ㅆ ㅉ under the plain one since the boards have no key for them; "00" for a name that begins otherwise.
QString seekKey(QStringView name);

}  // namespace admin::demo
