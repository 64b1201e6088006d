#include "totals/Report.h"

#include <QStringBuilder>
#include <algorithm>

#include "platform/Csv.h"
#include "print/Layout.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

bool hasTitles(const Report& report) {
    return std::ranges::any_of(report.sections, [](const Section& each) { return !each.title.isEmpty(); });
}

Won sumOf(const Section& section, qsizetype column) {
    Won sum;
    for (const Row& row : section.rows) sum += row[column].number();
    return sum;
}

QString bracketed(const QString& title) {
    return u'[' % title % u']';
}

/// Puts the texts of a row, one for each column of the report, onto the lines of the paper.
class PaperRow {
  public:
    PaperRow(print::Document& document, const Report& report) : document_(document), report_(report) {}

    void add(const QStringList& texts) {
        for (qsizetype i = 0; i < texts.size(); ++i) {
            const Column& column = report_.columns[i];
            if (column.paper == 0) continue;
            if (column.startsLine) endLine();
            if (column.kind == Kind::Text) {
                line_ += textCell(texts[i], column.paper);
            } else {
                // The blank keeps a number that fills its column apart from the one before it.
                line_ += print::PadLeft(line_.isEmpty() ? texts[i] : u' ' + texts[i], column.paper);
            }
        }
        endLine();
    }

  private:
    QString textCell(const QString& text, int width) {
        if (print::displayWidth(text) <= width) return print::PadRight(text, width);
        for (const QString& piece : print::wrapped(text, print::kColumns)) document_.line(piece);
        return QString(width, u' ');
    }

    void endLine() {
        if (!line_.trimmed().isEmpty()) document_.line(line_);
        line_.clear();
    }

    print::Document& document_;
    const Report& report_;
    QString line_;
};

QStringList titles(const Report& report) {
    QStringList titles;
    for (const Column& column : report.columns) titles << column.title;
    return titles;
}

QStringList texts(const Row& row) {
    QStringList texts;
    for (const Cell& cell : row) texts << cell.text();
    return texts;
}

void addSums(PaperRow& paper, const Report& report, const Section& section, const QString& label) {
    QStringList texts;
    bool isLabelled = false;
    for (qsizetype i = 0; i < report.columns.size(); ++i) {
        const Column& column = report.columns[i];
        const bool takesLabel = !isLabelled && column.kind == Kind::Text && column.paper > 0;
        isLabelled = isLabelled || takesLabel;
        texts << (takesLabel ? label : column.isSummed ? platform::formatWon(sumOf(section, i)) : QString());
    }
    paper.add(texts);
}

QList<QStringList> table(const Report& report) {
    const bool isDivided = hasTitles(report);
    QList<QStringList> lines{titles(report)};
    if (isDivided) lines.first().prepend(u"구분"_s);
    for (const Section& section : report.sections) {
        for (const Row& row : section.rows) {
            lines << texts(row);
            if (isDivided) lines.last().prepend(section.title);
        }
    }
    return lines;
}

}  // namespace

bool Report::isEmpty() const {
    return std::ranges::all_of(sections, [](const Section& section) { return section.rows.isEmpty(); });
}

QList<Sum> sums(const Report& report) {
    QList<Sum> sums;
    const auto summed = std::ranges::count_if(report.columns, &Column::isSummed);
    for (const Section& section : report.sections) {
        for (qsizetype i = 0; i < report.columns.size(); ++i) {
            const Column& column = report.columns[i];
            if (!column.isSummed) continue;
            QString label = section.title.isEmpty() || summed > 1 ? column.title : QString();
            if (!section.title.isEmpty()) label = QString(section.title % u' ' % label).trimmed();
            sums.append({label, sumOf(section, i)});
        }
    }
    return sums + report.results;
}

QList<Column> listColumns(const Report& report) {
    QList<Column> columns = report.columns;
    columns.removeIf([](const Column& column) { return column.pixels == 0; });
    return columns;
}

platform::Rows listRows(const Report& report) {
    platform::Rows rows;
    rows.columns = int(listColumns(report).size());
    for (const Section& section : report.sections) {
        if (section.rows.isEmpty()) continue;
        if (!section.title.isEmpty()) {
            rows.cells << bracketed(section.title);
            rows.cells.resize(rows.cells.size() + rows.columns - 1);
        }
        for (const Row& row : section.rows) {
            for (qsizetype i = 0; i < row.size(); ++i) {
                const Column& column = report.columns[i];
                if (column.pixels == 0) continue;
                const bool isNumber = column.kind != Kind::Text && !row[i].text().isEmpty();
                rows.cells << (isNumber ? platform::groupThousands(row[i].number()) : row[i].text());
            }
        }
    }
    return rows;
}

print::Document document(const Report& report, bool isReprint) {
    using Rule = print::Document::Rule;
    print::Document document(report.title);
    if (isReprint) document.reprintMark();
    document.rule(Rule::Double);
    document.line(QString(u"영업사원: " % report.salesman));
    document.line(QString(u"작업일자: " % report.date));
    document.rule(Rule::Thin);
    PaperRow paper(document, report);
    paper.add(titles(report));
    const bool isSummed = std::ranges::any_of(report.columns, &Column::isSummed);
    for (const Section& section : report.sections) {
        if (section.rows.isEmpty() && !report.isEmpty()) continue;
        document.rule(Rule::Thin);
        if (!section.title.isEmpty()) document.line(bracketed(section.title));
        for (const Row& row : section.rows) paper.add(texts(row));
        if (!isSummed) continue;
        if (!section.rows.isEmpty()) document.rule(Rule::Thin);
        addSums(paper, report, section, section.title.isEmpty() ? u"합계"_s : u"소계"_s);
    }
    document.rule(Rule::Double);
    document.line(u"담당확인:                     인");
    return document;
}

QString paperText(const QList<Report>& reports) {
    QStringList texts;
    for (const Report& report : reports) texts << document(report).text();
    return texts.join(u'\n');
}

QString csvText(const QList<Report>& reports) {
    QStringList texts;
    for (const Report& report : reports) {
        QByteArray lines;
        for (const QStringList& line : table(report)) lines += platform::csvLine(line);
        texts << QString::fromUtf8(lines);
    }
    return QChar(QChar::ByteOrderMark) + texts.join(u'\n');
}

}  // namespace totals
