#pragma once

#include "rovana-sync/Office.h"

namespace terminal_sync {

struct Recovered {
    int days = 0;
    int documents = 0;
    QStringList left;  ///< Documents that cannot be given back, in words.
};

/// Gives the terminal its own days back from the office: each document that it lacks and has not deleted
/// itself, with what it makes of the customer's balance. What is there stays as it is. A day is given back
/// whole or not at all. Throws OfficeError or LocalError; the same again goes on where it was stopped.
Recovered recover(Office& office);

}  // namespace terminal_sync
