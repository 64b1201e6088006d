#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <future>

#include "books/OfficeState.h"
#include "rovana-sync/LocalDays.h"
#include "rovana-sync/MasterFiles.h"
#include "rovana-sync/Office.h"

namespace terminal_sync {

/// What one sync did.
struct Outcome {
    int sent = 0;         ///< Documents that the office did not have as they are.
    int deleted = 0;      ///< That the office has as deleted now.
    int missing = 0;      ///< That the office keeps and the terminal lacks without a trace of a deletion.
    int waiting = 0;      ///< Visits that stay unsent.
    QStringList fetched;  ///< Master files that were put.
    QStringList remarks;  ///< What somebody should look at.
};

/// Brings office and terminal to the same state. Stopped at any moment, the next one goes on from what both
/// then have.
class Sync {
  public:
    explicit Sync(const office::Access& access);

    /// Throws OfficeError or LocalError; what is unsent is noted for the menu either way.
    Outcome run();

  private:
    void readDays();
    void sendDay(Office& office, const QString& date, const books::DocumentDigests& atOffice);
    void sendOldDays(Office& office, bool isAnew = false);
    QList<Salesman> salesmen();
    void fetch(Office& office);
    bool movesBalances(const books::DocumentDigests& here, const books::DocumentDigests& atOffice) const;
    bool mayBeSent(const books::DocumentIdentity& identity) const;
    void noteState(bool isReached);
    books::OfficeState::Day agreedDay(const QString& date, bool isCounted) const;

    LocalDays local_;
    MasterFiles masters_;
    // The line waits for the office most of the time; the days are read meanwhile. It begins when the
    // database is open: whoever cannot read that says so at once.
    std::future<std::unique_ptr<Office>> line_;
    QString firstDay_;
    QMap<QString, books::DocumentDigests> days_;
    Greeting greeting_;
    QSet<QString> agreed_;  ///< Days of which the office has all that it takes.
    Outcome outcome_;
};

/// Where the device folder's access to the office lies, read. Throws LocalError when there is none.
office::Access readAccessFile();

}  // namespace terminal_sync
