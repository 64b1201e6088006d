#include "platform/termdev/DeviceLine.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <utility>

#include "platform/message/Connection.h"

namespace platform::termdev {
namespace {

constexpr std::pair<int, speed_t> kSpeeds[] = {{1200, B1200},   {2400, B2400},    {4800, B4800},
                                               {9600, B9600},   {19200, B19200},  {38400, B38400},
                                               {57600, B57600}, {115200, B115200}};

int closeForErrno(int descriptor) {
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return -1;
}

}  // namespace

int openDevice(const QString& path, int flags) {
    return ::open(QFile::encodeName(path).constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

int openSerial(const QString& path, const SerialMode& mode) {
    const int line = openDevice(path, O_RDWR);
    if (line < 0) return -1;
    // Two programs on one line would each have half of a card, or mix their jobs.
    if (::flock(line, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) errno = EBUSY;
        return closeForErrno(line);
    }
    termios settings{};
    if (::tcgetattr(line, &settings) != 0) return closeForErrno(line);
    ::cfmakeraw(&settings);
    // Left by another program these would drop what is damaged, or put bytes among those of a job.
    settings.c_iflag &= ~tcflag_t(IGNPAR | INPCK | IXOFF | IXANY);
    // The line is not hung up when it is closed: many printers take that for being switched off.
    settings.c_cflag &= ~tcflag_t(HUPCL | CSTOPB | CRTSCTS | PARODD);
    settings.c_cflag |= CLOCAL | CREAD;
    if (mode.flow == SerialMode::Flow::Hardware) settings.c_cflag |= CRTSCTS;
    if (mode.flow == SerialMode::Flow::Software) settings.c_iflag |= IXON;
    if (mode.parity != SerialMode::Parity::None) {
        settings.c_cflag = (settings.c_cflag & ~tcflag_t(CSIZE)) | CS7 | PARENB;
        if (mode.parity == SerialMode::Parity::Odd) settings.c_cflag |= PARODD;
        // A character with a wrong parity arrives behind a byte 255, which no character has.
        settings.c_iflag |= INPCK | PARMRK;
    }
    for (const auto& [speed, constant] : kSpeeds) {
        if (speed == mode.speed) ::cfsetspeed(&settings, constant);
    }
    if (::tcsetattr(line, TCSANOW, &settings) != 0) return closeForErrno(line);
    return line;
}

int connectTcp(const QString& address, int port) {
    const auto parsed = message::parseAddress(address);
    if (!parsed) {
        errno = EINVAL;
        return -1;
    }
    const int line = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (line < 0) return -1;
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(quint16(port));
    peer.sin_addr.s_addr = *parsed;
    if (::connect(line, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) != 0 && errno != EINPROGRESS)
        return closeForErrno(line);
    return line;
}

}  // namespace platform::termdev
