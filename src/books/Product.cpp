#include "books/Product.h"

#include "db/Query.h"
#include "db/Statement.h"

namespace books {

bool productExists(QStringView pCode) {
    static constexpr db::Statement<u"SELECT PCode FROM Pummok WHERE PCODE = '%s' "> kExists;
    return db::hasRow(kExists(pCode));
}

}  // namespace books
