#include "fuzz/Target.h"
#include "rovana-play/Script.h"

using fuzz::require;

namespace {

bool areSame(const pilot::Step& a, const pilot::Step& b) {
    return a.source == b.source && a.command == b.command && a.at == b.at && a.numbers == b.numbers &&
           a.texts == b.texts && a.moment == b.moment;
}

}  // namespace

FUZZ_TARGET(VisitScript, input) {
    const QString text = QString::fromUtf8(input);
    const QStringList lines = text.split(u'\n');
    const pilot::Script script = pilot::parseScript(text);
    require(script.errors.size() <= lines.size(), "a line has one error at most");

    // The good lines alone make the same steps and no error.
    QStringList good;
    int before = 0;
    for (const pilot::Step& step : script.steps) {
        require(step.line >= std::max(before, 1) && step.line <= lines.size(), "steps follow the lines");
        require(step.source == lines[step.line - 1].trimmed(), "a step tells its line");
        for (const int number : step.numbers) require(number >= 0, "numbers count from 0");
        if (step.line != before) good << step.source;
        before = step.line;
    }
    const pilot::Script again = pilot::parseScript(good.join(u'\n'));
    require(again.errors.isEmpty(), "a line that is read is read again");
    require(std::ranges::equal(script.steps, again.steps, areSame), "the same lines make the same steps");

    // Any text can be said.
    const pilot::Script told = pilot::parseScript(QStringLiteral("expect message ") + pilot::quoted(text));
    require(told.errors.isEmpty() && told.steps.size() == 1 && told.steps.first().texts == QStringList{text},
            "a quoted text is that text");
}
