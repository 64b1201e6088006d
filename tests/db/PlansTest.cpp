#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Every db::Statement in the sources, with a "?" for each value.
QStringList systemStatements() {
    static const QRegularExpression kStatement(uR"(Statement<\s*((?:u"[^"]*"\s*)+)>)"_s);
    static const QRegularExpression kJoint(uR"("\s*u")"_s);
    QStringList statements;
    for (const QString& folder : {u"/../src"_s, u"/../tools"_s}) {
        QDirIterator files(QStringLiteral(ROVANA_TESTS_DIR) + folder, {u"*.cpp"_s}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
            auto found = kStatement.globalMatch(QString::fromUtf8(file.readAll()));
            while (found.hasNext()) {
                const QString literals = found.next().captured(1).trimmed().remove(kJoint);
                statements << literals.sliced(2).chopped(1).simplified().replace(u"'%s'"_s, u"?"_s);
            }
        }
    }
    return statements;
}

// Tables that grow with the slips, the customers or the products: 100,000 rows are read in a tenth of a
// second.
TEST(PlansTest, OnlyWhoWantsAWholeTableReadsIt) {
    const QStringList wanted{
        u"SELECT * FROM PAYJOURNAL WHERE State <> 'prepared' ORDER BY rowid"_s,
        // Of these one row is read, which comes first or soon.
        u"SELECT Number FROM PAYJOURNAL WHERE State <> 'prepared' ORDER BY rowid DESC"_s,
        u"SELECT DDate FROM MTM WHERE DTime <> '' ORDER BY DDate DESC LIMIT 1"_s,
        u"SELECT DDate FROM MTMOK WHERE DTime <> '' ORDER BY DDate DESC LIMIT 1"_s,
        u"SELECT COUNT(*) FROM GARAE"_s,
        u"SELECT COUNT(*) FROM GARAEDANGA"_s,
        u"SELECT COUNT(*) FROM GARAEMAJIN"_s,
        u"SELECT COUNT(*) FROM MTM"_s,
        u"SELECT COUNT(*) FROM PUMMOK"_s,
        u"SELECT GCode, GName, CJMoney FROM GARAE WHERE CJMoney <> ? ORDER BY GCode"_s,
        u"SELECT PCode, PName, Size, Gubun FROM PUMMOK WHERE (TTT IS NULL OR TTT <> ?) ORDER BY PCode DESC"_s,
        u"SELECT PCode, PName, Size, Gubun FROM PUMMOK WHERE Gubun <> ? AND (TTT IS NULL OR TTT <> ?) ORDER BY PCode DESC"_s,
    };
    static const QRegularExpression kWhole(
        u"^SCAN (MTM|MTMOK|YTM|PAYJOURNAL|PRINTLOG|DELETED|CONTAINERCARRY|BankMoney|GARAE|GARAEDANGA|GARAEMAJIN|PUMMOK)\\b"_s);
    static const QRegularExpression kDelete(u"^DELETE (?!FROM)"_s);
    test::TestDevice device;
    QStringList found;
    const QStringList statements = systemStatements();
    EXPECT_GT(statements.size(), 150) << "the sources are read";
    for (const QString& text : statements) {
        for (const QStringList& step :
             device.rows(u"EXPLAIN QUERY PLAN "_s + QString(text).replace(kDelete, u"DELETE FROM "_s))) {
            if (kWhole.match(step.last()).hasMatch() && !found.contains(text)) found << text;
        }
    }
    for (const QString& text : found) EXPECT_TRUE(wanted.contains(text)) << text.toStdString();
    for (const QString& text : wanted) EXPECT_TRUE(found.contains(text)) << text.toStdString();
}

}  // namespace
