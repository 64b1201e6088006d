#pragma once

#include <QStringView>

/// Whether a sales slip has been on paper: WorkGubun of its MTM lines. "미발행" is saved, "발행" printed,
/// "결제" settled by an approved exchange, which prints the slip by itself.
namespace print {

/// True when the slip is "발행" or "결제": its next print is a reprint. False also for a slip that is not
/// there.
bool isPrinted(QStringView date, QStringView junNo, QStringView userId);

/// Makes "미발행" lines "발행"; any other state, "결제" above all, stays.
void markPrinted(QStringView date, QStringView junNo, QStringView userId);

}  // namespace print
