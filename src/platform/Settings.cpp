#include "platform/Settings.h"

#include <QFile>
#include <QMap>
#include <QStringBuilder>
#include <algorithm>
#include <initializer_list>
#include <utility>

#include "platform/Address.h"
#include "platform/Device.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kLargestFile = 64 * 1024;
constexpr int kSpeeds[] = {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

/// The values of an INI file by "section/key". QSettings is not used: a semicolon ends its values, and that
/// is what most tracks start with.
class Values {
  public:
    explicit Values(QStringList* complaints) : complaints_(complaints) {}

    void read(const QString& text) {
        QString section;
        int number = 0;
        for (const QStringView raw : QStringView(text).split(u'\n')) {
            ++number;
            const QStringView line = raw.trimmed();
            if (line.isEmpty() || line.startsWith(u'#') || line.startsWith(u';')) continue;
            const qsizetype equals = line.indexOf(u'=');
            if (line.startsWith(u'[') && line.endsWith(u']')) {
                section = line.sliced(1, line.size() - 2).trimmed().toString().toLower();
            } else if (equals <= 0) {
                complain(number, u"neither a [section] nor a key with its value");
            } else {
                const QString key = line.first(equals).trimmed().toString().toLower();
                QStringView value = line.sliced(equals + 1).trimmed();
                if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"'))
                    value = value.sliced(1, value.size() - 2);
                Value& entry = values_[section % u'/' % key];
                if (entry.line > 0)
                    complain(number, QString(u"the key " % key % u" stands a second time; this one counts"));
                entry = {value.toString(), number};
            }
        }
    }

    /// Gives the value to `take`, which returns whether it makes sense; `wanted` names what would.
    template <typename Take>
    void use(const QString& key, const QString& wanted, Take take) {
        const auto found = values_.find(key);
        if (found == values_.end()) return;
        if (!take(found->text)) {
            complain(found->line, QString(u'"' % found->text % u"\" for " % key % u" is ignored; " % wanted %
                                          u" is wanted"));
        }
        values_.erase(found);
    }

    template <typename Value>
    void choose(const QString& key, std::initializer_list<std::pair<QStringView, Value>> choices,
                Value* into) {
        QStringList names;
        for (const auto& choice : choices) names << choice.first.toString();
        use(key, names.join(u", "_s), [&](const QString& text) {
            const auto* found = std::ranges::find_if(choices, [&](const auto& each) {
                return each.first.compare(text, Qt::CaseInsensitive) == 0;
            });
            if (found == choices.end()) return false;
            *into = found->second;
            return true;
        });
    }

    void number(const QString& key, int least, int most, int* into) {
        use(key, u"a number from %1 to %2"_s.arg(least).arg(most), [&](const QString& text) {
            bool isNumber = false;
            const int value = text.toInt(&isNumber);
            if (!isNumber || value < least || value > most) return false;
            *into = value;
            return true;
        });
    }

    void path(const QString& key, QString* into) {
        use(key, u"a path from / on"_s, [&](const QString& text) {
            if (!text.startsWith(u'/')) return false;
            *into = text;
            return true;
        });
    }

    void line(const QString& section, SerialMode* mode) {
        QStringList speeds;
        for (const int speed : kSpeeds) speeds << QString::number(speed);
        use(section + u"/speed"_s, u"one of "_s + speeds.join(u", "_s), [&](const QString& text) {
            if (!speeds.contains(text)) return false;
            mode->speed = text.toInt();
            return true;
        });
        choose(section + u"/flow"_s,
               {{u"none", SerialMode::Flow::None},
                {u"hardware", SerialMode::Flow::Hardware},
                {u"software", SerialMode::Flow::Software}},
               &mode->flow);
        choose(section + u"/parity"_s,
               {{u"none", SerialMode::Parity::None},
                {u"even", SerialMode::Parity::Even},
                {u"odd", SerialMode::Parity::Odd}},
               &mode->parity);
    }

    void complainOfTheRest() {
        for (const auto& [key, value] : values_.asKeyValueRange())
            complain(value.line, QString(u"the key " % key % u" has no meaning"));
    }

  private:
    struct Value {
        QString text;
        int line = 0;
    };

    void complain(int line, QStringView what) {
        complaints_->append(u"rovana.conf, line %1: %2"_s.arg(line).arg(what));
    }

    QMap<QString, Value> values_;
    QStringList* complaints_;
};

void readPrinter(Values* values, Settings* settings) {
    using Kind = PrinterSettings::Kind;
    using Cut = PrinterSettings::Cut;
    PrinterSettings& printer = settings->printer;
    values->choose(
        u"printer/type"_s,
        {{u"roll", Kind::Roll}, {u"file", Kind::File}, {u"serial", Kind::Serial}, {u"tcp", Kind::Tcp}},
        &printer.kind);
    values->path(u"printer/device"_s, &printer.device);
    values->use(u"printer/address"_s, u"an address such as 10.1.2.3 or [fe80::1%eth0]:9100"_s,
                [&](const QString& text) {
                    const std::optional<Endpoint> endpoint = parseEndpoint(text);
                    if (!endpoint) return false;
                    printer.address = endpoint->address;
                    if (endpoint->port > 0) printer.port = endpoint->port;
                    return true;
                });
    values->number(u"printer/port"_s, 1, 65535, &printer.port);
    values->line(u"printer"_s, &printer.line);
    values->choose(
        u"printer/cut"_s,
        {{u"none", Cut::None}, {u"full", Cut::Full}, {u"partial", Cut::Partial}, {u"feed", Cut::Feed}},
        &printer.cut);
    values->choose(u"printer/ksx1001"_s, {{u"yes", true}, {u"no", false}}, &printer.isKsx1001Only);
    const bool isTcp = printer.kind == Kind::Tcp;
    if (printer.kind != Kind::Roll && (isTcp ? printer.address : printer.device).isEmpty()) {
        settings->complaints << u"rovana.conf: the printer's %1 is not named; the paper roll is used"_s.arg(
            isTcp ? u"address"_s : u"device"_s);
        printer.kind = Kind::Roll;
    }
}

void readReader(Values* values, Settings* settings) {
    using Kind = ReaderSettings::Kind;
    using Tracks = ReaderSettings::Tracks;
    ReaderSettings& reader = settings->reader;
    values->choose(u"reader/type"_s,
                   {{u"none", Kind::None},
                    {u"serial", Kind::Serial},
                    {u"evdev", Kind::Evdev},
                    {u"hidraw", Kind::Hidraw}},
                   &reader.kind);
    values->path(u"reader/device"_s, &reader.device);
    values->line(u"reader"_s, &reader.line);
    values->choose(u"reader/tracks"_s,
                   {{u"both", Tracks::Both}, {u"2", Tracks::Only2}, {u"3", Tracks::Only3}}, &reader.tracks);
    for (const auto& [key, starts] : {std::pair{u"reader/track2"_s, &reader.track2Starts},
                                      std::pair{u"reader/track3"_s, &reader.track3Starts}}) {
        values->use(key, u"the characters that may start the track, such as ; + ! B"_s,
                    [into = starts](const QString& text) {
                        const auto isStart = [](QChar c) {
                            return c > u' ' && c < u'\x7f' && !c.isDigit() && c != u'=' && c != u'?';
                        };
                        if (text.isEmpty() || !std::ranges::all_of(text, isStart)) return false;
                        *into = text;
                        return true;
                    });
    }
    if (reader.kind != Kind::None && reader.device.isEmpty()) {
        settings->complaints << u"rovana.conf: the reader's device is not named; it is not used"_s;
        reader.kind = Kind::None;
    }
}

}  // namespace

