// common-visit SCRIPT OPTION...: the terminal's program itself, in which a visit is played. It prints its
// memory when the visit is over.

#include <QCoreApplication>
#include <cstdio>

#include "PrivateMemory.h"
#include "Program.h"
#include "platform/Lines.h"
#include "rovana-play/Pilot.h"
#include "ui/Terminal.h"

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    const QString script = QString::fromLocal8Bit(argv[1]);
    bool isDone = false;
    const int exitCode = runProgram(argc - 1, argv + 1, [&](ui::Terminal& terminal) {
        pilot::Options options;
        options.more = [] {
            // A visit that fingers make takes longer than this module is waited with.
            platform::loadLines();
            bench::tellPrivateMemory();
            return QList<pilot::Step>();
        };
        auto* player = new pilot::Pilot(pilot::readScript(script), options, &terminal);
        QObject::connect(player, &pilot::Pilot::missed, player, [](const QString& failure) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(failure));
        });
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, player,
                         [player, &isDone] { isDone = player->finish(); });
        player->start();
    });
    return isDone ? exitCode : 1;
}
