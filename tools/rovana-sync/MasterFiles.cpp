#include "rovana-sync/MasterFiles.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <memory>
#include <vector>

#include "db/ImportFile.h"
#include "db/ImportLines.h"
#include "db/MasterImport.h"
#include "platform/CodePage.h"
#include "platform/Device.h"
#include "platform/Sha256.h"
#include "platform/WholeFile.h"
#include "platform/Won.h"

namespace terminal_sync {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kCustomers = u"GARAE.RVN";
constexpr QStringView kOrders = u"MTM.RVN";

QString notesPath() {
    return platform::device::path(books::kOfficeFolder) + u"fetched.json"_s;
}

QString documentsPath(QStringView fileName) {
    return platform::device::path(platform::device::kDocumentsFolder.toString() + fileName.toString());
}

QString cardPath(QStringView fileName) {
    return platform::device::path(platform::device::kStorageCardFolder.toString() + fileName.toString());
}

qint64 modifiedOf(const QString& path) {
    return QFileInfo(path).lastModified().toMSecsSinceEpoch();
}

/// The lines in code page 949, with the line ends of its files; a character that it does not hold is "?".
QByteArray encode(QString lines) {
    lines.replace(u'\n', u"\r\n"_s);
    if (const auto whole = platform::codepage::encode(lines)) return *whole;
    QByteArray bytes;
    for (const QChar each : lines) bytes += platform::codepage::encode(QString(each)).value_or("?");
    return bytes;
}

/// Empty for a file that is not there.
QByteArray digestOfFile(const QString& path) {
    const auto content = platform::readWholeFile(path);
    return content ? platform::sha256({*content}) : QByteArray();
}

void putFile(const QString& path, const QByteArray& content) {
    QString error;
    if (!platform::writeWholeFile(path, content, &error))
        throw LocalError((path + u": "_s + error).toStdString());
}

/// Of customers with their balances, in whatever order.
QByteArray digestOf(QStringList balances) {
    balances.sort();
    return platform::sha256({balances.join(u'\n').toUtf8()});
}

QString balanceOf(const QString& customer, const QString& won) {
    return customer + u'|' + platform::formatWon(platform::parseWon(won));
}

/// The balances that a load of this GARAE.RVN leaves in the table.
QByteArray balancesIn(const QByteArray& content) {
    constexpr std::size_t kBalance = 7;
    const auto& file = *std::ranges::find(db::importFiles(), kCustomers, &db::ImportFile::fileName);
    QStringList balances;
    std::vector<QStringView> fields;
    for (db::ImportLines lines(content); !lines.atEnd();) {
        const std::optional<QString> line = db::decodeImportLine(db::withoutLineEnd(lines.next()));
        if (!line) continue;
        db::cutImportLine(file, *line, &fields);
        balances << balanceOf(fields[0].toString(), fields[kBalance].toString());
    }
    return digestOf(std::move(balances));
}

}  // namespace

MasterFiles::MasterFiles(LocalDays& local) : local_(local) {
    read();
}

void MasterFiles::read() {
    QFile file(notesPath());
    if (!file.open(QIODevice::ReadOnly)) return;
    const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
    balances_ = QByteArray::fromHex(json[u"balances"_s].toString().toLatin1());
    balancesPut_ = QByteArray::fromHex(json[u"put"_s].toString().toLatin1());
    const QJsonObject files = json[u"files"_s].toObject();
    for (auto each = files.begin(); each != files.end(); ++each) {
        const QJsonObject entry = each->toObject();
        entries_[each.key()] = {entry[u"token"_s].toString(),
                                QByteArray::fromHex(entry[u"digest"_s].toString().toLatin1()),
                                QByteArray::fromHex(entry[u"before"_s].toString().toLatin1()),
                                entry[u"modified"_s].toString().toLongLong(), entry[u"sure"_s].toBool()};
    }
}