Settings readSettings() {
    Settings settings;
    QFile file(device::folder() + u"/rovana.conf"_s);
    if (!file.exists()) return settings;
    if (!file.open(QIODevice::ReadOnly)) {
        settings.complaints << u"rovana.conf cannot be read: "_s + file.errorString();
        return settings;
    }
    if (file.size() > kLargestFile)
        settings.complaints << u"rovana.conf: what stands behind its first 64 KiB is not read"_s;
    Values values(&settings.complaints);
    values.read(QString::fromUtf8(file.read(kLargestFile)));
    readPrinter(&values, &settings);
    readReader(&values, &settings);
    values.use(u"screen/scale"_s, u"a number from 0.5 to 8"_s, [&](const QString& text) {
        bool isNumber = false;
        const double scale = text.toDouble(&isNumber);
        if (!isNumber || !(scale >= kSmallestScale && scale <= kLargestScale)) return false;
        settings.scale = scale;
        return true;
    });
    values.choose(u"sound/on"_s, {{u"yes", true}, {u"no", false}}, &settings.hasSound);
    values.number(u"log/kilobytes"_s, 16, 1024 * 1024, &settings.logKilobytes);
    values.number(u"roll/kilobytes"_s, 16, 1024 * 1024, &settings.rollKilobytes);
    values.complainOfTheRest();
    return settings;
}

}  // namespace platform
