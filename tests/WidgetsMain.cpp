#include <gtest/gtest.h>

#include <QApplication>

#include "ui/FontList.h"
#include "ui/Fonts.h"
#include "ui/KoreanTexts.h"
#include "ui/Style.h"

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    ui::useOwnFontList();
    QApplication application(argc, argv);
    ui::prepareStyle();
    ui::prepareFonts();
    ui::speakKorean();
    return RUN_ALL_TESTS();
}
