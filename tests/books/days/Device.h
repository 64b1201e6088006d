#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "Page.h"
#include "support/FaultyStorage.h"
#include "support/TestDevice.h"

namespace days {

/// The salesmen, customers and products of the random days.
const QStringList& users();
const QStringList& customers();
const QStringList& products();
std::map<std::string, std::string> vatModes();
bool isFollowedByContainers(const QString& user);

/// A device with those, above a storage that can be made to fail.
class Device {
  public:
    Device();
    ~Device();

    /// Makes it the one that the process works on.
    void use() const;
    QString folder() const { return device_.folder(); }
    /// An empty day.
    void clear();
    void execute(const char* statements);
    void addOrder(const Goods& order);
    /// Everything that stands in the tables; a payment is told by that expression.
    Page page(const char* paymentNumber = "Number");
    /// The rows of MTM or TEMP, of YTM or YTEMP, with what stands for the user's column.
    std::vector<Goods> goods(const QByteArray& user, const QByteArray& table);
    std::vector<Empties> empties(const QByteArray& user, const QByteArray& table);

    static test::StorageFaultPlan& faults();

  private:
    template <typename Row, typename Read>
    std::vector<Row> rows(const QByteArray& select, Read&& read);

    test::TestDevice device_;
    sqlite3* reader_ = nullptr;
};

}  // namespace days
