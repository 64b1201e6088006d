#include "ui/Fonts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QHash>
#include <QStringList>

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Of a font's line height, this many hundredths are its em square in the Korean fonts that stand in.
constexpr int kEmPerLineHeight = 80;

/// "tahoma" and the fonts that give it its Korean glyphs or stand in for it, those that are installed. Naming
/// one that is not makes Qt look for the nearest to it again for every size and script.
QStringList installedFamilies() {
    const QStringList wanted{u"tahoma"_s, u"NanumGothic"_s, u"Noto Sans CJK KR"_s, u"NanumBarunGothic"_s};
    const QStringList known = QFontDatabase::families();
    QStringList installed;
    for (const QString& family : wanted) {
        if (known.contains(family, Qt::CaseInsensitive)) installed.append(family);
    }
    return installed.isEmpty() ? wanted : installed;
}

QFont makeFont(FontHeight height) {
    static const QStringList families = installedFamilies();
    QFont result(families);
    result.setPixelSize(static_cast<int>(height) * kEmPerLineHeight / 100);
    result.setWeight(QFont::Bold);
    return result;
}

}  // namespace

const QFont& font(FontHeight height) {
    static QHash<int, QFont> fonts;
    auto known = fonts.find(static_cast<int>(height));
    if (known == fonts.end()) known = fonts.insert(static_cast<int>(height), makeFont(height));
    return *known;
}

void prepareFonts() {
    // Another font for the controls and pop-ups that are given none would have to be searched and read from
    // disk at the start, to be seen nowhere.
    QApplication::setFont(font(FontHeight::Medium));
}

}  // namespace ui
