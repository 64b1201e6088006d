#include "app/KeypadRequest.h"

#include "app/Dialogs.h"
#include "ui/Terminal.h"

namespace app {
namespace {

/// True when the keypad was left with "확  인", also without an entry.
bool isConfirmed(const KeypadRequest& request) {
    keypadRequest() = request;
    return ui::runScreen(dialogs::kKeypad) == ui::Screen::Accepted;
}

bool run(const KeypadRequest& request) {
    isConfirmed(request);
    return keypadRequest().KeypadResult == 1;
}

KeypadRequest numberRequest(const QString& label, const QString& start) {
    KeypadRequest request;
    request.KeypadLabel1 = label;
    request.KeypadValue1 = start;
    request.KeypadMode = kOneNumber;
    return request;
}

}  // namespace

KeypadRequest& keypadRequest() {
    static KeypadRequest request;
    return request;
}

bool askText(const QString& label) {
    KeypadRequest request;
    request.KeypadLabel1 = label;
    request.KeypadMode = kTextField;
    return run(request);
}

bool askNumber(const QString& label, const QString& start) {
    return run(numberRequest(label, start));
}

std::optional<platform::Won> askAmount(const QString& label, const QString& start) {
    if (!isConfirmed(numberRequest(label, start))) return std::nullopt;
    return platform::parseWon(keypadRequest().KeypadValue1);
}

bool askTwoNumbers(const QString& label1, const QString& label2, const QString& start1,
                   const QString& start2) {
    KeypadRequest request;
    request.KeypadLabel1 = label1;
    request.KeypadLabel2 = label2;
    request.KeypadCheck2 = label2;
    request.KeypadValue1 = start1;
    request.KeypadValue2 = start2;
    request.KeypadMode = kTwoNumbers;
    return isConfirmed(request);
}

bool askThreeNumbers(const std::array<QString, 3>& labels, const std::array<QString, 3>& starts) {
    KeypadRequest request;
    request.KeypadLabel1 = labels[0];
    request.KeypadLabel2 = request.KeypadCheck2 = labels[1];
    request.KeypadLabel3 = request.KeypadCheck3 = labels[2];
    request.KeypadValue1 = starts[0];
    request.KeypadValue2 = starts[1];
    request.KeypadValue3 = starts[2];
    request.KeypadMode = kThreeNumbers;
    return isConfirmed(request);
}

}  // namespace app
