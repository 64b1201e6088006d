#pragma once

namespace app {

/// The application object: readies what the screens need and runs the main dialog.
class CRovanaApp {
  public:
    /// Runs the main dialog on the terminal that exists and returns the program's exit code.
    int run();

  private:
    bool initializeSockets();
};

}  // namespace app
