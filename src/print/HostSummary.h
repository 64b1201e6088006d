#pragma once

#include <QString>
#include <QStringView>

#include "print/Document.h"

namespace print {

/// The host's totals of the day, as the texts of its reply.
struct HostSummary {
    QString responseCode;    ///< 1102; "0000" alone means success.
    QString responseText;    ///< 1203.
    QString identification;  ///< 1002; not on the slip.
    QString transferCount;   ///< 1115.
    QString supply;          ///< 1116, won, as all that follow.
    QString vat;             ///< 1117.
    QString deposit;         ///< 1118.
    QString collected;       ///< 1119.
    QString transaction;     ///< 1120.
    QString fee;             ///< 1121.
    QString deposited;       ///< 1122.
};

/// The host summary slip. A text that is no number prints as 0.
Document hostSummarySlip(const HostSummary& summary, QStringView salesman, QStringView workDate);

}  // namespace print
