#pragma once

#include <QString>
#include <QStringView>

namespace db {

/// What keeps the terminal's database from being used, in words for the administrator, with the command that
/// mends it; empty when the file is there, opens and has the tables it needs.
QString databaseProblem();

/// True when the terminal's database opens but lacks a table or column that a later build brought: what needs
/// it fails until the administrator has run "rovanactl upgrade".
bool needsUpgrade();

/// What the salesman is told then.
inline constexpr QStringView kUpgradeAdvice =
    u"DB가 이전 버전이라 저장할 수 없습니다..! 관리자에게 알려 주세요 : rovanactl upgrade";

}  // namespace db
