#include <algorithm>

#include "rovana-office/Command.h"
#include "rovana-office/Database.h"
#include "rovana-office/MasterLoad.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kShrink = u"shrink"_s;
const QString kSentUntil = u"sent-until"_s;
const QString kStillCounts =
    u"; what was sent since goes on moving its balances, unless --sent-until says that they have it"_s;

void addLoadOptions(QCommandLineParser& parser) {
    parser.addOption({kShrink, u"Loads a file that has less than half of the rows before, too."_s});
    parser.addOption({kSentUntil,
                      u"The balances of GARAE.RVN have what was sent until then; without it, all."_s,
                      u"\"yyyy-MM-dd HH:mm\""_s});
}

Outcome load(const Invocation& call) {
    QList<MasterFile> files;
    for (const QString& path : call.arguments) {
        files << readMasterFile(path);
        const auto isSame = [&](const MasterFile& each) { return each.name == files.last().name; };
        if (std::ranges::count_if(files, isSame) > 1)
            return usageError(u"%1 is named twice"_s.arg(files.last().name));
    }
    // Prices are handed out by whose the customers are, so these come first.
    std::ranges::stable_sort(files, {}, [](const MasterFile& each) { return each.table != u"garae"; });
    const Connection connection = connectToOffice();
    pqxx::work work(*connection);
    QStringList told;
    bool hasBalances = false;
    for (const MasterFile& file : files) {
        const bool isBalances = file.table == u"garae";
        const MasterLoaded loaded =
            loadMaster(work, file, call.options.isSet(kShrink), isBalances && call.options.isSet(kSentUntil));
        hasBalances = hasBalances || (loaded.version && isBalances);
        told << (loaded.version ? u"%1: version %2, %3 lines, %4 new, %5 gone\n"_s.arg(file.name)
                                      .arg(*loaded.version)
                                      .arg(file.rows.size())
                                      .arg(loaded.added)
                                      .arg(loaded.removed)
                                : u"%1: the office has these lines already%2\n"_s.arg(
                                      file.name, isBalances ? kStillCounts : QString()));
    }
    if (hasBalances) replaceBalances(work, call.options.value(kSentUntil));
    work.commit();
    call.out << told.join(QString());
    return {};
}

}  // namespace

constinit const Command kLoadCommand{
    u"load",
    u"FILE...",
    u"loads master data and orders for the terminals",
    u"Files are MTM, GARAE, PUMMOK, GARAEDANGA, GARAEMAJIN and BARCODE, as .RVN in code page 949 or as .csv "
    u"in UTF-8 with\n"
    u"the columns' names in its first line. All files are loaded, each as a version of its own, or none: a "
    u"line\n"
    u"that no terminal would take is named. MTM adds its new orders, the others replace what was there.\n"
    u"Balances in GARAE count for what the terminals have sent until now.",
    1,
    6,
    addLoadOptions,
    load};

}  // namespace office
