#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <csignal>

#include "platform/termdev/EscPos.h"
#include "platform/termdev/PrintQueue.h"
#include "platform/termdev/TermDev.h"
#include "support/PrintQt.h"
#include "support/Pty.h"
#include "support/Pump.h"
#include "support/RecordedTraces.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;
using platform::PrinterSettings;
using State = DeviceStatus::State;

const QByteArray kStart("\x1B@\x1C&", 4);
constexpr PrintQueue::Times kQuick{
    .retry = 20, .longest = 80, .look = 20, .stall = 100, .parting = 150, .leaving = 100};

template <typename... Arguments>
int call(int ordinal, Arguments... arguments) {
    return std::get<int (*)(Arguments...)>(operation(ordinal))(arguments...);
}

/// All that the descriptor has for now.
QByteArray readAvailable(int descriptor) {
    QByteArray all;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(descriptor, buffer, sizeof buffer)) > 0) all.append(buffer, count);
    return all;
}

/// What comes out, piece by piece, until nothing waits for the printer any more.
template <typename Read>
QByteArray paperUntilReady(const PrintQueue& queue, Read read) {
    QByteArray paper;
    EXPECT_TRUE(test::pump([&] {
        paper += read();
        return queue.status().state == State::Ready;
    }));
    return paper + read();
}

class Printers : public testing::Test {
  protected:
    QString file(const QString& name) const { return device_.folder() + u'/' + name; }

    /// A plain file as the printer's device.
    PrinterSettings fileSettings() {
        device_.writeFile(u"\\printer", {});
        PrinterSettings settings;
        settings.kind = PrinterSettings::Kind::File;
        settings.device = file(u"printer"_s);
        return settings;
    }
    QByteArray printed() const {
        QFile printer(file(u"printer"_s));
        return printer.open(QIODevice::ReadOnly) ? printer.readAll() : QByteArray();
    }
    /// The bytes of a job of one text after its start.
    static QByteArray bytesOf(const QString& text, bool isKsx1001Only) {
        struct Job : LinePrinter {
            bool putOut(const QList<PaperLine>& gathered) override {
                lines = gathered;
                return true;
            }
            QList<PaperLine> lines;
        } job;
        job.open();
        job.print(text);
        job.close();
        PrinterSettings settings;
        settings.isKsx1001Only = isKsx1001Only;
        return escPosJob(job.lines, settings).mid(kStart.size());
    }

    test::TestDevice device_;
};

TEST_F(Printers, AJobIsTheseBytes) {
    test::needApplication();
    PrinterSettings settings = fileSettings();
    settings.cut = PrinterSettings::Cut::Feed;
    setPrinter(std::make_unique<EscPosPrinter>(settings));
    call(1);
    call(26);
    call(10, 4);
    call(11, u" 영수\n");
    call(10, 0);
    call(11, u"가똠 ₩1\n");
    call(11, u"\n");
    call(16, 2);
    call(2);
    call(1);  // Opened for the card reader only.
    call(2);
    EXPECT_EQ(printed(), kStart + QByteArray("\x1D!\x11 \xBF\xB5\xBC\xF6\n\x1D!\x00"
                                             "\xB0\xA1\x8C\x63 \xA3\xDC"
                                             "1\n\n\x1B\x64\x02\x1DV\x42\x00",
                                             29));
    EXPECT_TRUE(test::pump([] { return printerStatus().state == State::Ready; }));
    setPrinter(nullptr);
}

TEST_F(Printers, ALineHoldsNoGarbage) {
    test::needApplication();
    const struct {
        const char16_t* what;
        QString text;
        QByteArray bytes;
    } cases[] = {
        {u"decomposed jamo, what follows stays in its column", u"\x1112\x1161\x11AB  1\n"_s,
         "\xC7\xD1      1\n"},
        {u"a command among the text", u"a\x1B@\t\x7F\n"_s, "a @  \n"},
        {u"a line longer than the paper", QString(31, u'x') + u"가\n"_s,
         QByteArray(31, 'x') + "\n\xB0\xA1\n"},
    };
    for (const auto& [what, text, bytes] : cases)
        EXPECT_EQ(bytesOf(text, true), bytes) << QString::fromUtf16(what).toStdString();

    // A character that the printer lacks makes a picture of its line, columns as ever.
    const struct {
        QString text;
        bool isKsx1001Only;
        int columns;
    } pictures[] = {{u"똠 |\n"_s, true, 4}, {u"é\xD83C\xDF7A|\n"_s, false, 7}};
    for (const auto& [text, isKsx1001Only, columns] : pictures) {
        const QByteArray bytes = bytesOf(text, isKsx1001Only);
        const int width = (columns * 12 + 7) / 8;
        ASSERT_EQ(bytes.first(8), QByteArray("\x1Dv0\x00", 4) + char(width) + '\0' + char(30) + '\0');
        ASSERT_EQ(bytes.size(), 8 + width * 30);
        const QImage image(reinterpret_cast<const uchar*>(bytes.constData()) + 8, width * 8, 30, width,
                           QImage::Format_Mono);
        QList<int> inkInColumn(columns);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < columns * 12; ++x) inkInColumn[x / 12] += image.pixelIndex(x, y);
        EXPECT_GT(inkInColumn.first(), 10);
        EXPECT_GT(inkInColumn.last(), 10);
        EXPECT_TRUE(!text.contains(u' ') || inkInColumn[columns - 2] == 0) << "the blank is blank";
    }
}

