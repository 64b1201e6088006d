#include "platform/termdev/DeviceLine.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <QFile>
#include <QSerialPort>
#include <cerrno>
#include <cstring>

namespace platform::termdev {
namespace {

/// Changes the line's settings by `change`; false, with errno saying why, when that fails.
template <typename Change>
bool changeSettings(int line, Change change) {
    termios settings{};
    if (::tcgetattr(line, &settings) != 0) return false;
    change(&settings);
    return ::tcsetattr(line, TCSANOW, &settings) == 0;
}

QString errorText() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

QSerialPort::FlowControl flowControl(SerialMode::Flow flow) {
    switch (flow) {
        case SerialMode::Flow::Hardware:
            return QSerialPort::HardwareControl;
        case SerialMode::Flow::Software:
            return QSerialPort::SoftwareControl;
        case SerialMode::Flow::None:
            break;
    }
    return QSerialPort::NoFlowControl;
}

}  // namespace

int openDevice(const QString& path, int flags) {
    return ::open(QFile::encodeName(path).constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

QString openSerial(QSerialPort* port, const QString& path, const SerialMode& mode) {
    // The line must not be hung up when it is closed: many printers take that for being switched off. The
    // port leaves a line as it has found it, so this is set before.
    const int before = openDevice(path, O_RDWR);
    if (before < 0) return errorText();
    const bool isLine =
        changeSettings(before, [](termios* settings) { settings->c_cflag &= ~tcflag_t(HUPCL); });
    if (!isLine) {
        const QString reason = errorText();
        ::close(before);
        return reason;
    }
    const bool hasParity = mode.parity != SerialMode::Parity::None;
    port->setPortName(path);
    port->setBaudRate(mode.speed);
    port->setDataBits(hasParity ? QSerialPort::Data7 : QSerialPort::Data8);
    port->setParity(mode.parity == SerialMode::Parity::Even  ? QSerialPort::EvenParity
                    : mode.parity == SerialMode::Parity::Odd ? QSerialPort::OddParity
                                                             : QSerialPort::NoParity);
    port->setFlowControl(flowControl(mode.flow));
    const bool isOpen = port->open(QIODevice::ReadWrite);
    ::close(before);
    // The line itself could be opened, so it is its lock that another program has: two on one line would each
    // have half of a card, or mix their jobs.
    if (!isOpen)
        return port->error() == QSerialPort::PermissionError ? QString::fromLocal8Bit(std::strerror(EBUSY))
                                                             : port->errorString();
    changeSettings(port->handle(), [hasParity](termios* settings) {
        // No byte of this program's own goes among those of a job, and none from the printer restarts it.
        settings->c_iflag &= ~tcflag_t(IGNPAR | INPCK | IXOFF | IXANY);
        // A character with a wrong parity arrives behind a byte 255, which no character has. The port would
        // let it pass.
        if (hasParity) settings->c_iflag |= INPCK | PARMRK;
    });
    return {};
}

}  // namespace platform::termdev
