#include <gtest/gtest.h>

#include <QApplication>

#include "ui/Fonts.h"

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    ui::prepareFonts();
    return RUN_ALL_TESTS();
}
