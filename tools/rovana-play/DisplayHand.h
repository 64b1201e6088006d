#pragma once

#include <QEvent>
#include <QObject>
#include <QPoint>
#include <QProcess>
#include <QStringList>

namespace pilot {

/// The pointer and the keyboard of the X11 display that the program's window is on, moved by xdotool.
class DisplayHand : public QObject {
    Q_OBJECT

  public:
    DisplayHand();
    ~DisplayHand() override { tool_.waitForFinished(); }

    /// An event of the pointer at a place of the terminal's window. Those of one gesture follow each other as
    /// their times in milliseconds say.
    void point(QEvent::Type type, QPoint place, int time);
    void strike(Qt::Key key);

    /// True until the program has received the last event.
    bool isBusy() const { return expected_ > 0; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void add(const QStringList& arguments, int events);
    void run();

    QStringList arguments_;  ///< For xdotool, collected until the event loop runs.
    int expected_ = 0;       ///< Events that have not come yet.
    int time_ = 0;           ///< Of the last event, and its place.
    QPoint place_;
    Qt::Key key_ = Qt::Key_unknown;  ///< That was struck last.
    QProcess tool_;
};

}  // namespace pilot
