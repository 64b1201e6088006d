#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

#include "platform/OwnerOnly.h"
#include "rovana-cardhost/Program.h"

int main(int argc, char* argv[]) {
    platform::keepToOwner();
    QCoreApplication application(argc, argv);
    QTextStream in(stdin);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return cardhost::run(QCoreApplication::arguments(), in, out, err);
}
