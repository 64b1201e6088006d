#include <sys/prctl.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

#include "rovana-cardhost/Program.h"

int main(int argc, char* argv[]) {
    // Keys and ledger are for their owner alone, and no picture of the memory is left behind by a crash.
    ::umask(077);
    ::prctl(PR_SET_DUMPABLE, 0);
    QCoreApplication application(argc, argv);
    QTextStream in(stdin);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return cardhost::run(QCoreApplication::arguments(), in, out, err);
}
