#include "rovana-cardhost/RequestReader.h"

#include "common/Enrolment.h"
#include "platform/message/Fields.h"

namespace cardhost {

using namespace Qt::Literals::StringLiterals;
using platform::message::Frame;
using platform::message::FrameKind;
using platform::message::FrameReader;
using platform::message::KeyPair;

RequestReader::Result RequestReader::next(const KeyPair& host, const QString& folder,
                                          OpenedRequest* request) {
    if (!fault_.isEmpty()) return Result::Fault;
    Frame frame;
    const FrameReader::Result result = frames_.next(&frame);
    if (result == FrameReader::Result::Incomplete) return Result::Incomplete;
    fault_ = result == FrameReader::Result::Complete ? findFault(frame, host, folder, request)
                                                     : describe(result).toString();
    return fault_.isEmpty() ? Result::Request : Result::Fault;
}

QString RequestReader::findFault(const Frame& frame, const KeyPair& host, const QString& folder,
                                 OpenedRequest* request) {
    if (frame.kind != FrameKind::Request) return u"a reply came in"_s;
    auto opened = openRequest(frame.sealed, host);
    // Whoever cannot seal to this host's key cannot read its answer either.
    if (!opened || opened->number != frame.number) return u"a request is not sealed to this host's key"_s;
    const auto fields = platform::message::Fields::parse(opened->fields);
    terminal_ = fields ? fields->text(platform::message::kTerminalField) : QString();
    if (!isTerminalNumber(terminal_)) return u"a request names no terminal"_s;
    const auto key = enrolledKey(folder, terminal_);
    if (!key) return u"terminal %1 is not enrolled"_s.arg(terminal_);
    if (!isSignedBy(*opened, *key, host.publicKey))
        return u"a request of terminal %1 is not signed with the key that it is enrolled with"_s.arg(
            terminal_);
    *request = std::move(*opened);
    return {};
}

}  // namespace cardhost
