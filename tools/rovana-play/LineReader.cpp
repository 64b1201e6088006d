#include "rovana-play/LineReader.h"

#include <utility>

namespace pilot {

using namespace Qt::Literals::StringLiterals;

QString LineReader::word() {
    if (rest_.startsWith(u'"')) return quotedText();
    const QString result = nextWord().toString();
    skip(result.size());
    return result;
}

QString LineReader::text() {
    if (rest_.isEmpty()) return missing(u"a text is missing; \"\" is the empty one"_s);
    if (!rest_.startsWith(u'"')) return std::exchange(rest_, {}).toString();
    const QString result = quotedText();
    if (!atEnd()) fail(u"something follows the quoted text"_s);
    return result;
}

qsizetype LineReader::blankFrom(qsizetype start) const {
    qsizetype at = start;
    while (at < rest_.size() && !rest_[at].isSpace()) ++at;
    return at;
}

QString LineReader::missing(const QString& error) {
    fail(error);
    return {};
}

QString LineReader::quotedText() {
    QString result;
    for (qsizetype at = 1; at < rest_.size(); ++at) {
        if (rest_[at] == u'"') {
            if (blankFrom(at) != at + 1) return missing(u"something follows the quoted text"_s);
            skip(at + 1);
            return result;
        }
        if (rest_[at] != u'\\') {
            result += rest_[at];
            continue;
        }
        const QChar escaped = ++at < rest_.size() ? rest_[at] : QChar();
        if (escaped != u'n' && escaped != u'"' && escaped != u'\\')
            return missing(uR"(a backslash in quotes stands before n, " or \ only)"_s);
        result += escaped == u'n' ? u'\n' : escaped;
    }
    return missing(u"the quoted text has no end"_s);
}

}  // namespace pilot
