#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include "rovana-cardhost/StartedHost.h"
#include "support/Pump.h"

namespace test {

/// The program rovana-cardhost with the demonstration's cards, on any free port, for as long as the object
/// lives. Its folder stays between starts.
class HostProcess {
  public:
    ~HostProcess() { stop(); }

    /// Starts the host, enters its key for the terminal and enrols the tests' terminals with the key of this
    /// one.
    void start(const QStringList& more = {}) {
        using namespace Qt::Literals::StringLiterals;
        needApplication();
        ASSERT_EQ(host_.start(folder(), more).toStdString(), "");
        ASSERT_EQ(host_.enrol({u"4711"_s, u"4712"_s, u"4713"_s, u"98"_s, u"99"_s, u"0000000001"_s}),
                  QString());
    }
    void stop() { host_.kill(); }

    quint16 port() const { return host_.port(); }
    QString folder() const { return folder_.path(); }

  private:
    QTemporaryDir folder_;
    cardhost::StartedHost host_;
};

}  // namespace test
