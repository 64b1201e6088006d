#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>

#include "db/Statement.h"
#include "platform/Rows.h"

namespace sales {

/// The product search, in four columns: code, name, size, use; withdrawn products left out. With a `seek` key
/// names descending, without one codes descending. An empty `classCode` stands for all classes.
platform::RowSource products(QStringView seek, QStringView classCode, QStringView customerKind);

/// The frequently sold products in the same four columns, most used first. Withdrawn ones stay in.
platform::Rows frequentProducts(QStringView customerKind);

/// A liquor class.
struct ProductClass {
    QString code;
    QString name;
};

/// All classes by code.
QList<ProductClass> productClasses();

/// Name and class of a product; nothing when there is no such product.
struct ProductName {
    QString Pname;
    QString JGubun;
};
std::optional<ProductName> productName(QStringView pcode);
/// The look-up of productName(): name and class.
db::Sql productNameSearch(QStringView pcode);

/// A product as the price list has it today.
struct ListedProduct {
    QString Pname;
    QString JGubun;
    QString Size;
    QString Gubun;  ///< The use it is meant for.
    std::int64_t BoxBonEa = 0;
    bool isWithdrawn = false;

    /// Name and size.
    QString title() const { return Size.isEmpty() ? Pname : QString(Pname + u' ' + Size); }
    /// Whether the searches offer it to a customer of that kind.
    bool isOfferedTo(QStringView customerKind) const;
};
/// Nothing when there is no such product.
std::optional<ListedProduct> listedProduct(QStringView pcode);

/// The code of the product that a bar code stands for, by the office's list of them, or that is such a code
/// itself; empty for none.
QString productOfBarcode(QStringView barcode);

/// The class (`JGubun`) of the chosen product; empty when there is no such product.
QString productClass(QStringView pcode);

}  // namespace sales
