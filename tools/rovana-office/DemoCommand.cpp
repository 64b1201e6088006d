#include <signal.h>
#include <sys/prctl.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <array>

#include "db/ImportFile.h"
#include "platform/WholeFile.h"
#include "rovana-office/Board.h"
#include "rovana-office/Command.h"
#include "rovana-office/Database.h"
#include "rovana-office/demo/Cluster.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kKeep = u"keep"_s;
const QString kDatabase = u"rovana"_s;
/// The day that the visits set their clock to.
const QString kDay = u"2026-11-21"_s;

/// Each terminal's salesmen: on the third, C drives to B's customers. The last terminal stays at home.
constexpr std::array<QStringView, 4> kUsers{u"A", u"B", u"B,C", u"D"};
constexpr int kTerminalsAtWork = 3;

void addDemoOptions(QCommandLineParser& parser) {
    parser.addOption({kKeep, u"Keeps the server until Enter is pressed, and says how to reach it."_s});
}

/// Beside this program, or of the path.
QString programOf(const QString& name) {
    const QString beside = QCoreApplication::applicationDirPath() + u'/' + name;
    const QString program = QFile::exists(beside) ? beside : QStandardPaths::findExecutable(name);
    if (program.isEmpty()) throw Fault(name + u" is not here; it comes with the terminal's package"_s);
    return program;
}

/// The demonstration at work in its folder.
class Demo {
  public:
    Demo(const Invocation& call, const QString& folder, Cluster& cluster)
        : call_(call), folder_(QDir(folder).absolutePath()), cluster_(cluster) {}

    void run() {
        office({u"init"_s});
        for (int number = 1; number <= kTerminalsAtWork; ++number)
            start(u"rovanactl"_s, {u"init"_s, terminal(number), u"--demo"_s, u"--date"_s, kDay});
        loadMasterData();
        for (int number = 1; number <= int(kUsers.size()); ++number) enrol(number);
        for (int number = 1; number <= kTerminalsAtWork; ++number) {
            start(u"rovana-sync"_s, {u"--device"_s, terminal(number)});
            play(number);
            start(u"rovana-sync"_s, {u"--device"_s, terminal(number)});
        }
        const Connection connection = connectToOffice();
        const Board board = readBoard(*connection, kDay);
        QString error;
        if (!platform::writeWholeFile(page(), boardPage(board), &error))
            throw Fault(u"%1 cannot be written: %2"_s.arg(page(), error));
        call_.out << u'\n' << boardText(board);
    }

    QString page() const { return folder_ + u"/board.html"_s; }

  private:
    QString terminal(int number) const { return folder_ + u"/terminal-%1"_s.arg(number); }

    /// Runs a command of this program.
    void office(const QStringList& arguments) {
        const QString database = cluster_.administrator(kDatabase);
        if (office::run(QStringList{u"rovana-office"_s} + arguments + QStringList{u"--database"_s, database},
                        call_.in, call_.out, call_.err) != 0)
            throw Fault(u"rovana-office %1 failed"_s.arg(arguments.first()));
        call_.out.flush();
    }

    /// Runs another program to its end and shows what it says.
    void start(const QString& name, const QStringList& arguments) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // It does not outlive this program.
        process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
        process.start(programOf(name), arguments);
        if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
            process.exitCode() != 0)
            throw Fault(u"%1 %2 failed"_s.arg(name, arguments.first()));
        call_.out << QString::fromUtf8(process.readAllStandardOutput());
        call_.out.flush();
    }

    /// The files that lie on the first terminal are the office's; the terminals fetch them from there.
    void loadMasterData() {
        QStringList files;
        for (const db::ImportFile& file : db::importFiles()) {
            const QString path = terminal(1) + u"/My Documents/%1"_s.arg(file.fileName);
            if (QFile::exists(path)) files << path;
        }
        office(QStringList(u"load"_s) + files);
        for (int number = 1; number <= kTerminalsAtWork; ++number) {
            for (const db::ImportFile& file : db::importFiles())
                QFile::remove(terminal(number) + u"/My Documents/%1"_s.arg(file.fileName));
        }
    }

    void enrol(int number) {
        const QString access = number <= kTerminalsAtWork ? terminal(number) + u"/office.conf"_s
                                                          : folder_ + u"/office-%1.conf"_s.arg(number);
        office({u"enrol"_s, QString::number(number), u"--users"_s, kUsers[number - 1].toString(), u"--host"_s,
                u"localhost"_s, u"--port"_s, QString::number(cluster_.port()), u"--authority"_s,
                cluster_.authority(), u"--out"_s, access});
    }

    void play(int number) {
        const QString script = folder_ + u"/terminal-%1.visit"_s.arg(number);
        QFile::remove(script);
        if (!QFile::copy(u":/demo/%1.visit"_s.arg(number), script))
            throw Fault(script + u" cannot be written"_s);
        start(u"rovana-play"_s,
              {script, u"--device"_s, terminal(number), u"--shots"_s, terminal(number) + u"/shots"_s});
        call_.out << u"terminal %1 has played its visits\n"_s.arg(number);
    }

    const Invocation& call_;
    QString folder_;
    Cluster& cluster_;
};

Outcome demo(const Invocation& call) {
    const QString& folder = call.arguments[0];
    if (!Cluster::isThere())
        return failure(u"PostgreSQL's server is not on this machine; it is Debian's package postgresql"_s);
    if (!QDir(folder).isEmpty()) return failure(folder + u" is not empty"_s);
    if (!QDir().mkpath(folder)) return failure(folder + u" cannot be made"_s);
    Cluster& cluster = Cluster::instance();
    Demo demo(call, folder, cluster);
    demo.run();
    call.out << u"the page: %1\n"_s.arg(demo.page());
    if (call.options.isSet(kKeep)) {
        call.out << u"the server goes on until Enter is pressed: --database \"%1\"\n"_s.arg(
            cluster.administrator(kDatabase));
        call.out.flush();
        call.in.readLine();
    }
    return {};
}

}  // namespace

constinit const Command kDemoCommand{
    u"demo",
    u"DIR",
    u"plays an office with three terminals in an empty folder",
    u"Starts a PostgreSQL of its own, loads an invented wholesaler's data, lets four terminals in, plays "
    u"the\n"
    u"visits of three salesmen, sends their day, and writes the page of the board. --database is not used.",
    1,
    1,
    addDemoOptions,
    demo};

}  // namespace office
