#include "fuzz/Statements.h"
#include "fuzz/Target.h"

FUZZ_TARGET(StatementValues, input) {
    const auto statements = fuzz::systemStatements();
    const fuzz::SystemStatement& statement = statements[size_t(fuzz::choose(&input, int(statements.size())))];
    // The values stand between bytes that UTF-8 does not have.
    QStringList values;
    while (values.size() < statement.values) {
        const qsizetype end = input.indexOf('\xFF');
        values << QString::fromUtf8(end < 0 ? input : input.first(end));
        input = end < 0 ? QByteArrayView() : input.sliced(end + 1);
    }
    fuzz::checkValues(statement, values);
}
