#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

#include "ui/Screen.h"

namespace ui {

/// The terminal's screen: the stack of dialogs that are open, the newest in front and alone usable. What a
/// finger or a key began on another dialog is taken from the one in front as well.
class Terminal : public QWidget {
    Q_OBJECT

  public:
    explicit Terminal(QWidget* parent = nullptr);
    ~Terminal() override;

    /// The one terminal of the process; null before it is made.
    static Terminal* current();

    /// The dialog in front; null when none is open.
    Screen* top() const { return stack_.isEmpty() ? nullptr : stack_.last().screen; }

    /// Closes the dialogs from the front to the back, as if each had been cancelled.
    void closeAll();

    /// Puts a screen in front and takes it away again. Screen::run does both.
    void show(Screen* screen);
    void remove(Screen* screen);

  Q_SIGNALS:
    /// Another dialog is in front now.
    void topChanged(ui::Screen* screen);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

  private:
    struct Entry {
        QPointer<Screen> screen;
        QPointer<QWidget> focusBelow;  ///< Where the focus goes back to when the screen leaves.
    };
    /// A touch or a key as it began, and how often another dialog had come to the front by then.
    struct Press {
        quint64 ms = 0;
        QPointF place{};
        int key = 0;
        int changes = 0;
        bool isMeant = true;
    };

    void keepFocusInFront(QWidget* now);
    void changeTop();
    bool isMeant(const QMouseEvent& press);
    bool isMeant(const QKeyEvent& press);
    /// True, and the press is noted, unless it repeats the last one of its kind on another dialog.
    bool isMeant(Press press, bool isSame, Press* last) const;

    QList<Entry> stack_;
    int changes_ = 0;
    Press touch_;
    Press key_;
    const QKeyEvent* forwarded_ = nullptr;  ///< The key on its way to the dialog in front.
};

/// Makes the screen for a dialog id; null for an id without one.
using ScreenFactory = std::function<std::unique_ptr<Screen>(int dialogId)>;
void setScreenFactory(ScreenFactory factory);

/// The screen for a dialog id, not open yet; null for an id without one.
std::unique_ptr<Screen> makeScreen(int dialogId);

/// Opens the dialog with that id and returns when it is closed. Cancelled for an id without a screen.
Screen::Result runScreen(int dialogId);

}  // namespace ui
