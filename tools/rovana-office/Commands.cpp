#include <array>
#include <pqxx/pqxx>

#include "rovana-office/Command.h"
#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::array kCommands{&kInitCommand, &kUpgradeCommand,  &kEnrolCommand,
                               &kLoadCommand, &kHostListCommand, &kStatusCommand,
                               &kDayCommand,  &kBoardCommand,    &kDemoCommand};

constexpr tools::Program kProgram{
    u"rovana-office",
    u"Makes, fills and reads the office's database, to which the terminals send their days.",
    kCommands,
    u"database",
    u"CONNECTION",
    u"How PostgreSQL is reached, such as \"host=db dbname=office\" or \"service=office\".",
    u"Every command takes --database CONNECTION as libpq reads it; without it PGHOST, PGDATABASE, PGSERVICE\n"
    u"and their like are used. A password belongs into ~/.pgpass: the processes of a machine can be seen.",
    chooseDatabase};

}  // namespace

int run(const QStringList& arguments, QTextStream& in, QTextStream& out, QTextStream& err) {
    try {
        return tools::run(kProgram, arguments, in, out, err);
    } catch (const std::exception& fault) {
        out.flush();
        err << u"rovana-office: "_s << reasonOf(fault) << u"; nothing has changed\n"_s;
        return tools::kFailure;
    }
}

}  // namespace office
