#include "support/Approved.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QStringList>

namespace test {

using namespace Qt::Literals::StringLiterals;

void expectApproved(QStringView text, const QString& path) {
    QFile file(QStringLiteral(ROVANA_TESTS_DIR) + u'/' + path);
    if (qEnvironmentVariableIsSet("ROVANA_APPROVE")) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << qPrintable(file.fileName());
        file.write(text.toUtf8());
        return;
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "not approved yet: " << qPrintable(path);
    const QStringList approved = QString::fromUtf8(file.readAll()).split(u'\n');
    const QStringList printed = text.toString().split(u'\n');
    for (qsizetype i = 0; i < qMax(approved.size(), printed.size()); ++i) {
        ASSERT_EQ(printed.value(i, u"(end)"_s).toStdString(), approved.value(i, u"(end)"_s).toStdString())
            << "line " << i + 1 << " of " << qPrintable(path);
    }
}

QString belowTheHead(const QString& paper) {
    const QString rule = QString(32, u'=') + u'\n';
    return paper.sliced(paper.indexOf(rule, paper.indexOf(rule) + rule.size()));
}

}  // namespace test
