#include "ui/Fonts.h"

#include <QHash>
#include <QStringList>

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Of a font's line height, this many hundredths are its em square in the Korean fonts that stand in.
constexpr int kEmPerLineHeight = 80;

QFont makeFont(FontHeight height) {
    QFont result(u"tahoma"_s);
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
    QFont::insertSubstitutions(u"tahoma"_s, {u"NanumGothic"_s, u"Noto Sans CJK KR"_s, u"NanumBarunGothic"_s});
}

}  // namespace ui
