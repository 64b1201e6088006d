#include "ui/Messages.h"

#include <QFontMetrics>
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
constexpr int kTallestText = 200;
constexpr QColor kShade(0x14, 0x20, 0x2b, 110);
constexpr QColor kBorder(0x33, 0x4e, 0x68);

}  // namespace

MessageBox::MessageBox(const QString& text, const QString& caption, Buttons buttons)
    : Screen(kMessageBoxId), text_(text), caption_(caption) {
    const QFontMetrics metrics(ui::font(FontHeight::Medium));
    const int textWidth = kPanelWidth - 2 * kMargin;
    const int textHeight = std::min(
        metrics.boundingRect(0, 0, textWidth, kTallestText, Qt::TextWordWrap | Qt::TextWrapAnywhere, text)
            .height(),
        kTallestText);
    const int captionHeight = caption.isEmpty() ? 0 : kCaptionHeight;
    panel_ = QRect(0, 0, kPanelWidth, captionHeight + textHeight + 2 * kMargin + kButtonRow);
    panel_.moveCenter(rect().center());

    if (!caption.isEmpty()) {
        QLabel* heading =
            addLabel(0, caption, QRect(panel_.left() + kMargin, panel_.top(), textWidth, kCaptionHeight),
                     FontHeight::Medium);
        setTextColour(heading, Qt::white);
    }
    QLabel* body = addLabel(
        0, text,
        QRect(panel_.left() + kMargin, panel_.top() + captionHeight + kMargin, textWidth, textHeight),
        FontHeight::Medium, Qt::AlignLeft | Qt::AlignTop);
    body->setWordWrap(true);

    const int buttonWidth = bitmapSize(bitmaps::kConfirm.normal).width();
    const int buttonTop = panel_.bottom() - kButtonRow + 8;
    if (buttons == Buttons::Ok) {
        BitmapButton* ok = addButton(kMessageOk, u"확  인"_s,
                                     {panel_.center().x() - buttonWidth / 2, buttonTop}, bitmaps::kConfirm);
        connect(ok, &BitmapButton::clicked, this, [this] { close(Accepted); });
        setDefaultButton(ok);
        setCancelButton(ok);
    } else {
        BitmapButton* ok =
            addButton(kMessageOk, u"확  인"_s, {panel_.left() + 36, buttonTop}, bitmaps::kConfirm);
        BitmapButton* cancel = addButton(kMessageCancel, u"취  소"_s,
                                         {panel_.right() - 36 - buttonWidth, buttonTop}, bitmaps::kCancel);
        connect(ok, &BitmapButton::clicked, this, [this] { close(Accepted); });
        connect(cancel, &BitmapButton::clicked, this, [this] { close(Cancelled); });
        setDefaultButton(ok);
        setCancelButton(cancel);
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
}

void message(const QString& text) {
    MessageBox(text, {}, MessageBox::Buttons::Ok).run();
}

bool confirm(const QString& text, const QString& caption) {
    return MessageBox(text, caption, MessageBox::Buttons::OkCancel).run() == Screen::Accepted;
}

}  // namespace ui
