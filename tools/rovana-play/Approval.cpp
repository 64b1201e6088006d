#include "rovana-play/Approval.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <vector>

#include "platform/WholeFile.h"

namespace pilot {
namespace {

using namespace Qt::Literals::StringLiterals;

QStringList linesOf(const QString& text) {
    QStringList lines = text.split(u'\n');
    if (lines.last().isEmpty()) lines.removeLast();
    return lines;
}

}  // namespace

QString lineDiff(const QString& approved, const QString& printed) {
    const QStringList before = linesOf(approved);
    const QStringList after = linesOf(printed);
    // common[i][j]: length of the longest common part of before from i on and after from j on.
    std::vector common(size_t(before.size()) + 1, std::vector<int>(size_t(after.size()) + 1, 0));
    for (auto i = size_t(before.size()); i-- > 0;) {
        for (auto j = size_t(after.size()); j-- > 0;) {
            common[i][j] = before[qsizetype(i)] == after[qsizetype(j)]
                               ? common[i + 1][j + 1] + 1
                               : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    QString diff;
    const auto add = [&](QChar mark, const QString& line) { diff += mark + line + u'\n'; };
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < before.size() || j < after.size()) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            add(u' ', before[i++]);
            ++j;
        } else if (j == after.size() || (i < before.size() && common[size_t(i) + 1][size_t(j)] >=
                                                                  common[size_t(i)][size_t(j) + 1])) {
            add(u'-', before[i++]);
        } else {
            add(u'+', after[j++]);
        }
    }
    return diff;
}

QString writeApproved(const QString& file, const QString& text) {
    QDir().mkpath(QFileInfo(file).absolutePath());
    QString error;
    if (platform::writeWholeFile(file, text.toUtf8(), &error)) return {};
    return u"%1 cannot be written: %2"_s.arg(file, error);
}

QString readApproved(const QString& file) {
    const auto content = platform::readWholeFile(file);
    // An empty file is a paper of no lines.
    return content ? u""_s + QString::fromUtf8(*content) : QString();
}

}  // namespace pilot
