#include "app/Login.h"

#include <QFile>
#include <algorithm>

#include "app/Session.h"
#include "db/Query.h"
#include "platform/CodePage.h"
#include "platform/Device.h"
#include "platform/Wipe.h"

namespace app {
namespace {

/// SALE.ini is read in pieces of this many bytes, of which the last one counts.
constexpr qint64 kSettingsPieceBytes = 32;

constexpr int kPasswordColumn = 1;

}  // namespace

bool logIn(const QString& userId, const QString& password, const QString& workDate) {
    static constexpr db::Statement<u"SELECT *  FROM PDAUSER WHERE userID = '%s' AND userPASS = '%s' ">
        kSelectUser;
    SessionValues& values = session();
    values.UserID = userId;
    values.WorkDate = workDate;
    std::optional<QStringList> user = db::firstRow(kSelectUser(userId, password));
    if (!user) return false;
    if (user->size() > kPasswordColumn) platform::wipe(&(*user)[kPasswordColumn]);
    QString* const fields[] = {&values.UserField2, &values.UserField3, &values.UserField4,
                               &values.UserField5, &values.UserField6, &values.UserField7,
                               &values.UserField8, &values.UserField9};
    for (qsizetype i = 0; i < qsizetype(std::size(fields)); ++i) *fields[i] = user->value(i + 2);
    return true;
}

QString knownUserId(const QString& keyed) {
    static constexpr db::Statement<u"SELECT userID FROM PDAUSER"> kUserIds;
    QStringList alike;
    db::forEachRow(kUserIds(), [&](db::CVORecordset& row) {
        const QString id = row.GetFieldString(0);
        if (id.compare(keyed, Qt::CaseInsensitive) == 0 && !alike.contains(id)) alike << id;
    });
    return alike.size() == 1 ? alike.first() : keyed;
}

QString userName(QStringView userId) {
    static constexpr db::Statement<u"SELECT userNAME  FROM PDAUSER WHERE userID = '%s'"> kSelectUserName;
    return db::firstRow(kSelectUserName(userId)).value_or(QStringList()).value(0);
}

void loadCompany() {
    static constexpr db::Statement<
        u"SELECT sangho, sno, name, tel, fax, juso, calltel, cardid, cardpass, cardno FROM config">
        kSelectCompany;
    SessionValues& values = session();
    QString cardpass;
    QString* const fields[] = {&values.sangho, &values.sno,     &values.name,   &values.tel, &values.fax,
                               &values.juso,   &values.calltel, &values.cardid, &cardpass,   &values.cardno};
    db::forEachRow(kSelectCompany(), [&](db::CVORecordset& row) {
        for (int i = 0; i < int(std::size(fields)); ++i) *fields[i] = row.GetFieldString(i);
        values.cardpass.assign(QStringView(cardpass));
        platform::wipe(&cardpass);
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
    // Only the first character counts, whatever stands behind it.
    const bool isDoubleByte = !last.isEmpty() && static_cast<unsigned char>(last[0]) >= 0x80;
    return platform::codepage::decode(
               QByteArrayView(last).first(std::min(last.size(), qsizetype{isDoubleByte ? 2 : 1})))
        .value_or(QString());
}

}  // namespace app
