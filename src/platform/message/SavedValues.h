#pragma once

#include <QMap>
#include <QString>
#include <QStringView>

#include "platform/message/Seal.h"
#include "platform/message/Status.h"

/// The component's files in the device folder: its saved values, lines such as "222=8480", and the host's
/// public key, 64 hexadecimal digits. A third holds the secret of the terminal's own key, 64 digits too.
namespace platform::message {

inline constexpr QStringView kSavedValuesFile = u"\\Flash Disk\\KSNETMSG.ini";
inline constexpr QStringView kHostKeyFile = u"\\Flash Disk\\KSNETMSG.pub";

inline constexpr QStringView kSigningKeyFile = u"\\Flash Disk\\KSNETMSG.key";

inline constexpr QStringView kTerminalKey = u"101";     ///< The terminal's number at the host.
inline constexpr QStringView kHostAddressKey = u"221";  ///< IPv4: each octet as three digits. IPv6: as text.
inline constexpr QStringView kHostPortKey = u"222";     ///< TCP port, decimal.

using SavedValues = QMap<QString, QString>;

/// All saved values: kDone, or kSavedUnreadable for a missing file or one with a line that is no value.
Status readSavedValues(SavedValues* values);

/// One saved value: kDone, kSavedUnreadable, kSavedMissing, or kBadInput for a key that is not three digits.
Status readSavedValue(QStringView key, QString* value);

/// Replaces the saved values as a whole; false when that fails or when a key or value does not fit a line.
bool writeSavedValues(const SavedValues& values);

/// Reads 64 hexadecimal digits, blanks around them allowed; nothing for anything else.
std::optional<PublicKey> parsePublicKey(QByteArrayView text);

/// The host's public key: kDone, kKeyFileMissing or kKeyFileUnreadable.
Status readHostKey(PublicKey* key);

/// Replaces the host's public key; false when that fails.
bool writeHostKey(const PublicKey& key);

/// Replaces both, neither when one finds no room. False, with the system's reason in `error`, when that
/// fails.
bool writeCardHost(const SavedValues& values, const PublicKey& key, QString* error);

/// The key with which this terminal signs: kDone, kKeyFileMissing or kKeyFileUnreadable.
Status readSigningKey(SigningKey* key);

/// The same, made first when there is none; a file that is there is never replaced, since hosts know its key.
/// Why none could be written stands in `error`, if that is given.
Status makeSigningKey(SigningKey* key, QString* error = nullptr);

/// An address that parseAddress has read as saved value "221" has it: an IPv4 address as 12 digits, first
/// octet first, an IPv6 address as its text.
QString savedAddress(const QString& address);

}  // namespace platform::message
