#include "rovana-cardhost/Faults.h"

#include <QRegularExpression>
#include <QStringList>

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr struct {
    QStringView name;
    Misbehaviour misbehaviour;
} kFaults[] = {
    {u"refuse", Misbehaviour::Refuse},     {u"close", Misbehaviour::Close},
    {u"silent", Misbehaviour::Silent},     {u"late", Misbehaviour::Late},
    {u"split", Misbehaviour::Split},       {u"double", Misbehaviour::Double},
    {u"stray", Misbehaviour::Stray},       {u"truncate", Misbehaviour::Truncate},
    {u"oversize", Misbehaviour::Oversize}, {u"garbage", Misbehaviour::Garbage},
    {u"badmac", Misbehaviour::BadMac},     {u"approve-then-close", Misbehaviour::ApproveThenClose},
};

}  // namespace

std::optional<Fault> parseFault(const QString& text) {
    static const QRegularExpression pattern(
        u"\\A(?<name>[a-z-]+)(?: (?<seconds>[0-9]{1,4}(?:\\.[0-9]{1,3})?))?(?:@(?<request>[0-9]{1,9}))?\\z"_s);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch()) return std::nullopt;
    const bool hasRequest = match.hasCaptured(u"request"_s);
    const int request = match.captured(u"request"_s).toInt();
    if (hasRequest && request == 0) return std::nullopt;
    for (const auto& [name, misbehaviour] : kFaults) {
        if (match.capturedView(u"name"_s) != name) continue;
        if (match.hasCaptured(u"seconds"_s) != (misbehaviour == Misbehaviour::Late)) return std::nullopt;
        const double seconds = match.captured(u"seconds"_s).toDouble();
        return Fault{misbehaviour, request, std::chrono::milliseconds(qint64(seconds * 1000))};
    }
    return std::nullopt;
}

QString faultNames() {
    QStringList names;
    for (const auto& [name, misbehaviour] : kFaults) {
        names << (misbehaviour == Misbehaviour::Late ? u"late SECONDS"_s : name.toString());
    }
    return names.join(u", "_s);
}

std::optional<Fault> faultFor(const QList<Fault>& faults, int request) {
    for (const Fault& fault : faults) {
        if (fault.request == 0 || fault.request == request) return fault;
    }
    return std::nullopt;
}

}  // namespace cardhost
