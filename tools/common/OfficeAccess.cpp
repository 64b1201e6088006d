#include "common/OfficeAccess.h"

#include <algorithm>
#include <array>

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SecureBytes;

struct Line {
    QByteArrayView name;
    QString Access::*text;
};
constexpr std::array kLines{Line{"host", &Access::host}, Line{"port", &Access::port},
                            Line{"database", &Access::database}, Line{"user", &Access::user}};
constexpr QByteArrayView kPassword = "password";

void append(SecureBytes& text, QByteArrayView piece) {
    text.insert(text.end(), piece.begin(), piece.end());
}

void appendBlock(SecureBytes& text, QByteArrayView name, QByteArrayView pem) {
    if (pem.isEmpty()) return;
    append(text, "[");
    append(text, name);
    append(text, "]\n");
    append(text, pem);
    if (!pem.endsWith('\n')) append(text, "\n");
}

QByteArrayView bytesOf(const SecureBytes& bytes) {
    return {bytes.data(), qsizetype(bytes.size())};
}

QByteArrayView trimmed(QByteArrayView text) {
    while (!text.isEmpty() && (text.front() == ' ' || text.front() == '\t')) text = text.sliced(1);
    while (!text.isEmpty() && QByteArrayView(" \t\r").contains(text.back())) text.chop(1);
    return text;
}

/// Takes one "name = value"; false when it is none.
bool takeLine(QByteArrayView line, Access* access) {
    const qsizetype at = line.indexOf('=');
    if (at < 0) return false;
    const QByteArrayView name = trimmed(line.first(at));
    const QByteArrayView value = trimmed(line.sliced(at + 1));
    if (name == kPassword) {
        access->password.assign(value);
        return true;
    }
    const auto* const known = std::ranges::find(kLines, name, &Line::name);
    if (known == kLines.end()) return false;
    access->*(known->text) = QString::fromUtf8(value);
    return true;
}

QString findFault(const Access& access) {
    for (const Line& line : kLines) {
        if ((access.*(line.text)).isEmpty()) return u"\"%1\" is missing"_s.arg(QLatin1StringView(line.name));
    }
    if (access.authority.isEmpty()) return u"the certificate of the authority is missing"_s;
    if (access.certificate.isEmpty() != access.key.empty())
        return u"a certificate and its key belong together"_s;
    if (access.password.isEmpty() == access.certificate.isEmpty())
        return u"it needs a password, or a certificate and its key"_s;
    return {};
}

}  // namespace

SecureBytes accessText(const Access& access) {
    SecureBytes text;
    append(text, "# How this terminal reaches the office. For its owner's eyes only.\n");
    const auto line = [&](QByteArrayView name, QByteArrayView value) {
        append(text, name);
        append(text, " = ");
        append(text, value);
        append(text, "\n");
    };
    for (const Line& each : kLines) line(each.name, (access.*(each.text)).toUtf8());
    if (!access.password.isEmpty()) {
        // Its characters are those of Base64.
        SecureBytes password;
        for (const QChar character : access.password.view()) password.push_back(uchar(character.toLatin1()));
        line(kPassword, bytesOf(password));
    }
    appendBlock(text, "authority", access.authority);
    appendBlock(text, "certificate", access.certificate);
    appendBlock(text, "key", bytesOf(access.key));
    return text;
}

std::optional<Access> readAccess(QByteArrayView text, QString* error) {
    Access access;
    QByteArrayView block;
    for (int number = 1; !text.isEmpty(); ++number) {
        const qsizetype end = text.indexOf('\n');
        const QByteArrayView whole = end < 0 ? text : text.first(end + 1);
        text = text.sliced(whole.size());
        const QByteArrayView line = trimmed(whole.endsWith('\n') ? whole.chopped(1) : whole);
        if (line.startsWith('[') && line.endsWith(']')) {
            block = line.sliced(1, line.size() - 2);
            if (block == "authority" || block == "certificate" || block == "key") continue;
        } else if (block == "authority") {
            access.authority += whole;
            continue;
        } else if (block == "certificate") {
            access.certificate += whole;
            continue;
        } else if (block == "key") {
            access.key.insert(access.key.end(), whole.begin(), whole.end());
            continue;
        } else if (line.isEmpty() || line.startsWith('#') || takeLine(line, &access)) {
            continue;
        }
        *error = u"line %1 means nothing"_s.arg(number);
        return std::nullopt;
    }
    *error = findFault(access);
    return error->isEmpty() ? std::optional(std::move(access)) : std::nullopt;
}

}  // namespace office
