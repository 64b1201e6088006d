#include <QDate>
#include <QFile>
#include <QLocale>

#include "rovana-office/Board.h"
#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

QString styles() {
    QFile file(u":/board/board.css"_s);
    if (!file.open(QIODevice::ReadOnly)) throw Fault(u"board.css is not in this program"_s);
    return QString::fromUtf8(file.readAll());
}

QString escaped(const QString& text) {
    return text.toHtmlEscaped();
}

/// A day of the week with its date, as a heading has it.
QString dayText(const QString& day) {
    const QDate date = QDate::fromString(day, Qt::ISODate);
    return u"%1년 %2월 %3일 (%4)"_s.arg(date.year())
        .arg(date.month())
        .arg(date.day())
        .arg(QString(u"월화수목금토일"_s[date.dayOfWeek() - 1]));
}

QString nameOf(const BoardSalesman& each) {
    return each.name.isEmpty() ? each.userId : each.name;
}

BoardSalesman sumOf(const QList<BoardSalesman>& salesmen) {
    BoardSalesman sum;
    for (const BoardSalesman& each : salesmen) {
        sum.slips += each.slips;
        sum.sales += each.sales;
        sum.cash += each.cash;
        sum.card += each.card;
        sum.unpaid += each.unpaid;
        sum.earlierPaid += each.earlierPaid;
        sum.recovery += each.recovery;
        sum.cratesBack += each.cratesBack;
        sum.bottlesBack += each.bottlesBack;
        if (each.over) sum.over = sum.over.value_or(Won()) + *each.over;
    }
    return sum;
}

QString overText(const BoardSalesman& each) {
    if (!each.over) return u"마감 전"_s;
    if (each.over->isZero()) return u"맞음"_s;
    return (*each.over < Won() ? u"부족 "_s : u"과입 "_s) +
           boardAmount(*each.over < Won() ? -*each.over : *each.over);
}

QString containersText(const BoardSalesman& each) {
    return u"상자 %1 · 병 %2"_s.arg(boardAmount(Won(each.cratesBack)), boardAmount(Won(each.bottlesBack)));
}

/// One cell with its column's title, which a telephone shows beside it. `html` is not escaped.
QString cell(const QString& label, const QString& html, const QString& kind = {}) {
    return u"<td%1 data-label=\"%2\">%3</td>"_s.arg(kind.isEmpty() ? QString() : u" class=\"%1\""_s.arg(kind),
                                                    escaped(label), html);
}

QString amountCell(const QString& label, Won amount) {
    return cell(label, boardAmount(amount), amount < Won() ? u"n bad"_s : u"n"_s);
}

QString tile(const QString& name, const QString& value, const QString& note = {}, bool isBad = false) {
    return u"<div><dt>%1</dt><dd%2>%3%4</dd></div>\n"_s.arg(
        name, isBad ? u" class=\"bad\""_s : QString(), value,
        note.isEmpty() ? QString() : u"<small>%1</small>"_s.arg(note));
}

QString tiles(const QList<BoardSalesman>& salesmen) {
    const BoardSalesman sum = sumOf(salesmen);
    qsizetype open = 0;
    for (const BoardSalesman& each : salesmen) open += !each.over;
    const bool isWrong = sum.over && !sum.over->isZero();
    return u"<dl class=\"tiles\">\n"_s +
           tile(u"매출"_s, boardAmount(sum.sales), u"전표 %1장"_s.arg(sum.slips)) +
           tile(u"현금"_s, boardAmount(sum.cash)) + tile(u"카드"_s, boardAmount(sum.card)) +
           tile(u"외상(미결제)"_s, boardAmount(sum.unpaid)) +
           tile(u"전미수입금"_s, boardAmount(sum.earlierPaid)) +
           tile(u"용공회수"_s, boardAmount(sum.recovery), containersText(sum)) +
           tile(u"과부족"_s, sum.over ? overText(sum) : u"-"_s,
                open > 0 ? u"마감 전 %1명"_s.arg(open) : QString(), isWrong) +
           u"</dl>\n"_s;
}

QString stateItem(const QString& bad, const QString& good, qsizetype count, const QString& anchor) {
    return count > 0 ? u"<li class=\"bad\"><a href=\"#%1\">%2</a></li>\n"_s.arg(anchor, bad.arg(count))
                     : u"<li>%1</li>\n"_s.arg(good);
}

qsizetype countOf(const BoardList& list) {
    return list.lines.size() + list.more;
}

QString state(const Board& board) {
    qsizetype remarks = 0;
    for (const BoardList& list : board.remarks) remarks += countOf(list);
    return u"<ul class=\"state\">\n"_s +
           stateItem(u"보내지 않은 단말기 %1대"_s, u"모든 단말기가 보냈습니다"_s, countOf(board.silent),
                     u"silent"_s) +
           stateItem(u"점검 %1건"_s, u"점검에서 어긋난 것이 없습니다"_s, countOf(board.disagreements),
                     u"check"_s) +
           (remarks > 0 ? stateItem(u"살펴볼 것 %1건"_s, {}, remarks, u"remarks"_s) : QString()) +
           u"</ul>\n"_s;
}

/// The order of the columns; the last two have no sum.
const QStringList& salesmanColumns() {
    static const QStringList columns{u"영업사원"_s, u"매출"_s,         u"현금"_s,
                                     u"카드"_s,     u"외상(미결제)"_s, u"전미수입금"_s,
                                     u"용공회수"_s, u"과부족"_s,       u"보낸 때"_s};
    return columns;
}

