#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QEventLoop>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

#include "platform/Address.h"
#include "platform/CardNumber.h"
#include "platform/Device.h"
#include "platform/Settings.h"
#include "platform/SystemReason.h"
#include "platform/termdev/CardReader.h"
#include "platform/termdev/DeviceLine.h"
#include "platform/termdev/Devices.h"
#include "platform/termdev/PrintSpool.h"
#include "platform/termdev/Printer.h"
#include "print/Document.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;
using platform::PrinterSettings;
using platform::ReaderSettings;

constexpr int kConnectMilliseconds = 1000;
constexpr int kPrintMilliseconds = 10'000;
constexpr int kLongestTry = 600;  // seconds

void tellComplaints(const platform::Settings& settings, QTextStream& err) {
    for (const QString& complaint : settings.complaints) err << complaint << u'\n';
}

/// Why the file cannot be opened; empty when it can. How its line is set stays as it is.
QString faultOfFile(const QString& path, int flags) {
    const int line = openDevice(path, flags);
    if (line < 0) return platform::systemReason();
    ::close(line);
    return {};
}

/// Why the printer's address does not answer; empty when it does.
QString faultOfAddress(const QString& address, int port) {
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(QHostAddress(address), quint16(port));
    return socket.waitForConnected(kConnectMilliseconds) ? QString() : socket.errorString();
}

Outcome listDevices(const Invocation& call) {
    const platform::Settings settings = platform::readSettings();
    tellComplaints(settings, call.err);
    bool isWell = settings.complaints.isEmpty();
    const auto tell = [&](QStringView what, QStringView kind, const QString& where, const QString& fault) {
        call.out << what << u'\t' << kind << u'\t' << where << u'\t'
                 << (fault.isEmpty() ? u"there"_s : u"missing: "_s + fault) << u'\n';
        isWell = isWell && fault.isEmpty();
    };
    const PrinterSettings& printer = settings.printer;
    switch (printer.kind) {
        case PrinterSettings::Kind::Roll: tell(u"printer", u"roll", u"roll.txt"_s, {}); break;
        case PrinterSettings::Kind::File:
            tell(u"printer", u"file", printer.device, faultOfFile(printer.device, O_WRONLY | O_APPEND));
            break;
        case PrinterSettings::Kind::Serial:
            tell(u"printer", u"serial", printer.device, faultOfFile(printer.device, O_RDWR));
            break;
        case PrinterSettings::Kind::Tcp:
            tell(u"printer", u"tcp", platform::endpointText(printer.address, quint16(printer.port)),
                 faultOfAddress(printer.address, printer.port));
            break;
    }
    call.out << u"spool\t"_s << PrintSpool().count() << u" jobs wait\n"_s;
    const ReaderSettings& reader = settings.reader;
    if (reader.kind == ReaderSettings::Kind::None) {
        tell(u"reader", u"none", u"card.socket"_s, {});
    } else {
        const bool isSerial = reader.kind == ReaderSettings::Kind::Serial;
        const bool isEvdev = reader.kind == ReaderSettings::Kind::Evdev;
        tell(u"reader",
             isSerial  ? u"serial"
             : isEvdev ? u"evdev"
                       : u"hidraw",
             reader.device, faultOfFile(reader.device, isSerial ? O_RDWR : O_RDONLY));
    }
    // What else is plugged in, to be named in rovana.conf.
    for (const auto& [folder, names] :
         {std::pair{u"/dev/usb"_s, QStringList{u"lp*"_s}},
          std::pair{u"/dev"_s, QStringList{u"ttyUSB*"_s, u"ttyACM*"_s, u"hidraw*"_s, u"lp*"_s}},
          std::pair{u"/dev/input/by-id"_s, QStringList{u"*-event-kbd"_s}}}) {
        const QDir::Filters all = QDir::Files | QDir::System;
        for (const QString& name : QDir(folder).entryList(names, all))
            call.out << u"found\t"_s << folder << u'/' << name << u'\n';
    }
    return isWell ? Outcome() : failure(u"not all is as rovana.conf names it"_s);
}

print::Document testPage() {
    using Rule = print::Document::Rule;
    print::Document page(u"시험 인쇄");
    page.rule(Rule::Double);
    page.line(u"12345678901234567890123456789012");
    page.line(u"가나다라마바사아자차카타파하거너");
    page.labelAmount(u"금액", platform::Won(1'234'567));
    page.labelAmount(u"₩ × · ─", platform::Won(-1));
    // Syllables that are not in KS X 1001: a printer without them needs ksx1001 = yes.
    page.line(u"똠방각하 펲시 쀍                |");
    page.blank();
    page.rule(Rule::Thin);
    return page;
}

