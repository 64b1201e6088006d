#include <QCoreApplication>
#include <QTextStream>
#include <clocale>

#include "platform/OwnerOnly.h"
#include "rovana-office/Command.h"

int main(int argc, char* argv[]) {
    platform::keepToOwner();
    std::setlocale(LC_ALL, "");
    const QCoreApplication application(argc, argv);
    QTextStream in(stdin);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return office::run(QCoreApplication::arguments(), in, out, err);
}
