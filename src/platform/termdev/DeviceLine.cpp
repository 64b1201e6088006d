#include "platform/termdev/DeviceLine.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSerialPort>
#include <cerrno>

#include "platform/SystemReason.h"

namespace platform::termdev {
namespace {

QSerialPort::FlowControl flowControl(SerialMode::Flow flow) {
    switch (flow) {
        case SerialMode::Flow::Hardware: return QSerialPort::HardwareControl;
        case SerialMode::Flow::Software: return QSerialPort::SoftwareControl;
        case SerialMode::Flow::None: break;
    }
    return QSerialPort::NoFlowControl;
}

}  // namespace

int openDevice(const QString& path, int flags) {
    return ::open(QFile::encodeName(path).constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

QString openSerial(QSerialPort* port, const QString& path, const SerialMode& mode) {
    const bool hasParity = mode.parity != SerialMode::Parity::None;
    port->setPortName(path);
    port->setBaudRate(mode.speed);
    port->setDataBits(hasParity ? QSerialPort::Data7 : QSerialPort::Data8);
    port->setParity(mode.parity == SerialMode::Parity::Even  ? QSerialPort::EvenParity
                    : mode.parity == SerialMode::Parity::Odd ? QSerialPort::OddParity
                                                             : QSerialPort::NoParity);
    port->setFlowControl(flowControl(mode.flow));
    if (!port->open(QIODevice::ReadWrite)) {
        // Where the rights are there, it is the line's lock that is not: two programs on one line would each
        // have half of a card, or mix their jobs.
        const QFileInfo file(path);
        const bool isLocked =
            port->error() == QSerialPort::PermissionError && file.isReadable() && file.isWritable();
        return isLocked ? systemReason(EBUSY) : port->errorString();
    }
    termios settings{};
    ::tcgetattr(port->handle(), &settings);
    // The line is not hung up when it is closed: many printers take that for being switched off.
    settings.c_cflag &= ~tcflag_t(HUPCL);
    // No byte of this side's own goes among those of a job, and none of the printer's restarts it.
    settings.c_iflag &= ~tcflag_t(IGNPAR | INPCK | IXOFF | IXANY);
    // A character with a wrong parity arrives behind a byte 255, which no character has. Qt would let it
    // pass.
    if (hasParity) settings.c_iflag |= INPCK | PARMRK;
    ::tcsetattr(port->handle(), TCSANOW, &settings);
    return {};
}

void closeSerial(QSerialPort* port) {
    if (!port->isOpen()) return;
    // Qt sets a line back to what it was before, its speed and its hanging up too, while an adapter may still
    // hold the last bytes of a job. So the line is closed here, and Qt closes what stands in its place.
    ::ioctl(port->handle(), TIOCNXCL);
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing >= 0) {
        ::dup3(nothing, port->handle(), O_CLOEXEC);
        ::close(nothing);
    }
    port->close();
}

}  // namespace platform::termdev
