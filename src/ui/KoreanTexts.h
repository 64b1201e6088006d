#pragma once

namespace ui {

/// Makes the library's own texts Korean, whatever the machine's language: dates and days, the standard
/// buttons, the file dialog, the menus of edit lines. Needs no translation file. Call once, before the first
/// screen.
void speakKorean();

}  // namespace ui
