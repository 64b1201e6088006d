#pragma once

#include <QString>
#include <QStringView>

namespace test {

/// Compares `text` line by line with the approved file at `path` below the tests' folder, such as
/// "print/approved/invoice.txt", and fails at the first line that differs. With ROVANA_APPROVE set in the
/// environment the file is written instead, for a person to read over.
void expectApproved(QStringView text, const QString& path);

/// What a slip's paper has below its parties: from the second double rule on.
QString belowTheHead(const QString& paper);

}  // namespace test
