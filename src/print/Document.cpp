#include "print/Document.h"

#include <QStringBuilder>

#include "print/Layout.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLabelColumns = 10;

}  // namespace

Document::Document(QStringView title) : title_(print::centred(title, kTitleColumns) + u'\n') {}

void Document::rule(Rule rule) {
    lines_ << (rule == Rule::Thin ? kThinRule : kDoubleRule).toString();
}

void Document::line(QStringView text) {
    while (text.endsWith(u' ')) text.chop(1);
    lines_ << text % u'\n';
}

void Document::centred(QStringView text) {
    for (const QString& piece : wrapped(text, kColumns)) line(print::centred(piece));
}

void Document::reprintMark() {
    centred(u"* 재발행 *");
}

void Document::labelText(QStringView label, QStringView text) {
    const QString content = text.trimmed().toString();
    if (content.isEmpty()) return;
    QString before = PadRight(label, kLabelColumns) + u' ';
    for (const QString& piece : wrapped(content, kColumns - kLabelColumns - 1)) {
        line(before + piece);
        before = QString(kLabelColumns + 1, u' ');
    }
}

void Document::labelFigure(QStringView label, QStringView figure, QStringView unit) {
    const QString whole = figure % unit;
    int left = displayWidth(label);
    if (left > 0 && left + 1 + displayWidth(whole) > kColumns) {
        line(label);
        left = 0;
    }
    line((left > 0 ? label.toString() : QString()) + PadLeft(whole, kColumns - left));
}

void Document::labelAmount(QStringView label, platform::Won amount) {
    labelFigure(label, platform::formatWon(amount), u"원");
}

void Document::row(std::initializer_list<Cell> cells) {
    QString text;
    int end = 0;  // Where the column at hand ends.
    for (const Cell& cell : cells) {
        const QString own = cell.isNumber ? cell.text : PadRight(cell.text, cell.width);
        // A name's column that comes out short draws the rest of the line along.
        end += cell.isNumber ? cell.width : displayWidth(own);
        const auto padded = [&] { return cell.isNumber ? PadLeft(own, end - displayWidth(text)) : own; };
        const bool touches = !text.isEmpty() && !text.endsWith(u' ') && !padded().startsWith(u' ');
        if (touches) text += u' ';
        if (!text.isEmpty() && displayWidth(text) + displayWidth(padded()) > kColumns) {
            line(text);
            text.clear();
        }
        text += padded();
    }
    line(text);
}

void Document::itemName(QStringView name, QStringView size, QStringView unitPrice) {
    const auto beside = [&](QStringView text) {
        const int width = displayWidth(text);
        const bool fits = width == 0 || displayWidth(name) + 1 + width <= kColumns;
        if (fits) line(width == 0 ? PadRight(name, kColumns) : PadRight(name, kColumns - width) % text);
        return fits;
    };
    const QString both = QString(size % u' ' % unitPrice).trimmed();
    if (beside(both)) return;
    const bool isSizeBeside = !unitPrice.isEmpty() && !size.isEmpty() && beside(size);
    if (!isSizeBeside) line(PadRight(name, kColumns));
    line(PadLeft(isSizeBeside ? unitPrice : both, kColumns));
}

void Document::signature(QStringView label) {
    blank();
    labelFigure(QString(label % u':'), {}, u"(인)");
    blank();
}

}  // namespace print
