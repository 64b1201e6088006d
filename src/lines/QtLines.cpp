// The module lines.so: the terminal's connections by Qt's network and serial port.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <QFileInfo>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QSerialPort>
#include <QTcpSocket>
#include <cerrno>
#include <utility>

#include "platform/Lines.h"
#include "platform/SystemReason.h"

namespace {

using platform::Connection;
using platform::SerialLine;
using platform::SerialMode;

Connection::Fault faultOf(QAbstractSocket::SocketError error) {
    switch (error) {
        case QAbstractSocket::SocketAccessError:
        case QAbstractSocket::SocketResourceError:
        case QAbstractSocket::UnsupportedSocketOperationError: return Connection::Fault::NoSocket;
        case QAbstractSocket::SocketTimeoutError: return Connection::Fault::TimedOut;
        default: return Connection::Fault::Lost;
    }
}

class QtConnection : public Connection {
  public:
    explicit QtConnection(qint64 readBuffer) : socket_(new QTcpSocket) {
        socket_->setProxy(QNetworkProxy::NoProxy);
        socket_->setReadBufferSize(readBuffer);
    }
    ~QtConnection() override {
        socket_->disconnect();
        // Unlike close(), which would send what waits.
        socket_->abort();
        // It may be its signal that this is called from, also when whoever has adopted it goes.
        socket_->setParent(nullptr);
        socket_->deleteLater();
    }
    Q_DISABLE_COPY_MOVE(QtConnection)

    QIODevice* device() override { return socket_; }
    std::optional<Fault> open(const QString& address, quint16 port, std::function<void()> connected,
                              std::function<void(Fault)> broken) override {
        QObject::connect(socket_, &QTcpSocket::connected, socket_, std::move(connected));
        socket_->connectToHost(QHostAddress(address), port);
        if (socket_->state() == QTcpSocket::UnconnectedState) return faultOf(socket_->error());
        QObject::connect(
            socket_, &QTcpSocket::errorOccurred, socket_,
            [broken = std::move(broken)](QAbstractSocket::SocketError error) { broken(faultOf(error)); });
        return std::nullopt;
    }
    bool isConnected() const override { return socket_->state() == QTcpSocket::ConnectedState; }
    int descriptor() const override { return int(socket_->socketDescriptor()); }
    void sendWithoutDelay() override { socket_->setSocketOption(QTcpSocket::LowDelayOption, 1); }

  private:
    QTcpSocket* socket_;
};

QSerialPort::FlowControl flowControl(SerialMode::Flow flow) {
    switch (flow) {
        case SerialMode::Flow::Hardware: return QSerialPort::HardwareControl;
        case SerialMode::Flow::Software: return QSerialPort::SoftwareControl;
        case SerialMode::Flow::None: break;
    }
    return QSerialPort::NoFlowControl;
}

class QtSerialLine : public SerialLine {
  public:
    explicit QtSerialLine(qint64 readBuffer) : port_(new QSerialPort) {
        port_->setReadBufferSize(readBuffer);
    }
    ~QtSerialLine() override {
        port_->disconnect();
        if (port_->isOpen()) close();
        // It may be its signal that this is called from.
        port_->deleteLater();
    }
    Q_DISABLE_COPY_MOVE(QtSerialLine)

    QIODevice* device() override { return port_; }
    QString open(const QString& path, const SerialMode& mode, std::function<void()> broken) override {
        const QString fault = openRaw(path, mode);
        QObject::connect(port_, &QSerialPort::errorOccurred, port_,
                         [broken = std::move(broken)](QSerialPort::SerialPortError error) {
                             if (error != QSerialPort::TimeoutError && error != QSerialPort::NoError)
                                 broken();
                         });
        return fault;
    }
    int descriptor() const override { return int(port_->handle()); }
    void drop() override {
        port_->clear();
        port_->setFlowControl(QSerialPort::NoFlowControl);
    }

  private:
    QString openRaw(const QString& path, const SerialMode& mode) {
        const bool hasParity = mode.parity != SerialMode::Parity::None;
        port_->setPortName(path);
        port_->setBaudRate(mode.speed);
        port_->setDataBits(hasParity ? QSerialPort::Data7 : QSerialPort::Data8);
        port_->setParity(mode.parity == SerialMode::Parity::Even  ? QSerialPort::EvenParity
                         : mode.parity == SerialMode::Parity::Odd ? QSerialPort::OddParity
                                                                  : QSerialPort::NoParity);
        port_->setFlowControl(flowControl(mode.flow));
        if (!port_->open(QIODevice::ReadWrite)) {
            // Where the rights are there, it is the line's lock that is not: two programs on one line would
            // each have half of a card, or mix their jobs.
            const QFileInfo file(path);
            const bool isLocked =
                port_->error() == QSerialPort::PermissionError && file.isReadable() && file.isWritable();
            return isLocked ? platform::systemReason(EBUSY) : port_->errorString();
        }
        termios settings{};
        ::tcgetattr(port_->handle(), &settings);
        // The line is not hung up when it is closed: many printers take that for being switched off.
        settings.c_cflag &= ~tcflag_t(HUPCL);
        // No byte of this side's own goes among those of a job, and none of the printer's restarts it.
        settings.c_iflag &= ~tcflag_t(IGNPAR | INPCK | IXOFF | IXANY);
        // A character with a wrong parity arrives behind a byte 255, which no character has. Qt would let it
        // pass.
        if (hasParity) settings.c_iflag |= INPCK | PARMRK;
        ::tcsetattr(port_->handle(), TCSANOW, &settings);
        return {};
    }

    void close() {
        // Qt sets a line back to what it was before, its speed and its hanging up too, while an adapter may
        // still hold the last bytes of a job. So the line is closed here, and Qt closes what stands in its
        // place.
        ::ioctl(port_->handle(), TIOCNXCL);
        const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        if (nothing >= 0) {
            ::dup3(nothing, port_->handle(), O_CLOEXEC);
            ::close(nothing);
        }
        port_->close();
    }

    QSerialPort* port_;
};

}  // namespace

extern "C" Q_DECL_EXPORT const platform::LinesModule* rovanaLines() {
    static constexpr platform::LinesModule kModule{
        ROVANA_VERSION,
        [](qint64 readBuffer) -> std::unique_ptr<Connection> {
            return std::make_unique<QtConnection>(readBuffer);
        },
        [](qint64 readBuffer) -> std::unique_ptr<SerialLine> {
            return std::make_unique<QtSerialLine>(readBuffer);
        },
    };
    return &kModule;
}
