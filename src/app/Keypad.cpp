#include "app/Keypad.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/Wipe.h"
#include "platform/Won.h"

namespace app {

using platform::formatWon;
using platform::groupThousands;
using platform::parseWon;

namespace {

/// The same characters in memory of their own, so that either text can be wiped.
QString ownCopy(const QString& text) {
    return QString(text.constData(), text.size());
}

}  // namespace

Keypad::Keypad(const KeypadRequest& request) : mode_(request.KeypadMode), present_(request.Topic.present) {
    const std::array values{&request.KeypadValue1, &request.KeypadValue2, &request.KeypadValue3};
    for (size_t i = 0; i < fields_.size(); ++i) {
        fields_[i].text = fields_[i].saved = *values[i];
        if (!fields_[i].text.isEmpty()) textChanged(&fields_[i]);
    }
    if (request.Topic.counted != std::array<QString, kFields>()) count(request.Topic.counted);
}

Keypad::State Keypad::state() const {
    State state{.fields = {}, .isCounted = isCounted_};
    for (size_t i = 0; i < fields_.size(); ++i) {
        const Field& field = fields_[i];
        state.fields[i] = {ownCopy(field.text), ownCopy(field.display), field.saved};
    }
    return state;
}

void Keypad::restore(const State& state) {
    for (size_t i = 0; i < fields_.size(); ++i) {
        fields_[i].text = ownCopy(state.fields[i].text);
        show(&fields_[i], ownCopy(state.fields[i].display));
    }
    isCounted_ = state.isCounted;
}

Keypad::~Keypad() {
    for (Field& field : fields_) {
        platform::wipe(&field.display);
        platform::wipe(&field.text);
    }
}

void Keypad::show(Field* field, QString display) {
    platform::wipe(&field->display);
    field->display = std::move(display);
}

void Keypad::textChanged(Field* field) {
    show(field, mode_ == kTextField ? ownCopy(field->text) : groupThousands(parseWon(field->text)));
}

void Keypad::count(const std::array<QString, kFields>& numbers) {
    isCounted_ = isCounted_ || isEmpty();
    for (size_t i = 0; i < fields_.size(); ++i) {
        fields_[i].text = numbers[i];
        if (!numbers[i].isEmpty()) textChanged(&fields_[i]);
    }
}

void Keypad::append(const QString& digits) {
    if (std::exchange(isCounted_, false)) {
        for (Field& field : fields_) field.text = field.display = QString();
    }
    active().text += digits;
    textChanged(&active());
}

void Keypad::minus() {
    Field& field = active();
    isCounted_ = false;
    if (mode_ == kTextField) {
        field.text.prepend(u'-');
        show(&field, ownCopy(field.text));
        return;
    }
    const platform::Won negated = -parseWon(field.text);
    field.text = formatWon(negated);
    show(&field, groupThousands(negated));
}

bool Keypad::canNegate() const {
    return mode_ == kTextField || !parseWon(active().text).isZero();
}

void Keypad::erase(int field) {
    Field& erased = fields_[size_t(field - 1)];
    isCounted_ = false;
    if (!erased.text.isEmpty()) erased.text.back() = u'0';  // The memory beyond a text's end is not wiped.
    erased.text.chop(1);
    // Also in the text mode the display shows a grouped number after erasing.
    show(&erased, groupThousands(parseWon(erased.text)));
}

void Keypad::clear() {
    isCounted_ = false;
    platform::wipe(&active().text);
    platform::wipe(&active().display);
}

void Keypad::secondClicked(bool secondChecked, bool thirdChecked) {
    active_ = secondChecked ? 2 : thirdChecked ? 3 : 1;
}

void Keypad::thirdClicked(bool secondChecked, bool thirdChecked) {
    active_ = secondChecked && !thirdChecked ? 2 : thirdChecked ? 3 : 1;
}

std::array<QString, Keypad::kFields> Keypad::entries() const {
    std::array<QString, kFields> entries;
    for (size_t i = 0; i < fields_.size(); ++i) {
        // An entry that was erased shows "0" and is one.
        const bool isKeyed = !fields_[i].display.isEmpty();
        entries[i] = isKeyed ? ownCopy(fields_[i].text) : present_[i];
    }
    return entries;
}

bool Keypad::isEmpty() const {
    return std::ranges::all_of(fields_, [](const Field& field) { return field.display.isEmpty(); });
}

void Keypad::accept(KeypadRequest* request) const {
    std::tie(request->KeypadValue1, request->KeypadValue2, request->KeypadValue3) = std::tuple_cat(entries());
    request->KeypadResult = isEmpty() ? 0 : 1;
}

void Keypad::cancel(KeypadRequest* request) const {
    request->KeypadValue1 = fields_[0].saved;
    request->KeypadValue2 = fields_[1].saved;
    request->KeypadValue3 = fields_[2].saved;
    request->KeypadResult = 0;
}

}  // namespace app
