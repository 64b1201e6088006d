#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <map>
#include <utility>

namespace books {

/// What becomes of the containers of slips that leave the terminal: for each customer and product one row of
/// `CONTAINERCARRY`, with what was sold and what was taken back. Kept as it was counted rather than as a
/// balance, so that a product which gets another crate, or is marked as a container only later, counts as if
/// its slips were still there. A count that is no number is 0.
class ContainerCarry {
  public:
    /// The columns of a line's counts as they stand in `MTM` (boxes, bottles) and `YTM` (empty crates, filled
    /// crates, bottles).
    void addSale(const QString& gCode, const QString& pCode, const QString& pName, const QString& box,
                 const QString& bon);
    void addReturn(const QString& gCode, const QString& pCode, const QString& pName, const QString& fBox,
                   const QString& nBox, const QString& bon);
    /// A row of an earlier time, its columns as in the table.
    void addCarried(const QStringList& row);

    /// The rows of the table, without those that are all 0; `until` is the first day that is not in them.
    QList<QStringList> rows(const QString& until) const;

  private:
    struct Counts {
        QString PName;
        std::int64_t Box = 0;
        std::int64_t Bon = 0;
        std::int64_t FBox = 0;
        std::int64_t NBox = 0;
        std::int64_t BackBon = 0;
    };
    std::map<std::pair<QString, QString>, Counts> counts_;  ///< By customer and product.
};

}  // namespace books
