#pragma once

namespace ui {

/// What is heard, for who looks at the customer rather than at the screen.
enum class Sound { Swipe, Approved, Refused };

/// Turns the sounds on or off; they are off at first.
void setSounds(bool areOn);

/// Plays the sound through the machine's own player, or without one as the desktop's bell. Returns at once,
/// whatever becomes of it.
void play(Sound sound);

}  // namespace ui
