#include "ui/Messages.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <algorithm>

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kPanelWidth = 224;
constexpr int kMargin = 12;
constexpr int kCaptionHeight = 26;
constexpr int kButtonRow = 48;
constexpr QColor kShade(0x14, 0x20, 0x2b, 110);
constexpr QColor kBorder(0x33, 0x4e, 0x68);
constexpr QColor kIcon(0x1c, 0x5b, 0xa8);
constexpr int kIconSize = 24;
/// A scanner's Enter follows its last digit within that.
constexpr int kScanMs = 1000;

/// A message that lists amounts joins them with "&" to one word, wider than the panel, and a folder's name
/// may be as wide: a line may end after the one, and before a "/".
QString breakable(const QString& text) {
    const QString zeroWidthSpace(QChar(0x200b));
    return QString(text).replace(u'&', u'&' + zeroWidthSpace).replace(u'/', zeroWidthSpace + u'/');
}

}  // namespace

MessageBox::MessageBox(const QString& text, const QString& caption, Buttons buttons, MessageIcon icon)
    : Screen(kMessageBoxId), text_(text), caption_(caption), icon_(icon) {
    constexpr int kTallestText = 200;
    constexpr int kIconGap = 8;
    // The dialog below shows through the shade.
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    const QFontMetrics metrics(ui::font(FontHeight::Medium));
    const int iconWidth = icon == MessageIcon::None ? 0 : kIconSize + kIconGap;
    const int textWidth = kPanelWidth - 2 * kMargin - iconWidth;
    const QString shown = breakable(text);
    const int textHeight =
        std::clamp(metrics.boundingRect(0, 0, textWidth, kTallestText, Qt::TextWordWrap, shown).height(),
                   iconWidth == 0 ? 0 : kIconSize, kTallestText);
    const int captionHeight = caption.isEmpty() ? 0 : kCaptionHeight;
    panel_ = QRect(0, 0, kPanelWidth, captionHeight + textHeight + 2 * kMargin + kButtonRow);
    panel_.moveCenter(rect().center());

    if (!caption.isEmpty()) {
        QLabel* heading =
            addLabel(0, caption,
                     QRect(panel_.left() + kMargin, panel_.top(), kPanelWidth - 2 * kMargin, kCaptionHeight),
                     FontHeight::Medium);
        setTextColour(heading, Qt::white);
    }
    const QPoint inside(panel_.left() + kMargin, panel_.top() + captionHeight + kMargin);
    iconArea_ = QRect(inside, QSize(kIconSize, kIconSize));
    QLabel* body = addLabel(0, shown, QRect(inside + QPoint(iconWidth, 0), QSize(textWidth, textHeight)),
                            FontHeight::Medium, Qt::AlignLeft | Qt::AlignTop);
    body->setWordWrap(true);

    setAccessibleName(text);
    addButtons(buttons);
}

void MessageBox::addButtons(Buttons buttons) {
    struct Choice {
        int control;
        QString caption;
        ButtonBitmaps bitmaps;
        Result result;
    };
    const Choice ok{kMessageOk, u"확  인"_s, bitmaps::kConfirm, Accepted};
    const Choice yes{kMessageOk, u"예"_s, bitmaps::kConfirm, Accepted};
    const Choice no{kMessageNo, u"아니오"_s, bitmaps::kCancel, Cancelled};
    const Choice cancel{kMessageCancel, u"취  소"_s, bitmaps::kCancel, Cancelled};
    const QList<Choice> choices = buttons == Buttons::Ok         ? QList<Choice>{ok}
                                  : buttons == Buttons::OkCancel ? QList<Choice>{ok, cancel}
                                                                 : QList<Choice>{yes, no, cancel};
    const int width = bitmapSize(bitmaps::kConfirm.normal).width();
    const int gap = (panel_.width() - int(choices.size()) * width) / int(choices.size() + 1);
    int left = panel_.left() + gap;
    for (const Choice& choice : choices) {
        BitmapButton* button =
            addButton(choice.control, choice.caption, {left, panel_.bottom() - kButtonRow + 8},
                      choice.bitmaps, [this, result = choice.result] { close(result); });
        if (choice.control == kMessageOk) setDefaultButton(button);
        setCancelButton(button);
        left += width + gap;
    }
}

void MessageBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kShade);
    painter.setPen(kBorder);
    painter.setBrush(Qt::white);
    painter.drawRect(panel_.adjusted(0, 0, -1, -1));
    if (!caption_.isEmpty())
        painter.fillRect(QRect(panel_.topLeft(), QSize(kPanelWidth, kCaptionHeight)), kBorder);
    if (icon_ != MessageIcon::None) paintIcon(&painter);
}

void MessageBox::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isScanned = isEnter && sinceDigit_.isValid() && sinceDigit_.elapsed() < kScanMs;
    sinceDigit_.invalidate();
    if (event->key() >= Qt::Key_0 && event->key() <= Qt::Key_9) sinceDigit_.start();
    if (!isScanned) Screen::keyPressEvent(event);
}

void MessageBox::paintIcon(QPainter* painter) const {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(kIcon);
    painter->drawEllipse(iconArea_);
    painter->setPen(Qt::white);
    painter->setFont(ui::font(FontHeight::Title));
    painter->drawText(iconArea_, Qt::AlignCenter, icon_ == MessageIcon::Question ? u"?"_s : u"i"_s);
}

void message(const QString& text) {
    MessageBox(text, {}, MessageBox::Buttons::Ok).run();
}

bool confirm(const QString& text, const QString& caption, MessageIcon icon) {
    return MessageBox(text, caption, MessageBox::Buttons::OkCancel, icon).run() == Screen::Accepted;
}

bool askYesNo(const QString& text, const QString& caption, MessageIcon icon) {
    return MessageBox(text, caption, MessageBox::Buttons::YesNoCancel, icon).run() == Screen::Accepted;
}

}  // namespace ui