TEST_F(Printers, JobsWaitForAPrinterInOrder) {
    test::needApplication();
    test::RecordedTraces traces;
    PrinterSettings settings = fileSettings();
    settings.device = file(u"fifo"_s);
    PrintQueue queue(settings, kQuick);
    EXPECT_TRUE(queue.add("one\n"));
    EXPECT_TRUE(queue.add("two\n"));
    EXPECT_EQ(queue.status().state, State::Fault);
    EXPECT_EQ(queue.status().waitingJobs, 2);
    ASSERT_EQ(::mkfifo(QFile::encodeName(settings.device).constData(), 0600), 0);
    const int reader = ::open(QFile::encodeName(settings.device).constData(), O_RDONLY | O_NONBLOCK);
    QByteArray paper = paperUntilReady(queue, [&] { return readAvailable(reader); });
    EXPECT_EQ(paper, "one\ntwo\n");
    EXPECT_EQ(traces.take().size(), 2) << "the fault and its end, each once";

    // It stops reading: the job stays until the last byte is taken, and nothing waits meanwhile.
    const QByteArray large(200'000, 'x');
    EXPECT_TRUE(queue.add(large));
    EXPECT_TRUE(queue.add("end\n"));
    EXPECT_TRUE(test::pump([&] { return queue.status().state == State::Fault; }));
    EXPECT_EQ(queue.status().waitingJobs, 2);
    paper = paperUntilReady(queue, [&] { return readAvailable(reader); });
    EXPECT_EQ(paper, large + "end\n") << "goes on where it stopped";
    ::close(reader);
}

TEST_F(Printers, ASerialLineIsSetUpAndCarriesEveryByte) {
    test::needApplication();
    const test::Pty pty;
    PrinterSettings settings;
    settings.kind = PrinterSettings::Kind::Serial;
    settings.device = pty.name();
    settings.line.speed = 19200;  // A new line has 38400.
    settings.line.flow = platform::SerialMode::Flow::Software;
    auto queue = std::make_unique<PrintQueue>(settings, kQuick);
    QByteArray job;
    for (int i = 0; i < 256; ++i) job += char(i);
    EXPECT_TRUE(queue->add(job));
    EXPECT_TRUE(test::pump([&] { return queue->status().state == State::Ready; }));
    EXPECT_EQ(readAvailable(pty.far()), job) << "no byte is changed on the way";
    termios mode{};
    ::tcgetattr(pty.near(), &mode);
    EXPECT_FALSE(mode.c_cflag & (HUPCL | CRTSCTS | PARENB)) << "it is not hung up at the end of a job";
    EXPECT_EQ(::cfgetospeed(&mode), speed_t(B19200)) << "an adapter may still hold the last bytes";
}

/// A network printer with little memory, on any free port.
class NetworkPrinter {
  public:
    NetworkPrinter() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        const int little = 4096;
        ::setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &little, sizeof little);
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address_;
        ::bind(listener_, reinterpret_cast<sockaddr*>(&address_), size);
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address_), &size);
        ::listen(listener_, 4);
    }
    ~NetworkPrinter() {
        ::close(connection_);
        ::close(listener_);
    }

    PrinterSettings settings() const {
        PrinterSettings settings;
        settings.kind = PrinterSettings::Kind::Tcp;
        settings.address = u"127.0.0.1"_s;
        settings.port = ntohs(address_.sin_port);
        return settings;
    }
    /// What comes in from the connection at hand, up to its end, and then from the next one. The printer
    /// says something to each and, unless told otherwise, ends it in its turn.
    QByteArray read(bool isEnding = true) {
        if (connection_ < 0) {
            connection_ = ::accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
            if (connection_ < 0) return {};
            [[maybe_unused]] const ssize_t said = ::send(connection_, "\x14", 1, MSG_NOSIGNAL);
        }
        const QByteArray bytes = readAvailable(connection_);
        char byte = 0;
        if (isEnding && ::recv(connection_, &byte, 1, MSG_PEEK) == 0) hangUp();
        return bytes;
    }
    void hangUp() {
        ::close(connection_);
        connection_ = -1;
    }
    /// Breaks the connection as a printer does that loses its power.
    void breakOff() {
        const linger atOnce{1, 0};
        ::setsockopt(connection_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        hangUp();
    }

  private:
    int listener_;
    int connection_ = -1;
    sockaddr_in address_{};
};

