#pragma once

#include <QStringView>

namespace books {

/// Whether the price list has a product of that code.
bool productExists(QStringView pCode);

}  // namespace books
