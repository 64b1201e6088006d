#include "app/ImportReport.h"

#include <QFileInfo>
#include <QStringList>
#include <algorithm>

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;
using Outcome = db::ImportResult::Outcome;

/// In the order of the files.
constexpr QStringView kNames[] = {u"주문서",       u"거래처_채권", u"상  품", u"거래처별 계약단가",
                                  u"주류구분마진", u"바코드"};

/// Lines of names that the menu has room for.
constexpr qsizetype kMenuLines = 2;

bool isWhole(const FileReport& file) {
    const db::ImportResult& result = file.result;
    if (file.isLater) return false;
    return result.outcome == Outcome::NotOpened ||
           (result.isInTable() && result.rejected == 0 && !result.isLastLineCut && result.isDeleted);
}

QString outcomeText(const FileReport& file) {
    if (file.isLater) return u"나중에 수신합니다."_s;
    switch (file.result.outcome) {
        case Outcome::Loaded: return u"%1건 수신"_s.arg(file.result.loaded);
        case Outcome::Unchanged: return u"%1건, 지난번과 같음"_s.arg(file.result.loaded);
        case Outcome::AlreadyLoaded: return u"이미 수신한 자료"_s;
        case Outcome::BeingWritten: return u"다른 프로그램이 파일을 쓰고 있어 다음에 수신합니다."_s;
        case Outcome::NotSaved: return u"저장하지 못했습니다. 파일은 그대로 있습니다."_s;
        case Outcome::NotOpened: break;
    }
    return {};
}

QString rejectedText(const db::RejectedLine& line) {
    const bool isUnreadable = line.reason == db::RejectedLine::Reason::NotCodePage949;
    return u"  %1번째 줄, %2 :\n  %3"_s.arg(QString::number(line.number),
                                            isUnreadable ? u"글자를 읽을 수 없음"_s : u"DB가 받지 않음"_s,
                                            line.text);
}

QStringList linesOf(const FileReport& file) {
    const db::ImportResult& result = file.result;
    QStringList lines{dataName(*file.file) + u" : "_s + outcomeText(file)};
    if (file.isLater || !result.isInTable()) return lines;
    if (result.rejected > 0) {
        lines << u"  %1건은 수신하지 못해 보관 : %2"_s.arg(result.rejected)
                     .arg(QFileInfo(result.keptIn).fileName());
        for (const db::RejectedLine& line : result.firstRejected) lines << rejectedText(line);
        if (result.rejected > result.firstRejected.size()) lines << u"  ..."_s;
    }
    if (result.isLastLineCut) lines << u"  마지막 줄이 잘려 있습니다."_s;
    if (!result.isDeleted) lines << u"  파일을 지우지 못했습니다. 다시 수신하지는 않습니다."_s;
    return lines;
}

QString nameOf(const db::OldData& old) {
    const auto file = std::ranges::find_if(
        db::importFiles(), [&](const db::ImportFile& each) { return each.fileName == old.fileName; });
    return dataName(*file);
}

}  // namespace

QString dataName(const db::ImportFile& file) {
    return kNames[&file - db::importFiles().data()].toString();
}

QString shrinkageQuestion(const db::ImportFile& file, const db::Shrinkage& shrinkage) {
    return u"%1 자료가 %2건에서 %3건으로 줄어듭니다..! 지금 수신하시겠습니까? 취소하면 나중에 수신합니다."_s
        .arg(dataName(file))
        .arg(shrinkage.rows)
        .arg(shrinkage.lines);
}

QString importReport(const QList<FileReport>& files) {
    if (std::ranges::all_of(files, isWhole)) return {};
    QStringList lines;
    for (const FileReport& file : files) {
        if (file.isLater || file.result.outcome != Outcome::NotOpened) lines << linesOf(file);
    }
    return lines.join(u'\n');
}

QString oldDataMessage(const QList<db::OldData>& old) {
    if (old.isEmpty()) return {};
    QStringList parts;
    for (const db::OldData& each : old) {
        parts << nameOf(each) + (each.days > 0 ? u" %1일 지남"_s.arg(each.days) : u" 지난번보다 이전 자료"_s);
    }
    return u"오래된 영업자료입니다..! 사무실에 확인하세요 : "_s + parts.join(u", "_s);
}

QString oldDataLine(const QList<db::OldData>& old) {
    if (old.isEmpty()) return {};
    QStringList lines{u"오래된 자료"_s};
    for (const db::OldData& each : old.first(std::min(kMenuLines, old.size()))) lines << nameOf(each);
    if (old.size() > kMenuLines) lines.last() += u" 외"_s;
    return lines.join(u'\n');
}

}  // namespace app
