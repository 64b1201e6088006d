#pragma once

#include <QStringView>

/// Finding Korean names by what is typed of them.
namespace platform::hangul {

/// The consonant that the syllable begins with, as a compatibility jamo (ㄱ to ㅎ, the tense ones included);
/// 0 for any other character.
char16_t initialOf(char16_t syllable);

/// The plain one of a tense consonant (ㄱ for ㄲ); any other character as it is.
char16_t plainOf(char16_t consonant);

/// True when `typed` stands in `name` from its character `from` on. A consonant stands for every syllable
/// that begins with it or with its tense one. Blanks on both sides and the case of letters do not count, so
/// `from` counts the characters that are no blanks. Nothing typed stands everywhere.
bool matchesAt(QStringView name, QStringView typed, qsizetype from);

/// The same anywhere in the name.
bool matches(QStringView name, QStringView typed);

/// The same for a list of names that were found by their first consonant: consonants stand from the first
/// syllable or from the second, anything else anywhere.
bool continues(QStringView name, QStringView typed);

}  // namespace platform::hangul
