#pragma once

#include <QString>
#include <QStringList>

#include "rovana-cardhost/StartedHost.h"

namespace pilot {

/// A card host of a visit's own, with its ledger in the device folder.
class CardHost {
  public:
    /// Starts the host with more of its options and writes where it is into the device folder. An
    /// earlier host ends first. Returns what went wrong, else an empty text.
    QString start(const QStringList& options);

  private:
    cardhost::StartedHost host_;
};

}  // namespace pilot
