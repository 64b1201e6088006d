#include "books/Visit.h"

#include <QDate>
#include <algorithm>
#include <map>
#include <tuple>

#include "books/PayableTotal.h"
#include "books/PrintLog.h"
#include "books/UndeliveredOrders.h"
#include "db/Health.h"
#include "db/Query.h"

namespace books {
namespace {

using platform::parseInteger;
using platform::parseWon;
using platform::Won;

// An empty number or user leaves the condition on it out.
constexpr db::Statement<
    u"SELECT JunNo, UserID, GCode, GName, WorkGubun, PCode, PName, Box, Bon, MMoney, BMoney, YMoney, "
    u"GMoney FROM MTM WHERE DDate = '%s' AND ('%s' = '' OR JunNo = '%s') AND ('%s' = '' OR UserID = '%s') "
    u"ORDER BY rowid">
    kGoods;
constexpr db::Statement<
    u"SELECT JunNo, UserID, GCode, GName, PCode, PName, FBox, NBox, Bon, YMONEY, GMONEY, YSAMT, GSAMT "
    u"FROM YTM WHERE DDate = '%s' AND ('%s' = '' OR JunNo = '%s') AND ('%s' = '' OR UserID = '%s') "
    u"ORDER BY rowid">
    kContainers;
constexpr db::Statement<
    u"SELECT * FROM MTMOK WHERE DDate = '%s' AND ('%s' = '' OR JunNo = '%s') AND ('%s' = '' OR UserID = "
    u"'%s') ORDER BY rowid">
    kCollections;
constexpr db::Statement<
    u"SELECT JunNo, UserID, Document, Copy, PrintedAt FROM PRINTLOG WHERE DDate = '%s' "
    u"AND ('%s' = '' OR JunNo = '%s') AND ('%s' = '' OR UserID = '%s') ORDER BY rowid">
    kPrints;
constexpr db::Statement<u"SELECT userID, vatMode FROM PDAUSER"> kVatModes;
constexpr db::Statement<
    u"SELECT GCODE, CJMONEY FROM GARAE WHERE GCODE IN (SELECT GCode FROM MTM WHERE DDate = '%s' UNION "
    u"SELECT GCode FROM YTM WHERE DDate = '%s' UNION SELECT GCode FROM MTMOK WHERE DDate = '%s')">
    kBalances;

constexpr QStringView kDate = u"yyyy-MM-dd";
/// What is older than that, the office has settled.
constexpr int kDaysBack = 7;

/// Gathers the rows of the tables under their visits.
class Reader {
  public:
    Reader(QStringView date, QStringView junNo, QStringView userId)
        : date_(date), junNo_(junNo), userId_(userId) {}

    bool read() {
        return readGoods() && markOrders() && readContainers() && readCollections() && readPayments() &&
               readPrints() && readMasterData();
    }

    QList<Visit> visits() const {
        QList<Visit> visits;
        for (const auto& [key, visit] : visits_) visits << visit;
        return visits;
    }

  private:
    using Key = std::tuple<std::int64_t, QString, QString, QString>;

    Visit& at(const QString& junNo, const QString& userId, const QString& gCode, const QString& gName) {
        Visit& visit = visits_[Key(parseInteger(junNo), junNo, userId, gCode)];
        if (visit.junNo.isEmpty() && visit.userId.isEmpty()) {
            visit.date = date_.toString();
            visit.junNo = junNo;
            visit.userId = userId;
            visit.gCode = gCode;
        }
        if (visit.gName.isEmpty()) visit.gName = gName;
        return visit;
    }

    bool isWanted(const CollectionSlip& slip) const {
        return (junNo_.isEmpty() || slip.JunNo == junNo_) && (userId_.isEmpty() || slip.UserID == userId_);
    }

    bool readGoods() {
        return db::forEachRow(kGoods(date_, junNo_, junNo_, userId_, userId_), [&](db::CVORecordset& row) {
                   const auto text = [&](int column) { return row.GetFieldString(column); };
                   Visit& visit = at(text(0), text(1), text(2), text(3));
                   if (visit.goods.isEmpty()) visit.printState = text(4);
                   visit.goods.append({text(5), text(6), parseInteger(text(7)), parseInteger(text(8)),
                                       parseWon(text(9)), parseWon(text(10)), parseWon(text(11)),
                                       parseWon(text(12))});
               }) >= 0;
    }

    bool markOrders() {
        const auto orders = UndeliveredOrders::ofDay(date_, userId_);
        if (!orders) return false;
        for (auto& [key, visit] : visits_)
            visit.isUndelivered = orders->contains(visit.date, visit.junNo, visit.userId);
        return true;
    }

    bool readContainers() {
        return db::forEachRow(kContainers(date_, junNo_, junNo_, userId_, userId_),
                              [&](db::CVORecordset& row) {
                                  const auto text = [&](int column) { return row.GetFieldString(column); };
                                  at(text(0), text(1), text(2), text(3))
                                      .containers.append({{text(4), text(5), parseInteger(text(6)),
                                                           parseInteger(text(7)), parseInteger(text(8))},
                                                          parseWon(text(9)) + parseWon(text(10)),
                                                          parseWon(text(11)) + parseWon(text(12))});
                              }) >= 0;
    }

