#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

#include "db/Statement.h"
#include "platform/Rows.h"

namespace sales {

/// The intended use (`Gubun` of a product) that a customer of this kind is not offered; nothing for "공용",
/// who is offered everything.
std::optional<QStringView> excludedUse(QStringView customerKind);

/// The statement of the product search, in four columns: code, name, size, use; withdrawn products left out.
/// With a `seek` key names descending, without one codes descending. An empty `classCode` stands for all
/// classes.
db::Sql productSearch(QStringView seek, QStringView classCode, QStringView customerKind);

/// Runs productSearch.
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

bool productExists(QStringView pcode);

/// The class (`JGubun`) of the chosen product; empty when there is no such product.
QString productClass(QStringView pcode);

}  // namespace sales
