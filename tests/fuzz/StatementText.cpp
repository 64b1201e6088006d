#include <QStringList>

#include "fuzz/Target.h"
#include "platform/adoce/Literals.h"

using fuzz::require;
namespace adoce = platform::adoce;

namespace {

struct Parts {
    QString structure;  ///< With a "?" for every value.
    QStringList values;
};

/// The dialect said in another way: the pieces between quotes are structure and values in turn. Nothing when
/// a quote is left open or two values stand side by side.
std::optional<Parts> split(const QString& text) {
    const QStringList pieces = text.split(u'\'');
    if (pieces.size() % 2 == 0) return std::nullopt;
    Parts parts{pieces.first(), {}};
    for (qsizetype i = 1; i < pieces.size(); i += 2) {
        const bool isLast = i + 2 == pieces.size();
        if (pieces[i + 1].isEmpty() && !isLast) return std::nullopt;
        parts.structure += u'?' + pieces[i + 1];
        parts.values << pieces[i];
    }
    return parts;
}

void compare(const adoce::ParsedStatement& parsed, const Parts& parts) {
    require(parsed.text == parts.structure.toUtf8(), "what stands outside the quotes is the structure");
    require(qsizetype(parsed.ends.size()) == parts.values.size(), "every quoted value is a parameter");
    int begin = 0;
    for (qsizetype i = 0; i < parts.values.size(); ++i) {
        const int end = parsed.ends[size_t(i)];
        require(end >= begin && parsed.values.mid(begin, end - begin) == parts.values[i].toUtf8(),
                "a parameter is what stands in the quotes");
        begin = end;
    }
}

}  // namespace

FUZZ_TARGET(StatementText, input) {
    const QString text = QString::fromUtf8(input);
    const std::optional<Parts> parts = split(text);
    static adoce::ParsedStatement parsed;  // It serves one text after another, as a recordset's does.
    require(adoce::parseStatement(text, &parsed) == parts.has_value(),
            "a broken text is told from a whole one");
    if (parts) {
        compare(parsed, *parts);
        // Once more, which takes the short way for a statement that is known, and then with other values.
        require(adoce::parseStatement(text, &parsed), "a text parses twice");
        compare(parsed, *parts);
        Parts other{parts->structure, {}};
        QString otherText = text.section(u'\'', 0, 0);
        for (qsizetype i = 0; i < parts->values.size(); ++i) {
            other.values << QString::fromUtf16(i % 2 ? u"막걸리" : u"x; --");
            otherText += u'\'' + other.values.last() + u'\'' + text.section(u'\'', 2 * i + 2, 2 * i + 2);
        }
        require(adoce::parseStatement(otherText, &parsed), "other values parse as well");
        compare(parsed, other);
    }
}
