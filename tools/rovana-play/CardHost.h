#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace pilot {

/// A card host of a visit's own: the real program with the demonstration's cards, on a port of its own, with
/// its ledger in the device folder. It ends with the object.
class CardHost {
  public:
    ~CardHost();

    /// Starts the host with more of its options and tells the terminal of the device folder where it is. An
    /// earlier host ends first. Returns what went wrong, else an empty text.
    QString start(const QStringList& options);

  private:
    QProcess process_;
};

}  // namespace pilot
