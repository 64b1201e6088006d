#pragma once

#include <QImage>
#include <QStringList>

namespace pilot {

/// The printed lines as they stand on the paper, with a margin of white around them.
QImage paperPicture(const QStringList& texts);

}  // namespace pilot
