#include "platform/Clock.h"
#include "platform/Device.h"
#include "rovanactl/Command.h"
#include "rovanactl/DeviceFolder.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

void addInitOptions(QCommandLineParser& parser) {
    const demo::Options usual;
    const auto number = [](quint64 value) { return QString::number(value); };
    parser.addOptions({
        {u"demo"_s, u"Also invents a wholesaler's data and leaves the five import files."_s},
        {u"customers"_s, u"Customers to invent (%1)."_s.arg(usual.customers), u"N"_s},
        {u"products"_s, u"Products to invent (%1)."_s.arg(usual.products), u"N"_s},
        {u"prices"_s, u"Contract prices to invent (%1)."_s.arg(usual.prices), u"N"_s},
        {u"seed"_s, u"The same seed invents the same data (%1)."_s.arg(number(usual.seed)), u"S"_s},
        {u"date"_s, u"The day of the invented orders, today without it."_s, u"yyyy-MM-dd"_s},
    });
}

/// The numbers that were given, in the demo's options; an error for anything else.
QString readDemoOptions(const QCommandLineParser& parser, demo::Options* options) {
    const auto read = [&](const QString& name, auto* number) {
        if (!parser.isSet(name)) return true;
        bool isNumber = false;
        *number = parser.value(name).toULongLong(&isNumber);
        return isNumber;
    };
    quint64 customers = quint64(options->customers);
    quint64 products = quint64(options->products);
    quint64 prices = quint64(options->prices);
    if (!read(u"customers"_s, &customers) || !read(u"products"_s, &products) || !read(u"prices"_s, &prices) ||
        !read(u"seed"_s, &options->seed)) {
        return u"--customers, --products, --prices and --seed take whole numbers"_s;
    }
    constexpr quint64 kBound = 1'000'000'000;
    options->customers = int(std::min(customers, kBound));
    options->products = int(std::min(products, kBound));
    options->prices = int(std::min(prices, kBound));
    const std::optional<QString> date = dateOption(parser, u"date"_s);
    if (!date) return u"--date takes a date such as 2024-03-31"_s;
    options->date = *date;
    return demo::findFault(*options);
}

Outcome init(const Invocation& call) {
    std::optional<demo::Options> demo;
    if (call.options.isSet(u"demo"_s)) {
        if (const QString error = readDemoOptions(call.options, &demo.emplace()); !error.isEmpty()) {
            return usageError(error);
        }
    } else {
        for (const QString& name : {u"customers"_s, u"products"_s, u"prices"_s, u"seed"_s, u"date"_s}) {
            if (call.options.isSet(name)) return usageError(u"--%1 needs --demo"_s.arg(name));
        }
    }
    if (!call.arguments.isEmpty()) {
        if (call.options.isSet(u"device"_s))
            return usageError(u"name the folder once, as DIR or with --device"_s);
        if (call.arguments[0].isEmpty()) return usageError(u"the folder's name is empty"_s);
        platform::device::setFolder(call.arguments[0]);
    }
    if (const QString error = createDevice(demo); !error.isEmpty()) return failure(error);
    call.out << u"made "_s << platform::device::folder() << u'\n';
    if (demo) {
        call.out
            << u"Users A/1111, B/2222, C/3333 and D/4444. The import files wait for the first login, or for\n"
               "\"rovanactl import\".\n"_s;
    } else {
        call.out << u"User A with the password 1111; change it with \"rovanactl user A --password -\".\n"
                    "Next: \"rovanactl load config FILE.csv\" for the wholesaler's particulars, \"rovanactl "
                    "user\" or\n"
                    "\"rovanactl load PDAUSER FILE.csv\" for the salesmen, \"rovanactl load MPUMMOK "
                    "FILE.csv\" for the\n"
                    "frequent products; then copy the office's *.RVN files into \"My Documents\".\n"_s;
    }
    return {};
}

}  // namespace

constinit const Command kInitCommand{
    u"init",
    u"[DIR]",
    u"makes a device folder with its database",
    u"Three folders, the settings file and an empty database with one user. A database that is there\n"
    u"already is never replaced.",
    0,
    1,
    addInitOptions,
    init};

}  // namespace admin
