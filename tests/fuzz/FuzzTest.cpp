#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

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

}  // namespace
}  // namespace fuzz
