#include "rovana-cardhost/Program.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QRegularExpression>

#include "common/Enrolment.h"
#include "desk/demo/DemoCards.h"
#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/OwnerOnly.h"
#include "platform/Sync.h"
#include "platform/Trace.h"
#include "platform/Wipe.h"
#include "platform/message/SavedValues.h"
#include "rovana-cardhost/Faults.h"
#include "rovana-cardhost/Keys.h"
#include "rovana-cardhost/Ledger.h"
#include "rovana-cardhost/Server.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kUsage =
    u"Usage: rovana-cardhost --dir DIR [--port N] [--demo] [--fault NAME[@N]]... [--clock \"yyyy-MM-dd "
    u"HH:mm\"]\n"
    "       rovana-cardhost card --dir DIR --balance WON --limit WON\n"
    "       rovana-cardhost cards --dir DIR\n"
    "       rovana-cardhost enrol --dir DIR --terminal NUMBER --key KEY\n"
    "       rovana-cardhost forget --dir DIR --terminal NUMBER\n"
    "       rovana-cardhost terminals --dir DIR\n"
    "The card network's host: keeps cards and payments in DIR and answers terminals on 127.0.0.1. Keys and\n"
    "ledger are made at the first start; DIR/host.pub goes to the terminals.\n"
    "\"card\" enters a card or replaces what is known of it, and reads two lines: its track 3 as a reader\n"
    "gives it, and its password of four characters. \"cards\" lists numbers, balances and limits.\n"
    "Only terminals that were enrolled get answers. \"enrol\" enters one, or gives it another key: the 64\n"
    "hexadecimal digits that \"rovanactl card-host\" shows. \"forget\" takes it out, \"terminals\" lists "
    "them.\n";

struct Options {
    QString folder;
    quint16 port = 0;
    bool isDemo = false;
    QList<Fault> faults;
    QString command;
    qint64 balance = 0;
    qint64 limit = 0;
    QString terminal;
    std::optional<platform::message::PublicKey> key;
};

/// "--fault late 3" in two words is "--fault 'late 3'".
QStringList joinLate(const QStringList& arguments) {
    static const QRegularExpression seconds(u"\\A[0-9.]+(@[0-9]+)?\\z"_s);
    QStringList joined;
    for (const QString& argument : arguments) {
        const bool isAfterLate = joined.size() >= 2 && joined.last() == u"late" &&
                                 joined[joined.size() - 2] == u"--fault" &&
                                 seconds.match(argument).hasMatch();
        if (isAfterLate) {
            joined.last() += u' ' + argument;
        } else {
            joined << argument;
        }
    }
    return joined;
}

void addOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {{u"h"_s, u"help"_s}, u"Shows this help."_s},
        {u"dir"_s, u"The host's folder, made when there is none."_s, u"DIR"_s},
        {u"port"_s, u"The port to listen on; 0, or without it, any free one."_s, u"N"_s},
        {u"demo"_s, u"Enters the demonstration's cards that are not there yet."_s},
        {u"fault"_s, u"Misbehaves at the Nth request, at every one without @N: "_s + faultNames() + u'.',
         u"NAME[@N]"_s},
        {u"clock"_s, u"Stops the host's clock, for tests."_s, u"yyyy-MM-dd HH:mm"_s},
        {u"balance"_s, u"The account's balance, won."_s, u"WON"_s},
        {u"terminal"_s, u"A terminal's number, up to ten digits."_s, u"NUMBER"_s},
        {u"key"_s, u"The terminal's public key."_s, u"KEY"_s},
        {u"limit"_s, u"The most that one payment may take, won."_s, u"WON"_s},
    });
}

/// What is wrong with the command line; empty when nothing is.
QString read(const QCommandLineParser& parser, Options* options) {
    if (parser.positionalArguments().size() > 1) return u"too many arguments"_s;
    options->command = parser.positionalArguments().value(0);
    const bool isCard = options->command == u"card";
    const bool isEnrol = options->command == u"enrol";
    const bool isTerminalWanted = isEnrol || options->command == u"forget";
    if (!isCard && !isTerminalWanted && !options->command.isEmpty() && options->command != u"cards" &&
        options->command != u"terminals")
        return u"there is no command \"%1\""_s.arg(options->command);
    options->folder = parser.value(u"dir"_s);
    if (options->folder.isEmpty()) return u"--dir DIR is needed"_s;
    bool isNumber = true;
    if (parser.isSet(u"port"_s)) options->port = parser.value(u"port"_s).toUShort(&isNumber);
    if (!isNumber) return u"--port takes a number from 0 to 65535"_s;
    for (const QString& text : parser.values(u"fault"_s)) {
        const std::optional<Fault> fault = parseFault(text);
        if (!fault)
            return u"no such fault: \"%1\"; there are %2, each with @N after it or not"_s.arg(text,
                                                                                              faultNames());
        options->faults << *fault;
    }
    if (parser.isSet(u"clock"_s)) {
        const QDateTime moment = QDateTime::fromString(parser.value(u"clock"_s), u"yyyy-MM-dd HH:mm"_s);
        if (!moment.isValid()) return u"--clock takes a moment such as \"2026-11-21 09:05\""_s;
        platform::clock::set(moment);
    }
    options->terminal = parser.value(u"terminal"_s);
    if (parser.isSet(u"terminal"_s) != isTerminalWanted ||
        (isTerminalWanted && !isTerminalNumber(options->terminal)))
        return u"--terminal takes up to ten digits and goes with \"enrol\" and \"forget\""_s;
    options->key = platform::message::parsePublicKey(parser.value(u"key"_s).toLatin1());
    if (parser.isSet(u"key"_s) != isEnrol || (isEnrol && !options->key))
        return u"--key takes 64 hexadecimal digits and goes with \"enrol\""_s;
    options->isDemo = parser.isSet(u"demo"_s);
    const auto readWon = [&](const QString& name, qint64* won) {
        if (parser.isSet(name) != isCard) return false;
        *won = parser.value(name).toLongLong(&isNumber);
        return !isCard || (isNumber && qAbs(*won) <= kLargestAmount);
    };
    if (!readWon(u"balance"_s, &options->balance) || !readWon(u"limit"_s, &options->limit))
        return u"--balance and --limit take amounts in won and go with \"card\""_s;
    return {};
}

