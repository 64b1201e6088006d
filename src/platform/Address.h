#pragma once

#include <QString>
#include <QStringView>
#include <optional>

/// Addresses of the network as people write them: numbers only, because looking up a name would hold the
/// screen up.
namespace platform {

struct Endpoint {
    QString address;   ///< As parseAddress returns it.
    quint16 port = 0;  ///< 0 where none is named.
};

/// An IPv4 address of four dotted numbers or an IPv6 address, in the way it is always written; nothing for
/// any other text and for the address that stands for all.
std::optional<QString> parseAddress(QStringView text);

/// The same with a port behind it or not: "10.1.2.3:9100", "[fe80::1%eth0]:9100", "::1". Nothing for a wrong
/// port.
std::optional<Endpoint> parseEndpoint(QStringView text);

/// Address and port as parseEndpoint reads them.
QString endpointText(const QString& address, quint16 port);

}  // namespace platform
