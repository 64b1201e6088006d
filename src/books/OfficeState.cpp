#include "books/OfficeState.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <utility>

#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/WholeFile.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SqliteFile;

constexpr qsizetype kShortBytes = 8;
constexpr QStringView kMinute = u"yyyy-MM-ddTHH:mm";

QString statePath() {
    return platform::device::path(kOfficeFolder) + u"state.json"_s;
}

QString hex(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toHex());
}

QByteArray bytes(const QJsonValue& value) {
    return QByteArray::fromHex(value.toString().toLatin1());
}

QJsonObject toJson(const OfficeState::Day& day) {
    return {
        {u"digest"_s, hex(day.digest)}, {u"agreed"_s, hex(day.agreed.join())}, {u"waiting"_s, day.waiting}};
}

OfficeState::Day dayOf(const QJsonObject& json) {
    OfficeState::Day day;
    day.digest = bytes(json[u"digest"_s]);
    const QByteArray agreed = bytes(json[u"agreed"_s]);
    for (qsizetype at = 0; at < agreed.size(); at += kShortBytes) day.agreed << agreed.mid(at, kShortBytes);
    day.waiting = json[u"waiting"_s].toInt();
    return day;
}

/// The visits of the day that wait now; those that the last sync left when the day cannot be read.
int waitingNow(const OfficeState::Day& day, const QString& date) try {
    SqliteFile database(platform::device::path(platform::device::kDatabaseFile), SqliteFile::Mode::ReadOnly);
    if (!database.isOpen()) return day.waiting;
    // The menu does not wait for anybody.
    database.setPatience(0);
    return waitingVisits(day, digestsOfDay(DocumentReader(database), date));
} catch (const platform::SqliteError&) {
    return day.waiting;
}

}  // namespace

QByteArray shortDigest(const QByteArray& digest) {
    return digest.first(std::min(kShortBytes, digest.size()));
}

bool hasOffice() {
    return QFile::exists(platform::device::path(kOfficeAccessFile));
}

OfficeState readOfficeState() {
    OfficeState state;
    QFile file(statePath());
    if (!file.open(QIODevice::ReadOnly)) return state;
    const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
    state.syncedAt = QDateTime::fromString(json[u"syncedAt"_s].toString(), kMinute);
    const QJsonObject days = json[u"days"_s].toObject();
    for (auto day = days.begin(); day != days.end(); ++day) state.days[day.key()] = dayOf(day->toObject());
    return state;
}

bool writeOfficeState(const OfficeState& state) {
    QJsonObject days;
    for (auto day = state.days.cbegin(); day != state.days.cend(); ++day) days[day.key()] = toJson(*day);
    const QJsonObject json{{u"syncedAt"_s, state.syncedAt.toString(kMinute)}, {u"days"_s, days}};
    const QByteArray text = QJsonDocument(json).toJson(QJsonDocument::Compact);
    // A sync that changes nothing does not wait for the disk every time.
    if (QFile before(statePath()); before.open(QIODevice::ReadOnly) && before.readAll() == text) return true;
    // Nor one that changes something: what a loss of power takes of it, the next sync finds anew.
    platform::WholeFile file(statePath());
    return file.begin(text) && file.takeNameOnly();
}

DocumentDigests digestsOfDay(const DocumentReader& reader, const QString& date) {
    DocumentDigests digests;
    reader.forEachDocument(date, [&](const Document& document) {
        digests[document.identity] = document.digest;
        return true;
    });
    return digests;
}

int waitingVisits(const OfficeState::Day& agreed, const DocumentDigests& documents) {
    if (documents.isEmpty() && agreed.digest.isEmpty()) return 0;
    if (dayDigest(documents.values()) == agreed.digest) return 0;
    const QSet<QByteArray> known(agreed.agreed.cbegin(), agreed.agreed.cend());
    QSet<std::pair<QString, QString>> visits;
    for (auto each = documents.cbegin(); each != documents.cend(); ++each) {
        const DocumentIdentity& id = each.key();
        if (id.kind != DocumentKind::Payment && !known.contains(shortDigest(*each)))
            visits.insert({id.number, id.userId});
    }
    return std::max(1, int(visits.size()));
}

QString officeLine(const QString& workDate) {
    if (!hasOffice()) return {};
    const OfficeState state = readOfficeState();
    int waiting = waitingNow(state.days.value(workDate), workDate);
    for (auto day = state.days.cbegin(); day != state.days.cend(); ++day) {
        if (day.key() != workDate) waiting += day->waiting;
    }
    QString line = u"사무실 -"_s;
    if (state.syncedAt.isValid()) {
        const bool isToday = state.syncedAt.date() == platform::clock::now().date();
        line = u"사무실 "_s + state.syncedAt.toString(isToday ? u"HH:mm"_s : u"MM-dd HH:mm"_s);
    }
    return waiting > 0 ? line + u" · 대기 %1"_s.arg(waiting) : line;
}

}  // namespace books
