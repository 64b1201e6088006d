#pragma once

#include <functional>

namespace ui {
class Terminal;
}

/// The terminal's program: reads the command line, opens the window and runs the application on it. Returns
/// the exit code; --help, --version and a wrong option end the process here. `terminalMade` is told of the
/// terminal before its first screen opens.
int runProgram(int argc, char** argv, const std::function<void(ui::Terminal&)>& terminalMade = {});
