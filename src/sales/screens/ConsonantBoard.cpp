#include "sales/screens/ConsonantBoard.h"

#include <QKeyEvent>

#include "app/Session.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kFirstKey = 1035;
constexpr QStringView kConsonants = u"ㄱㄴㄷㄹㅁㅂㅅㅇㅈㅊㅋㅌㅍㅎ";
constexpr int kKeyType = 24;
constexpr int kOtherKey = 1049;
/// The key of names that begin with none of the consonants.
constexpr QStringView kOtherSeek = u"00";

}  // namespace

ConsonantBoard::ConsonantBoard(int dialogId, const QString& title) : Screen(dialogId) {
    addLabel(0, title, {4, 6, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    // A single consonant fills little of its square, so it is set larger than the shared fonts.
    QFont keyFont = ui::font(ui::FontHeight::Title);
    keyFont.setPixelSize(kKeyType);
    for (int i = 0; i < int(kConsonants.size()); ++i) {
        const QString seek(kConsonants[i]);
        addButton(kFirstKey + i, seek, keyAt(i), ui::bitmaps::kConsonant, [this, seek] {
            choose(seek);
        })->setFont(keyFont);
    }
    addButton(kOtherKey, u"기타"_s, keyAt(int(kConsonants.size())), ui::bitmaps::kOtherConsonant,
              [this] { choose(kOtherSeek.toString()); });
}

QPoint ConsonantBoard::keyAt(int place) {
    return {ui::kGridLeft + place % 4 * ui::kGridPitch, 40 + place / 4 * 52};
}

void ConsonantBoard::choose(const QString& seek) {
    app::session().action.SeekValue = seek;
    seekChosen();
}

void ConsonantBoard::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    if (text.size() == 1 && kConsonants.contains(text[0])) {
        choose(text);
    } else {
        Screen::keyPressEvent(event);
    }
}

}  // namespace sales
