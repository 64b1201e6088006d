#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>
#include <QScrollBar>
#include <QSet>
#include <QTest>
#include <array>

#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "ui/DisplayScale.h"
#include "ui/ReportList.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRows = 50;
constexpr int kPiece = 10;

platform::RowSource numbers() {
    return [next = 0](platform::Rows* rows) mutable {
        rows->columns = 1;
        for (int i = 0; i < kPiece; ++i) rows->cells << QString::number(next++);
        return next < kRows;
    };
}

TEST(ReportList, ReadsOnWhileIdleAndBeforeItIsNarrowed) {
    ui::ReportList list(nullptr);
    list.setColumns(std::array{ui::ListColumn{u"수"_s, 50}});
    list.readRows(numbers());
    EXPECT_EQ(list.rowCount(), kPiece);
    EXPECT_TRUE(QTest::qWaitFor([&] { return list.rowCount() == kRows; }));

    // What is behind the first rows counts as well: a row that is asked for, and what the list is narrowed
    // to.
    list.readRows(numbers());
    list.showChosen(kRows - 1);
    EXPECT_EQ(list.selectedRow(), kRows - 1);
    list.readRows(numbers());
    list.narrow([](const platform::Rows& rows, int row) { return rows.at(row, 0).startsWith(u'4'); });
    EXPECT_EQ(list.rowCount(), 11);
    list.readRows(numbers());
    EXPECT_EQ(list.rowCount(), 11);
    list.narrow({});

    // What replaces the rows is not grown by those that were still to come.
    list.readRows(numbers());
    list.clear();
    QTest::qWait(0);
    EXPECT_EQ(list.rowCount(), 0);
    EXPECT_TRUE(list.rows().isEmpty());
}

TEST(ReportList, AsksForTheSecondLinesOfPaintedRowsAlone) {
    ui::ReportList list(nullptr);
    list.resize(240, 200);
    list.setColumns(QList<ui::ListColumn>{{u"코드"_s, 50}, {u"이름"_s, 250}});
    QSet<int> asked;
    list.setDetail([&](const platform::Rows&, int row) {
        asked << row;
        return ui::RowDetail{u"왼쪽"_s, u"오른쪽"_s};
    });
    platform::Rows rows;
    rows.columns = 2;
    rows.cells.fill(u"0"_s, 100000);
    list.setRows(rows);
    const QImage start = list.grab().toImage();
    EXPECT_GE(asked.size(), 4);
    EXPECT_LE(asked.size(), 6);
    list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum());
    asked.clear();
    list.grab();
    EXPECT_TRUE(asked.contains(49999));
    EXPECT_LE(asked.size(), 6);
    // The columns move under a finger, the second lines do not.
    list.verticalScrollBar()->setValue(0);
    list.horizontalScrollBar()->setValue(40);
    const QRect second(list.viewport()->mapTo(&list, QPoint(0, 25)), QSize(230, 12));
    EXPECT_EQ(list.grab().toImage().copy(second), start.copy(second));
}

TEST(DisplayScale, IsTakenFromTheLastStartOnTheSameDisplayOnly) {
    test::TestDevice device;
    const QSize screen(240, 320);
    const QSize display = QGuiApplication::primaryScreen()->size();
    const auto kept = [&](const QString& figures) {
        device.writeFile(u"\\display", figures.toUtf8());
        return ui::DisplayScale(screen);
    };
    EXPECT_FALSE(ui::DisplayScale(screen).isKnown());
    const QString size = u"%1 %2"_s.arg(display.width()).arg(display.height());
    ui::DisplayScale scale = kept(u"240 320 2.5 "_s + size);
    EXPECT_EQ(scale.value(), 2.5);
    EXPECT_TRUE(scale.fits());
    EXPECT_FALSE(kept(u"240 320 2.5 1 1"_s).fits());
    for (const QString& other :
         {u"820 600 2 "_s + size, u"240 320 0.5 "_s + size, u"240 320 nan "_s + size, u"240 320"_s})
        EXPECT_FALSE(kept(other).isKnown()) << other.toStdString();
    // The desk is never larger than it was told.
    device.writeFile(u"\\display", "240 320 2.5 800 800");
    EXPECT_FALSE(ui::DisplayScale(screen, 2).isKnown());
}

}  // namespace
