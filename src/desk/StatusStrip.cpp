#include "desk/StatusStrip.h"

#include <QGridLayout>
#include <QPainter>

#include "desk/DemoHost.h"
#include "platform/message/Component.h"
#include "platform/termdev/CardReader.h"

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::message::Component;

constexpr int kLampSize = 12;

QCheckBox* makeFault(const QString& name, QWidget* parent) {
    auto* fault = new QCheckBox(name, parent);
    fault->setFocusPolicy(Qt::TabFocus);
    fault->setMinimumHeight(24);
    return fault;
}

}  // namespace

Lamp::Lamp(const QString& name, QWidget* parent) : QWidget(parent), name_(name) {
    setFixedHeight(20);
    set(Off, {});
}

void Lamp::set(Light light, const QString& state) {
    if (light == light_ && state == state_) return;
    light_ = light;
    state_ = state;
    setAccessibleName(u"%1: %2"_s.arg(name_, state));
    setMinimumWidth(kLampSize + 8 + fontMetrics().horizontalAdvance(name_ + u"  "_s + state_));
    update();
}

void Lamp::paintEvent(QPaintEvent*) {
    static const QColor colours[] = {QColor(0x8a, 0x87, 0x80), QColor(0x2f, 0xb3, 0x5c),
                                     QColor(0xf2, 0xb7, 0x05), QColor(0xd9, 0x36, 0x2b)};
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colours[light_].darker(140), 1));
    painter.setBrush(colours[light_]);
    painter.drawEllipse(QRectF(0.5, (height() - kLampSize) / 2.0 + 0.5, kLampSize - 1, kLampSize - 1));
    painter.setPen(palette().color(QPalette::WindowText));
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    QRect text = rect().adjusted(kLampSize + 6, 0, 0, 0);
    QRect taken;
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, name_, &taken);
    painter.setFont(font());
    text.setLeft(taken.right() + 7);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, state_);
}

StatusStrip::StatusStrip(QWidget* parent)
    : QWidget(parent),
      printer_(new Lamp(u"프린터 Printer"_s, this)),
      reader_(new Lamp(u"판독기 Reader"_s, this)),
      host_(new Lamp(u"호스트 Host"_s, this)),
      hostSilent_(makeFault(u"응답 없음 Silent"_s, this)) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setVerticalSpacing(0);
    layout->addWidget(printer_, 0, 0);
    layout->addWidget(reader_, 0, 1);
    layout->addWidget(host_, 0, 2);
    layout->addWidget(hostSilent_, 1, 2);

    printer_->setObjectName(u"printer"_s);
    reader_->setObjectName(u"reader"_s);
    host_->setObjectName(u"host"_s);
    hostSilent_->setObjectName(u"host-silent"_s);
    hostSilent_->setAccessibleName(u"호스트 응답 없음 Host silent"_s);
    hostSilent_->setEnabled(isDemoHost());
    hostSilent_->setToolTip(hostSilent_->isEnabled()
                                ? u"호스트가 답하지 않습니다 The host answers nothing"_s
                                : u"시연용 호스트가 아닙니다 Not the demonstration host"_s);
    connect(hostSilent_, &QCheckBox::toggled, this, [this](bool isOn) {
        if (!setHostSilent(isOn)) hostSilent_->setChecked(false);
    });
    refresh();
}

StatusStrip::~StatusStrip() {
    if (hostSilent_->isChecked()) setHostSilent(false);
}

void StatusStrip::refresh() {
    printer_->set(Lamp::Green, u"준비 ready"_s);
    const bool isReading = platform::termdev::CardReader::instance().isReading();
    reader_->set(isReading ? Lamp::Green : Lamp::Off, isReading ? u"읽는 중 reading"_s : u"닫힘 closed"_s);
    switch (Component::lastExchange()) {
        case Component::LastExchange::None:
            host_->set(Lamp::Off, u"거래 전 no exchange yet"_s);
            break;
        case Component::LastExchange::UnderWay:
            host_->set(Lamp::Yellow, u"교신 중 exchanging"_s);
            break;
        case Component::LastExchange::Answered:
            host_->set(Lamp::Green, u"응답함 answered"_s);
            break;
        case Component::LastExchange::Failed:
            host_->set(Lamp::Red, u"응답 없음 no answer"_s);
            break;
    }
}

}  // namespace desk
