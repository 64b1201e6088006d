#include "db/Rows.h"

#include "db/Query.h"

namespace db {

Rows selectRows(const Sql& select, int columns) {
    Rows rows{columns, {}};
    forEachRow(select, [&](CVORecordset& recordset) {
        for (int i = 0; i < columns; ++i) rows.cells.append(recordset.GetFieldString(i));
    });
    return rows;
}

}  // namespace db