TEST_F(Printers, ANetworkPrinterMayStopAndBreakOff) {
    test::needApplication();
    NetworkPrinter printer;
    auto queue = std::make_unique<PrintQueue>(printer.settings(), kQuick);
    QByteArray large;
    while (large.size() < 8'000'000) large += "line " + QByteArray::number(large.size()) + '\n';
    EXPECT_TRUE(queue->add("small\n"));
    EXPECT_TRUE(queue->add(large));
    EXPECT_TRUE(queue->add("end\n"));
    QByteArray paper;
    EXPECT_TRUE(test::pump([&] {
        paper += printer.read();
        return queue->status().waitingJobs == 2;
    }));
    EXPECT_EQ(paper, "small\n");
    // Out of paper: it takes no more. Then it loses its power in the middle of the job.
    EXPECT_TRUE(test::pump([&] { return queue->status().state == State::Fault; }));
    EXPECT_TRUE(test::pump([&] { return !printer.read(false).isEmpty(); }));
    printer.breakOff();
    paper = paperUntilReady(*queue, [&] { return printer.read(); });
    EXPECT_TRUE(paper == '\n' + large + "end\n") << paper.size();

    // One that never ends a connection has its job all the same.
    EXPECT_TRUE(queue->add("silent\n"));
    paper = paperUntilReady(*queue, [&] { return printer.read(false); });
    EXPECT_EQ(paper, "silent\n");

    printer.hangUp();

    // It breaks off its farewell as the program ends: the next program has the job.
    const auto isHanded = [&] { return !QDir(file(u"spool"_s)).entryList({u"*.handed"_s}).isEmpty(); };
    EXPECT_TRUE(test::pump([&] { return !isHanded(); }));
    EXPECT_TRUE(queue->add("late\n"));
    EXPECT_TRUE(test::pump([&] {
        printer.read(false);
        return isHanded();
    }));
    printer.breakOff();
    queue.reset();
    queue = std::make_unique<PrintQueue>(printer.settings(), kQuick);
    paper = paperUntilReady(*queue, [&] { return printer.read(); });
    EXPECT_EQ(paper, "\nlate\n");
}

TEST_F(Printers, JobsOutliveTheProgram) {
    if (QCoreApplication::instance()) GTEST_SKIP() << "this program has an application, and forks";
    NetworkPrinter printer;
    const QByteArray large(8'000'000, 'x');
    const pid_t program = ::fork();
    if (program == 0) {
        test::needApplication();
        PrintQueue queue(printer.settings(), kQuick);
        for (const QByteArray& job : {QByteArray("one\n"), large, QByteArray("three\n")}) queue.add(job);
        // The printer takes the first job and a part of the second.
        test::pump([&] {
            if (queue.status().waitingJobs > 2) printer.read();
            return QFile::exists(file(u"spool/00000002.begun"_s));
        });
        ::raise(SIGKILL);
    }
    int end = 0;
    ::waitpid(program, &end, 0);
    ASSERT_TRUE(WIFSIGNALED(end));
    QByteArray paper;
    while (const qsizetype more = printer.read().size()) paper.append(more, 'x');
    EXPECT_LT(paper.size(), large.size());

    test::needApplication();
    PrintQueue queue(printer.settings(), kQuick);
    EXPECT_EQ(queue.status().waitingJobs, 2);
    // A second program keeps its job and leaves the sending to the first.
    PrintSpool other;
    EXPECT_TRUE(test::pump([] { return !PrintSpool().lock(); }));
    EXPECT_TRUE(other.add("four\n"));
    paper = paperUntilReady(queue, [&] { return printer.read(); });
    EXPECT_TRUE(paper.endsWith('\n' + large + "three\nfour\n")) << paper.size();
    EXPECT_FALSE(paper.contains("one")) << "what went out whole does not come again";
    EXPECT_TRUE(test::pump([&] { return other.lock(); })) << "let go of when nothing waits";
    // What another program leaves is found without a job of one's own.
    other.unlock();
    EXPECT_TRUE(other.add("five\n"));
    EXPECT_TRUE(test::pump([&] { return printer.read() == "five\n"; }));
}

}  // namespace
