#include <algorithm>

#include "print/Layout.h"
#include "rovana-office/Board.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

QString padded(const QString& text, int columns, bool isNumber) {
    const QString blanks(std::max(0, columns - print::displayWidth(text)), u' ');
    return isNumber ? blanks + text : text + blanks;
}

}  // namespace

QString boardText(const Board& board) {
    QList<QStringList> lines{{u"단말기"_s, u"사원"_s, u"이름"_s, u"전표"_s, u"매출"_s, u"현금"_s, u"카드"_s,
                              u"외상"_s, u"용공회수"_s, u"과부족"_s}};
    for (const BoardSalesman& each : board.salesmen) {
        lines.append({each.terminal, each.userId, each.name, QString::number(each.slips),
                      boardAmount(each.sales), boardAmount(each.cash), boardAmount(each.card),
                      boardAmount(each.unpaid), boardAmount(each.recovery),
                      each.over ? boardAmount(*each.over) : u"마감 전"_s});
    }
    QList<int> widths(lines.first().size(), 0);
    for (const QStringList& line : lines) {
        for (qsizetype i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths[i], print::displayWidth(line[i]));
    }
    QString text;
    for (const QStringList& line : lines) {
        QString row;
        for (qsizetype i = 0; i < line.size(); ++i) row += padded(line[i], widths[i], i > 2) + u"  "_s;
        text += row.trimmed() + u'\n';
    }
    for (const QStringList& line : board.silent.lines)
        text += u"보내지 않은 단말기: %1 (%2)\n"_s.arg(line[0], line[1]);
    return text;
}

}  // namespace office
