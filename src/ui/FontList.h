#pragma once

namespace ui {

/// Lets this process see the Korean fonts of the Nanum folder alone, where that is installed, instead of all
/// fonts by all rules of the machine, whose reading costs more than the rest of the start. To be called
/// before the application object is made. Without the folder, or where $FONTCONFIG_FILE names other fonts,
/// nothing changes.
void useOwnFontList();

}  // namespace ui
