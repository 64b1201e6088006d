#include <QFile>
#include <QFileInfo>

#include "books/PaymentJournal.h"
#include "common/Enrolment.h"
#include "platform/Address.h"
#include "platform/Device.h"
#include "platform/message/SavedValues.h"
#include "platform/message/Seal.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;

void addCardHostOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {u"host"_s, u"The host's IPv4 or IPv6 address, with its port behind it or not."_s, u"IP[:N]"_s},
        {u"port"_s, u"The host's TCP port."_s, u"N"_s},
        {u"key"_s, u"The file with the host's public key, host.pub of its folder."_s, u"FILE"_s},
        {u"terminal"_s, u"The terminal's number at the host; without it the one there is, else a new one."_s,
         u"DIGITS"_s},
    });
}

QString newTerminal() {
    constexpr qsizetype kTerminalDigits = 10;
    QString digits;
    while (digits.size() < kTerminalDigits) digits += QChar(u'0' + char16_t(randombytes_uniform(10)));
    return digits;
}

/// What a call asks for.
struct Wanted {
    QString address;
    quint16 port = 0;
    QString terminal;  ///< Empty when none is named.
    QString keyFile;
    PublicKey key;
};

/// Reads the call's options and the key; a failure when they are not as they must be.
Outcome readOptions(const QCommandLineParser& options, Wanted* wanted) {
    constexpr qint64 kLargestKeyFile = 1024;
    const std::optional<platform::Endpoint> host = platform::parseEndpoint(options.value(u"host"_s));
    if (!options.isSet(u"host"_s) || !options.isSet(u"key"_s) ||
        (options.isSet(u"port"_s) == (host && host->port > 0)))
        return usageError(u"--host, --port and --key are needed, the port once"_s);
    if (!host) return usageError(u"--host takes an address such as 127.0.0.1, ::1 or [::1]:40001"_s);
    bool isPort = true;
    const quint16 port = host->port > 0 ? host->port : options.value(u"port"_s).toUShort(&isPort);
    if (!isPort || port == 0) return usageError(u"--port takes a number from 1 to 65535"_s);
    const QString terminal = options.value(u"terminal"_s);
    if (options.isSet(u"terminal"_s) && !cardhost::isTerminalNumber(terminal))
        return usageError(u"--terminal takes up to ten digits"_s);

    QFile file(options.value(u"key"_s));
    if (!file.open(QIODevice::ReadOnly))
        return failure(u"%1 cannot be read: %2"_s.arg(file.fileName(), file.errorString()));
    const std::optional<PublicKey> key = parsePublicKey(file.read(kLargestKeyFile));
    if (!key)
        return failure(u"%1 holds no public key: 64 hexadecimal digits are wanted"_s.arg(file.fileName()));
    *wanted = {host->address, port, terminal, file.fileName(), *key};
    return {};
}

/// Why the terminal may not go to the host with that key under that number; empty when it may.
QString findHindrance(const PublicKey& key, QStringView terminal) {
    // Another host has never seen the payment, and would let the terminal say that nothing was charged.
    PublicKey before{};
    if (readHostKey(&before) == kDone && before != key && books::hasUnsettledPayments()) {
        return u"what became of a payment is open, and only the host of before can tell: log in at the "
               u"terminal while it answers, or see \"rovanactl journal --help\""_s;
    }

    SavedValues values;
    readSavedValues(&values);
    // The host knows a payment by the number of the terminal that sent it.
    const QString known = values.value(kTerminalKey.toString());
    const bool isAnother = known.isEmpty() ? terminal.isEmpty() : !terminal.isEmpty() && terminal != known;
    if (isAnother && books::hasUnsettledPayments()) {
        return u"what became of a payment is open, and the host tells it to the number of before only: give "
               u"that with --terminal, or see \"rovanactl journal --help\""_s;
    }
    return {};
}

Outcome setCardHost(const Invocation& call) {
    Wanted wanted;
    if (Outcome wrong = readOptions(call.options, &wanted); wrong.exitCode != kSuccess) return wrong;
    const auto& [address, port, terminal, keyFile, key] = wanted;
    if (startCipher() != kDone) return failure(u"the cipher library does not start"_s);
    if (const QString hindrance = findHindrance(key, terminal); !hindrance.isEmpty())
        return failure(hindrance);
    SavedValues values;
    readSavedValues(&values);  // Without readable ones they are made anew.
    values[kHostAddressKey.toString()] = savedAddress(address);
    values[kHostPortKey.toString()] = QString::number(port);
    QString& number = values[kTerminalKey.toString()];
    if (!terminal.isEmpty()) number = terminal;
    if (number.isEmpty()) number = newTerminal();
    // First, because a key alone changes nothing.
    SigningKey own;
    QString error;
    if (makeSigningKey(&own, &error) != kDone) {
        return failure(u"%1 holds no key%2; the card host is as it was; see \"rovanactl check\""_s.arg(
            platform::device::path(kSigningKeyFile),
            error.isEmpty() ? QString() : u", and none can be written: "_s + error));
    }
    if (!writeCardHost(values, key, &error)) {
        return failure(
            u"the card host could not be written to %1 (%2); it is as it was; is there a device folder?"_s
                .arg(QFileInfo(platform::device::path(kSavedValuesFile)).absolutePath(), error));
    }
    call.out << u"terminal "_s << number << u" uses the card host "_s << platform::endpointText(address, port)
             << u'\n';
    // A host of this machine, as that of the demonstration, is told here and now.
    const QString hostFolder = QFileInfo(keyFile).absolutePath();
    const bool isHere = QFileInfo(hostFolder + u"/host.key"_s).isWritable();
    if (isHere && cardhost::enrolTerminal(hostFolder, number, own.publicKey, &error)) {
        call.out << u"and is enrolled there\n"_s;
        return {};
    }
    call.out << u"the host answers it after: rovana-cardhost enrol --dir HOSTDIR --terminal "_s << number
             << u" --key "_s << QString::fromLatin1(QByteArrayView(own.publicKey).toByteArray().toHex())
             << u'\n';
    return isHere ? failure(u"it could not be enrolled in %1: %2"_s.arg(hostFolder, error)) : Outcome();
}

}  // namespace

constinit const Command kCardHostCommand{
    u"card-host",
    u"",
    u"tells the terminal its card host",
    u"Writes the address, the port, the terminal's number and the host's public key into the device folder,\n"
    "in place of those of before. A running terminal uses them with its next request. The terminal gets a "
    "key of\n"
    "its own, by which the host has to know it: where host.pub lies in the host's own folder it is enrolled "
    "at\n"
    "once, else the command for it is shown. Another host or number is refused while it is open what became\n"
    "of a payment, see \"rovanactl journal --open\".",
    0,
    0,
    addCardHostOptions,
    setCardHost};

}  // namespace admin
