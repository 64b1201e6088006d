#pragma once

#include <QString>

namespace pilot {

/// A value out of the device's database, or why it could not be read.
struct ReadValue {
    QString text;
    QString error;
};

/// The first column of the first row of a SELECT; empty without a row. Read past the program, by a connection
/// of its own that cannot write.
ReadValue readValue(const QString& select);

}  // namespace pilot
