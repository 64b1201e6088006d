#include <gtest/gtest.h>

#include <QApplication>

#include "ui/FontList.h"
#include "ui/Fonts.h"

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    ui::useOwnFontList();
    QApplication application(argc, argv);
    ui::prepareFonts();
    return RUN_ALL_TESTS();
}
