#pragma once

#include <QByteArray>
#include <QString>
#include <ostream>

// GoogleTest's printers, so that a failure shows text rather than numbers.

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toUtf8().constData() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << bytes.toHex(' ').constData();
}
