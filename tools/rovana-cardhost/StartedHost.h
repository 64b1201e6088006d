#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace cardhost {

/// The program rovana-cardhost with the demonstration's cards, run by another program of the same folder. It
/// ends with the object; its own folder stays.
class StartedHost {
  public:
    ~StartedHost() { end(); }

    /// Starts it on its folder with more of its options and waits until it listens, on any free port unless
    /// the options name one. An earlier one ends first. Returns what went wrong, else an empty text.
    QString start(const QString& folder, const QStringList& options = {});

    /// Enters its key at the terminal of the device folder, and a new key of that terminal's for each of the
    /// terminals' numbers here. Returns what went wrong, else an empty text.
    QString enrol(const QStringList& terminals) const;

    bool isRunning() const { return process_.state() != QProcess::NotRunning; }
    quint16 port() const { return port_; }
    qint64 processId() const { return process_.processId(); }

    /// Lets it come to its end.
    void end();
    /// Leaves it no moment.
    void kill();

    static QString program();

  private:
    QProcess process_;
    QString folder_;
    quint16 port_ = 0;
};

}  // namespace cardhost
