#pragma once

#include <QtGlobal>

namespace platform::message {

/// What an operation of the message component returns.
enum Status : qint16 {
    kDone = 0,
    kBadInput = -100,           ///< A wrong parameter, a call out of order, an operation that is not offered.
    kConnectionFailed = -500,   ///< No way to the host, or it refuses the connection.
    kLinkFailed = -504,         ///< No socket, no module of lines, or an exchange is under way already.
    kKeyFileMissing = -801,     ///< The file with the host's or the terminal's key is missing.
    kKeyFileUnreadable = -804,  ///< Such a file cannot be read or holds no key.
    kSavedUnreadable = -806,    ///< The saved values are missing or cannot be read.
    kSavedMissing = -807,       ///< The saved values lack the one asked for.
    kCipherFailed = -901,       ///< The cipher library does not start, or its random source stands still.
    kMessageKeyFailed = -902,   ///< No fresh key came about for the message.
    kPublicKeyFailed = -903,    ///< Nothing can be sealed to the host's public key.
};

}  // namespace platform::message
