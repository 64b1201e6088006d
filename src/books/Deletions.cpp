#include "books/Deletions.h"

#include <algorithm>

#include "books/Visit.h"
#include "db/Health.h"
#include "db/Query.h"
#include "platform/Clock.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

/// What the visit's slip of that kind comes to; nothing without one.
std::optional<Won> totalOf(const Visit& visit, Paper slip) {
    switch (slip) {
        case Paper::Invoice: return visit.goods.isEmpty() ? std::nullopt : std::optional(visit.goodsTotal());
        case Paper::ContainerReceipt:
            return visit.containers.isEmpty() ? std::nullopt : std::optional(visit.containerWorth());
        case Paper::CollectionSlip: {
            Won total;
            for (const CollectionSlip& each : visit.collections) total += each.amounts().total;
            return visit.collections.isEmpty() ? std::nullopt : std::optional(total);
        }
    }
    return std::nullopt;
}

/// A text of the office that no statement would take goes without its quote.
QString quotable(QString text) {
    return text.replace(u'\'', u'’');
}

}  // namespace

bool noteDeletion(db::Transaction& transaction, Paper slip, QStringView date, QStringView junNo,
                  QStringView userId, QStringView deletedBy) {
    static constexpr db::Statement<
        u"INSERT INTO DELETED (DDate,Document,JunNo,UserID,GCode,GName,Total,DeletedBy,DeletedAt) VALUES "
        u"('%s','%s','%s','%s','%s','%s','%s','%s','%s')">
        kInsert;
    const auto visits = visitsOfNumber(date, junNo, userId);
    if (!visits) return false;
    const QString now = platform::clock::now().toString(u"yyyy-MM-dd HH:mm:ss"_s);
    for (const Visit& visit : *visits) {
        const auto total = totalOf(visit, slip);
        if (!total) continue;
        const bool isNoted =
            transaction.run(kInsert(date, paperName(slip), visit.junNo, visit.userId, quotable(visit.gCode),
                                    quotable(visit.gName), platform::formatWon(*total), deletedBy, now));
        if (!isNoted && !(transaction.isAlive() && db::needsUpgrade())) return false;
    }
    return true;
}

std::optional<QList<Deletion>> deletionsOfDay(QStringView date, QStringView userId) {
    // An empty user leaves the condition on him out.
    static constexpr db::Statement<
        u"SELECT * FROM DELETED WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s' OR DeletedBy = '%s') "
        u"ORDER BY rowid">
        kOfDay;
    QList<Deletion> deletions;
    const int rows = db::forEachRow(kOfDay(date, userId, userId, userId), [&](db::CVORecordset& row) {
        const auto text = [&](int column) { return row.GetFieldString(column); };
        const QString document = text(1);
        const auto* const slip = std::ranges::find(kPapers, QStringView(document), paperName);
        deletions.append({text(0), slip == std::end(kPapers) ? Paper::Invoice : *slip, text(2), text(3),
                          text(4), text(5), platform::parseWon(text(6)), text(7), text(8)});
    });
    return rows >= 0 || db::needsUpgrade() ? std::optional(deletions) : std::nullopt;
}

}  // namespace books
