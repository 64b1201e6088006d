#include "rovana-sync/Sync.h"

#include <QDate>
#include <QFile>
#include <algorithm>
#include <ranges>

#include "platform/Clock.h"
#include "platform/Device.h"

namespace terminal_sync {

using namespace Qt::Literals::StringLiterals;
using books::DocumentDigests;
using books::DocumentIdentity;
using books::OfficeState;

namespace {

DayDigests dayDigests(const QMap<QString, DocumentDigests>& days) {
    DayDigests digests;
    for (auto day = days.cbegin(); day != days.cend(); ++day)
        digests[day.key()] = books::dayDigest(day->values());
    return digests;
}

QString today() {
    return platform::clock::now().date().toString(Qt::ISODate);
}

QString sweepPath() {
    return platform::device::path(books::kOfficeFolder) + u"swept"_s;
}

}  // namespace

office::Access readAccessFile() {
    const QString path = platform::device::path(books::kOfficeAccessFile);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw LocalError((path + u": "_s + file.errorString()).toStdString());
    platform::SecureBytes text(std::size_t(file.size()));
    text.resize(
        std::size_t(std::max<qint64>(0, file.read(reinterpret_cast<char*>(text.data()), file.size()))));
    QString error;
    auto access = office::readAccess(QByteArrayView(text.data(), qsizetype(text.size())), &error);
    if (!access) throw LocalError((path + u": "_s + error).toStdString());
    return std::move(*access);
}

Sync::Sync(const office::Access& access)
    : masters_(local_),
      line_(std::async(std::launch::async, [&access] { return std::make_unique<Office>(access); })) {}

Outcome Sync::run() {
    readDays();
    try {
        // Whether there is a line or none: a login may be near.
        masters_.withdrawOldBalances([&] { return MasterFiles::balancesOf(days_); });
        const std::unique_ptr<Office> connected = line_.get();
        Office& office = *connected;
        greeting_ = office.hello(firstDay_, dayDigests(days_), salesmen());
        for (const QString& date : days_.keys()) {
            if (!greeting_.differing.contains(date)) agreed_.insert(date);
        }
        for (auto day = greeting_.differing.cbegin(); day != greeting_.differing.cend(); ++day)
            sendDay(office, day.key(), *day);
        sendOldDays(office);
        fetch(office);
    } catch (...) {
        noteState(!greeting_.terminal.isEmpty());
        throw;
    }
    noteState(true);
    return outcome_;
}

void Sync::readDays() {
    // Days that each sync compares. What is changed in an older one is found at the first sync of a day.
    constexpr int kOpenDays = 31;
    const QString open = platform::clock::now().date().addDays(-kOpenDays).toString(Qt::ISODate);
    firstDay_ = std::max(open, local_.firstKept());
    days_ = local_.digests(firstDay_);
}

bool Sync::mayBeSent(const DocumentIdentity& identity) const {
    // The office sets aside under "~" what had a number that was given again.
    return !identity.number.contains(u'~') && greeting_.users.contains(identity.userId);
}

/// Whether the day has collections, or traces of some, that the office does not have as they are.
bool Sync::movesBalances(const DocumentDigests& here, const DocumentDigests& atOffice) const {
    using enum books::DocumentKind;
    for (auto each = here.cbegin(); each != here.cend(); ++each) {
        const bool isCollection = each.key().kind == Collection || each.key().kind == Deletion;
        if (isCollection && mayBeSent(each.key()) && atOffice.value(each.key()) != *each) return true;
    }
    return false;
}

/// Sends what the office does not have as it is, and reports what the terminal lacks.
void Sync::sendDay(Office& office, const QString& date, const DocumentDigests& atOffice) {
    DocumentDigests& here = days_[date];
    QSet<DocumentIdentity> wanted;
    for (auto each = here.cbegin(); each != here.cend(); ++each) {
        if (atOffice.value(each.key()) != *each && mayBeSent(each.key())) wanted.insert(each.key());
    }
    Parcel parcel;
    parcel.date = date;
    parcel.isArchived = date < firstDay_;
    for (const DocumentIdentity& each : atOffice.keys()) {
        if (!here.contains(each)) parcel.absent << each;
    }
    parcel.isLast = wanted.isEmpty() && parcel.absent.isEmpty();
    while (!parcel.isLast) {
        parcel.documents = local_.take(date, &wanted);
        parcel.isLast = wanted.isEmpty();
        const Sent sent = office.send(parcel);
        outcome_.sent += sent.stored;
        outcome_.deleted += sent.deleted;
        outcome_.missing += sent.missing;
        // What was read just now is what the office has.
        for (const books::Document& document : std::as_const(parcel.documents))
            here[document.identity] = document.digest;
    }
    agreed_.insert(date);
}

/// Looks at the days from before the open ones, once a day or with `isAnew` again. Some of their visits may
/// be in an archive.
void Sync::sendOldDays(Office& office, bool isAnew) {
    // Days that are compared in one call.
    constexpr qsizetype kDaysAtOnce = 31;
    QFile swept(sweepPath());
    const bool isSwept = swept.open(QIODevice::ReadOnly) && swept.readAll() == today().toLatin1();
    if (isSwept && !isAnew) return;
    swept.close();
    const QStringList old = local_.daysBefore(firstDay_);
    for (qsizetype first = 0; first < old.size(); first += kDaysAtOnce) {
        QMap<QString, DocumentDigests> days;
        for (const QString& date : old.mid(first, kDaysAtOnce)) days[date] = local_.day(date);
        const auto differing = office.compare(dayDigests(days));
        for (auto day = differing.cbegin(); day != differing.cend(); ++day) {
            days_[day.key()] = days[day.key()];
            // Nobody has looked whether it came before a load of the balances, which then took it back.
            if (movesBalances(days[day.key()], *day)) masters_.doubtBalances();
            sendDay(office, day.key(), *day);
            days_.remove(day.key());
        }
    }
    // A file that is written over waits for the disk.
    if (!isSwept && swept.open(QIODevice::WriteOnly)) swept.write(today().toLatin1());
}

/// The office reads a salesman's slips by what he is set to.
QList<Salesman> Sync::salesmen() {
    QList<Salesman> salesmen;
    const auto rows = local_.database().rows(u"SELECT userID, userNAME, vatMode FROM PDAUSER"_s);
    for (const QStringList& row : rows.value_or(QList<QStringList>()))
        salesmen << Salesman{row[0], row[1], row[2]};
    return salesmen;
}

void Sync::fetch(Office& office) {
    const auto balancesNow = [&] { return MasterFiles::balancesOf(local_.digests(firstDay_)); };
    QList<MasterVersion> wanted;
    QStringList names;
    for (const MasterVersion& version : std::as_const(greeting_.masters)) {
        if (masters_.isHere(version, balancesNow)) continue;
        // What was changed in an old day since it was looked at would be taken back by balances without it.
        if (version.fileName == u"GARAE.RVN") sendOldDays(office, true);
        wanted << version;
        names << version.fileName;
    }
    if (!wanted.isEmpty()) {
        const MasterFiles::Put put =
            masters_.put(wanted, office.masters(names), MasterFiles::balancesOf(days_));
        outcome_.fetched = put.done;
        for (const QString& name : put.inTheWay)
            outcome_.remarks << u"the office's %1 waits: another one is to be loaded first"_s.arg(name);
    }
    if (greeting_.hasOrders && !MasterFiles::areOrdersWaiting()) {
        masters_.putOrders(office.orders(firstDay_));
        if (MasterFiles::areOrdersWaiting()) outcome_.fetched << u"MTM.RVN"_s;
    }
    // What the salesman has saved meanwhile is not in the balances that were put.
    if (!outcome_.fetched.isEmpty()) masters_.withdrawOldBalances(balancesNow);
}

/// The day as the office has it now: without the slips of those who are not enrolled, which wait.
OfficeState::Day Sync::agreedDay(const QString& date, bool isCounted) const {
    OfficeState::Day day;
    QList<QByteArray> digests;
    const DocumentDigests& here = *days_.constFind(date);
    for (auto each = here.cbegin(); each != here.cend(); ++each) {
        if (!mayBeSent(each.key())) continue;
        digests << *each;
        if (isCounted) day.agreed << books::shortDigest(*each);
    }
    day.digest = books::dayDigest(digests);
    if (digests.size() < here.size()) day.waiting = books::waitingVisits(day, here);
    return day;
}

void Sync::noteState(bool isReached) {
    // Days whose documents the menu can count one by one.
    constexpr int kCountedDays = 3;
    const QStringList dates = days_.keys();
    const bool isWhole =
        isReached && std::ranges::all_of(dates, [&](const QString& each) { return agreed_.contains(each); });
    const OfficeState before = isWhole ? OfficeState() : books::readOfficeState();
    OfficeState state;
    state.syncedAt = isReached ? platform::clock::now() : before.syncedAt;
    const QString counted = dates.value(std::max<qsizetype>(0, dates.size() - kCountedDays));
    for (const QString& date : dates) {
        OfficeState::Day day;
        if (agreed_.contains(date)) {
            day = agreedDay(date, date >= counted);
        } else {
            day = before.days.value(date);
            day.waiting = books::waitingVisits(day, days_[date]);
        }
        outcome_.waiting += day.waiting;
        state.days[date] = day;
    }
    if (outcome_.waiting > 0 && isReached)
        outcome_.remarks << u"%1 visits are not the office's: their salesmen are not enrolled"_s.arg(
            outcome_.waiting);
    if (outcome_.missing > 0)
        outcome_.remarks << u"the office keeps %1 documents that are not here: rovana-sync --recover"_s.arg(
            outcome_.missing);
    if (!books::writeOfficeState(state)) outcome_.remarks << u"the state for the menu could not be written"_s;
}

}  // namespace terminal_sync
