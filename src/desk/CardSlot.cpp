#include "desk/CardSlot.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kCardsInRow = 3;

}  // namespace

Groove::Groove(QWidget* parent) : QWidget(parent) {
    setFixedHeight(24);
    setReading(false);
}

void Groove::setReading(bool isReading) {
    if (isReading == isReading_ && !accessibleName().isEmpty()) return;
    isReading_ = isReading;
    setAccessibleName(isReading ? u"카드를 긁으세요 Swipe a card"_s
                                : u"카드 화면에서 긁습니다 Opens with the card screen"_s);
    update();
}

void Groove::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x2b, 0x2f, 0x36));
    painter.drawRoundedRect(rect(), 5, 5);
    painter.setBrush(isReading_ ? QColor(0x3d, 0xc4, 0x6b) : QColor(0x11, 0x13, 0x16));
    painter.drawRect(QRectF(6, height() - 5, width() - 12, 2));
    painter.setPen(isReading_ ? QColor(0xb6, 0xf2, 0xc9) : QColor(0xc4, 0xc8, 0xcd));
    painter.drawText(rect().adjusted(0, 0, 0, -5), Qt::AlignCenter, accessibleName());
}

Card::Card(const DemoCard& card, Groove* groove, QWidget* parent)
    : QAbstractButton(parent), card_(card), groove_(groove) {
    setObjectName(card.name.toString());
    setFixedHeight(sizeHint().height());
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::OpenHandCursor);
    setAccessibleName(u"카드 %1, %2, 비밀번호 %3"_s.arg(card.name, card.caption, card.password));
    setToolTip(u"%1 · 비밀번호 Password %2\n누르거나 끌어서 긁습니다 Click, or drag through the slot"_s.arg(
        card.caption, card.password));
    connect(this, &QAbstractButton::clicked, this, &Card::drawnThrough);
}

Card::~Card() {
    delete carried_;
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.setPen(hasFocus() ? QPen(QColor(0xff, 0xb3, 0x2e), 2) : QPen(QColor(0x1d, 0x33, 0x52), 1));
    painter.setBrush(isDown() ? QColor(0x1f, 0x42, 0x70) : QColor(0x2f, 0x5d, 0x99));
    painter.drawRoundedRect(face, 5, 5);
    painter.fillRect(QRectF(face.left() + 1, face.bottom() - 7, face.width() - 2, 4),
                     QColor(0x15, 0x18, 0x1c));
    painter.setPen(Qt::white);
    const QRect text = rect().adjusted(6, 2, -6, -9);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignTop, card_.caption.toString());
    painter.setPen(QColor(0xd3, 0xe2, 0xf5));
    painter.drawText(text, Qt::AlignLeft | Qt::AlignBottom, card_.name.toString());
    painter.drawText(text, Qt::AlignRight | Qt::AlignBottom, card_.password.toString());
}

void Card::mousePressEvent(QMouseEvent* event) {
    grip_ = event->pos();
    hasPassed_ = false;
    QAbstractButton::mousePressEvent(event);
}

void Card::mouseMoveEvent(QMouseEvent* event) {
    const bool isHeld = event->buttons().testFlag(Qt::LeftButton);
    if (isHeld && !carried_ &&
        (event->pos() - grip_).manhattanLength() >= QApplication::startDragDistance()) {
        carried_ = new QLabel(window());
        carried_->setAttribute(Qt::WA_TransparentForMouseEvents);
        carried_->setPixmap(grab());
        carried_->adjustSize();
        carried_->show();
        setDown(false);
    }
    if (!carried_) return QAbstractButton::mouseMoveEvent(event);
    carried_->move(mapTo(window(), event->pos() - grip_));
    const QRect slot(groove_->mapTo(window(), QPoint()), groove_->size());
    // The middle of the card has to come there, or lifting one of the upper cards would do.
    const QPoint middle = carried_->geometry().center();
    const bool isAbove =
        middle.y() <= slot.bottom() && middle.x() >= slot.left() && middle.x() <= slot.right();
    hasPassed_ = hasPassed_ || isAbove;
}

void Card::mouseReleaseEvent(QMouseEvent* event) {
    if (!carried_) return QAbstractButton::mouseReleaseEvent(event);
    delete carried_;
    if (hasPassed_) Q_EMIT drawnThrough();
}

void Card::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QAbstractButton::keyPressEvent(event);
}

CardSlot::CardSlot(QWidget* parent) : QWidget(parent), groove_(new Groove(this)) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(groove_, 0, 0, 1, kCardsInRow);
    int place = kCardsInRow;
    for (const DemoCard& card : demoCards()) {
        auto* button = new Card(card, groove_, this);
        layout->addWidget(button, place / kCardsInRow, place % kCardsInRow);
        ++place;
        // The reader's announcement opens the password keypad and returns late: never within the press.
        connect(button, &Card::drawnThrough, this,
                [this, &card] { QTimer::singleShot(0, this, [&card] { swipe(card); }); });
    }
}

}  // namespace desk
