#pragma once

#include <QString>
#include <QStringView>

/// The rules of logging in, without the dialog.
namespace app {

/// Looks the user up and, when id and password match, fills the session's user part. False otherwise; the
/// session's user id and date are set all the same.
bool logIn(const QString& userId, const QString& password, const QString& workDate);

/// The user id that was keyed, in capitals and small letters as the terminal knows it: the id itself, else
/// the only one that is it but for them. Unchanged when there is none or more than one.
QString knownUserId(const QString& keyed);

/// The user's name; empty for an unknown id.
QString userName(QStringView userId);

/// Fills the session's company particulars from the `config` row; the last row wins, no row leaves them
/// empty.
void loadCompany();

/// The default user id in SALE.ini: its first character, or empty when the file is missing or empty. Of a
/// file longer than 32 bytes only the last piece of 32 counts.
QString defaultUserId();

}  // namespace app
