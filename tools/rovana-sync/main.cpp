#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

#include "platform/OwnerOnly.h"
#include "rovana-sync/Program.h"

int main(int argc, char* argv[]) {
    platform::keepToOwner();
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return terminal_sync::run(QCoreApplication::arguments(), out, err);
}
