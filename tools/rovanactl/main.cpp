#include <langinfo.h>

#include <QGuiApplication>
#include <QTextStream>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <memory>

#include "platform/OwnerOnly.h"
#include "rovanactl/Command.h"

int main(int argc, char* argv[]) {
    // Whatever this program makes, the rejected lines of an import too, is for its owner's eyes only.
    platform::keepToOwner();
    // The device folder has Korean names; without a UTF-8 locale Qt warns before it helps itself.
    std::setlocale(LC_ALL, "");
    if (qstrcmp(::nl_langinfo(CODESET), "UTF-8") != 0) ::setenv("LC_ALL", "C.UTF-8", 1);

    // A test page may hold characters that are drawn, which takes fonts but no display.
    const bool isDrawing =
        std::any_of(argv, argv + argc, [](const char* each) { return qstrcmp(each, "print-test") == 0; });
    if (isDrawing) ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const std::unique_ptr<QCoreApplication> application(isDrawing ? new QGuiApplication(argc, argv)
                                                                  : new QCoreApplication(argc, argv));
    QTextStream in(stdin);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return admin::run(QCoreApplication::arguments(), in, out, err);
}
