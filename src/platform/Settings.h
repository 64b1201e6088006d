#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// A serial line: bits for each second, and what holds the sender back or guards a character.
struct SerialMode {
    enum class Flow { None, Hardware, Software };
    enum class Parity { None, Even, Odd };  ///< Even and Odd go with 7 data bits, None with 8.

    int speed = 9600;
    Flow flow = Flow::None;
    Parity parity = Parity::None;
};

struct PrinterSettings {
    enum class Kind { Roll, File, Serial, Tcp };
    enum class Cut { None, Full, Partial, Feed };

    Kind kind = Kind::Roll;
    QString device;   ///< Of a File or Serial printer.
    QString address;  ///< Of a Tcp printer, in numbers: looking up a name would hold the screen up.
    int port = 9100;
    SerialMode line;
    Cut cut = Cut::None;
    bool isKsx1001Only = false;  ///< It lacks the syllables that code page 949 adds to KS X 1001.
};

struct ReaderSettings {
    enum class Kind { None, Serial, Evdev, Hidraw };
    enum class Tracks { Both, Only2, Only3 };

    Kind kind = Kind::None;
    QString device;
    SerialMode line;
    Tracks tracks = Tracks::Both;  ///< Those without which a swipe is not whole.
    QString track2Starts = QStringLiteral(";");
    QString track3Starts = QStringLiteral("+;!B");
};

/// What `rovana.conf` in the device folder says about this machine.
struct Settings {
    PrinterSettings printer;
    ReaderSettings reader;
    double scale = 0;  ///< Of the screen; 0 when not named.
    bool hasSound = true;
    int logKilobytes = 1024;
    int rollKilobytes = 1024;
    QStringList complaints;  ///< What was ignored and why, a line each, ready for the log.
};

inline constexpr double kSmallestScale = 0.5;
inline constexpr double kLargestScale = 8;

/// Reads `rovana.conf`. A missing file gives the defaults; a value that makes no sense is left out and told
/// in `complaints`, and a device that is not fully named is not used.
Settings readSettings();

}  // namespace platform
