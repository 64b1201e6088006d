#include <QDir>
#include <QFileInfo>

#include "platform/WholeFile.h"
#include "rovana-office/Board.h"
#include "rovana-office/Command.h"
#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kDate = u"date"_s;
const QString kOut = u"out"_s;

void addBoardOptions(QCommandLineParser& parser) {
    parser.addOption({kDate, u"The day, today without it."_s, u"yyyy-MM-dd"_s});
    parser.addOption({kOut, u"The page; else board-DATE.html."_s, u"FILE"_s});
}

Outcome board(const Invocation& call) {
    const auto date = tools::dateOption(call.options, kDate);
    if (!date) return usageError(u"--date takes a date such as 2026-11-21"_s);
    const QString path = call.options.isSet(kOut) ? call.options.value(kOut) : u"board-%1.html"_s.arg(*date);
    const Connection connection = connectToOffice();
    QString error;
    if (!platform::writeWholeFile(path, boardPage(readBoard(*connection, *date)), &error))
        return failure(u"%1 cannot be written: %2"_s.arg(path, error));
    call.out << u"made %1\n"_s.arg(QFileInfo(path).absoluteFilePath());
    return {};
}

}  // namespace

constinit const Command kBoardCommand{
    u"board",
    u"",
    u"writes the page of a day for a manager",
    u"One file of HTML that needs nothing else, for a screen, a telephone or paper: each salesman's sales,\n"
    u"cash, cards, credit and empties, what is over and short, who has not sent, what does not agree, and\n"
    u"bars by hour and by product. Only its owner may read it, until he lets others.",
    0,
    0,
    addBoardOptions,
    board};

}  // namespace office
