#include "tools/office/SyncTest.h"

namespace test {
namespace {

class DemoTest : public OfficeTest {
  protected:
    OfficeEnded demo(const QStringList& arguments) const {
        QProcess process;
        process.start(QStringLiteral(ROVANA_BIN "/rovana-office"), QStringList(u"demo"_s) + arguments);
        if (!process.waitForFinished(120'000)) return {-1, "", "the demonstration did not end"};
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }
};

TEST_F(DemoTest, ThreeTerminalsPlayAndThePageTellsOfThem) {
    const OfficeEnded ended = demo({path(u"demo"_s)});
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_NE(ended.out.find("보내지 않은 단말기: 4 (D)"), std::string::npos) << ended.out;
    QFile file(path(u"demo/board.html"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(file.readAll());
    // A card, a debt and empties; short, over and not closed; what 점검 names and what came after a close.
    for (const QString& each : {u"190,956"_s, u"481,480"_s, u"85,960"_s, u"부족 111"_s, u"과입 500"_s,
                                u"마감 전"_s, u"수금없는 판매"_s, u"추가"_s})
        EXPECT_TRUE(page.contains(each)) << each.toStdString();

    // What lies in a folder is not touched.
    EXPECT_EQ(demo({path(u"demo"_s)}).exitCode, 1);
    writeFile(u"file"_s, "x");
    EXPECT_EQ(demo({path(u"file"_s)}).exitCode, 1);
    EXPECT_EQ(demo({}).exitCode, 2);
}

}  // namespace
}  // namespace test
