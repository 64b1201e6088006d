#include "app/KeypadRequest.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace app {

using namespace Qt::Literals::StringLiterals;

namespace {

/// True when the keypad was left with "확  인", also without an entry.
bool isConfirmed(const KeypadRequest& request) {
    keypadRequest() = request;
    KeypadTopic& topic = keypadRequest().Topic;
    // A password is the customer's or the salesman's own affair.
    if (request.KeypadMode != kTextField && topic.whom.isEmpty()) topic.whom = session().action.GName;
    const bool isConfirmed = ui::runScreen(dialogs::kKeypad) == ui::Screen::Accepted;
    topic = {};
    return isConfirmed;
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

bool askText(const QString& label, const QString& whom) {
    KeypadRequest request;
    request.KeypadLabel1 = label;
    request.KeypadMode = kTextField;
    request.Topic.whom = whom;
    return run(request);
}

bool askNumber(const QString& label, const QString& start, const QString& what) {
    KeypadRequest request = numberRequest(label, start);
    request.Topic.what = what;
    return run(request);
}

std::optional<platform::Won> askAmount(const QString& label, const QString& start) {
    // No amount has as many digits as a product's bar code.
    constexpr qsizetype kShortestBarcode = 12;
    KeypadRequest request = numberRequest(label, start);
    request.Topic.scanned = [](const QString& code, std::array<QString, 3>*) {
        if (code.size() < kShortestBarcode) return Scan::None;
        ui::message(u"바코드는 금액이 아닙니다..! [%1]"_s.arg(code));
        return Scan::Refused;
    };
    if (!isConfirmed(request)) return std::nullopt;
    return platform::parseWon(keypadRequest().KeypadValue1);
}

bool askTwoNumbers(const QString& label1, const QString& label2, const KeypadTopic& topic) {
    KeypadRequest request;
    request.KeypadLabel1 = label1;
    request.KeypadLabel2 = label2;
    request.KeypadCheck2 = label2;
    request.KeypadMode = kTwoNumbers;
    request.Topic = topic;
    return isConfirmed(request);
}

bool askThreeNumbers(const std::array<QString, 3>& labels, const std::array<QString, 3>& present,
                     const QString& what) {
    KeypadRequest request;
    request.KeypadLabel1 = labels[0];
    request.KeypadLabel2 = request.KeypadCheck2 = labels[1];
    request.KeypadLabel3 = request.KeypadCheck3 = labels[2];
    request.KeypadMode = kThreeNumbers;
    request.Topic.present = present;
    request.Topic.what = what;
    return isConfirmed(request);
}

}  // namespace app
