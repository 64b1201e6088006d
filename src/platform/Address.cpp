#include "platform/Address.h"

#include <arpa/inet.h>

#include <QByteArray>
#include <array>
#include <cstring>

namespace platform {

using namespace Qt::Literals::StringLiterals;

std::optional<QString> parseAddress(QStringView text) {
    const bool isVersion6 = text.contains(u':');
    const int family = isVersion6 ? AF_INET6 : AF_INET;
    // An address of the link names the interface that it is reached by.
    const qsizetype zone = isVersion6 ? text.indexOf(u'%') : -1;
    const QByteArray number = (zone < 0 ? text : text.first(zone)).toLatin1();
    in6_addr address{};
    static constexpr in6_addr kAll{};
    if (::inet_pton(family, number.constData(), &address) != 1 ||
        std::memcmp(&address, &kAll, sizeof address) == 0 || zone + 1 == text.size()) {
        return std::nullopt;
    }
    std::array<char, INET6_ADDRSTRLEN> written{};
    ::inet_ntop(family, &address, written.data(), socklen_t(written.size()));
    const QString name = QString::fromLatin1(written.data());
    return zone < 0 ? name : name + text.sliced(zone).toString();
}

std::optional<Endpoint> parseEndpoint(QStringView text) {
    const qsizetype bracket = text.startsWith(u'[') ? text.indexOf(u']') : -1;
    if (text.startsWith(u'[') && bracket < 0) return std::nullopt;
    // The colons of an IPv6 address that stands without brackets are its own.
    const qsizetype colon = bracket > 0 || text.count(u':') == 1 ? text.indexOf(u':', bracket + 1) : -1;
    if (bracket > 0 && bracket + 1 != (colon < 0 ? text.size() : colon)) return std::nullopt;
    const QStringView name =
        bracket > 0 ? text.sliced(1, bracket - 1) : text.first(colon < 0 ? text.size() : colon);
    const std::optional<QString> address = parseAddress(name);
    if (!address) return std::nullopt;
    if (colon < 0) return Endpoint{*address};
    bool isNumber = false;
    const quint16 port = text.sliced(colon + 1).toUShort(&isNumber);
    return isNumber && port > 0 ? std::optional(Endpoint{*address, port}) : std::nullopt;
}

QString endpointText(const QString& address, quint16 port) {
    return (address.contains(u':') ? u"[%1]:%2"_s : u"%1:%2"_s).arg(address).arg(port);
}

}  // namespace platform
