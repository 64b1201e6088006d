#include "print/PrintState.h"

#include "db/Query.h"

namespace print {
namespace {

constexpr db::Statement<
    u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "
    u"AND (WorkGubun = '발행' OR WorkGubun = '결제')">
    kSelectPrinted;
constexpr db::Statement<
    u"UPDATE MTM SET WorkGubun = '발행' WHERE DDate = '%s' AND JunNo = '%s' "
    u"AND UserID = '%s' AND WorkGubun = '미발행'">
    kMarkPrinted;

}  // namespace

bool isPrinted(QStringView date, QStringView junNo, QStringView userId) {
    return db::hasRow(kSelectPrinted(date, junNo, userId));
}

void markPrinted(QStringView date, QStringView junNo, QStringView userId) {
    db::execute(kMarkPrinted(date, junNo, userId));
}

}  // namespace print
