#include <langinfo.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QTextStream>
#include <clocale>
#include <cstdio>

#include "rovanactl/Command.h"

int main(int argc, char* argv[]) {
    // Whatever this program makes, the rejected lines of an import too, is for its owner's eyes only.
    ::umask(077);
    // The device folder has Korean names; without a UTF-8 locale Qt warns before it helps itself.
    std::setlocale(LC_ALL, "");
    if (qstrcmp(::nl_langinfo(CODESET), "UTF-8") != 0) ::setenv("LC_ALL", "C.UTF-8", 1);

    QCoreApplication application(argc, argv);
    QTextStream in(stdin);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return admin::run(QCoreApplication::arguments(), in, out, err);
}
