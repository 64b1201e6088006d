#include "ui/Calendar.h"

#include <QBoxLayout>
#include <QCalendarWidget>
#include <QDateEdit>
#include <QEvent>
#include <QSpinBox>
#include <QToolButton>
#include <algorithm>

#include "ui/Fonts.h"
#include "ui/Terminal.h"

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QSize kCalendarSize(236, 216);

/// The heading names the year before the month: "2026년 11월".
void putYearFirst(QCalendarWidget* calendar) {
    const auto part = [&](const char* name) {
        return calendar->findChild<QWidget*>(QLatin1StringView(name));
    };
    auto* edit = qobject_cast<QSpinBox*>(part("qt_calendar_yearedit"));
    auto* year = qobject_cast<QToolButton*>(part("qt_calendar_yearbutton"));
    QWidget* month = part("qt_calendar_monthbutton");
    QWidget* bar = part("qt_calendar_navigationbar");
    auto* row = bar != nullptr ? qobject_cast<QBoxLayout*>(bar->layout()) : nullptr;
    if (edit == nullptr || year == nullptr || month == nullptr || row == nullptr) return;
    // The button shows the text of the hidden field.
    edit->setSuffix(u"년"_s);
    year->setText(edit->text());
    row->removeWidget(month);
    row->insertWidget(row->indexOf(year) + 1, month);
}

/// Puts the calendar's window on the terminal's screen as it shows: the date picker looks at the display's
/// edges only.
class OnTerminal : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        const Terminal* terminal = Terminal::current();
        if (event->type() == QEvent::Show && terminal != nullptr) {
            auto* window = static_cast<QWidget*>(watched);
            const QRect screen(terminal->mapToGlobal(QPoint()), terminal->size());
            const QPoint last = screen.bottomRight() - QPoint(window->width() - 1, window->height() - 1);
            window->move(std::clamp(window->x(), screen.left(), std::max(screen.left(), last.x())),
                         std::clamp(window->y(), screen.top(), std::max(screen.top(), last.y())));
        }
        return QObject::eventFilter(watched, event);
    }
};

void fit(QDateEdit* date) {
    QCalendarWidget* calendar = date->calendarWidget();
    calendar->setFont(font(FontHeight::Small));
    // The weeks' numbers say nothing here.
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar->setHorizontalHeaderFormat(QCalendarWidget::ShortDayNames);
    calendar->setFixedSize(kCalendarSize);
    putYearFirst(calendar);
    calendar->window()->installEventFilter(new OnTerminal(calendar));
}

/// Makes the calendar at the first touch: most logins do without it.
class AtFirstTouch : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress) {
            watched->removeEventFilter(this);
            fit(static_cast<QDateEdit*>(watched));
        }
        return false;
    }
};

}  // namespace

void addCalendar(QDateEdit* date) {
    date->setCalendarPopup(true);
    date->installEventFilter(new AtFirstTouch(date));
}

}  // namespace ui
