// How often a finger comes down in a customer's usual order, from the menu to the menu, against what it may
// be. The visit counts and judges itself; the commonest other ones are told beside it.

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <stdexcept>

#include "Bench.h"
#include "platform/Sqlite.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr double kMostTouches = 16;
constexpr QStringView kVisit = u"usual-order";

QByteArray run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + u'/' + program, arguments);
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        throw std::runtime_error(process.readAllStandardError().toStdString());
    return process.readAllStandardOutput();
}

/// What the visit finds in the database; its master data came on its day, not on that of the measurement.
void addRows(const QString& device, const QString& sqlFile) {
    QFile rows(sqlFile);
    platform::SqliteFile database(device + u"/My Documents/rvnclient.cdb"_s,
                                  platform::SqliteFile::Mode::Existing);
    const bool isRead = rows.open(QIODevice::ReadOnly);
    const QString statements =
        u"UPDATE MASTERLOAD SET LoadedAt = '2026-11-21T08:00:00';"_s + QString::fromUtf8(rows.readAll());
    if (!isRead || !database.execute(statements)) throw std::runtime_error("the visit's rows cannot be made");
}

}  // namespace

Result measureTaps() {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    const QString visit = QStringLiteral(ROVANA_TESTS_DIR "/visits/") + kVisit.toString();
    run(u"rovanactl"_s, {u"init"_s, device, u"--demo"_s, u"--date"_s, u"2026-11-21"_s});
    run(u"rovanactl"_s, {u"import"_s, u"--device"_s, device});
    addRows(device, visit + u".sql"_s);
    Result result{.peer = kMostTouches, .unit = "taps"};
    const QByteArray told =
        run(u"rovana-play"_s, {visit + u".visit"_s, u"--device"_s, device, u"--touches"_s});
    for (const QByteArray& line : told.trimmed().split('\n')) {
        const QList<QByteArray> parts = line.split('=');
        if (parts.size() == 2 && parts[0] == kVisit.toLatin1()) {
            result.ours = parts[1].toDouble();
        } else {
            result.note += " " + line.toStdString();
        }
    }
    if (result.ours == 0) throw std::runtime_error("the visit was not counted");
    return result;
}

}  // namespace bench
