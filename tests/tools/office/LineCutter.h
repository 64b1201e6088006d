#pragma once

#include <QTcpServer>

namespace test {

/// Stands between terminals and the server, and loses the line after so many bytes.
class LineCutter {
  public:
    explicit LineCutter(int serverPort);

    QString port() const { return QString::number(listener_.serverPort()); }
    /// Each connection from now on ends after that many bytes of both directions; never below 0.
    void cutAfter(qint64 bytes) { limit_ = bytes; }

  private:
    void connectThrough();

    QTcpServer listener_;
    int serverPort_;
    qint64 limit_ = -1;
};

}  // namespace test
