#pragma once

#include <QList>
#include <QString>
#include <chrono>
#include <optional>

namespace cardhost {

/// What the host does wrong on purpose.
enum class Misbehaviour {
    Refuse,            ///< Refuses a request that it would approve.
    Close,             ///< Closes the connection in place of an answer; nothing is charged.
    Silent,            ///< Never answers; nothing is charged.
    Late,              ///< Answers after a time.
    Split,             ///< Sends its answer in many pieces.
    Double,            ///< Sends its answer twice.
    Stray,             ///< Sends an answer to another request first.
    Truncate,          ///< Sends half of its answer and closes.
    Oversize,          ///< Announces a longer answer than there may be.
    Garbage,           ///< Sends what is no answer.
    BadMac,            ///< Changes one bit of its sealed answer.
    ApproveThenClose,  ///< Charges, and closes in place of an answer.
};

struct Fault {
    Misbehaviour misbehaviour;
    int request = 0;  ///< The request that gets it, counted from 1; 0 for every one.
    std::chrono::milliseconds delay{0};
};

/// Reads "NAME" or "NAME@N", for `late` "late SECONDS" or "late SECONDS@N"; nothing for anything else.
std::optional<Fault> parseFault(const QString& text);

/// The names that parseFault takes, for a help text.
QString faultNames();

/// The fault of the request with that number, if any.
std::optional<Fault> faultFor(const QList<Fault>& faults, int request);

}  // namespace cardhost
