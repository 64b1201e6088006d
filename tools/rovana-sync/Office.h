#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "books/OfficeState.h"
#include "common/OfficeAccess.h"

namespace pqxx {
class result;
}

/// The terminal's side of the office's database.
namespace terminal_sync {

/// The office cannot be reached or does not serve this terminal; what() says why.
class OfficeError : public std::runtime_error {
  public:
    enum class Reason {
        Line,     ///< No connection, or it was lost: the same may go well later.
        Refused,  ///< The office has looked at what came and does not take it.
    };
    OfficeError(Reason reason, const std::string& why) : std::runtime_error(why), reason_(reason) {}
    Reason reason() const { return reason_; }

  private:
    Reason reason_;
};

using books::DocumentDigests;
/// Of each day, by its date.
using DayDigests = QMap<QString, QByteArray>;

struct Salesman {
    QString userId;
    QString name;
    QString vatMode;
};

struct MasterVersion {
    QString fileName;
    QString token;  ///< Changes with what the terminal would fetch.
    QDateTime loadedAt;
};

/// What the office answers to a terminal's days.
struct Greeting {
    QString terminal;                          ///< Its number.
    QStringList users;                         ///< Whose slips it may send.
    QMap<QString, DocumentDigests> differing;  ///< The days that differ, and what the office has of them.
    QList<MasterVersion> masters;
    bool hasOrders = false;
};

struct Order {
    QString date;
    QString junNo;
    QString userId;
    QString line;  ///< Of MTM.RVN, without its line end.
};

/// What is sent of a day in one call.
struct Parcel {
    QString date;
    QList<books::Document> documents;
    QList<books::DocumentIdentity> absent;  ///< What the office has and the terminal lacks.
    bool isLast = false;                    ///< With it the day is whole.
    bool isArchived = false;                ///< Some of the day may have left for an archive.
};

struct Sent {
    int stored = 0;
    int deleted = 0;
    int missing = 0;  ///< Of the day, kept at the office.
};

struct KeptDocument {
    books::Document document;
    bool isGivenBack = true;  ///< False for one whose number was given again: it has no content.
};

/// A connection; each call is one round trip. They throw OfficeError.
class Office {
  public:
    explicit Office(const office::Access& access);
    ~Office();
    Q_DISABLE_COPY_MOVE(Office)

    /// `salesmen` are those of the terminal, of whom the office takes those that are enrolled.
    Greeting hello(const QString& firstDay, const DayDigests& days, const QList<Salesman>& salesmen);
    QMap<QString, DocumentDigests> compare(const DayDigests& days);
    Sent send(const Parcel& parcel);
    /// The lines of master files by their names, each with a line feed.
    QMap<QString, QString> masters(const QStringList& fileNames);
    QList<Order> orders(const QString& firstDay);
    QStringList days(const QString& firstDay);
    QList<KeptDocument> documents(const QString& date);

    /// How many calls this process has made.
    static int roundTrips();

  private:
    pqxx::result call(const char* statement, const std::vector<std::string>& values);

    struct Connection;
    std::unique_ptr<Connection> connection_;
};

}  // namespace terminal_sync
