#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>

#include "db/Statement.h"

namespace books {

/// The office's orders in `MTM` that nobody has delivered yet: slips that came by the import and were neither
/// saved on the terminal (no line has a time of saving) nor printed, nor have they a collection or containers
/// that were taken back.
class UndeliveredOrders {
  public:
    /// Those of a day, of one user or, with an empty id, of everybody; nothing when they could not be read to
    /// the end.
    static std::optional<UndeliveredOrders> ofDay(QStringView date, QStringView userId);

    /// Those of a customer up to the date; none when they could not be read to the end.
    static UndeliveredOrders ofCustomer(QStringView gCode, QStringView date);

    /// Selects date, number and user of all from before the date, for a connection of the caller's own.
    static db::Sql selectBefore(QStringView date);

    bool contains(const QString& date, const QString& junNo, const QString& userId) const;
    int count() const { return int(slips_.size()); }

  private:
    QSet<QStringList> slips_;  ///< Date, number and user.
};

}  // namespace books