void MasterFiles::write() const {
    QJsonObject files;
    for (auto each = entries_.cbegin(); each != entries_.cend(); ++each) {
        files[each.key()] = QJsonObject{{u"token"_s, each->token},
                                        {u"digest"_s, QString::fromLatin1(each->digest.toHex())},
                                        {u"before"_s, QString::fromLatin1(each->before.toHex())},
                                        {u"modified"_s, QString::number(each->modified)},
                                        {u"sure"_s, each->isSure}};
    }
    const QJsonObject json{{u"balances"_s, QString::fromLatin1(balances_.toHex())},
                           {u"put"_s, QString::fromLatin1(balancesPut_.toHex())},
                           {u"files"_s, files}};
    putFile(notesPath(), QJsonDocument(json).toJson(QJsonDocument::Compact));
}

bool MasterFiles::isOurs(const QByteArray& digest, const Entry& entry) {
    return !digest.isEmpty() && (digest == entry.digest || digest == entry.before);
}

/// Whether the table was loaded from the very file that was put.
bool MasterFiles::isLoaded(const QString& fileName, const Entry& entry) {
    // A database of an older terminal does not remember; then the note is all there is.
    if (!local_.database().hasColumn(u"MASTERLOAD", u"Modified")) return true;
    const auto loads =
        local_.database().rows(u"SELECT Modified FROM MASTERLOAD WHERE FileName = ?"_s, {fileName});
    return loads && !loads->isEmpty() && loads->first().first().toLongLong() == entry.modified;
}

bool MasterFiles::hasPreparedPayment() {
    if (!local_.database().hasColumn(u"PAYJOURNAL")) return false;
    const auto rows = local_.database().rows(u"SELECT 1 FROM PAYJOURNAL WHERE State = 'prepared' LIMIT 1"_s);
    if (!rows) throw LocalError("the card payments cannot be read");
    return !rows->isEmpty();
}

QByteArray MasterFiles::loadedBalances() {
    const auto rows = local_.database().rows(u"SELECT GCODE, CJMONEY FROM GARAE"_s);
    if (!rows) throw LocalError("the customers cannot be read");
    QStringList balances;
    for (const QStringList& row : *rows) balances << balanceOf(row[0], row[1]);
    return digestOf(std::move(balances));
}

bool MasterFiles::isHere(const MasterVersion& version, const std::function<QByteArray()>& balancesNow) {
    const Entry entry = entries_.value(version.fileName);
    if (entry.token != version.token) return false;
    if (!entry.digest.isEmpty() && digestOfFile(documentsPath(version.fileName)) == entry.digest) return true;
    if (!isLoaded(version.fileName, entry)) return false;
    if (version.fileName != kCustomers || entry.isSure) return true;
    const bool isCardAwaited = hasPreparedPayment();
    // A collection that was saved while the file waited may have come before the load, which took it back.
    if (balancesNow() != balances_) return false;
    // One on its way to the card is seen neither by the office nor above, and may be taken back yet.
    if (isCardAwaited) return true;
    // One that has gone again has taken its amount off balances that may have come after it.
    if (loadedBalances() != balancesPut_) return false;
    entries_[version.fileName].isSure = true;
    write();
    return true;
}

void MasterFiles::doubtBalances() {
    if (entries_.value(kCustomers.toString()).token.isEmpty()) return;
    entries_[kCustomers.toString()].token.clear();
    write();
}

void MasterFiles::forgetBalances() {
    const db::ImportLock lock;
    if (lock.isTaken()) throw LocalError("master data are being loaded");
    const QString path = documentsPath(kCustomers);
    if (isOurs(digestOfFile(path), entries_.value(kCustomers.toString()))) QFile::remove(path);
    entries_.remove(kCustomers.toString());
    write();
}

bool MasterFiles::isInTheWay(const MasterVersion& version) const {
    // Loaded after ours, it would bring the older data back.
    if (QFile::exists(cardPath(version.fileName))) return true;
    const QString path = documentsPath(version.fileName);
    const bool isAnothers =
        QFile::exists(path) && !isOurs(digestOfFile(path), entries_.value(version.fileName));
    return isAnothers && modifiedOf(path) > version.loadedAt.toMSecsSinceEpoch();
}

