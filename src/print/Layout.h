#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

/// The measure of the 32-column paper. Alignment counts display columns, never characters.
namespace print {

inline constexpr int kColumns = 32;
inline constexpr int kTitleColumns = kColumns / 2;  ///< Columns of a title line, which prints double width.

inline constexpr QStringView kThinRule = u"--------------------------------\n";
inline constexpr QStringView kDoubleRule = u"================================\n";

/// Columns of the text: 2 for each character of code 128 or more, else 1.
int displayWidth(QStringView text);

/// `text` behind blanks so that its first `length` characters end in column `width`. Wider text comes back
/// whole.
QString PadLeft(QStringView text, int length, int width);

/// The same over the whole text.
QString PadLeft(QStringView text, int width);

/// `text` cut to `width` columns and filled with blanks. A double-width character that would end one column
/// past the field is dropped with all after it and no blank takes its place: the field comes out one column
/// short.
QString PadRight(QStringView text, int width);

/// `text` with blanks in front so that it stands in the middle of `width` columns, an odd blank going behind.
QString centred(QStringView text, int width = kColumns);

/// `text` cut into pieces of at most `width` columns, at a blank where there is one. Empty text is one empty
/// piece.
QStringList wrapped(QStringView text, int width);

}  // namespace print
