// The least that a Qt program with a dialog of twelve buttons does that fills the display, up to its first
// paint.

#include <QApplication>
#include <QDialog>
#include <QGridLayout>
#include <QPushButton>

#include "FirstPaint.h"

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QDialog dialog;
    QGridLayout layout(&dialog);
    for (int i = 0; i < 12; ++i) {
        layout.addWidget(new QPushButton(QStringLiteral("Button %1").arg(i + 1), &dialog), i / 3, i % 3);
    }
    dialog.showFullScreen();
    const bench::FirstPaint firstPaint(&dialog);
    return QApplication::exec();
}
