// The terminal's program itself, up to the first paint of the login screen.

#include <cstdlib>

#include "FirstPaint.h"
#include "Program.h"
#include "app/Dialogs.h"
#include "ui/Screen.h"
#include "ui/Terminal.h"

int main(int argc, char** argv) {
    return runProgram(argc, argv, [](ui::Terminal& terminal) {
        QObject::connect(&terminal, &ui::Terminal::topChanged, &terminal, [](ui::Screen* screen) {
            if (screen == nullptr) return;
            // A message that something is wrong is painted sooner.
            if (screen->objectName().toInt() != app::dialogs::kMain) std::_Exit(1);
            new bench::FirstPaint(screen);
        });
    });
}