QString salesmanRow(const BoardSalesman& each, const QString& head, bool isSum) {
    const QStringList& columns = salesmanColumns();
    const QString sales = boardAmount(each.sales) + u"<small>전표 %1장</small>"_s.arg(each.slips);
    const QString recovery = boardAmount(each.recovery) + u"<small>%1</small>"_s.arg(containersText(each));
    QString over = isSum && !each.over ? QString() : overText(each);
    if (!each.closedAt.isEmpty()) over += u"<small>%1 마감</small>"_s.arg(escaped(each.closedAt));
    const bool isWrong = each.over && !each.over->isZero();
    return u"<tr>"_s + cell(columns[0], head) + cell(columns[1], u"<span>%1</span>"_s.arg(sales), u"n"_s) +
           amountCell(columns[2], each.cash) + amountCell(columns[3], each.card) +
           amountCell(columns[4], each.unpaid) + amountCell(columns[5], each.earlierPaid) +
           cell(columns[6], u"<span>%1</span>"_s.arg(recovery), u"n"_s) +
           cell(columns[7], over.isEmpty() ? over : u"<span>%1</span>"_s.arg(over),
                isWrong ? u"n bad"_s : u"n"_s) +
           cell(columns[8], escaped(each.sentAt), u"n"_s) + u"</tr>\n"_s;
}

QString salesmenTable(const QList<BoardSalesman>& salesmen) {
    QString html = u"<section class=\"long\">\n<h2>영업사원별</h2>\n"_s;
    if (salesmen.isEmpty()) return html + u"<p>이 날의 전표를 보낸 단말기가 없습니다.</p>\n</section>\n"_s;
    html += u"<table>\n<thead><tr>"_s;
    for (const QString& column : salesmanColumns())
        html += u"<th%1>%2</th>"_s.arg(column == salesmanColumns().first() ? QString() : u" class=\"n\""_s,
                                       column);
    html += u"</tr></thead>\n<tbody>\n"_s;
    for (const BoardSalesman& each : salesmen) {
        html += salesmanRow(each,
                            u"<span>%1<small>%2 · 단말기 %3</small></span>"_s.arg(
                                escaped(nameOf(each)), escaped(each.userId), escaped(each.terminal)),
                            false);
    }
    html += u"</tbody>\n"_s;
    if (salesmen.size() > 1)
        html += u"<tfoot>"_s + salesmanRow(sumOf(salesmen), u"합계"_s, true) + u"</tfoot>\n"_s;
    return html + u"</table>\n</section>\n"_s;
}

QString section(const BoardList& list, const QString& anchor) {
    if (list.lines.isEmpty()) return {};
    QString html = u"<section class=\"long\"%1>\n<h2>%2 %3건</h2>\n<table>\n<thead><tr>"_s.arg(
        anchor.isEmpty() ? QString() : u" id=\"%1\""_s.arg(anchor), escaped(list.title),
        QString::number(countOf(list)));
    const auto kindOf = [&](qsizetype column) {
        return list.columns[column] == u"금액" ? u"n"_s : QString();
    };
    for (qsizetype i = 0; i < list.columns.size(); ++i) {
        html += u"<th%1>%2</th>"_s.arg(kindOf(i).isEmpty() ? QString() : u" class=\"n\""_s,
                                       escaped(list.columns[i]));
    }
    html += u"</tr></thead>\n<tbody>\n"_s;
    for (const QStringList& line : list.lines) {
        html += u"<tr>"_s;
        for (qsizetype i = 0; i < line.size(); ++i)
            html += cell(list.columns[i], escaped(line[i]), kindOf(i));
        html += u"</tr>\n"_s;
    }
    html += u"</tbody>\n</table>\n"_s;
    if (list.more > 0) html += u"<p class=\"hint\">그 밖에 %1건이 더 있습니다.</p>\n"_s.arg(list.more);
    return html + u"</section>\n"_s;
}

QString charts(const Board& board) {
    if (board.hours.isEmpty() && board.products.isEmpty()) return {};
    QString html =
        u"<div class=\"charts\">\n<section>\n<h2>시간대별 매출</h2>\n"_s +
        columnChart(board.hours, u"시간대별 매출"_s) +
        u"<p class=\"hint\">단위 %1"_s.arg(columnUnit(board.hours) == 10'000 ? u"만원"_s : u"백만원"_s);
    if (!board.untimed.isZero()) html += u" · 시각이 없는 전표 %1원 제외"_s.arg(boardAmount(board.untimed));
    return html + u"</p>\n</section>\n<section>\n<h2>상품별 매출</h2>\n"_s +
           rowChart(board.products, u"상품별 매출"_s) +
           u"<p class=\"hint\">공급가와 부가세, 보증금 제외</p>\n</section>\n</div>\n"_s;
}

}  // namespace

QString boardAmount(Won amount) {
    return QLocale(QLocale::Korean, QLocale::SouthKorea).toString(qlonglong(amount.value()));
}

QByteArray boardPage(const Board& board) {
    const QString day = dayText(board.day);
    QString html =
        u"<!DOCTYPE html>\n<html lang=\"ko\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>영업 현황 %1</title>\n<style>\n%2</style>\n</head>\n<body>\n<main>\n"
        "<header><h1>영업 현황</h1><p class=\"made\">%3 · %4 작성</p></header>\n"_s.arg(
            escaped(board.day), styles(), day, escaped(board.madeAt));
    html += state(board) + tiles(board.salesmen) + salesmenTable(board.salesmen) +
            section(board.silent, u"silent"_s) + section(board.disagreements, u"check"_s);
    bool isFirst = true;
    for (const BoardList& list : board.remarks) {
        html += section(list, isFirst ? u"remarks"_s : QString());
        isFirst = false;
    }
    html += charts(board);
    return (html + u"</main>\n</body>\n</html>\n"_s).toUtf8();
}

}  // namespace office
