#pragma once

#include <QFont>

namespace ui {

/// The four bold "tahoma" fonts that the screens share, named by their line height in pixels.
enum class FontHeight { Small = 16, Medium = 18, Large = 19, Title = 20 };

/// One of the shared fonts. Its lines are as many pixels high as its name says.
const QFont& font(FontHeight height);

/// Makes the medium font that of every control without one of its own. Call once, before the first screen.
void prepareFonts();

}  // namespace ui
