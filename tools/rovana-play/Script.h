#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

/// Visit scripts: plain text, one command a line, that say what a salesman does on the screens and what he
/// must find there.
namespace pilot {

enum class Command {
    Clock,
    Patience,
    Press,
    DoublePress,
    Slide,
    Type,
    KeypadKey,
    KeypadNext,
    Row,
    DoubleRow,
    Cell,
    DragRow,
    Answer,
    Key,
    DoubleKey,
    ExpectMessage,
    ExpectCaption,
    ExpectScreen,
    ExpectText,
    ExpectRows,
    ExpectCell,
    ExpectHidden,
    ExpectShown,
    ExpectDisabled,
    ExpectEnabled,
    ExpectChecked,
    ExpectUnchecked,
    ExpectSql,
    ExpectRoll,
    ExpectPrinted,
    ExpectTouches,
    Count,
    Tear,
    Host,
    Swipe,
    TimeOut,
    Remove,
    Shot,
    Paper,
    Quit,
};

/// A control by the ids of its dialog and of itself.
struct Address {
    int dialog = 0;
    int control = 0;

    friend bool operator==(const Address&, const Address&) = default;
};

/// The address as scripts write it: "102.1005".
QString toString(Address address);

/// The text as scripts quote it.
QString quoted(const QString& text);

/// One thing to do. A line makes one step, except those that name several keys, controls or texts.
struct Step {
    int line = 0;    ///< From 1.
    QString source;  ///< The line, without surrounding blanks.
    Command command = Command::Quit;
    Address at;
    Address to;  ///< Where a finger that slides is lifted.
    /// Rows and columns count from 1; row 0 is the row that holds the step's text.
    QList<int> numbers;
    QStringList texts;
    QDateTime moment;
};

struct Script {
    QString file;
    QList<Step> steps;
    QStringList errors;  ///< "line N: what is wrong", empty when the whole script can be played.
};

/// Reads a script. Lines in error are told in `errors`, the others are read all the same.
Script parseScript(const QString& text);

/// Reads a script file in UTF-8. A file that cannot be read makes a script with one error. One that sets no
/// clock before its first step begins at `clock`, "YYYY-MM-DD HH:MM", if that is given.
Script readScript(const QString& file, const QString& clock = {});

}  // namespace pilot
