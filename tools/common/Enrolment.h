#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>

#include "platform/message/Seal.h"

/// The terminals that a card host answers: a file for each in the host's folder, "terminals/NUMBER.pub" with
/// the terminal's public key, 64 hexadecimal digits. The host looks there at every request; `rovanactl` and
/// `rovana-play` enter the terminal of their own machine.
namespace cardhost {

/// Whether the text is a terminal's number: one to ten digits.
bool isTerminalNumber(QStringView text);

/// Enters the terminal, or gives it another key. False, with the reason in `error` if that is given, when the
/// number is none or the file cannot be written; the key of before stays then.
bool enrolTerminal(const QString& hostFolder, const QString& number, const platform::message::PublicKey& key,
                   QString* error = nullptr);

/// Lets the host forget the terminal; false when it was not there or may come back.
bool removeTerminal(const QString& hostFolder, const QString& number);

/// The terminal's key; nothing for one that is not enrolled.
std::optional<platform::message::PublicKey> enrolledKey(const QString& hostFolder, const QString& number);

/// The numbers of all enrolled terminals, in order.
QStringList enrolledTerminals(const QString& hostFolder);

}  // namespace cardhost
