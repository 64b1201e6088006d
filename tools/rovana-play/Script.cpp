#include "rovana-play/Script.h"

#include <QHash>
#include <QStringDecoder>
#include <algorithm>
#include <iterator>
#include <optional>

#include "platform/WholeFile.h"
#include "rovana-play/LineReader.h"

namespace pilot {
namespace {

using namespace Qt::Literals::StringLiterals;

/// What a command is followed by.
enum class Operand {
    Address,   ///< "102.1005"
    Goal,      ///< A second address.
    Number,    ///< A whole number from 0 on.
    Position,  ///< A row, a column or a time, from 1 on.
    Row,       ///< A position, or "=" and a text of the row.
    Word,      ///< One word, or a quoted text, that others may follow.
    Text,      ///< The rest of the line.
    Name,      ///< A word for a file name: letters, digits, "-" and "_".
    Reply,     ///< ok, cancel, yes or no: 1 for the first button, 0 for the other.
    Key,       ///< A key of the keyboard.
    KeypadKeys,
    Touches,    ///< Controls, rows and keys of the keypad, a step for each.
    Keys,       ///< One or more keys of the keyboard, a step for each.
    Addresses,  ///< One or more, a step for each.
    Texts,      ///< A dialog and "CONTROL=TEXT" for each of its controls, a step for each.
    Login,      ///< A user's id and password.
    Import,     ///< Nothing: loads the waiting files and answers what is said after it.
    Sale,       ///< A customer and any number of lines, each of a code, boxes and bottles.
    Settling,   ///< How an entered sale is settled.
    Moment,     ///< "2026-11-21 09:05", seconds if wanted.
};

struct Syntax {
    QStringView name;
    Command command;
    QList<Operand> operands;
    QStringView usage;
};

const QList<Syntax>& actions() {
    using enum Operand;
    static const QList<Syntax> table = {
        {u"clock", Command::Clock, {Moment}, u"YYYY-MM-DD HH:MM"},
        {u"patience", Command::Patience, {Number}, u"SECONDS"},
        {u"login", Command::Type, {Login}, u"ID PASSWORD"},
        {u"import", Command::Answer, {Import}, u""},
        {u"sale", Command::Press, {Sale}, u"CUSTOMER [CODE BOXES BOTTLES ...]"},
        {u"settle", Command::Press, {Settling}, u"cash|card|credit [D.C ...]"},
        {u"press", Command::Press, {Touches}, u"D.C|D.C=TEXT|keys KEY ...|shot NAME ..."},
        {u"press2", Command::DoublePress, {Addresses}, u"D.C ..."},
        {u"slide", Command::Slide, {Address, Goal}, u"D.C D.C"},
        {u"type", Command::Type, {Address, Text}, u"D.C TEXT"},
        {u"keys", Command::KeypadKey, {KeypadKeys}, u"DIGITS|00|-|next|again|erase|ok|cancel ..."},
        {u"row", Command::Row, {Address, Row}, u"D.C N|=TEXT"},
        {u"row2", Command::DoubleRow, {Address, Row}, u"D.C N|=TEXT"},
        {u"cell", Command::Cell, {Address, Position, Position}, u"D.C ROW COLUMN"},
        {u"drag", Command::DragRow, {Address, Position, Position}, u"D.C N N"},
        {u"answer", Command::Answer, {Reply}, u"ok|cancel|yes|no [TEXT]"},
        {u"key", Command::Key, {Keys}, u"NAME ..."},
        {u"count", Command::Count, {Name}, u"NAME"},
        {u"tear", Command::Tear, {}, u""},
        {u"host", Command::Host, {Text}, u"\"OPTIONS\""},
        {u"swipe", Command::Swipe, {Word}, u"CARD [KEYS ...]"},
        {u"timeout", Command::TimeOut, {Position}, u"MS"},
        {u"remove", Command::Remove, {Text}, u"FILE"},
        {u"shot", Command::Shot, {Name}, u"NAME"},
        {u"paper", Command::Paper, {Name}, u"NAME"},
        {u"quit", Command::Quit, {}, u""},
    };
    return table;
}

const QList<Syntax>& expectations() {
    using enum Operand;
    static const QList<Syntax> table = {
        {u"expect", Command::ExpectText, {Address, Text}, u"D.C TEXT"},
        {u"expect texts", Command::ExpectText, {Texts}, u"D C=TEXT ..."},
        {u"expect message", Command::ExpectMessage, {Text}, u"TEXT"},
        {u"expect caption", Command::ExpectCaption, {Text}, u"TEXT"},
        {u"expect screen", Command::ExpectScreen, {Number}, u"D"},
        {u"expect rows", Command::ExpectRows, {Address, Number}, u"D.C N"},
        {u"expect cell",
         Command::ExpectCell,
         {Address, Position, Position, Text},
         u"D.C ROW COLUMN TEXT[|TEXT ...]"},
        {u"expect hidden", Command::ExpectHidden, {Addresses}, u"D.C ..."},
        {u"expect shown", Command::ExpectShown, {Addresses}, u"D.C ..."},
        {u"expect disabled", Command::ExpectDisabled, {Addresses}, u"D.C ..."},
        {u"expect enabled", Command::ExpectEnabled, {Addresses}, u"D.C ..."},
        {u"expect checked", Command::ExpectChecked, {Addresses}, u"D.C ..."},
        {u"expect unchecked", Command::ExpectUnchecked, {Addresses}, u"D.C ..."},
        {u"expect sql", Command::ExpectSql, {Word, Text}, u"\"SELECT ...\" TEXT"},
        {u"expect roll", Command::ExpectRoll, {Text}, u"FILE"},
        {u"expect printed", Command::ExpectPrinted, {Number, Text}, u"N LINE"},
        {u"expect touches", Command::ExpectTouches, {Number}, u"N"},
    };
    return table;
}

constexpr int kKeypadDialog = 130;

constexpr Address kLoginId{102, 1005};
constexpr Address kLoginPassword{102, 1006};
constexpr Address kLoginButton{102, 1000};
constexpr Address kImportButton{435, 1000};

struct KeypadWord {
    QStringView word;
    int control;
};

/// Keys of the on-screen keypad; other words are taken digit by digit.
constexpr KeypadWord kKeypadWords[] = {{u"00", 1040},     {u"again", 1002}, {u"erase", 1011},
                                       {u"cancel", 1003}, {u"ok", 1000},    {u"-", 1001}};

/// The digit keys stand in the order 1 to 9, then 0. 0 for a character without a key.
int keypadControl(QChar character) {
    if (character == u'-') return 1001;
    if (character == u'0') return 1038;
    return character > u'0' && character <= u'9' ? 1029 + (character.unicode() - u'1') : 0;
}

int keyboardKey(const QString& name) {
    static const QHash<QString, int> names = {
        {u"enter"_s, Qt::Key_Return},
        {u"esc"_s, Qt::Key_Escape},
        {u"tab"_s, Qt::Key_Tab},
        {u"backtab"_s, Qt::Key_Backtab},
        {u"backspace"_s, Qt::Key_Backspace},
        {u"delete"_s, Qt::Key_Delete},
        {u"space"_s, Qt::Key_Space},
        {u"up"_s, Qt::Key_Up},
        {u"down"_s, Qt::Key_Down},
        {u"left"_s, Qt::Key_Left},
        {u"right"_s, Qt::Key_Right},
        {u"home"_s, Qt::Key_Home},
        {u"end"_s, Qt::Key_End},
        {u"pageup"_s, Qt::Key_PageUp},
        {u"pagedown"_s, Qt::Key_PageDown},
    };
    if (name.size() == 1 && name[0] > u' ' && name[0] <= u'~') return name[0].toUpper().unicode();
    return names.value(name.toLower());
}

std::optional<int> wholeNumber(QStringView word, int least) {
    constexpr int kMost = 1'000'000;  // So that what is counted or waited for stays within an integer.
    bool isNumber = false;
    const int number = word.toInt(&isNumber);
    return isNumber && number >= least && number <= kMost && word[0].isDigit() ? std::optional(number)
                                                                               : std::nullopt;
}

std::optional<Address> address(QStringView word) {
    const qsizetype point = word.indexOf(u'.');
    if (point < 0) return std::nullopt;
    const std::optional<int> dialog = wholeNumber(word.first(point), 0);
    const std::optional<int> control = wholeNumber(word.sliced(point + 1), 1);
    return dialog && control ? std::optional(Address{*dialog, *control}) : std::nullopt;
}

void readAddress(LineReader& line, Address* at) {
    const QString word = line.word();
    const std::optional<Address> read = address(word);
    if (!read) return line.fail(u"no address of the form DIALOG.CONTROL: %1"_s.arg(word));
    *at = *read;
}

void readNumber(LineReader& line, int least, Step* step) {
    const QString word = line.word();
    const std::optional<int> number = wholeNumber(word, least);
    if (!number) return line.fail(u"no number from %1 on: %2"_s.arg(least).arg(word));
    step->numbers << *number;
}

void readRow(LineReader& line, Step* step) {
    if (!line.rest().startsWith(u'=')) return readNumber(line, 1, step);
    line.skip(1);
    step->numbers << 0;
    step->texts << line.text();
}

void readName(LineReader& line, Step* step) {
    const QString word = line.word();
    const bool isName = std::all_of(word.begin(), word.end(), [](QChar character) {
        return character.isLetterOrNumber() || character == u'-' || character == u'_';
    });
    if (!isName || word.isEmpty()) return line.fail(u"no name for a file: %1"_s.arg(word));
    step->texts << word;
}

void readReply(LineReader& line, Step* step) {
    const QString word = line.word();
    const bool isFirst = word == u"ok" || word == u"yes";
    if (!isFirst && word != u"cancel" && word != u"no") return line.fail(u"no answer: %1"_s.arg(word));
    step->numbers << (isFirst ? 1 : 0);
}

void readKey(LineReader& line, Step* step) {
    const QString word = line.word();
    const int key = keyboardKey(word);
    if (key == 0) return line.fail(u"no key: %1"_s.arg(word));
    step->numbers << key;
}

void readMoment(LineReader& line, Step* step) {
    const QString day = line.word();
    QString time = line.word();
    if (time.size() == 5) time += u":00"_s;
    step->moment = QDateTime::fromString(day + u' ' + time, u"yyyy-MM-dd HH:mm:ss"_s);
    if (!step->moment.isValid()) line.fail(u"no date and time: %1 %2"_s.arg(day, time));
}

void readOperand(Operand operand, LineReader& line, Step* step) {
    if (line.atEnd() && operand != Operand::Text) return line.fail(u"something is missing"_s);
    switch (operand) {
        case Operand::Address: return readAddress(line, &step->at);
        case Operand::Goal: return readAddress(line, &step->to);
        case Operand::Number: return readNumber(line, 0, step);
        case Operand::Position: return readNumber(line, 1, step);
        case Operand::Row: return readRow(line, step);
        case Operand::Word: step->texts << line.word(); return;
        case Operand::Text: step->texts << line.text(); return;
        case Operand::Name: return readName(line, step);
        case Operand::Reply: return readReply(line, step);
        case Operand::Key: return readKey(line, step);
        case Operand::Moment: return readMoment(line, step);
        case Operand::KeypadKeys:
        case Operand::Touches:
        case Operand::Keys:
        case Operand::Addresses:
        case Operand::Texts:
        case Operand::Login:
        case Operand::Import:
        case Operand::Sale:
        case Operand::Settling: return;
    }
}

/// The steps of "keys": the words that follow it, key by key, up to another touch.
QList<Step> readKeypadKeys(LineReader& line, const Step& base) {
    if (line.atEnd()) line.fail(u"something is missing"_s);
    QList<Step> steps;
    const auto add = [&](Command command, int control) {
        Step step = base;
        step.command = command;
        step.at = {kKeypadDialog, control};
        steps << step;
    };
    while (!line.atEnd() && line.error().isEmpty() && !line.nextWord().contains(u'.') &&
           line.nextWord() != u"shot") {
        const QString word = line.word();
        const auto* named = std::find_if(std::begin(kKeypadWords), std::end(kKeypadWords),
                                         [&](const KeypadWord& entry) { return entry.word == word; });
        if (named != std::end(kKeypadWords)) {
            add(Command::KeypadKey, named->control);
        } else if (word == u"next") {
            add(Command::KeypadNext, 0);
        } else {
            for (const QChar character : word) {
                const int control = keypadControl(character);
                if (control == 0) line.fail(u"the keypad has no key for: %1"_s.arg(word));
                add(Command::KeypadKey, control);
            }
        }
    }
    return steps;
}

/// The steps of "press": its touches and pictures, one after another.
QList<Step> readTouches(LineReader& line, const Step& base) {
    QList<Step> steps;
    while (!line.atEnd() && line.error().isEmpty()) {
        const QString word = line.word();
        if (word == u"keys") {
            steps += readKeypadKeys(line, base);
            continue;
        }
        steps << base;
        Step& step = steps.last();
        step.command = Command::Press;
        step.texts.clear();
        if (word == u"shot") {
            step.command = Command::Shot;
            readName(line, &step);
        } else if (const auto at = address(word.section(u'=', 0, 0))) {
            step.at = *at;
            if (!word.contains(u'=')) continue;
            step.command = Command::DoubleRow;
            step.numbers << 0;
            step.texts << word.section(u'=', 1);
        } else {
            line.fail(u"no touch: %1"_s.arg(word));
        }
    }
    return steps;
}

QList<Step> parseLine(QStringView text, int number, QString* error);

/// The steps of "sale": from the menu to a slip of that customer with its lines.
QList<Step> readSale(LineReader& line, int number) {
    QString ignored;
    const auto say = [&](const QString& text) { return parseLine(text, number, &ignored); };
    QList<Step> steps = say(u"press 102.1044 132.1002 143.1035"_s);
    steps += say(u"row2 144.1054 ="_s + quoted(line.word()));
    while (!line.atEnd() && line.error().isEmpty()) {
        QStringList counts;
        for (int i = 0; i < 3; ++i) {
            if (!wholeNumber(line.nextWord(), 0)) line.fail(u"no CODE BOXES BOTTLES: %1"_s.arg(line.rest()));
            counts << line.word();
        }
        steps += say(u"press 134.1010 keys %1 ok %2 next %3 ok"_s.arg(counts[0], counts[1], counts[2]));
    }
    return steps;
}

/// The steps of "settle": from a slip with lines to what follows its saved collection.
QList<Step> readSettling(LineReader& line, int number) {
    const QString way = line.word();
    const int button = way == u"cash" ? 1098 : way == u"card" ? 1097 : way == u"credit" ? 1083 : 0;
    if (button == 0) line.fail(u"no way to settle: %1"_s.arg(way));
    QString ignored;
    return parseLine(u"press 134.1003 450.%1 450.1003"_s.arg(button), number, &ignored);
}

/// The steps of a line of any number of them, `base` for each.
QList<Step> readSeveral(Operand operand, LineReader& line, const Step& base) {
    QList<Step> steps;
    const auto add = [&](Command command, Address at, const QStringList& texts) {
        steps << base;
        steps.last().command = command;
        steps.last().at = at;
        steps.last().texts = texts;
    };
    if (operand == Operand::KeypadKeys) steps = readKeypadKeys(line, base);
    if (operand == Operand::Sale) steps = readSale(line, base.line);
    if (operand == Operand::Settling) steps = readSettling(line, base.line);
    for (Step& step : steps) step.source = base.source;
    if (!steps.isEmpty()) return operand == Operand::Sale ? steps : steps + readTouches(line, base);
    if (operand == Operand::Touches) {
        if (line.atEnd()) line.fail(u"something is missing"_s);
        return readTouches(line, base);
    }
    if (operand == Operand::Login) {
        const QString id = line.word();
        add(Command::Type, kLoginId, {id});
        add(Command::Type, kLoginPassword, {line.text()});
        add(Command::Press, kLoginButton, {});
        return steps;
    }
    if (operand == Operand::Import) {
        add(Command::Press, kImportButton, {});
        add(Command::Answer, {}, {});
        steps.last().numbers << 1;
        return steps;
    }
    Step first = base;
    if (operand == Operand::Texts) readOperand(Operand::Number, line, &first);
    if (!line.error().isEmpty()) return steps;
    do {
        Step step = base;
        if (operand == Operand::Addresses || operand == Operand::Keys) {
            readOperand(operand == Operand::Keys ? Operand::Key : Operand::Address, line, &step);
            steps << step;
            continue;
        }
        const QString word = line.word();
        const std::optional<int> control = wholeNumber(word.section(u'=', 0, 0), 1);
        if (!control || !word.contains(u'=')) return line.fail(u"no CONTROL=TEXT: %1"_s.arg(word)), steps;
        add(base.command, {first.numbers[0], *control}, {word.section(u'=', 1)});
    } while (!line.atEnd() && line.error().isEmpty());
    return steps;
}

/// The command that the line starts with, taken off the line; null for none.
const Syntax* takeCommand(LineReader& line) {
    const auto find = [](const QString& name) -> const Syntax* {
        for (const QList<Syntax>* table : {&actions(), &expectations()}) {
            const auto found = std::ranges::find(*table, QStringView(name), &Syntax::name);
            if (found != table->end()) return &*found;
        }
        return nullptr;
    };
    QString name = line.word();
    const Syntax* syntax = find(name);
    if (name == u"expect" && !line.nextWord().contains(u'.')) {
        name += u' ' + line.nextWord().toString();
        syntax = find(name);
        if (syntax != nullptr) line.word();
    }
    if (syntax == nullptr) line.fail(u"unknown command: %1"_s.arg(name));
    return syntax;
}

/// The steps of one line; in error, none and what is wrong.
QList<Step> parseLine(QStringView text, int number, QString* error) {
    LineReader line(text);
    Step step;
    step.line = number;
    step.source = text.trimmed().toString();
    QList<Step> steps;
    const Syntax* syntax = takeCommand(line);
    if (syntax != nullptr) {
        step.command = syntax->command;
        using enum Operand;
        const Operand first = syntax->operands.value(0, Text);
        if (first >= KeypadKeys && first <= Settling) {
            steps = readSeveral(first, line, step);
            if (line.error().isEmpty() && !line.atEnd()) line.fail(u"too much: %1"_s.arg(line.rest()));
        } else {
            for (const Operand operand : syntax->operands) {
                if (line.error().isEmpty()) readOperand(operand, line, &step);
            }
            steps = {step};
            if (step.command == Command::Swipe && !line.atEnd()) {
                steps += readKeypadKeys(line, step);
                steps += readTouches(line, step);
            } else if (step.command == Command::ExpectCell && line.error().isEmpty()) {
                // One step for each column from the named one on.
                steps.clear();
                for (const QString& cell : step.texts.value(0).split(u'|')) {
                    steps << step;
                    steps.last().texts = {cell};
                    ++step.numbers.last();
                }
            } else if (step.command == Command::Answer && !line.atEnd()) {
                step.command = Command::ExpectMessage;
                step.texts << line.text();
                steps.prepend(step);
            }
            if (line.error().isEmpty() && !line.atEnd()) line.fail(u"too much: %1"_s.arg(line.rest()));
        }
    }
    *error = line.error();
    if (!error->isEmpty() && syntax != nullptr)
        *error += u" (%1)"_s.arg(u"%1 %2"_s.arg(syntax->name, syntax->usage).trimmed());
    return error->isEmpty() ? steps : QList<Step>();
}

}  // namespace

QString toString(Address address) {
    return u"%1.%2"_s.arg(address.dialog).arg(address.control);
}

QString quoted(const QString& text) {
    QString result = text;
    result.replace(u'\\', uR"(\\)"_s).replace(u'"', uR"(\")"_s).replace(u'\n', uR"(\n)"_s);
    return u'"' + result + u'"';
}

Script parseScript(const QString& text) {
    Script script;
    int number = 0;
    for (const QStringView line : QStringView(text).split(u'\n')) {
        ++number;
        const QStringView content = line.trimmed();
        if (content.isEmpty() || content.startsWith(u'#')) continue;
        QString error;
        const bool isOver = !script.steps.isEmpty() && script.steps.last().command == Command::Quit;
        if (isOver) error = u"nothing can follow \"quit\""_s;
        if (!isOver) script.steps += parseLine(content, number, &error);
        if (!error.isEmpty()) script.errors << u"line %1: %2"_s.arg(number).arg(error);
    }
    return script;
}

Script readScript(const QString& file, const QString& clock) {
    Script script;
    QString error;
    if (const auto content = platform::readWholeFile(file, &error); !content) {
        script.errors << u"cannot be read: %1"_s.arg(error);
    } else {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(*content);
        if (decoder.hasError()) {
            script.errors << u"is not in UTF-8"_s;
        } else {
            script = parseScript(text);
            const bool hasClock = !script.steps.isEmpty() && script.steps.first().command == Command::Clock;
            if (!clock.isEmpty() && !hasClock) {
                script.steps = parseLine(u"clock "_s + clock, 0, &error) + script.steps;
                if (!error.isEmpty()) script.errors << error;
            }
        }
    }
    script.file = file;
    return script;
}

}  // namespace pilot
