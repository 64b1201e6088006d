#include "platform/Csv.h"

#include <QStringDecoder>
#include <algorithm>
#include <iterator>
#include <optional>

#include "platform/CodePage.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The text of UTF-8; nothing when it is none.
std::optional<QString> decodeUtf8(QByteArrayView bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

/// The line that holds the first bytes that `decode` does not take; 0 when there are none.
int firstBrokenLine(QByteArrayView content, std::optional<QString> (*decode)(QByteArrayView)) {
    for (int line = 1; !content.isEmpty(); ++line) {
        const qsizetype end = content.indexOf('\n');
        if (!decode(end < 0 ? content : content.first(end))) return line;
        content = end < 0 ? QByteArrayView() : content.sliced(end + 1);
    }
    return 0;
}

class Reader {
  public:
    explicit Reader(const QString& text) : text_(text) {}

    CsvFile read() {
        CsvFile file;
        while (at_ < text_.size() && file.error.isEmpty()) {
            CsvRecord record{line_, {}};
            do {
                record.fields << field(&file.error);
            } while (file.error.isEmpty() && take(u','));
            if (file.error.isEmpty() && !takeLineEnd()) {
                file.error = u"line %1: a comma or the end of the line is missing"_s.arg(line_);
            }
            const bool isEmptyLine = record.fields.size() == 1 && record.fields.first().isEmpty();
            if (!isEmptyLine) file.records << record;
        }
        return file;
    }

  private:
    bool take(QChar character) {
        if (at_ >= text_.size() || text_[at_] != character) return false;
        if (character == u'\n') ++line_;
        ++at_;
        return true;
    }

    bool takeLineEnd() {
        if (at_ == text_.size()) return true;
        const bool hasReturn = take(u'\r');
        return take(u'\n') || (hasReturn && at_ == text_.size());
    }

    QString field(QString* error) {
        if (take(u'"')) return quoted(error);
        QString value;
        while (at_ < text_.size() && !u",\r\n"_s.contains(text_[at_])) value += text_[at_++];
        if (value.contains(u'"')) *error = u"line %1: a quote stands inside an unquoted value"_s.arg(line_);
        return value;
    }

    QString quoted(QString* error) {
        const int begin = line_;
        QString value;
        while (at_ < text_.size()) {
            const QChar character = text_[at_];
            take(character);
            if (character != u'"') {
                value += character;
            } else if (take(u'"')) {
                value += u'"';
            } else {
                return value;
            }
        }
        *error = u"line %1: a quoted value has no closing quote"_s.arg(begin);
        return value;
    }

    const QString& text_;
    qsizetype at_ = 0;
    int line_ = 1;
};

/// For each column of the table its place in the file, from the file's heading; the error names what is
/// missing, unknown or doubled.
QString placeColumns(QStringView table, std::span<const QStringView> columns, const CsvRecord& heading,
                     QList<qsizetype>* places) {
    QStringList unknown = heading.fields;
    for (const QStringView column : columns) {
        const auto isColumn = [&](const QString& name) {
            return column.compare(QStringView(name).trimmed(), Qt::CaseInsensitive) == 0;
        };
        const auto found = std::ranges::find_if(heading.fields, isColumn);
        if (found == heading.fields.end()) {
            return u"line %1: the column %2 is missing from the heading"_s.arg(heading.line).arg(column);
        }
        if (std::ranges::count_if(heading.fields, isColumn) > 1) {
            return u"line %1: the heading names the column %2 twice"_s.arg(heading.line).arg(column);
        }
        places->append(std::distance(heading.fields.begin(), found));
        unknown.removeIf(isColumn);
    }
    if (!unknown.isEmpty()) {
        return u"line %1: %2 has no column \"%3\""_s.arg(heading.line).arg(table, unknown.first());
    }
    return {};
}

}  // namespace

CsvFile parseCsv(QByteArrayView content) {
    if (content.startsWith(kCsvMark)) {
        content = content.sliced(kCsvMark.size());
        if (const int line = firstBrokenLine(content, decodeUtf8); line != 0)
            return {{}, u"line %1: the text is not UTF-8"_s.arg(line)};
    }
    // Korean spreadsheets write code page 949 unless they are told otherwise.
    std::optional<QString> text = decodeUtf8(content);
    if (!text) text = codepage::decode(content);
    if (text) return Reader(*text).read();
    const int line =
        std::max(firstBrokenLine(content, decodeUtf8), firstBrokenLine(content, codepage::decode));
    return {{}, u"line %1: the text is neither UTF-8 nor code page 949"_s.arg(line)};
}

QString readCsvRows(QByteArrayView content, QStringView table, std::span<const QStringView> columns,
                    QList<CsvRow>* rows) {
    const CsvFile file = parseCsv(content);
    if (!file.error.isEmpty()) return file.error;
    if (file.records.isEmpty()) return u"the file is empty; its first line names the columns"_s;
    const CsvRecord& heading = file.records.first();
    QList<qsizetype> places;
    if (const QString error = placeColumns(table, columns, heading, &places); !error.isEmpty()) return error;
    for (const CsvRecord& record : file.records.sliced(1)) {
        if (record.fields.size() != heading.fields.size()) {
            return u"line %1: %2 values stand under %3 columns"_s.arg(record.line)
                .arg(record.fields.size())
                .arg(heading.fields.size());
        }
        CsvRow row{record.line, {}};
        for (const qsizetype place : places) row.texts << record.fields[place];
        rows->append(row);
    }
    return {};
}

QByteArray csvLine(const QStringList& fields) {
    QString line;
    for (const QString& field : fields) {
        if (&field != &fields.first()) line += u',';
        const bool needsQuotes = std::ranges::any_of(
            field, [](QChar c) { return c == u',' || c == u'"' || c == u'\r' || c == u'\n'; });
        line += needsQuotes ? u'"' + QString(field).replace(u'"', u"\"\""_s) + u'"' : field;
    }
    return (line + u'\n').toUtf8();
}

}  // namespace platform
