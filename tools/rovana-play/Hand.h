#pragma once

#include <QPoint>
#include <Qt>

/// What a finger and a keyboard do, event by event, as a display hands it over: each event comes from the
/// event loop that runs by then, which may be that of a dialog which the event before it has opened.
namespace pilot {

/// From here on xdotool moves the display's own pointer and strikes its keys, for a terminal in a window of
/// X11.
void useDisplay();

/// How often a finger came down since the program began.
int touches();

/// True until the last event of what was asked for has been handed over.
bool isHandBusy();

/// The places are in the terminal's window. Two touches are never a double one.
void touch(QPoint place);
/// A double touch: the second comes whatever the first has opened.
void touchTwice(QPoint place);
/// Puts the finger down at one place, moves it to another, where it rests, and lifts it there.
void slide(QPoint from, QPoint to);

/// Presses a key of the keyboard and lets it go.
void strike(Qt::Key key);

}  // namespace pilot
