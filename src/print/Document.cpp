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
    const int width = kColumns - displayWidth(label) - displayWidth(unit);
    line(QString(label % PadLeft(figure, width) % unit));
}

void Document::labelAmount(QStringView label, platform::Won amount, QStringView unit) {
    labelFigure(label, platform::formatWon(amount), unit);
}

void Document::row(std::initializer_list<Cell> cells) {
    QString text;
    for (const Cell& cell : cells) {
        text += cell.isNumber ? PadLeft(cell.text, cell.width) : PadRight(cell.text, cell.width);
    }
    line(text);
}

void Document::itemName(QStringView name, QStringView size) {
    const int sizeWidth = displayWidth(size);
    const bool fits = sizeWidth > 0 && displayWidth(name) + 1 + sizeWidth <= kColumns;
    QString text = PadRight(name, fits ? kColumns - sizeWidth : kColumns);
    line(fits ? text.append(size) : text);
}

void Document::signature(QStringView label) {
    blank();
    labelFigure(QString(label % u':'), {}, u"(인)");
    blank();
}

}  // namespace print
