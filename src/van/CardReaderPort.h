#pragma once

#include "platform/SecureBytes.h"

/// The card reader's operations of the device library under the names that the system gives them.
namespace van {

/// Lets the reader take cards, or stops it; it then forgets the last one.
void ReaderEnable(bool isEnabled);

/// Copies track 2 or 3 of the last card; empty when the reader has none.
void ReaderTrack(int track, platform::SecureText* text);

}  // namespace van
