#pragma once

#include <QFile>
#include <QString>

#include "platform/Device.h"
#include "platform/WholeFile.h"

namespace test {

/// The paper printed so far, as text; empty for none.
inline QString rollText() {
    return QString::fromUtf8(platform::readWholeFile(platform::device::folder() + QStringLiteral("/roll.txt"))
                                 .value_or(QByteArray()));
}

/// Tears the paper off.
inline void resetRoll() {
    for (const char* name : {"/roll.txt", "/roll.txt.1", "/roll.png"})
        QFile::remove(platform::device::folder() + QLatin1String(name));
}

}  // namespace test
