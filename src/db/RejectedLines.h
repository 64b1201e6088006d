#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

#include "db/Transaction.h"

namespace db {

/// A line of a file that became no row.
struct RejectedLine {
    enum class Reason { NotCodePage949, NotAccepted };
    int number;
    Reason reason;
    QString text;  ///< What cannot be read of it as "?".
};

/// Lines of one file that became no row, kept so that nothing is lost.
class RejectedLines {
  public:
    void add(int number, RejectedLine::Reason reason, QByteArrayView line);
    int count() const { return count_; }
    /// The first few, to be shown.
    const QList<RejectedLine>& first() const { return first_; }

    /// Adds the lines to the first of the files `places` that can be written, under a heading that names the
    /// file's content by its digest; where none can, to the table IMPORTREJECT, as part of the transaction. A
    /// batch of the same content, left by a run that was stopped, is replaced. Returns the place; empty when
    /// none is left.
    QString keep(const QStringList& places, QStringView fileName, const QString& digest,
                 Transaction& transaction) const;

    /// What keep() returns for the table.
    static constexpr QStringView kTable = u"IMPORTREJECT";

  private:
    struct Line {
        int number;
        const char* reason;
        QByteArray bytes;
    };
    bool keepInFile(const QString& path, const QString& digest) const;
    bool keepInTable(QStringView fileName, const QString& digest, Transaction& transaction) const;

    QList<Line> lines_;
    QList<RejectedLine> first_;
    int count_ = 0;
};

}  // namespace db
