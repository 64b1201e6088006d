#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Every statement in the sources, on one line each.
QStringList statements() {
    static const QRegularExpression kStatement(u"Statement<\\s*((?:u\"[^\"]*\"\\s*)+)>"_s);
    static const QRegularExpression kSeam(u"\"\\s*u\""_s);
    QStringList found;
    QDirIterator files(QStringLiteral(ROVANA_TESTS_DIR "/../src"), {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        const QString content = QString::fromUtf8(file.readAll());
        for (const auto& match : kStatement.globalMatch(content))
            found << match.captured(1).replace(kSeam, QString()).simplified().mid(2).chopped(1);
    }
    EXPECT_GT(found.size(), 100);
    return found;
}

// Tables that grow with the slips, the customers or the products: 100,000 rows are read in a tenth of a
// second.
TEST(PlansTest, OnlyWhoWantsAWholeTableReadsIt) {
    const QStringList wanted{
        u"SELECT * FROM PAYJOURNAL WHERE State <> 'prepared' ORDER BY rowid"_s,
        // Its first row is read.
        u"SELECT Number FROM PAYJOURNAL WHERE State <> 'prepared' ORDER BY rowid DESC"_s,
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
    for (QString text : statements()) {
        text = text.simplified().replace(u"'%s'"_s, u"?"_s);
        for (const QStringList& step :
             device.rows(u"EXPLAIN QUERY PLAN "_s + QString(text).replace(kDelete, u"DELETE FROM "_s))) {
            if (kWhole.match(step.last()).hasMatch() && !found.contains(text)) found << text;
        }
    }
    for (const QString& text : found) EXPECT_TRUE(wanted.contains(text)) << text.toStdString();
    for (const QString& text : wanted) EXPECT_TRUE(found.contains(text)) << text.toStdString();
}

}  // namespace
