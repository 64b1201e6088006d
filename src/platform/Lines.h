#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "platform/Settings.h"

class QIODevice;

/// Connections over TCP and serial lines. Qt's network and serial port are in a module of their own,
/// `lines.so`: with the libraries that they need they are a tenth of the start, and the first screen needs
/// none of it.
namespace platform {

/// A connection over TCP, without a proxy. It is given up with the object, and so is what it has not sent
/// yet; that may also happen in one of the calls back.
class Connection {
  public:
    enum class Fault {
        NoSocket,  ///< The system gives no socket.
        TimedOut,  ///< Of connecting, or of a call that waits.
        Lost,      ///< No way, refused, ended or broken.
    };

    virtual ~Connection() = default;
    /// Reads and writes, and tells of both by its signals.
    virtual QIODevice* device() = 0;
    /// Begins to connect to an address that parseAddress has read. Without a way at all it is a fault at
    /// once; otherwise `connected` or `broken` are called from the event loop, the latter also later on.
    virtual std::optional<Fault> open(const QString& address, quint16 port, std::function<void()> connected,
                                      std::function<void(Fault)> broken) = 0;
    virtual bool isConnected() const = 0;
    virtual int descriptor() const = 0;
    /// What is written leaves at once, however little it is.
    virtual void sendWithoutDelay() = 0;
};

/// A serial line. It is closed with the object and stays as it is set.
class SerialLine {
  public:
    virtual ~SerialLine() = default;
    /// Reads and writes, and tells of both by its signals.
    virtual QIODevice* device() = 0;
    /// Opens the line set to `mode`, raw, and this program's alone. Why it cannot; empty when it can.
    /// `broken` is called from the event loop when the line goes away later.
    virtual QString open(const QString& path, const SerialMode& mode, std::function<void()> broken) = 0;
    virtual int descriptor() const = 0;
    /// Throws away what the line holds, and no longer waits for the other side.
    virtual void drop() = 0;
};

/// What the module's only function, `rovanaLines`, returns.
struct LinesModule {
    const char* version;  ///< The program's that it was built with.
    std::unique_ptr<Connection> (*makeConnection)(qint64 readBuffer);
    std::unique_ptr<SerialLine> (*makeSerialLine)(qint64 readBuffer);
};

/// Loads the module unless it is there. Why it cannot, also in the log at the first time; empty when it is
/// there. Needs an application object.
QString loadLines();

/// A connection or a line that holds at most so many bytes that nobody has read; null without the module.
std::unique_ptr<Connection> makeConnection(qint64 readBuffer);
std::unique_ptr<SerialLine> makeSerialLine(qint64 readBuffer);

}  // namespace platform
