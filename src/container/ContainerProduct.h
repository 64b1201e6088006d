#pragma once

#include <QString>
#include <QStringView>
#include <optional>

#include "container/ContainerLine.h"
#include "platform/Rows.h"

namespace container {

/// The products that are taken back as containers, names descending, in four columns: code, name, size, use.
/// `seek` is the consonant of the name, or "00"; empty lists all.
platform::RowSource containerProducts(QStringView seek);

/// True when the product is one of those that containerProducts lists.
bool isContainer(QStringView pCode);

/// What a line takes from its product. A price that is no number reads as 0, as does a number of bottles
/// below 1.
struct ContainerProduct {
    QString pname;
    ContainerPrices prices;
};

/// Nothing when there is no such product.
std::optional<ContainerProduct> containerProduct(QStringView pCode);

}  // namespace container
