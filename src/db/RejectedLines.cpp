#include "db/RejectedLines.h"

#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/WholeFile.h"

namespace db {
namespace {

constexpr int kMostShown = 3;

QString readable(QByteArrayView line) {
    if (const auto text = platform::codepage::decode(line)) return *text;
    QString text;
    for (const char byte : line)
        text += static_cast<unsigned char>(byte) < 0x80 ? QChar(QLatin1Char(byte)) : QChar(u'?');
    return text;
}

QByteArray withoutBatch(const QByteArray& content, const QByteArray& heading) {
    const qsizetype begin = content.startsWith(heading) ? 0 : content.indexOf('\n' + heading) + 1;
    if (begin == 0 && !content.startsWith(heading)) return content;
    const qsizetype next = content.indexOf("\n# ", begin);
    return content.first(begin) + (next < 0 ? QByteArray() : content.sliced(next + 1));
}

QString timeStamp() {
    return platform::clock::now().toString(Qt::ISODate);
}

}  // namespace

void RejectedLines::add(int number, RejectedLine::Reason reason, QByteArrayView line) {
    const bool isUnreadable = reason == RejectedLine::Reason::NotCodePage949;
    lines_.append(
        {number, isUnreadable ? "not code page 949" : "not accepted by the database", line.toByteArray()});
    if (count_ < kMostShown) first_.append({number, reason, readable(line)});
    ++count_;
}

QString RejectedLines::keep(const QStringList& places, QStringView fileName, const QString& digest,
                            Transaction& transaction) const {
    for (const QString& place : places) {
        if (keepInFile(place, digest)) return place;
    }
    return keepInTable(fileName, digest, transaction) ? kTable.toString() : QString();
}

bool RejectedLines::keepInFile(const QString& path, const QString& digest) const {
    const QByteArray heading = "# " + digest.toLatin1();
    QByteArray content;
    if (QFileInfo::exists(path)) {
        const auto old = platform::readWholeFile(path);
        // Lines that cannot be read must not be replaced.
        if (!old) return false;
        content = withoutBatch(*old, heading);
    }
    content += heading + ' ' + timeStamp().toLatin1() + '\n';
    for (const Line& line : lines_)
        content += QByteArray::number(line.number) + '\t' + line.reason + '\t' + line.bytes + '\n';
    return platform::writeWholeFile(path, content);
}

bool RejectedLines::keepInTable(QStringView fileName, const QString& digest, Transaction& transaction) const {
    static constexpr Statement<u"DELETE IMPORTREJECT WHERE Digest = '%s'"> kDeleteBatch;
    static constexpr Statement<
        u"INSERT INTO IMPORTREJECT (FileName,Digest,KeptAt,Number,Reason,Line) VALUES "
        u"('%s','%s','%s','%s','%s','%s')">
        kInsertLine;
    const QString now = timeStamp();
    bool isKept = transaction.run(kDeleteBatch(digest));
    for (const Line& line : lines_) {
        // Whatever a line holds, the statement takes it: a quote is the reason why many are here.
        isKept = isKept && transaction.run(kInsertLine(fileName, digest, now, QString::number(line.number),
                                                       QString::fromLatin1(line.reason),
                                                       QString::fromLatin1(line.bytes.toPercentEncoding())));
    }
    return isKept;
}

}  // namespace db
