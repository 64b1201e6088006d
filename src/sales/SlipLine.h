#pragma once

#include <QString>
#include <QStringView>
#include <array>

#include "sales/LineAmounts.h"

namespace sales {

/// `Gubun` of a line of goods sold.
inline constexpr QStringView kSale = u"매출";

/// Print states of a slip (`WorkGubun`), besides that of a printed one.
inline constexpr QStringView kInEditing = u"미처리";  ///< Added on the screen, not saved yet.
inline constexpr QStringView kUnprinted = u"미발행";  ///< Saved.
inline constexpr QStringView kPaid = u"결제";         ///< Settled by an approved card exchange.

/// One line of a sales slip: the columns that the working table and the saved slips share, as texts and in
/// their order.
struct SlipLine {
    QString DDate;  ///< "yyyy-MM-dd".
    QString Gubun{kSale.toString()};
    QString GCode;
    QString GName;
    QString JunNo;
    QString WorkGubun{kInEditing.toString()};
    QString PCode;
    QString PName;
    QString JGubun;
    QString Box;     ///< Boxes.
    QString Bon;     ///< Single bottles.
    QString MMoney;  ///< Supply, won.
    QString BMoney;  ///< VAT, won.
    QString YMoney;  ///< Crate deposit, won.
    QString GMoney;  ///< Bottle deposit, won.

    /// The four amounts; text that is no number reads as 0.
    LineAmounts amounts() const;
    void setAmounts(const LineAmounts& amounts);
};

/// The columns of the working table; the saved slips have `UserID` and `DTime` beside them.
inline constexpr std::array kSlipLineColumns{
    &SlipLine::DDate,     &SlipLine::Gubun,  &SlipLine::GCode,  &SlipLine::GName,  &SlipLine::JunNo,
    &SlipLine::WorkGubun, &SlipLine::PCode,  &SlipLine::PName,  &SlipLine::JGubun, &SlipLine::Box,
    &SlipLine::Bon,       &SlipLine::MMoney, &SlipLine::BMoney, &SlipLine::YMoney, &SlipLine::GMoney};

/// The key of a slip's line: the same product may stand on it twice with other quantities.
struct LineKey {
    QString PCode;
    QString Box;
    QString Bon;

    friend bool operator==(const LineKey&, const LineKey&) = default;
};

}  // namespace sales
