#include <gtest/gtest.h>

#include "platform/Csv.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(Csv, WhatIsWrittenReadsBack) {
    const QStringList fields{u"소주"_s, u"a,b"_s, u"say \"yes\""_s, u"두\n줄"_s, u""_s, u" 1"_s};
    const CsvFile file = parseCsv("\xEF\xBB\xBF" + csvLine(fields) + "\r\n" + csvLine({u"끝"_s}).trimmed());
    EXPECT_EQ(file.error.toStdString(), "");
    ASSERT_EQ(file.records.size(), 2);
    EXPECT_EQ(file.records[0].fields, fields);
    EXPECT_EQ(file.records[1].line, 4) << "an empty line is skipped and counted";
    for (const QByteArray wrong : {"a\"b", "\"a", "\"a\"b"})
        EXPECT_TRUE(parseCsv(wrong).error.startsWith(u"line 1: "_s)) << wrong.constData();
}

}  // namespace
}  // namespace platform
