#include "db/ImportFile.h"
#include "fuzz/Target.h"
#include "platform/CodePage.h"

using fuzz::require;

FUZZ_TARGET(ImportLine, input) {
    const auto files = db::importFiles();
    const db::ImportFile& file = files[size_t(fuzz::choose(&input, int(files.size())))];
    const std::optional<QString> decoded = platform::codepage::decode(input);
    const QString line = decoded ? *decoded : QString::fromUtf8(input);
    std::vector<QStringView> fields;
    db::cutImportLine(file, line, &fields);
    require(qsizetype(fields.size()) == file.fields, "a line fills every column");
    require(fields.front() == QStringView(line).left(file.firstFieldLength),
            "the first field is cut by width");

    const QStringView counted = QStringView(line).mid(file.firstFieldLength + 1, file.restLength);
    const qsizetype filled = std::min<qsizetype>(counted.count(u'|'), file.fields - 1);
    QString joined;
    bool hasQuote = false;
    for (qsizetype i = 0; i < file.fields; ++i) {
        const QStringView field = fields[size_t(i)];
        hasQuote |= field.contains(u'\'');
        if (i == 0) continue;
        require(i <= filled || field.isEmpty(), "a field whose bar is missing is empty");
        require(!field.contains(u'|'), "a bar ends a field");
        if (i <= filled) joined += field.toString() + u'|';
    }
    require(counted.startsWith(joined), "the fields joined again are the line");
    require(file.insert(fields).isWellFormed() == !hasQuote, "only a quote keeps a line out");
}