    bool readCollections() {
        return db::forEachRow(kCollections(date_, junNo_, junNo_, userId_, userId_),
                              [&](db::CVORecordset& row) {
                                  const CollectionSlip slip = readCollection(row, 0);
                                  at(slip.JunNo, slip.UserID, slip.GCode, slip.GName).collections << slip;
                              }) >= 0;
    }

    bool readPayments() {
        const auto payments = journalPayments(date_);
        // A database of an older terminal has no journal.
        if (!payments) return db::needsUpgrade();
        for (const JournalPayment& payment : *payments) {
            const CollectionSlip& slip = payment.slip;
            if (!isWanted(slip)) continue;
            const bool isMoney = payment.isUnsettled() || payment.state == PaymentState::Approved;
            const Key key(parseInteger(slip.JunNo), slip.JunNo, slip.UserID, slip.GCode);
            if (isMoney || visits_.contains(key))
                at(slip.JunNo, slip.UserID, slip.GCode, slip.GName).payments << payment;
        }
        return true;
    }

    /// The log knows number and user alone: a print belongs to the visits that have its paper's rows.
    bool readPrints() {
        const int rows =
            db::forEachRow(kPrints(date_, junNo_, junNo_, userId_, userId_), [&](db::CVORecordset& row) {
                const auto text = [&](int column) { return row.GetFieldString(column); };
                const QString junNo = text(0);
                const QString document = text(2);
                for (auto each = visits_.lower_bound(Key(parseInteger(junNo), junNo, text(1), {}));
                     each != visits_.end() && each->second.junNo == junNo && each->second.userId == text(1);
                     ++each) {
                    Visit& visit = each->second;
                    const bool isIts = document == paperName(Paper::Invoice) ? !visit.goods.isEmpty()
                                       : document == paperName(Paper::ContainerReceipt)
                                           ? !visit.containers.isEmpty()
                                           : !visit.collections.isEmpty();
                    if (isIts) visit.prints.append({document, text(3), text(4)});
                }
            });
        return rows >= 0 || db::needsUpgrade();
    }

    bool readMasterData() {
        std::map<QString, QString> modes;
        std::map<QString, Won> balances;
        const int users = db::forEachRow(kVatModes(), [&](db::CVORecordset& row) {
            modes[row.GetFieldString(0)] = row.GetFieldString(1);
        });
        const int customers = db::forEachRow(kBalances(date_, date_, date_), [&](db::CVORecordset& row) {
            balances[row.GetFieldString(0)] = parseWon(row.GetFieldString(1));
        });
        for (auto& [key, visit] : visits_) {
            if (const auto mode = modes.find(visit.userId); mode != modes.end()) visit.vatMode = mode->second;
            if (const auto found = balances.find(visit.gCode); found != balances.end())
                visit.balance = found->second;
        }
        return users >= 0 && customers >= 0;
    }

    QStringView date_;
    QStringView junNo_;
    QStringView userId_;
    std::map<Key, Visit> visits_;
};

std::optional<QList<Visit>> readVisits(QStringView date, QStringView junNo, QStringView userId) {
    Reader reader(date, junNo, userId);
    return reader.read() ? std::optional(reader.visits()) : std::nullopt;
}

}  // namespace

Won Visit::goodsTotal() const {
    Won supply;
    Won vat;
    Won deposits;
    for (const SoldLine& line : goods) {
        supply += line.supply;
        vat += line.vat;
        deposits += line.crateDeposit + line.bottleDeposit;
    }
    return payableTotal(supply, vat, vatMode) + deposits;
}

Won Visit::containerWorth() const {
    Won worth;
    for (const ReturnedLine& line : containers) worth += line.worth;
    return worth;
}

const CollectionSlip* Visit::collection() const {
    const auto found =
        std::ranges::find_if(collections, [](const CollectionSlip& slip) { return !slip.isSimplePayment(); });
    return found == collections.end() ? nullptr : &*found;
}

bool Visit::hasOpenPayment() const {
    return std::ranges::any_of(payments, &JournalPayment::isUnsettled);
}

std::optional<QList<Visit>> visitsOfDay(QStringView date, QStringView userId) {
    return readVisits(date, {}, userId);
}

std::optional<QList<Visit>> visitsOfNumber(QStringView date, QStringView junNo, QStringView userId) {
    return readVisits(date, junNo, userId);
}

QStringList unclosedDays(QStringView userId, QStringView date) {
    // The dates stand within: outside of them each table would be read whole.
    static constexpr db::Statement<
        u"SELECT DISTINCT DDate FROM (SELECT DDate, UserID FROM MTM WHERE DDate >= '%s' AND DDate < '%s' "
        u"UNION SELECT DDate, UserID FROM YTM WHERE DDate >= '%s' AND DDate < '%s' UNION SELECT DDate, "
        u"UserID FROM MTMOK WHERE DDate >= '%s' AND DDate < '%s') AS DAYS WHERE ('%s' = '' OR UserID = "
        u"'%s') AND NOT EXISTS (SELECT 1 FROM DAYCLOSE WHERE DAYCLOSE.DDate = DAYS.DDate AND "
        u"DAYCLOSE.UserID = DAYS.UserID) ORDER BY DDate">
        kUnclosedDays;
    const QString first = QDate::fromString(date.toString(), kDate).addDays(-kDaysBack).toString(kDate);
    QStringList days;
    db::forEachRow(kUnclosedDays(first, date, first, date, first, date, userId, userId),
                   [&](db::CVORecordset& row) { days << row.GetFieldString(0); });
    return days;
}

}  // namespace books
