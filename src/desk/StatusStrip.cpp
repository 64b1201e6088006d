#include "desk/StatusStrip.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <memory>
#include <tuple>

#include "desk/DemoHost.h"
#include "desk/DeskPrinter.h"
#include "platform/message/Component.h"
#include "platform/termdev/CardReader.h"
#include "platform/termdev/Devices.h"
#include "platform/termdev/TermDev.h"

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::message::Component;
using platform::termdev::DeviceStatus;

constexpr int kLampSize = 12;
constexpr qint64 kKilobyte = 1024;

QCheckBox* makeFault(const QString& name, const QString& text, QWidget* parent) {
    auto* fault = new QCheckBox(text, parent);
    fault->setObjectName(name);
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

StatusStrip::StatusStrip(const platform::Settings& settings, QWidget* parent)
    : QWidget(parent),
      printer_(new Lamp(u"프린터 Printer"_s, this)),
      reader_(new Lamp(u"판독기 Reader"_s, this)),
      host_(new Lamp(u"호스트 Host"_s, this)),
      noPaper_(makeFault(u"no-paper"_s, u"용지 없음 No paper"_s, this)),
      printerGone_(makeFault(u"printer-gone"_s, u"꺼짐 Gone"_s, this)),
      hostSilent_(makeFault(u"host-silent"_s, u"응답 없음 Silent"_s, this)) {
    layOut();
    connectPrinterFaults(settings);
    connectHostFault();
    refresh();
}

void StatusStrip::layOut() {
    // The columns stay where they are, whatever the lamps say: the boxes below are being aimed at.
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setVerticalSpacing(0);
    layout->setHorizontalSpacing(4);
    auto* printerFaults = new QHBoxLayout;
    printerFaults->addWidget(noPaper_);
    printerFaults->addWidget(printerGone_);
    printerFaults->addStretch();
    layout->addLayout(printerFaults, 1, 0);
    layout->addWidget(hostSilent_, 1, 2);
    int column = 0;
    for (const auto& [lamp, name, share] :
         {std::tuple{printer_, u"printer"_s, 23}, {reader_, u"reader"_s, 17}, {host_, u"host"_s, 18}}) {
        lamp->setObjectName(name);
        layout->addWidget(lamp, 0, column);
        layout->setColumnStretch(column++, share);
    }
}

void StatusStrip::connectPrinterFaults(const platform::Settings& settings) {
    if (settings.printer.kind == platform::PrinterSettings::Kind::Roll) {
        auto printer = std::make_unique<DeskPrinter>(settings.rollKilobytes * kKilobyte);
        deskPrinter_ = printer.get();
        platform::termdev::setPrinter(std::move(printer));
    }
    for (QCheckBox* fault : {noPaper_, printerGone_}) {
        fault->setEnabled(deskPrinter_ != nullptr);
        fault->setToolTip(deskPrinter_ ? u"인쇄물은 보관했다가 나옵니다 Slips are kept and printed later"_s
                                       : u"실제 프린터가 연결되어 있습니다 A real printer is in use"_s);
        connect(fault, &QCheckBox::toggled, this, &StatusStrip::setPrinterFault);
    }
    noPaper_->setAccessibleName(u"프린터 용지 없음 Printer without paper"_s);
    printerGone_->setAccessibleName(u"프린터 꺼짐 Printer gone"_s);
}

void StatusStrip::connectHostFault() {
    hostSilent_->setAccessibleName(u"호스트 응답 없음 Host silent"_s);
    hostSilent_->setEnabled(isDemoHost());
    // A desk that was killed ended its fault no more.
    if (hostSilent_->isEnabled()) setHostSilent(false);
    hostSilent_->setToolTip(hostSilent_->isEnabled()
                                ? u"호스트가 답하지 않습니다 The host answers nothing"_s
                                : u"시연용 호스트가 아닙니다 Not the demonstration host"_s);
    connect(hostSilent_, &QCheckBox::toggled, this, [this](bool isOn) {
        if (!setHostSilent(isOn)) hostSilent_->setChecked(false);
    });
}

StatusStrip::~StatusStrip() {
    if (hostSilent_->isChecked()) setHostSilent(false);
    if (!deskPrinter_) return;
    deskPrinter_->setFault({});
    platform::termdev::setPrinter(nullptr);
}

void StatusStrip::setPrinterFault() {
    if (printerGone_->isChecked()) {
        deskPrinter_->setFault(u"it is switched off"_s, DeviceStatus::Cause::Away);
    } else if (noPaper_->isChecked()) {
        deskPrinter_->setFault(u"it is out of paper"_s, DeviceStatus::Cause::NoPaper);
    } else {
        deskPrinter_->setFault({});
    }
    refresh();
}

void StatusStrip::showPrinter(const DeviceStatus& status) {
    const QString waiting = status.waitingJobs > 0 ? u" · 대기 %1"_s.arg(status.waitingJobs) : QString();
    printer_->setToolTip(status.fault);
    switch (status.state) {
        case DeviceStatus::State::Ready: return printer_->set(Lamp::Green, u"준비 ready"_s);
        case DeviceStatus::State::Waiting: return printer_->set(Lamp::Yellow, u"인쇄 중 busy"_s + waiting);
        case DeviceStatus::State::Fault: return printer_->set(Lamp::Red, u"고장 fault"_s + waiting);
    }
}

void StatusStrip::refresh() {
    showPrinter(platform::termdev::printerStatus());
    const DeviceStatus reader = platform::termdev::readerStatus();
    const bool isReading = platform::termdev::CardReader::instance().isReading();
    reader_->setToolTip(reader.fault);
    if (reader.state == DeviceStatus::State::Fault) {
        reader_->set(Lamp::Red, u"고장 fault"_s);
    } else {
        reader_->set(isReading ? Lamp::Green : Lamp::Off,
                     isReading ? u"읽는 중 reading"_s : u"닫힘 closed"_s);
    }
    switch (Component::lastExchange()) {
        case Component::LastExchange::None: host_->set(Lamp::Off, u"거래 전 idle"_s); break;
        case Component::LastExchange::UnderWay: host_->set(Lamp::Yellow, u"교신 중 exchanging"_s); break;
        case Component::LastExchange::Answered: host_->set(Lamp::Green, u"응답함 answered"_s); break;
        case Component::LastExchange::Failed: host_->set(Lamp::Red, u"응답 없음 no answer"_s); break;
    }
}

}  // namespace desk
