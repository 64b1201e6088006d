#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>

#include "sales/LineAmounts.h"

/// What a customer bought before.
namespace sales {

struct Quantities {
    std::int64_t boxes = 0;
    std::int64_t bottles = 0;

    bool isNothing() const { return boxes == 0 && bottles == 0; }
    friend bool operator==(const Quantities&, const Quantities&) = default;
};

/// Both together; a sum stays within 64 bits.
Quantities operator+(const Quantities& a, const Quantities& b);

/// As "3상자 12본"; a part that is 0 is left out, unless both are.
QString quantityText(const Quantities& quantities);
/// The same shorter: "3/12".
QString shortQuantityText(const Quantities& quantities);

/// What a slip has of one product: its lines together.
struct Purchase {
    QString PCode;
    QString PName;
    Quantities quantities;
};

/// A slip of the customer's, the returns left out.
struct PastSlip {
    QString DDate;
    QString JunNo;
    QString UserID;
    SlipSums sums;  ///< Of all its lines, returns included.
    QList<Purchase> products;
};

/// A customer's slips, the newest first: those on the terminal, orders of the office included, and, where
/// these are fewer than are offered, those of the archives at hand.
class PurchaseHistory {
  public:
    /// How many slips are offered as an order.
    static constexpr int kOffered = 5;

    /// The slips up to the day but for the user's own of that number on it, which is being written.
    static PurchaseHistory of(QStringView gCode, QStringView day, QStringView junNo, QStringView userId);

    const QList<PastSlip>& slips() const { return slips_; }

    /// What was bought last of each product, the newest first.
    struct LastPurchase {
        QString DDate;
        Purchase purchase;
    };
    QList<LastPurchase> products() const;

    /// The most of the product on one of the last slips that have it, in bottles where a box holds that many;
    /// nothing for a product that was never bought.
    struct Usual {
        Quantities quantities;
        std::int64_t bottles = 0;
    };
    std::optional<Usual> usual(QStringView pCode, std::int64_t bottlesPerBox) const;

    /// The usual quantity when that much is ten times as much or more; the sign of a return does not count.
    std::optional<Usual> unusual(QStringView pCode, std::int64_t bottlesPerBox,
                                 const Quantities& quantities) const;

  private:
    struct Line;
    void add(const Line& line);
    /// Adds the slips that are not here yet: a backup lies beside archives, and holds what they do.
    void addMissing(const PurchaseHistory& other);

    QList<PastSlip> slips_;
};

}  // namespace sales
