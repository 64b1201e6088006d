#include "app/Login.h"

#include <QFile>

#include "app/Session.h"
#include "db/Query.h"
#include "platform/CodePage.h"
#include "platform/Device.h"

namespace app {
namespace {

constexpr db::Statement<u"SELECT *  FROM PDAUSER WHERE userID = '%s' AND userPASS = '%s' "> kSelectUser;
constexpr db::Statement<u"SELECT userNAME  FROM PDAUSER WHERE userID = '%s'"> kSelectUserName;
constexpr db::Statement<
    u"SELECT sangho, sno, name, tel, fax, juso, calltel, cardid, cardpass, cardno FROM config">
    kSelectCompany;
constexpr db::Statement<u"SELECT JunNo FROM MTMOK WHERE DDate = '%s' ORDER BY JunNo DESC ">
    kSelectHighestCollection;

/// SALE.ini is read in pieces of this many bytes, of which the last one counts.
constexpr qint64 kSettingsPieceBytes = 32;

constexpr std::int64_t kFirstSimplePayment = 7000;

}  // namespace

bool logIn(const QString& userId, const QString& password, const QString& workDate) {
    SessionValues& values = session();
    values.UserID = userId;
    values.WorkDate = workDate;
    const std::optional<QStringList> user = db::firstRow(kSelectUser(userId, password));
    if (!user) return false;
    QString* const fields[] = {&values.UserField2, &values.UserField3, &values.UserField4,
                               &values.UserField5, &values.UserField6, &values.UserField7,
                               &values.UserField8, &values.UserField9};
    for (qsizetype i = 0; i < qsizetype(std::size(fields)); ++i) *fields[i] = user->value(i + 2);
    return true;
}

QString userName(QStringView userId) {
    return db::firstRow(kSelectUserName(userId)).value_or(QStringList()).value(0);
}

void loadCompany() {
    SessionValues& values = session();
    QString* const fields[] = {&values.sangho,   &values.sno,   &values.name,    &values.tel,
                               &values.fax,      &values.juso,  &values.calltel, &values.cardid,
                               &values.cardpass, &values.cardno};
    db::forEachRow(kSelectCompany(), [&](db::CVORecordset& row) {
        for (int i = 0; i < int(std::size(fields)); ++i) *fields[i] = row.GetFieldString(i);
    });
}

QString defaultUserId() {
    QFile file(platform::device::path(platform::device::kSettingsFile));
    if (!file.open(QIODevice::ReadWrite)) return {};
    QByteArray last;
    while (true) {
        const QByteArray piece = file.read(kSettingsPieceBytes);
        if (piece.isEmpty()) break;
        last = piece;
    }
    last.replace("\n", "").replace("\r", "");
    // A piece may begin inside a character; what does not convert is no user id.
    return platform::codepage::decode(last).value_or(QString()).left(1);
}

QString nextSimplePaymentNumber(QStringView workDate) {
    const auto highest = db::firstRow(kSelectHighestCollection(workDate));
    const std::int64_t next = highest ? platform::parseInteger(highest->value(0)) + 1 : 0;
    return QString::number(next >= kFirstSimplePayment ? next : kFirstSimplePayment + 1);
}

}  // namespace app
