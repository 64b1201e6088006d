#include "tools/office/OfficeTest.h"

namespace test {
namespace {

class DemoTest : public OfficeTest {};

TEST_F(DemoTest, ThreeTerminalsPlayAndThePageTellsOfThem) {
    const Ended ended = runProgram(u"rovana-office"_s, {u"demo"_s, path(u"demo"_s)});
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr("보내지 않은 단말기: 4 (D)"));
    const std::string page = readFile(path(u"demo/board.html"_s)).toStdString();
    // A card, a debt and empties; short, over and not closed; what 점검 names and what came after a close.
    for (const char* each :
         {"190,956", "481,480", "85,960", "부족 111", "과입 500", "마감 전", "수금없는 판매", "추가"})
        EXPECT_THAT(page, HasSubstr(each));
    // What lies in a folder is not touched.
    EXPECT_EQ(runProgram(u"rovana-office"_s, {u"demo"_s, path(u"demo"_s)}).exitCode, 1);
}

}  // namespace
}  // namespace test
