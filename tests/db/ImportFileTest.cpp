#include "db/ImportFile.h"

#include <gtest/gtest.h>

#include <QStringList>

#include "support/PrintQt.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

const ImportFile& importFileOf(QStringView name) {
    for (const ImportFile& file : importFiles()) {
        if (file.fileName == name) return file;
    }
    throw std::invalid_argument("no such import file");
}

TEST(ImportFileTest, CutsLines) {
    struct Case {
        QStringView file;
        QString line;
        QStringList fields;  ///< The first ones; those that follow must be empty.
    };
    const auto x = [](int count) { return QString(count, u'가'); };
    // After the first field and its separator 200 characters count, 140 in MTM.RVN, closing "|" included.
    const Case cases[] = {
        {u"GARAEMAJIN.RVN", u"0012|01|5|"_s, {u"0012"_s, u"01"_s, u"5"_s}},
        {u"GARAEMAJIN.RVN", u"0012|01|5"_s, {u"0012"_s, u"01"_s}},
        {u"GARAEMAJIN.RVN", u"0012|01|5|9|9|"_s, {u"0012"_s, u"01"_s, u"5"_s}},
        {u"GARAEMAJIN.RVN", u"0012x01| 5 |"_s, {u"0012"_s, u"01"_s, u" 5 "_s}},
        {u"GARAEMAJIN.RVN", u"12|1|5|"_s, {u"12|1"_s, u"5"_s}},
        {u"GARAEMAJIN.RVN", u""_s, {}},
        {u"GARAEMAJIN.RVN", u"0012|"_s + x(197) + u"|5|"_s, {u"0012"_s, x(197), u"5"_s}},
        {u"GARAEMAJIN.RVN", u"0012|"_s + x(198) + u"|5|"_s, {u"0012"_s, x(198)}},
        {u"MTM.RVN", u"2004-03-02|주문|0012|"_s, {u"2004-03-02"_s, u"주문"_s, u"0012"_s}},
        {u"MTM.RVN", u"2004-03-02|"_s + x(137) + u"|5|"_s, {u"2004-03-02"_s, x(137), u"5"_s}},
        {u"MTM.RVN", u"2004-03-02|"_s + x(138) + u"|5|"_s, {u"2004-03-02"_s, x(138)}},
    };
    // One list serves every line in turn: what a line leaves behind must not show in the next.
    std::vector<QStringView> cut;
    for (const Case& c : cases) {
        const ImportFile& file = importFileOf(c.file);
        cutImportLine(file, c.line, &cut);
        QStringList fields;
        for (const QStringView field : cut) fields << field.toString();
        QStringList expected = c.fields;
        while (expected.size() < file.fields) expected << u""_s;
        EXPECT_EQ(fields, expected) << c.line.toStdString();
    }
}

}  // namespace
}  // namespace db
