#pragma once

#include <QString>
#include <array>

#include "app/KeypadRequest.h"

namespace app {

/// The keypad's rules without its dialog: three fields, of which one is active. Fields count from 1.
class Keypad {
  public:
    static constexpr int kFields = 3;

    /// Takes over the record's values; they come back unchanged from cancel().
    explicit Keypad(const KeypadRequest& request);
    /// Overwrites what was keyed: it may have been a password.
    ~Keypad();
    Q_DISABLE_COPY_MOVE(Keypad)

    /// Appends "0" to "9" or "00" to the active field.
    void append(const QString& digits);

    /// Shows what a reader has counted. Where nothing was keyed by hand the next digit takes its place.
    void count(const std::array<QString, kFields>& numbers);

    /// Negates the active number, or puts "-" in front of the text in the text mode.
    void minus();

    /// False for the number 0, which minus() leaves as it is.
    bool canNegate() const;

    /// Drops the last character of that field, active or not. The display then shows a grouped number in
    /// every mode, the text mode included.
    void erase(int field);

    /// Empties the active field.
    void clear();

    /// Makes that field the active one.
    void activate(int field) { active_ = field; }

    /// Chooses the active field after a click on the second or the third field's selector.
    void secondClicked(bool secondChecked, bool thirdChecked);
    void thirdClicked(bool secondChecked, bool thirdChecked);

    int activeField() const { return active_; }
    const QString& display(int field) const { return fields_[size_t(field - 1)].display; }

    /// What accept() would return now: what is keyed, or the present number of a field without an entry.
    std::array<QString, kFields> entries() const;
    const QString& present(int field) const { return present_[size_t(field - 1)]; }

    struct Field {
        QString text;
        QString display;
        QString saved;
    };
    /// The fields as they are, and whether a reader alone has filled them.
    struct State {
        std::array<Field, kFields> fields;
        bool isCounted = false;
    };
    /// For restore(); to be asked for where no password is keyed.
    State state() const;
    void restore(const State& state);

    /// Writes the result and the values into the record.
    void accept(KeypadRequest* request) const;
    void cancel(KeypadRequest* request) const;

  private:
    Field& active() { return fields_[size_t(active_ - 1)]; }
    bool isEmpty() const;
    const Field& active() const { return fields_[size_t(active_ - 1)]; }
    void textChanged(Field* field);
    /// Overwrites what was displayed: it may have been a password.
    static void show(Field* field, QString display);

    int mode_;
    int active_ = 1;
    bool isCounted_ = false;
    std::array<Field, kFields> fields_;
    std::array<QString, kFields> present_;
};

}  // namespace app
