#include "platform/Hangul.h"

#include <QString>
#include <algorithm>

namespace platform::hangul {
namespace {

/// The initial consonants in the order in which the syllables from 가 to 힣 go through them.
constexpr QStringView kInitials = u"ㄱㄲㄴㄷㄸㄹㅁㅂㅃㅅㅆㅇㅈㅉㅊㅋㅌㅍㅎ";
constexpr char16_t kFirstSyllable = u'가';
constexpr char16_t kLastSyllable = u'힣';
constexpr int kSyllablesPerInitial = 21 * 28;

/// Without blanks, letters small.
QString bare(QStringView text) {
    QString result;
    for (const QChar character : text) {
        if (!character.isSpace()) result += character.toLower();
    }
    return result;
}

bool standsFor(QChar typed, QChar character) {
    if (typed == character) return true;
    const char16_t initial = initialOf(character.unicode());
    return initial != 0 && (typed == initial || typed == plainOf(initial));
}

/// Both texts are bare.
bool standsAt(QStringView name, QStringView typed, qsizetype from) {
    return from + typed.size() <= name.size() &&
           std::equal(typed.begin(), typed.end(), name.begin() + from, standsFor);
}

}  // namespace

char16_t initialOf(char16_t syllable) {
    if (syllable < kFirstSyllable || syllable > kLastSyllable) return 0;
    return kInitials[(syllable - kFirstSyllable) / kSyllablesPerInitial].unicode();
}

char16_t plainOf(char16_t consonant) {
    constexpr QStringView kTense = u"ㄲㄸㅃㅆㅉ";
    constexpr QStringView kPlain = u"ㄱㄷㅂㅅㅈ";
    const qsizetype at = kTense.indexOf(consonant);
    return at < 0 ? consonant : kPlain[at].unicode();
}

bool matchesAt(QStringView name, QStringView typed, qsizetype from) {
    return standsAt(bare(name), bare(typed), from);
}

bool matches(QStringView name, QStringView typed) {
    const QString place = bare(name);
    const QString wanted = bare(typed);
    for (qsizetype from = 0; from + wanted.size() <= place.size(); ++from) {
        if (standsAt(place, wanted, from)) return true;
    }
    return false;
}

bool continues(QStringView name, QStringView typed) {
    const bool areConsonants = std::all_of(typed.begin(), typed.end(), [](QChar character) {
        return character.isSpace() || kInitials.contains(character);
    });
    return areConsonants ? matchesAt(name, typed, 0) || matchesAt(name, typed, 1) : matches(name, typed);
}

}  // namespace platform::hangul
