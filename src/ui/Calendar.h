#pragma once

class QDateEdit;

namespace ui {

/// Gives the date picker a calendar that is no wider than the terminal's screen and opens on it.
void addCalendar(QDateEdit* date);

}  // namespace ui
