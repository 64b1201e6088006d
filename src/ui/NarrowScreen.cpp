#include "ui/NarrowScreen.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include "ui/ReportList.h"

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kKeysPerRow = 8;
constexpr int kKeyPitch = 30;
constexpr int kBoardHeight = 2 * kKeyPitch;
/// Erases the last character.
constexpr QStringView kErase = u"←";

}  // namespace

void NarrowScreen::addNarrowing(ReportList* list, int top, Match match, int lineWidth) {
    constexpr int kLineHeight = 28;
    list_ = list;
    wholeList_ = list->geometry();
    line_ = place(kNarrowLine, new QLineEdit(this), {kGridLeft, top, lineWidth, kLineHeight});
    line_->setFont(ui::font(FontHeight::Small));
    line_->setPlaceholderText(u"이름·초성"_s);
    line_->setClearButtonEnabled(true);
    describe(line_, u"이름이나 초성으로 좁히기"_s);
    connect(line_, &QLineEdit::textChanged, list, [list, match](const QString& typed) {
        // All rows again, and a new list shows its first ones before it is read to its end.
        if (typed.isEmpty()) return list->narrow({});
        list->narrow([match, typed](const platform::Rows& rows, int row) {
            return match(rows.at(row, 1), typed) || rows.at(row, 0).startsWith(typed);
        });
    });
    connect(list, &ReportList::typed, this, [this](const QString& text) {
        line_->setFocus();
        line_->insert(text);
    });
    addButton(kNarrowButton, u"초성"_s, {kGridLeft + 3 * kGridPitch, top}, bitmaps::kNarrow,
              [this] { showKeys(keys_.first()->isHidden()); });

    const QString captions = u"ㄱㄴㄷㄹㅁㅂㅅㅇㅈㅊㅋㅌㅍㅎ"_s + kErase.toString();
    for (int i = 0; i < int(captions.size()); ++i) {
        const QString caption(captions[i]);
        const QPoint at(1 + i % kKeysPerRow * kKeyPitch,
                        wholeList_.bottom() - kBoardHeight + 2 + i / kKeysPerRow * kKeyPitch);
        keys_ << addButton(kNarrowFirstKey + i, caption, at, bitmaps::kSmallConsonant, [this, caption] {
            caption == kErase ? line_->backspace() : line_->insert(caption);
        });
        keys_.last()->setRepeated(true);
        keys_.last()->hide();
    }
    describe(keys_.last(), u"지움"_s);
}

void NarrowScreen::showKeys(bool isShown) {
    list_->setGeometry(isShown ? wholeList_.adjusted(0, 0, 0, -kBoardHeight) : wholeList_);
    for (BitmapButton* key : std::as_const(keys_)) key->setVisible(isShown);
}

void NarrowScreen::keyPressEvent(QKeyEvent* event) {
    // From the line down into what it left.
    if (event->key() != Qt::Key_Down || line_ == nullptr || focusWidget() != line_)
        return Screen::keyPressEvent(event);
    list_->setFocus(Qt::TabFocusReason);
    QKeyEvent copy(event->type(), event->key(), event->modifiers());
    QCoreApplication::sendEvent(list_, &copy);
}

}  // namespace ui
