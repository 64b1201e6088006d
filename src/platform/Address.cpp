#include "platform/Address.h"

namespace platform {

using namespace Qt::Literals::StringLiterals;

std::optional<QHostAddress> parseAddress(QStringView text) {
    const QHostAddress address(text.toString());
    if (address.isNull() || address == QHostAddress::AnyIPv4 || address == QHostAddress::AnyIPv6)
        return std::nullopt;
    // Qt also takes "127.1" and a plain number.
    const bool isVersion4 = address.protocol() == QAbstractSocket::IPv4Protocol;
    if (isVersion4 && address.toString() != text) return std::nullopt;
    return address;
}

std::optional<Endpoint> parseEndpoint(QStringView text) {
    const qsizetype bracket = text.startsWith(u'[') ? text.indexOf(u']') : -1;
    if (text.startsWith(u'[') && bracket < 0) return std::nullopt;
    // The colons of an IPv6 address that stands without brackets are its own.
    const qsizetype colon = bracket > 0 || text.count(u':') == 1 ? text.indexOf(u':', bracket + 1) : -1;
    if (bracket > 0 && bracket + 1 != (colon < 0 ? text.size() : colon)) return std::nullopt;
    const QStringView name =
        bracket > 0 ? text.sliced(1, bracket - 1) : text.first(colon < 0 ? text.size() : colon);
    const std::optional<QHostAddress> address = parseAddress(name);
    if (!address) return std::nullopt;
    if (colon < 0) return Endpoint{*address};
    bool isNumber = false;
    const quint16 port = text.sliced(colon + 1).toUShort(&isNumber);
    return isNumber && port > 0 ? std::optional(Endpoint{*address, port}) : std::nullopt;
}

QString endpointText(const QHostAddress& address, quint16 port) {
    const bool isVersion6 = address.protocol() == QAbstractSocket::IPv6Protocol;
    return (isVersion6 ? u"[%1]:%2"_s : u"%1:%2"_s).arg(address.toString()).arg(port);
}

}  // namespace platform
