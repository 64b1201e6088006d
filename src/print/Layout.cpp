#include "print/Layout.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int columnsOf(QChar character) {
    return character.unicode() >= 128 ? 2 : 1;
}

}  // namespace

int displayWidth(QStringView text) {
    int width = 0;
    for (const QChar character : text) width += columnsOf(character);
    return width;
}

QString PadLeft(QStringView text, int length, int width) {
    const int missing = width - displayWidth(text.first(qBound(0, length, int(text.size()))));
    return QString(qMax(0, missing), u' ') + text.toString();
}

QString PadLeft(QStringView text, int width) {
    return PadLeft(text, int(text.size()), width);
}

QString PadRight(QStringView text, int width) {
    QString field;
    int columns = 0;
    for (const QChar character : text) {
        columns += columnsOf(character);
        if (columns <= width) field += character;
    }
    return field + QString(qMax(0, width - columns), u' ');
}

QString centred(QStringView text, int width) {
    return QString(qMax(0, (width - displayWidth(text)) / 2), u' ') + text.toString();
}

QStringList wrapped(QStringView text, int width) {
    QStringList pieces;
    QStringView rest = text;
    while (displayWidth(rest) > width) {
        qsizetype fitting = 0;
        for (int columns = 0; (columns += columnsOf(rest[fitting])) <= width;) ++fitting;
        if (fitting == 0) fitting = 1;
        // The blank after a full piece is as good a place as one inside it.
        const qsizetype blank = rest.first(qMin(fitting + 1, rest.size())).lastIndexOf(u' ');
        const qsizetype end = blank > 0 ? blank : fitting;
        pieces << rest.first(end).trimmed().toString();
        rest = rest.sliced(end).trimmed();
    }
    if (!rest.isEmpty() || pieces.isEmpty()) pieces << rest.toString();
    return pieces;
}

}  // namespace print
