#pragma once

#include <QStringList>
#include <QStringView>
#include <QTemporaryDir>
#include <pqxx/pqxx>

namespace office {

/// A day of all terminals as the database of one: the process's device folder while the object lives, so that
/// the terminal's own reports are made from it. Where several terminals have sent slips of one salesman, he
/// is one salesman for each, "A@3": their numbers are not each other's. Balances are those of now.
class DayCopy {
  public:
    /// `terminal` leaves out all others; empty for none.
    DayCopy(pqxx::connection& connection, const QString& date, const QString& terminal);
    ~DayCopy();
    Q_DISABLE_COPY_MOVE(DayCopy)

    /// The salesmen of the day's slips, as they are called here.
    const QStringList& users() const { return users_; }

  private:
    QTemporaryDir folder_;
    QString before_;
    QStringList users_;
};

}  // namespace office
