#include "rovanactl/DeliveredTable.h"

#include <algorithm>
#include <array>

#include "db/Query.h"
#include "db/Schema.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr db::Statement<u"DELETE PDAUSER"> kDeleteUsers;
constexpr db::Statement<u"DELETE config"> kDeleteConfig;
constexpr db::Statement<u"DELETE JGUBUN"> kDeleteClasses;
constexpr db::Statement<u"DELETE MPUMMOK"> kDeleteFrequent;
constexpr db::Statement<u"DELETE BankMoney"> kDeleteBankMoney;
constexpr db::Statement<
    u"INSERT INTO PDAUSER (userID,userPASS,userNAME,vatMode,followOn,containerWork,searchSetting,userTEL,"
    u"reserve1,reserve2) VALUES ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsertUser;
constexpr db::Statement<
    u"INSERT INTO config (sangho,sno,name,tel,fax,juso,calltel,cardid,cardpass,cardno) VALUES "
    u"('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsertConfig;
constexpr db::Statement<u"INSERT INTO JGUBUN (CODE,NAME) VALUES ('%s','%s')"> kInsertClass;
constexpr db::Statement<
    u"INSERT INTO MPUMMOK (PCode,PName,Size,Gubun,AUTOCNT) VALUES ('%s','%s','%s','%s','%s')">
    kInsertFrequent;
constexpr db::Statement<u"INSERT INTO BankMoney (DDate,GCode,GName,CardMoney) VALUES ('%s','%s','%s','%s')">
    kInsertBankMoney;

template <const auto& Delete>
db::Sql deleteAll() {
    return Delete();
}

template <const auto& Insert>
db::Sql insertRow(const QStringList& row) {
    std::array<QStringView, std::remove_cvref_t<decltype(Insert)>::kValues> values;
    std::copy_n(row.begin(), values.size(), values.begin());
    return Insert(values);
}

constexpr std::array kTables{
    DeliveredTable{u"PDAUSER", deleteAll<kDeleteUsers>, insertRow<kInsertUser>},
    DeliveredTable{u"config", deleteAll<kDeleteConfig>, insertRow<kInsertConfig>},
    DeliveredTable{u"JGUBUN", deleteAll<kDeleteClasses>, insertRow<kInsertClass>},
    DeliveredTable{u"MPUMMOK", deleteAll<kDeleteFrequent>, insertRow<kInsertFrequent>},
    DeliveredTable{u"BankMoney", deleteAll<kDeleteBankMoney>, insertRow<kInsertBankMoney>},
};

}  // namespace

std::span<const DeliveredTable> deliveredTables() {
    return kTables;
}

const DeliveredTable* findDeliveredTable(QStringView name) {
    const auto found = std::ranges::find_if(kTables, [&](const DeliveredTable& table) {
        return table.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == kTables.end() ? nullptr : &*found;
}

std::span<const QStringView> columnsOf(const DeliveredTable& table) {
    return db::schema::findTable(table.name)->columns;
}

bool runIn(db::Transaction& transaction, const db::Sql& statement) {
    db::CVORecordset recordset(transaction.connection());
    return transaction.isAlive() && recordset.Open(statement, db::kForwardOnly, db::kReadOnly);
}

QString unstorable(QStringView value) {
    if (value.contains(u'\'')) return u"a value with a single quote cannot be stored"_s;
    if (value.contains(QChar::Null)) return u"a value with a zero character cannot be stored"_s;
    return {};
}

}  // namespace admin
