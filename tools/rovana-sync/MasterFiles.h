#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <functional>

#include "rovana-sync/LocalDays.h"
#include "rovana-sync/Office.h"

namespace terminal_sync {

/// The master files that the sync puts where the next login finds them. What it has put is noted in a file of
/// the device folder, and believed only where the waiting file or the table's last load bears it out: a copy
/// of an older database, or a new disk, gets everything anew.
class MasterFiles {
  public:
    explicit MasterFiles(LocalDays& local);

    /// Whether what the office has now is in the table, or waits to be loaded. Balances that were loaded when
    /// the collections may have been others than `balancesNow` says are not: they may lack what was saved
    /// before.
    bool isHere(const MasterVersion& version, const std::function<QByteArray()>& balancesNow);

    /// File names.
    struct Put {
        QStringList done;
        QStringList inTheWay;  ///< One that came by another way waits, and is newer or would be loaded later.
    };
    /// Puts files of those lines; none while files are being loaded. `balances` is what the lines' balances
    /// include of this terminal (balancesOf). Throws LocalError when one cannot be written.
    Put put(const QList<MasterVersion>& versions, const QMap<QString, QString>& lines,
            const QByteArray& balances);

    /// Takes away a waiting GARAE.RVN of ours when the terminal has moved balances since: it would take them
    /// back. False when files are being loaded.
    bool withdrawOldBalances(const std::function<QByteArray()>& balances);

    /// Has the balances fetched anew when the office can next be asked; a file of them that waits stays until
    /// then.
    void doubtBalances();

    /// Has the balances fetched anew, and takes a waiting file of them away. Throws LocalError when files are
    /// being loaded.
    void forgetBalances();

    /// Puts those of the orders that the terminal neither has nor has deleted into MTM.RVN, unless one waits.
    void putOrders(const QList<Order>& orders);
    static bool areOrdersWaiting();
    static bool areBalancesWaiting();

    /// What the collections, which move the balances, are now.
    static QByteArray balancesOf(const QMap<QString, books::DocumentDigests>& days);

  private:
    struct Entry {
        QString token;
        QByteArray digest;    ///< Of the content.
        QByteArray before;    ///< Of ours that waited until then, and still does when its name was not taken.
        qint64 modified = 0;  ///< Of the file, in milliseconds since 1970.
        bool isSure = false;  ///< Loaded before any collection that is not in its balances.
    };
    bool isInTheWay(const MasterVersion& version) const;
    void read();
    void write() const;
    bool isLoaded(const QString& fileName, const Entry& entry);
    /// Whether that is the digest of a file that was put.
    static bool isOurs(const QByteArray& digest, const Entry& entry);
    bool hasSlip(const Order& order);
    bool hasPreparedPayment();
    /// A digest of the balances in the table.
    QByteArray loadedBalances();

    LocalDays& local_;
    QMap<QString, Entry> entries_;
    QByteArray balances_;     ///< What the balances that were put include of this terminal.
    QByteArray balancesPut_;  ///< A digest of them.
};

}  // namespace terminal_sync