QString putCard(Ledger& ledger, const Options& options, QTextStream& in) {
    QString track3 = in.readLine();
    QString password = in.readLine();
    const bool isCard = track3.size() > 1 && password.size() == 4;
    if (isCard) ledger.putCard(track3, password, options.balance, options.limit);
    platform::wipe(&track3);
    platform::wipe(&password);
    return isCard ? QString() : u"two lines are wanted: track 3, and a password of four characters"_s;
}

void listCards(Ledger& ledger, QTextStream& out) {
    for (const CardState& card : ledger.cards()) {
        out << card.number << u'\t' << card.balance << u'\t' << card.limit
            << (card.isLocked ? u"\tlocked\n"_s : u"\n"_s);
    }
}

/// Enrols, forgets or lists terminals; what went wrong, or nothing.
QString runTerminals(const Options& options, QTextStream& out) {
    QString error;
    if (options.command == u"enrol" &&
        !enrolTerminal(options.folder, options.terminal, *options.key, &error)) {
        return u"terminal %1 could not be entered in %2, where nothing has changed: %3"_s.arg(
            options.terminal, options.folder, error);
    }
    if (options.command == u"forget" && !removeTerminal(options.folder, options.terminal))
        return u"there is no terminal %1 in %2, or it cannot be taken out for good"_s.arg(options.terminal,
                                                                                          options.folder);
    if (options.command == u"terminals") {
        for (const QString& number : enrolledTerminals(options.folder)) out << number << u'\n';
    }
    return {};
}

int serve(Ledger& ledger, const Options& options, QTextStream& out, QTextStream& err) {
    if (options.isDemo) {
        for (const desk::DemoCard& card : desk::demoCards()) {
            const QString track = desk::track3(card);
            if (card.isKnown && !ledger.hasCard(track))
                ledger.putCard(track, card.password, card.balance, card.limit);
            // Practice goes on after a new start.
            ledger.unlockCard(track);
        }
    }
    platform::device::setFolder(options.folder);
    if (!platform::openLog()) err << u"rovana-cardhost: no log can be kept in %1\n"_s.arg(options.folder);
    platform::tightenFiles(options.folder);
    Server server(ledger, options.folder, options.faults);
    if (options.isDemo) {
        // Silence lasts no longer than the host that it was asked of.
        const QString silencer = QDir(options.folder).filePath(u"silent"_s);
        QFile::remove(silencer);
        server.setSilencer(silencer);
    }
    if (!server.listen(options.port)) {
        err << u"rovana-cardhost: cannot listen on port %1: %2\n"_s.arg(options.port).arg(server.errorText());
        return kFailure;
    }
    out << u"listening on 127.0.0.1:%1\n"_s.arg(server.port());
    out.flush();
    return QCoreApplication::exec();
}

}  // namespace

int run(const QStringList& arguments, QTextStream& in, QTextStream& out, QTextStream& err) {
    QCommandLineParser parser;
    addOptions(parser);
    const bool isParsed = parser.parse(joinLate(arguments));
    if (isParsed && parser.isSet(u"help"_s)) {
        const QString all = parser.helpText();
        out << kUsage << u'\n' << all.sliced(std::max<qsizetype>(0, all.indexOf(u"Options:")));
        return kSuccess;
    }
    Options options;
    const QString mistake = isParsed ? read(parser, &options) : parser.errorText();
    if (!mistake.isEmpty()) {
        err << u"rovana-cardhost: %1; see \"rovana-cardhost --help\"\n"_s.arg(mistake);
        return kUsageError;
    }
    QString error;
    try {
        if (!platform::makeFolder(options.folder)) {
            error = u"%1 could not be made"_s.arg(options.folder);
        } else if (std::optional<Keys> keys = openKeys(options.folder, &error)) {
            const bool isOfCards = options.command == u"card" || options.command == u"cards";
            if (!isOfCards && !options.command.isEmpty()) {
                error = runTerminals(options, out);
            } else {
                Ledger ledger(options.folder, std::move(*keys));
                if (options.command.isEmpty()) return serve(ledger, options, out, err);
                if (options.command == u"card") error = putCard(ledger, options, in);
                if (options.command == u"cards") listCards(ledger, out);
            }
        }
    } catch (const platform::SqliteError& failure) {
        error = u"the ledger in %1 failed: %2"_s.arg(options.folder, QString::fromUtf8(failure.what()));
    }
    if (error.isEmpty()) return kSuccess;
    err << u"rovana-cardhost: "_s << error << u'\n';
    return kFailure;
}

}  // namespace cardhost