/// Prints the page and returns whether the printer took or kept it, which no print job of the screens learns.
bool print(const print::Document& page, Printer& printer) {
    printer.open();
    printer.initialise();
    printer.setSize(4);
    printer.print(page.title());
    printer.setSize(0);
    for (const QString& line : page.lines()) printer.print(line);
    printer.feed(2);
    return printer.close() == 1;
}

Outcome printTest(const Invocation& call) {
    const platform::Settings settings = platform::readSettings();
    tellComplaints(settings, call.err);
    const std::unique_ptr<Printer> printer = makePrinter(settings);
    if (!print(testPage(), *printer)) {
        return failure(u"the page cannot be written below %1; is its disk full, and the folder yours?"_s.arg(
            platform::device::folder()));
    }
    QEventLoop loop;
    setStatusObserver([&] {
        if (printer->status().state == DeviceStatus::State::Ready) loop.quit();
    });
    QTimer::singleShot(kPrintMilliseconds, &loop, &QEventLoop::quit);
    if (printer->status().state != DeviceStatus::State::Ready) loop.exec();
    setStatusObserver({});
    const DeviceStatus status = printer->status();
    if (status.state == DeviceStatus::State::Ready) {
        call.out << u"the page is out\n"_s;
        return {};
    }
    return failure(u"%1; %2 jobs are kept and go out when the printer is back"_s
                       .arg(status.fault.isEmpty() ? u"the printer is still at work"_s : status.fault)
                       .arg(status.waitingJobs));
}

void addSwipeTestOptions(QCommandLineParser& parser) {
    parser.addOption({u"seconds"_s, u"How long to wait for a card, 30 without it."_s, u"N"_s, u"30"_s});
}

Outcome swipeTest(const Invocation& call) {
    bool isNumber = false;
    const int seconds = call.options.value(u"seconds"_s).toInt(&isNumber);
    if (!isNumber || seconds < 1 || seconds > kLongestTry)
        return usageError(u"--seconds takes a number from 1 to %1"_s.arg(kLongestTry));
    const platform::Settings settings = platform::readSettings();
    tellComplaints(settings, call.err);
    if (settings.reader.kind == ReaderSettings::Kind::None)
        return failure(u"rovana.conf names no card reader"_s);
    CardReader& reader = CardReader::instance();
    reader.open();
    reader.enable(true);
    const CardReaderLine line(settings.reader);
    QEventLoop loop;
    std::optional<QString> told;
    reader.setReceiver([&](int) {
        char buffer[kTrackBufferBytes];
        reader.readTrack(2, buffer);
        told =
            u"card %1, track 2 of %2 characters"_s.arg(platform::maskedCardNumber(QLatin1StringView(buffer)))
                .arg(qstrlen(buffer));
        reader.readTrack(3, buffer);
        *told += u", track 3 of %1"_s.arg(qstrlen(buffer));
        sodium_memzero(buffer, sizeof buffer);
        loop.quit();
    });
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    if (line.status().fault.isEmpty()) {
        call.err << u"swipe a card\n"_s;
        call.err.flush();
        loop.exec();
    }
    reader.setReceiver({});
    reader.close();
    if (told) {
        call.out << *told << u'\n';
        return {};
    }
    const QString fault = line.status().fault;
    return failure(fault.isEmpty() ? u"no whole swipe came"_s : fault);
}

}  // namespace

constinit const Command kDevicesCommand{
    u"devices",
    u"",
    u"lists printer and card reader, and what is plugged in",
    u"Lines are: what, kind, where, and whether it is there. Fails when one that rovana.conf names is not.",
    0,
    0,
    nullptr,
    listDevices};

constinit const Command kPrintTestCommand{
    u"print-test",
    u"",
    u"prints a test page on the printer",
    u"Waits ten seconds for the printer; a page that it does not take waits with the other jobs.",
    0,
    0,
    nullptr,
    printTest};

constinit const Command kSwipeTestCommand{
    u"swipe-test",
    u"",
    u"reads one card and tells its masked number",
    u"No track is shown. The terminal must not run, because it keeps the reader for itself.",
    0,
    0,
    addSwipeTestOptions,
    swipeTest};

}  // namespace admin
