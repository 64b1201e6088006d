#pragma once

#include <QString>
#include <QStringView>
#include <optional>

namespace books {

/// The next slip number (`JunNo`) of `workDate` for a work mode: 1 sales from "5001", 2 collection from
/// "7001", 3 container returns from "6001"; nothing for any other mode. The number is not reserved: it is
/// taken when its slip is saved.
std::optional<QString> nextSlipNumber(int workMode, QStringView workDate);

/// The number of the next simple-payment slip of the day: one above the highest collection slip when that
/// makes 7000 or more, else "7001"; numbers of unsettled payments are skipped.
QString nextSimplePaymentNumber(QStringView workDate);

/// The next number of the day for what stayed of another customer under a number that was given again: from
/// "4001" on, below all that are given to new slips, whose order they leave alone.
QString nextNumberOfReused(QStringView workDate);

/// True when the customer already has a sales slip on the date, of whichever salesman.
bool customerHasSlip(QStringView workDate, QStringView gcode);

}  // namespace books
