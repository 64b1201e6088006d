#pragma once

#include <QString>
#include <QStringView>

/// The device folder: one folder on disk that holds what the handheld kept in its memory, on its storage card
/// and on its flash disk. The code keeps the handheld's paths and maps them here.
namespace platform::device {

inline constexpr QStringView kDatabaseFile = u"\\My Documents\\rvnclient.cdb";
inline constexpr QStringView kDocumentsFolder = u"\\My Documents\\";
inline constexpr QStringView kStorageCardFolder = u"\\저장소카드\\";
inline constexpr QStringView kSettingsFile = u"\\Flash Disk\\SALE.ini";

/// The folder to use: `option` (the value of --device) if not empty, else $ROVANA_DEVICE, else the user's
/// application-data folder.
QString choose(const QString& option);

/// Makes `folder` the device folder of this process.
void setFolder(const QString& folder);

/// The device folder; the one that choose({}) gives until setFolder is called.
QString folder();

/// The file on disk for a handheld path such as "\My Documents\MTM.RVN".
QString path(QStringView handheldPath);

}  // namespace platform::device
