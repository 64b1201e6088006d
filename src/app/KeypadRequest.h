#pragma once

#include <QString>
#include <array>
#include <functional>
#include <optional>

#include "platform/Won.h"

namespace app {

/// How the keypad is laid out and what it enters.
enum KeypadMode { kTextField = 0, kOneNumber = 1, kTwoNumbers = 2, kThreeNumbers = 3 };

/// What a bar code that is read while the keypad asks for a product's quantities does to them.
enum class Scan {
    None,     ///< It is none: the digits were keyed.
    Counted,  ///< It is the product that is asked for.
    Next,     ///< It is another one: what is keyed is confirmed.
    Refused   ///< Nothing, and the user was told why.
};

/// What the keypad shows beside its captions; each of it may be missing.
struct KeypadTopic {
    QString whom{};  ///< The customer; where a screen names none, the one that the session is at.
    QString what{};  ///< A product and its size.
    /// The numbers that are asked again: the fields start empty, and one that stays so stays at its number.
    std::array<QString, 3> present{};
    /// A line that follows what is keyed, of the entries as they would be returned now.
    std::function<QString(const std::array<QString, 3>& entries)> note{};

    /// What a reader has counted so far; the first digit that is keyed takes its place.
    std::array<QString, 3> counted{};
    /// Answers a code that was read; `entries` are those of `note`, to be changed when the code is Counted.
    /// Without it a reader's digits are keyed ones.
    std::function<Scan(const QString& code, std::array<QString, 3>* entries)> scanned{};

    bool isEmpty() const { return whom.isEmpty() && what.isEmpty() && !note; }
};

/// What a screen asks of the keypad, written by the ask functions below and read by the keypad (130), and its
/// answer, read by the screen that asked. Texts are the raw digits, without separators.
struct KeypadRequest {
    QString KeypadValue1;  ///< At first what the field starts with, in the end the entry.
    QString KeypadValue2;
    QString KeypadValue3;
    QString KeypadLabel1;
    QString KeypadLabel2;
    QString KeypadLabel3;
    QString KeypadCheck2;
    QString KeypadCheck3;
    int KeypadMode = kTextField;
    /// Empties the fields of the open keypad, which writes it; the card dialog calls it. Empty while none is
    /// open.
    std::function<void()> StartAnew{};
    int KeypadResult = 0;  ///< 1 after "확  인" with at least one field filled, else 0.
    KeypadTopic Topic{};
};

/// The one request record of the process. It keeps its values after the keypad closes.
KeypadRequest& keypadRequest();

/// Opens the keypad on one field and returns true when it was left with "확  인" and an entry, which is then
/// in KeypadValue1.
bool askText(const QString& label, const QString& whom = {});
bool askNumber(const QString& label, const QString& start = {}, const QString& what = {});

/// Opens the keypad on one amount and returns it in won, 0 for an empty entry; nothing when it was left with
/// "취  소".
std::optional<platform::Won> askAmount(const QString& label, const QString& start = {});

/// Opens the keypad on two numbers in one run and returns true when it was left with "확  인", whatever was
/// entered; the entries are in KeypadValue1 and KeypadValue2, an empty one counts as 0.
bool askTwoNumbers(const QString& label1, const QString& label2, const KeypadTopic& topic);

/// The same on three numbers in one run; the entries are in KeypadValue1 to KeypadValue3. `present` are the
/// numbers that are asked again.
bool askThreeNumbers(const std::array<QString, 3>& labels, const std::array<QString, 3>& present,
                     const QString& what);

}  // namespace app
