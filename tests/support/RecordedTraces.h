#pragma once

#include <QString>
#include <QStringList>

#include "platform/Trace.h"

namespace test {

/// The trace texts written while the object lives, line ends included.
class RecordedTraces {
  public:
    RecordedTraces() {
        platform::setTraceObserver([this](QStringView text) { texts_ << text.toString(); });
    }
    ~RecordedTraces() { platform::setTraceObserver({}); }
    RecordedTraces(const RecordedTraces&) = delete;
    RecordedTraces& operator=(const RecordedTraces&) = delete;

    /// Those since the last call.
    QStringList take() {
        QStringList taken;
        taken.swap(texts_);
        return taken;
    }

  private:
    QStringList texts_;
};

}  // namespace test
