#include "db/Rows.h"

#include "db/Query.h"

namespace db {

Rows selectRows(const Sql& select, int columns) {
    Rows rows{.columns = columns, .cells = {}};
    const int count = forEachRow(select, [&](CVORecordset& recordset) {
        for (int i = 0; i < columns; ++i) rows.cells.append(recordset.GetFieldString(i));
    });
    rows.isComplete = count >= 0;
    return rows;
}

}  // namespace db
