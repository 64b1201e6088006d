#pragma once

#include <QTcpServer>

#include "tools/office/OfficeTest.h"

namespace test {

/// Stands between terminals and the server, and loses the line after so many bytes.
class LineCutter {
  public:
    explicit LineCutter(int serverPort);

    int port() const { return listener_.serverPort(); }
    /// Each connection from now on ends after that many bytes of both directions; never below 0.
    void cutAfter(qint64 bytes) { limit_ = bytes; }
    /// Runs a program that connects here; kills it after so many milliseconds unless that is below 0.
    OfficeEnded run(const QString& program, const QStringList& arguments, int killAfterMs = -1);

  private:
    void connectThrough();

    QTcpServer listener_;
    int serverPort_;
    qint64 limit_ = -1;
};

}  // namespace test
