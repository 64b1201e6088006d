#pragma once

#include <chrono>

/// How long a login waits before it answers, so that nobody finds a password by trying. The failures in a row
/// are counted in a file of the device folder, so a new start does not forget them.
namespace app {

/// Enters a try, as a failed one until loginSucceeded() is called: a terminal that is killed while it waits
/// has counted it. Returns how long its answer has to wait: nothing for the first three in a row, then one
/// second, two, four, eight, and ten from there on.
std::chrono::milliseconds enterLoginTry();

/// Forgets the failures.
void loginSucceeded();

}  // namespace app
