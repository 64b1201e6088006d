#include <algorithm>

#include "rovana-office/Board.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

constexpr int kColumnHeight = 120;  ///< Of the highest bar.
constexpr int kTop = 20;            ///< For the figure above a bar.
constexpr int kBottom = 22;         ///< For the label below the axis.
constexpr int kRowHeight = 38;

Won highest(const QList<BoardBar>& bars) {
    Won most(1);
    for (const BoardBar& bar : bars) most = std::max(most, bar.amount);
    return most;
}

/// A bar's part of `full`, in hundredths of a unit at most; nothing below 0 is drawn.
double part(Won amount, Won most, double full) {
    return std::clamp(double(amount.value()) / double(most.value()), 0.0, 1.0) * full;
}

QString number(double value) {
    return QString::number(value, 'f', 2);
}

/// What stands above a narrow bar: the amount in units of `unit` won.
QString rounded(Won amount, qint64 unit) {
    const qint64 half = amount < Won() ? -unit / 2 : unit / 2;
    return amount.isZero() ? QString() : boardAmount(Won((amount + Won(half)).value() / unit));
}

QString opening(const QString& title, int height) {
    return u"<svg class=\"chart\" role=\"img\" aria-label=\"%1\" width=\"100%\" height=\"%2\">"_s
        .arg(title.toHtmlEscaped())
        .arg(height);
}

QString titleOf(const BoardBar& bar) {
    return u"<title>%1: %2원 %3</title>"_s.arg(bar.label.toHtmlEscaped(), boardAmount(bar.amount),
                                               bar.note.toHtmlEscaped());
}

}  // namespace

qint64 columnUnit(const QList<BoardBar>& bars) {
    return highest(bars) < Won(100'000'000) ? 10'000 : 1'000'000;
}

QString columnChart(const QList<BoardBar>& bars, const QString& title) {
    if (bars.isEmpty()) return {};
    const Won most = highest(bars);
    // A few bars are not spread over the whole page.
    const double step = 100.0 / double(std::max<qsizetype>(bars.size(), 8));
    const int axis = kTop + kColumnHeight;
    const qint64 unit = columnUnit(bars);
    // Where there is little room, every other bar is without its texts.
    const bool isDense = bars.size() > 12;
    QString svg = opening(title, axis + kBottom);
    for (qsizetype i = 0; i < bars.size(); ++i) {
        const BoardBar& bar = bars[i];
        const double height = part(bar.amount, most, kColumnHeight);
        const QString middle = number((double(i) + 0.5) * step);
        const QString odd = isDense && i % 2 == 1 ? u" odd"_s : QString();
        svg += u"<g>%1<rect class=\"bar\" x=\"%2%\" y=\"%3\" width=\"%4%\" height=\"%5\" rx=\"2\"/>"_s.arg(
            titleOf(bar), number((double(i) + 0.15) * step), number(axis - height), number(0.7 * step),
            number(height));
        svg += u"<text class=\"value%4\" x=\"%1%\" y=\"%2\" text-anchor=\"middle\">%3</text>"_s.arg(
            middle, number(axis - height - 6), rounded(bar.amount, unit), odd);
        svg += u"<text class=\"label%4\" x=\"%1%\" y=\"%2\" text-anchor=\"middle\">%3</text></g>"_s.arg(
            middle, QString::number(axis + 16), bar.label.toHtmlEscaped(), odd);
    }
    svg += u"<line class=\"axis\" x1=\"0\" y1=\"%1\" x2=\"100%\" y2=\"%1\"/></svg>"_s.arg(axis);
    return svg;
}

QString rowChart(const QList<BoardBar>& bars, const QString& title) {
    if (bars.isEmpty()) return {};
    const Won most = highest(bars);
    QString svg = opening(title, int(bars.size()) * kRowHeight);
    for (qsizetype i = 0; i < bars.size(); ++i) {
        const BoardBar& bar = bars[i];
        const int top = int(i) * kRowHeight;
        svg +=
            u"<g>%1<svg x=\"0\" y=\"%2\" width=\"68%\" height=\"20\"><text class=\"name\" x=\"0\" y=\"15\">%3<tspan class=\"note\" dx=\"8\">%4</tspan></text></svg>"_s
                .arg(titleOf(bar), QString::number(top), bar.label.toHtmlEscaped(), bar.note.toHtmlEscaped());
        svg += u"<text class=\"name\" x=\"100%\" y=\"%1\" text-anchor=\"end\">%2</text>"_s.arg(
            QString::number(top + 15), boardAmount(bar.amount));
        svg +=
            u"<rect class=\"track\" x=\"0\" y=\"%1\" width=\"100%\" height=\"8\" rx=\"2\"/>"_s.arg(top + 22);
        svg += u"<rect class=\"bar\" x=\"0\" y=\"%1\" width=\"%2%\" height=\"8\" rx=\"2\"/></g>"_s.arg(
            QString::number(top + 22), number(part(bar.amount, most, 100)));
    }
    return svg + u"</svg>"_s;
}

}  // namespace office
