// minimal-list DATABASE: the least that a Qt program does to show all products in the terminal's font. It
// prints its memory when the list is painted.

#include <QApplication>
#include <QTableView>
#include <QTimer>

#include "MinimalModel.h"
#include "PrivateMemory.h"

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QFont font(QStringLiteral("NanumGothic"));
    font.setPixelSize(12);
    font.setBold(true);
    QApplication::setFont(font);
    sqlite3* database = nullptr;
    if (argc != 2 || sqlite3_open(argv[1], &database) != SQLITE_OK) return 1;
    bench::MinimalModel model(database, "SELECT PCode, PName, Size, Gubun FROM PUMMOK ORDER BY PCode DESC",
                              {}, 4);
    QTableView list;
    list.setModel(&model);
    list.setFixedSize(240, 320);
    list.show();
    QTimer::singleShot(200, &list, [] {
        bench::tellPrivateMemory();
        QCoreApplication::quit();
    });
    return QApplication::exec();
}
