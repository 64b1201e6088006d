#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>

#include "platform/Won.h"

/// What a customer holds of the wholesaler's crates and bottles, by the sales and container slips on the
/// terminal.
namespace books {

/// Crates and single bottles; bottles in a full crate count as both. Negative where more came back than the
/// slips say went out.
struct Containers {
    std::int64_t crates = 0;
    std::int64_t bottles = 0;

    Containers& operator+=(Containers other);
    Containers& operator-=(Containers other);
    bool isZero() const { return crates == 0 && bottles == 0; }
    friend bool operator==(const Containers&, const Containers&) = default;
};

/// One line of a container slip: crates without bottles (공상자), crates filled with empties (입상자), and
/// single empties (공병).
struct ContainerReturn {
    QString PCode;
    QString PName;
    std::int64_t emptyCrates = 0;
    std::int64_t filledCrates = 0;
    std::int64_t bottles = 0;
};

/// One container product of a customer.
struct ContainerBalance {
    QString PCode;
    QString PName;
    Containers before;     ///< Out before the day's deliveries and the slip at hand.
    Containers delivered;  ///< Sold to the customer on the day.
    Containers returned;   ///< Taken back by the slip at hand.
    Containers ordered;    ///< On the office's orders that nobody has delivered; no part of the others.

    Containers after() const;  ///< Out now.
};

/// The figures of a customer by product code, highest first, as they come together.
class ContainerFigures {
  public:
    ContainerBalance& of(const QString& pCode, const QString& pName);
    /// The crates and bottles of a line, by the bottles that a crate of the product takes.
    Containers containers(const ContainerReturn& line);
    /// Without those where all is 0.
    QList<ContainerBalance> list() const;

  private:
    /// Looked up once for each product.
    std::int64_t bottlesPerBox(const QString& pCode);

    std::map<QString, ContainerBalance, std::greater<>> byCode_;
    std::map<QString, std::int64_t> bottles_;
};

/// What the saved slips and the carried-forward rows of a customer say, read once; the slip at hand comes in
/// as often as it changes.
class ContainerHistory {
  public:
    /// Up to `date`, without the container slip at hand, that of `date`, `junNo` and `userId`.
    ContainerHistory(QStringView gCode, QStringView date, QStringView junNo, QStringView userId);

    /// The balances with these lines of the slip at hand.
    QList<ContainerBalance> with(std::span<const ContainerReturn> returned);

  private:
    void readDeliveries(QStringView gCode, QStringView date, QStringView junNo, QStringView userId);
    void readReturns(QStringView gCode, QStringView date, QStringView junNo, QStringView userId);

    ContainerFigures saved_;
};

/// The customer's balances by product code, highest first, without those where all is 0: of the products
/// marked as containers ("Y" or "Z") that were sold up to `date`, and of those that were taken back.
/// The sale of the number at hand counts as delivered. `returned` holds the lines of the slip at hand; the
/// saved lines of that date, number and user are left out, so it may be the slip as it is on screen. What
/// `CONTAINERCARRY` has of archived slips is part of what was out before, whatever the date. A customer
/// without rows starts at 0; a count that is no number reads as 0.
QList<ContainerBalance> containerBalances(QStringView gCode, QStringView date, QStringView junNo,
                                          QStringView userId, std::span<const ContainerReturn> returned);

/// What was taken back on the day, from all customers, by one user or, with an empty id, by everybody;
/// nothing when it could not be read to the end.
std::optional<Containers> containersTakenBack(QStringView date, QStringView userId);

/// What the user's saved container slip of that date and number is worth, in won: its deposits. Nothing
/// without one, or when it is another customer's.
std::optional<platform::Won> savedRecovery(QStringView date, QStringView junNo, QStringView userId,
                                           QStringView gCode);

}  // namespace books
