#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include "fuzz/Statements.h"
#include "fuzz/Target.h"

namespace fuzz {
namespace {

TEST(FuzzTest, EveryTargetKeepsItsWordOnItsCorpus) {
    for (const Target& target : targets()) {
        const QDir corpus(QStringLiteral(ROVANA_TESTS_DIR "/fuzz/corpus/") +
                          QString::fromLatin1(target.name));
        const QStringList files = corpus.entryList(QDir::Files);
        EXPECT_FALSE(files.isEmpty()) << target.name << " has a corpus";
        for (const QString& name : files) {
            QFile file(corpus.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
            EXPECT_NO_THROW(target.run(file.readAll())) << file.fileName().toStdString();
        }
    }
}

/// A value out of what statements have been broken with, of any length.
QString randomValue(QRandomGenerator& random) {
    static const QStringList kPieces = {
        QStringLiteral("'"),           QStringLiteral("''"),    QStringLiteral("\\'"),
        QStringLiteral("' OR '1'='1"), QStringLiteral("\""),    QStringLiteral("`"),
        QStringLiteral("--"),          QStringLiteral("/*"),    QStringLiteral("*/"),
        QStringLiteral(";"),           QStringLiteral("?"),     QStringLiteral("?1"),
        QStringLiteral(":a"),          QStringLiteral("@a"),    QStringLiteral("$a"),
        QStringLiteral("%s"),          QStringLiteral("'%s'"),  QStringLiteral("%"),
        QStringLiteral("\\"),          QStringLiteral("\n"),    QStringLiteral("한글 진로"),
        QStringLiteral("쀍"),          QStringLiteral("😀"),     QString(QChar(0)),
        QString(QChar(0xD800)),        QString(QChar(0xDC00)),  QString(QChar(0xFEFF)),
        QString(QChar(0x2019)),        QString(QChar(0xFF07)),  QStringLiteral("1e999"),
        QStringLiteral("-0"),          QStringLiteral("x'41'"), QStringLiteral("); DROP TABLE MTM; --")};
    QString value;
    const int pieces = random.bounded(5);
    for (int i = 0; i < pieces; ++i) {
        // Quotes, the first of them, are rare: else hardly a record would have none.
        value += random.bounded(3) ? QString(QChar(char16_t(random.bounded(1, 0x10000))))
                                   : kPieces[random.bounded(random.bounded(8) ? 4 : 0, int(kPieces.size()))];
    }
    const int length = random.bounded(500) ? 1 : random.bounded(1, 20'000);
    return value.repeated(length);
}

// How many values go through: the fuzzer's run sends more of them than an ordinary one.
TEST(FuzzTest, NoValueChangesWhatAStatementDoes) {
    const int wanted =
        qEnvironmentVariableIsSet("ROVANA_VALUES") ? qEnvironmentVariableIntValue("ROVANA_VALUES") : 5'000;
    const quint32 seed = qEnvironmentVariableIsSet("ROVANA_TEST_SEED")
                             ? quint32(qEnvironmentVariableIntValue("ROVANA_TEST_SEED"))
                             : QRandomGenerator::system()->generate();
    QRandomGenerator random(seed);
    int sent = 0;
    while (sent < wanted) {
        for (const SystemStatement& statement : systemStatements()) {
            QStringList values;
            while (values.size() < statement.values) values << randomValue(random);
            ASSERT_NO_THROW(checkValues(statement, values))
                << statement.format.toUtf8().toStdString() << "\nagain with ROVANA_TEST_SEED=" << seed;
            sent += statement.values;
        }
    }
    EXPECT_GT(systemStatements().size(), 100U) << "the sources are read";
}

}  // namespace
}  // namespace fuzz
