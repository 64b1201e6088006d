#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include "platform/Rows.h"
#include "platform/Won.h"
#include "sales/WorkingSlip.h"
#include "ui/ReportList.h"

/// What the sales slip's screen (134) says of its lines.
namespace sales {

/// What stands below a line's name: its size and what it comes to, marked where the goods cost nothing.
ui::CellDetail detailText(const LineDetail& line);

/// "3품목 4상자 12본" of workingLines; empty without a line.
QString countText(const platform::Rows& lines);

/// The question whether the lines whose goods cost nothing are meant; empty without such a line.
QString freeLinesQuestion(const QHash<QStringList, LineDetail>& details);

/// That the slip's collection has followed its total by so much, in won.
QString movedText(platform::Won moved);

}  // namespace sales
