#include "app/ClockCheck.h"

#include <QStringList>
#include <algorithm>

#include "db/Query.h"
#include "db/Statement.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

QString dayOf(const QDateTime& time) {
    return time.toString(u"yyyy-MM-dd"_s);
}

/// The last date that `last` gives, and the last time on it.
template <typename Time>
QString lastOf(const db::Sql& last, const Time& time) {
    const QString date = db::firstRow(last).value_or(QStringList()).value(0);
    return date.isEmpty() ? QString()
                          : date + u' ' + db::firstRow(time(date)).value_or(QStringList()).value(0);
}

}  // namespace

QString newestSlip() {
    static constexpr db::Statement<u"SELECT DDate FROM MTM WHERE DTime <> '' ORDER BY DDate DESC LIMIT 1">
        kLastSale;
    static constexpr db::Statement<u"SELECT DDate FROM MTMOK WHERE DTime <> '' ORDER BY DDate DESC LIMIT 1">
        kLastCollection;
    static constexpr db::Statement<u"SELECT max(DTime) FROM MTM WHERE DDate = '%s'"> kSaleTime;
    static constexpr db::Statement<u"SELECT max(DTime) FROM MTMOK WHERE DDate = '%s'"> kCollectionTime;
    return std::max(lastOf(kLastSale(), kSaleTime), lastOf(kLastCollection(), kCollectionTime));
}

QString clockProblem(QStringView workDate, const QDateTime& now, QStringView newest) {
    QStringList problems;
    const QString shown = now.toString(u"yyyy-MM-dd HH:mm"_s);
    if (newest > shown) {
        problems << u"단말기 시계(%1)가 마지막 전표(%2)보다 이릅니다..! 시계와 작업일자를 확인하세요!!"_s.arg(
            shown, newest);
    }
    if (workDate != dayOf(now)) {
        problems << u"작업일자(%1)가 오늘(%2)과 다릅니다..! 전표는 작업일자로 저장됩니다."_s.arg(workDate,
                                                                                                 dayOf(now));
    }
    return problems.join(u"\n\n"_s);
}

QString newDay(QStringView workDate, const QDateTime& now) {
    return u"날짜(%1)가 바뀌었습니다..! 전표는 작업일자(%2)로 저장됩니다. 오늘 날짜로 하려면 [X]로 끝내고 "
           "다시 로그인하세요!!"_s.arg(dayOf(now), workDate);
}

}  // namespace app
