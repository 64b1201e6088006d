#pragma once

/// The card host that a demonstration device has in its folder `cardhost`.
namespace desk {

/// True when the terminal's card host is that one: the two public keys are the same.
bool isDemoHost();

/// Lets the demonstration host answer nothing, or answer again. False when its folder does not take that.
bool setHostSilent(bool isSilent);

}  // namespace desk
