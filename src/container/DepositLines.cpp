#include "container/DepositLines.h"

#include "container/WorkingContainers.h"
#include "db/Query.h"
#include "db/Statement.h"
#include "platform/Rows.h"

namespace container {

QList<DepositLine> depositLines() {
    static constexpr db::Statement<u"SELECT PCode,PName,Box,Bon,YMoney,GMoney FROM TEMP ORDER BY PCode DESC">
        kSold;
    QList<DepositLine> lines;
    db::forEachRow(kSold(), [&](db::CVORecordset& row) {
        const auto won = [&](int column) { return platform::parseWon(row.GetFieldString(column)); };
        DepositLine line;
        line.PCode = row.GetFieldString(0);
        line.PName = row.GetFieldString(1);
        line.Box = row.GetFieldString(2);
        line.Bon = row.GetFieldString(3);
        line.crateDeposit = won(4);
        line.bottleDeposit = won(5);
        lines.append(line);
    });
    const platform::Rows returns = workingLines();
    for (int row = 0; row < returns.count(); ++row) {
        const ContainerKey key = keyAt(returns, row);
        const platform::Won recovery = lineAmounts(key).value_or(ContainerAmounts{}).recovery();
        bool isSold = false;
        for (DepositLine& line : lines) {
            if (line.PCode != key.PCode) continue;
            line.returned = key;
            line.recovery = recovery;
            isSold = true;
        }
        if (isSold) continue;
        DepositLine line;
        line.PCode = key.PCode;
        line.PName = returns.at(row, 1);
        line.returned = key;
        line.recovery = recovery;
        lines.append(line);
    }
    return lines;
}

}  // namespace container
