// The terminal's program itself, up to the first paint of the login screen.

#include "FirstPaint.h"
#include "Program.h"
#include "ui/Screen.h"
#include "ui/Terminal.h"

int main(int argc, char** argv) {
    return runProgram(argc, argv, [](ui::Terminal& terminal) {
        QObject::connect(&terminal, &ui::Terminal::topChanged, &terminal, [](ui::Screen* screen) {
            if (screen != nullptr) new bench::FirstPaint(screen);
        });
    });
}
