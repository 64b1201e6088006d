#include "platform/adoce/Literals.h"

#include <QStringConverter>
#include <cstring>

namespace platform::adoce {
namespace {

void appendUtf8(QByteArray* target, QStringView text) {
    // Stateless: half a character at the end of a value would be kept back, and lost, instead of replaced.
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const qsizetype before = target->size();
    target->resize(before + encoder.requiredSpace(text.size()));
    const char* end = encoder.appendToBuffer(target->data() + before, text);
    target->truncate(end - target->constData());
}

/// Reads the values of a text whose pieces are those that `parsed` holds and whose values are all ASCII;
/// false for another text. The lines of a file that is loaded pass here, and nearly all hold codes and
/// figures only.
bool readKnown(QStringView sql, ParsedStatement* parsed) {
    if (parsed->pieceEnds.empty()) return false;
    parsed->ends.clear();
    parsed->values.resize(sql.size());
    char* const values = parsed->values.data();
    char* value = values;
    const QChar* at = sql.begin();
    const QChar* piece = parsed->pieces.cbegin();
    while (true) {
        const qsizetype end = parsed->pieceEnds[parsed->ends.size()];
        const qsizetype length = end - (piece - parsed->pieces.cbegin());
        if (sql.end() - at < length || std::memcmp(at, piece, size_t(length) * sizeof(QChar)) != 0)
            return false;
        at += length;
        piece += length;
        if (end == parsed->pieces.size()) break;
        while (at != sql.end() && at->unicode() < 0x80 && *at != u'\'') *value++ = char((at++)->unicode());
        if (at == sql.end() || *at != u'\'') return false;
        parsed->ends.push_back(int(value - values));
    }
    parsed->values.truncate(value - values);
    return at == sql.end();
}

bool readNew(QStringView sql, ParsedStatement* parsed) {
    parsed->text.resize(0);
    // Room for all of them at once: growing would leave copies of what may be a password.
    parsed->values.resize(0);
    parsed->values.reserve(3 * sql.size());
    parsed->ends.clear();
    qsizetype at = 0;
    while (true) {
        const qsizetype open = sql.indexOf(u'\'', at);
        appendUtf8(&parsed->text, sql.sliced(at, (open < 0 ? sql.size() : open) - at));
        // From the closing quote before the piece to the opening quote after it.
        const qsizetype begin = at > 0 ? at - 1 : 0;
        const qsizetype end = open < 0 ? sql.size() : open + 1;
        parsed->pieces.append(sql.sliced(begin, end - begin));
        parsed->pieceEnds.push_back(int(parsed->pieces.size()));
        if (open < 0) return true;
        const qsizetype close = sql.indexOf(u'\'', open + 1);
        if (close < 0) return false;
        appendUtf8(&parsed->values, sql.sliced(open + 1, close - open - 1));
        parsed->ends.push_back(int(parsed->values.size()));
        parsed->text.append('?');
        at = close + 1;
        if (at < sql.size() && sql[at] == u'\'') return false;
    }
}

}  // namespace

bool parseStatement(QStringView sql, ParsedStatement* parsed) {
    if (readKnown(sql, parsed)) return true;
    parsed->pieces.resize(0);
    parsed->pieceEnds.clear();
    if (readNew(sql, parsed)) return true;
    parsed->pieceEnds.clear();
    return false;
}

}  // namespace platform::adoce
