#pragma once

#include <QByteArrayView>
#include <QString>

#include "platform/message/Frame.h"
#include "rovana-cardhost/HostSeal.h"

namespace cardhost {

/// What a connection brings, without its socket: bytes go in as they come, and the requests that enrolled
/// terminals have signed come out. It keeps no more than what was added since the last whole frame.
class RequestReader {
  public:
    enum class Result {
        Incomplete,  ///< More bytes are needed.
        Request,
        Fault,  ///< No request of an enrolled terminal: fault() says why. Nothing that follows is read.
    };

    void add(QByteArrayView bytes) { frames_.add(bytes); }

    /// Takes the next request that is sealed to the host's key. The folder is the host's, with the terminals.
    Result next(const platform::message::KeyPair& host, const QString& folder, OpenedRequest* request);

    /// The number of the terminal that signed the last request.
    const QString& terminal() const { return terminal_; }
    const QString& fault() const { return fault_; }

  private:
    QString findFault(const platform::message::Frame& frame, const platform::message::KeyPair& host,
                      const QString& folder, OpenedRequest* request);

    platform::message::FrameReader frames_;
    QString terminal_;
    QString fault_;
};

}  // namespace cardhost
