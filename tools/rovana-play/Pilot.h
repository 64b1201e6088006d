#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>

#include "platform/termdev/PaperRoll.h"
#include "rovana-play/CardHost.h"
#include "rovana-play/Script.h"

namespace pilot {

/// How long a step waits for what it needs, in milliseconds. Sanitizers slow the screens down.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int kPatienceMs = 20000;
#else
inline constexpr int kPatienceMs = 5000;
#endif

struct Options {
    QString shots;  ///< Folder for screenshots; empty for none.
    int patienceMs = kPatienceMs;
    int paceMs = 0;        ///< Pause before every step, for people who watch.
    bool approve = false;  ///< Takes the printed paper as approved instead of missing a step.
    /// Gives the steps that follow when all are done; none end the play. Empty when none ever follow.
    std::function<QList<Step>()> more;
};

/// Plays a script on the terminal of this process, while the screens run their own event loops. Each step
/// begins when the terminal has nothing left to do, and waits until it can be done. A step that cannot be
/// done in time closes every dialog, and so the program.
class Pilot : public QObject {
    Q_OBJECT

  public:
    Pilot(Script script, Options options, QObject* parent = nullptr);
    ~Pilot() override;

    /// Starts to play. Commands at the head of the script that need no screen take effect at once. Call it
    /// right before the first dialog is opened.
    void start();

    /// To be called when the program has ended by itself or was closed: true when every step was done.
    bool finish();

    /// The step that was missed, as "FILE:LINE: COMMAND" and what was found instead; empty for none.
    const QString& failure() const { return failure_; }

    struct Attempt;

  Q_SIGNALS:
    /// The touches of what the script counts under that name were as many as it expects.
    void counted(const QString& name, int touches);
    /// A step was missed; sent before the dialogs are closed.
    void missed(const QString& failure);
    /// A step is about to be done, or to be seen as it was expected.
    void begun(const pilot::Step& step);

  private:
    void poll();
    void wait(int milliseconds, int sleeps);
    void loopSleeps();
    void closeAll();
    void miss(const Step& step, const QString& problem);
    void advance();
    Attempt attempt(const Step& step);
    Attempt expect(const Step& step);
    Attempt compareRoll(const Step& step);
    Attempt expectPrinted(const Step& step);
    Attempt expectTouches(const Step& step);
    void saveShot(const QString& name);
    Attempt savePaper(const QString& name);
    QString nextPicture(const QString& name);
    void countTouches(const QString& name);
    QString rollSoFar();
    void tear();

    Script script_;
    Options options_;
    CardHost cardHost_;
    QTimer timer_;
    int sleeps_ = 0;         ///< How often the event loop goes to sleep before the next look.
    QElapsedTimer waiting_;  ///< Since the first look at the step at hand; invalid before.
    qsizetype current_ = 0;
    platform::termdev::RollReader roll_;
    QString paper_;          ///< What this play printed and has not torn off.
    QString counted_;        ///< What touches are counted for,
    int touchesBefore_ = 0;  ///< and how many there had been before it.
    int shots_ = 0;
    bool isClosing_ = false;
    QString failure_;
};

}  // namespace pilot
