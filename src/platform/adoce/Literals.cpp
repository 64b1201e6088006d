#include "platform/adoce/Literals.h"

#include <QStringConverter>

namespace platform::adoce {
namespace {

void appendUtf8(QByteArray* target, QStringView text) {
    QStringEncoder encoder(QStringEncoder::Utf8);
    const qsizetype before = target->size();
    target->resize(before + encoder.requiredSpace(text.size()));
    const char* end = encoder.appendToBuffer(target->data() + before, text);
    target->truncate(end - target->constData());
}

}  // namespace

bool parseStatement(QStringView sql, ParsedStatement* parsed) {
    parsed->text.resize(0);
    parsed->values.resize(0);
    parsed->ends.clear();
    qsizetype at = 0;
    while (true) {
        const qsizetype open = sql.indexOf(u'\'', at);
        appendUtf8(&parsed->text, sql.sliced(at, (open < 0 ? sql.size() : open) - at));
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

}  // namespace platform::adoce
