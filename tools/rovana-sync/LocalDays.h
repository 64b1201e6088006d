#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <stdexcept>

#include "books/Documents.h"
#include "books/OfficeState.h"
#include "platform/Sqlite.h"

namespace terminal_sync {

/// The terminal's database cannot be read, or somebody holds it up: the same may go well later.
class LocalError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The terminal's days, read beside a terminal at work: each call is one short read transaction, and waits
/// for nobody. They throw LocalError.
class LocalDays {
  public:
    /// Opens the device folder's database.
    LocalDays();

    /// Every document of the days from `first` on.
    QMap<QString, books::DocumentDigests> digests(const QString& first);
    /// The days before `end` that hold anything.
    QStringList daysBefore(const QString& end);
    books::DocumentDigests day(const QString& date);

    /// The wanted documents of the day as they are now, or as they were when the day was read last, up to a
    /// bounded size; they are taken out of `wanted`, and when all was looked through, `wanted` is empty.
    QList<books::Document> take(const QString& date, QSet<books::DocumentIdentity>* wanted);

    /// The first day whose slips have not left for an archive.
    QString firstKept();

    platform::SqliteFile& database() { return database_; }

  private:
    void read(const std::function<void()>& work);

    platform::SqliteFile database_;
    books::DocumentReader reader_;
    struct KeptDay {
        QList<books::Document> documents;
        qsizetype bytes = 0;
    };
    /// Drops the earliest days until the rest fits into one call to the office.
    void limitKept();
    // The last days as they were read: they are mostly the ones to send.
    QMap<QString, KeptDay> kept_;
};

}  // namespace terminal_sync