MasterFiles::Put MasterFiles::put(const QList<MasterVersion>& versions, const QMap<QString, QString>& lines,
                                  const QByteArray& balances) {
    const db::ImportLock lock;
    if (lock.isTaken()) return {};
    Put put;
    std::vector<std::unique_ptr<platform::WholeFile>> files;
    const auto require = [&](const platform::WholeFile& file, bool isDone) {
        if (!isDone) throw LocalError("a master file: " + file.errorText().toStdString());
    };
    for (const MasterVersion& version : versions) {
        if (isInTheWay(version)) {
            put.inTheWay << version.fileName;
            continue;
        }
        const QByteArray content = encode(lines.value(version.fileName));
        files.push_back(std::make_unique<platform::WholeFile>(documentsPath(version.fileName)));
        require(*files.back(), files.back()->begin(content));
        Entry& entry = entries_[version.fileName];
        const QByteArray digest = platform::sha256({content});
        const QByteArray waiting = digestOfFile(documentsPath(version.fileName));
        const bool isBefore = waiting != digest && isOurs(waiting, entry);
        entry = {version.token, digest, isBefore ? waiting : QByteArray(), files.back()->modified(), false};
        if (version.fileName == kCustomers) {
            balances_ = balances;
            balancesPut_ = balancesIn(content);
        }
        put.done << version.fileName;
    }
    if (files.empty()) return put;
    for (const auto& file : files) require(*file, file->sync());
    // Noted first: a waiting file of ours has to be known as such whenever this ends.
    write();
    for (const auto& file : files) require(*file, file->takeNameOnly());
    require(*files.back(), files.back()->syncFolder());
    return put;
}

bool MasterFiles::withdrawOldBalances(const std::function<QByteArray()>& balances) {
    const Entry entry = entries_.value(kCustomers.toString());
    const QString path = documentsPath(kCustomers);
    const QByteArray waiting = digestOfFile(path);
    if (!isOurs(waiting, entry) || (waiting == entry.digest && balances() == balances_)) return true;
    const db::ImportLock lock;
    if (lock.isTaken()) return false;
    if (digestOfFile(path) == waiting) QFile::remove(path);
    return true;
}

bool MasterFiles::areOrdersWaiting() {
    return QFile::exists(documentsPath(kOrders)) || QFile::exists(cardPath(kOrders));
}

bool MasterFiles::areBalancesWaiting() {
    return QFile::exists(documentsPath(kCustomers));
}

bool MasterFiles::hasSlip(const Order& order) {
    const auto isIn = [&](const QString& table) {
        if (!local_.database().hasColumn(table)) return false;
        const auto rows = local_.database().rows(
            u"SELECT 1 FROM %1 WHERE DDate = ? AND JunNo = ? AND UserID = ? LIMIT 1"_s.arg(table),
            {order.date, order.junNo, order.userId});
        if (!rows) throw LocalError("the slips cannot be read");
        return !rows->isEmpty();
    };
    return isIn(u"MTM"_s) || isIn(u"DELETED"_s);
}

void MasterFiles::putOrders(const QList<Order>& orders) {
    const db::ImportLock lock;
    // What waits is looked at before the slips: a file that was loaded in between is in them.
    if (lock.isTaken() || areOrdersWaiting()) return;
    QString lines;
    for (const Order& order : orders) {
        if (!hasSlip(order)) lines += order.line + u'\n';
    }
    if (!lines.isEmpty()) putFile(documentsPath(kOrders), encode(lines));
}

QByteArray MasterFiles::balancesOf(const QMap<QString, books::DocumentDigests>& days) {
    QList<QByteArray> digests;
    for (const books::DocumentDigests& day : days) {
        for (auto each = day.cbegin(); each != day.cend(); ++each) {
            if (each.key().kind == books::DocumentKind::Collection) digests << *each;
        }
    }
    return books::dayDigest(digests);
}

}  // namespace terminal_sync
