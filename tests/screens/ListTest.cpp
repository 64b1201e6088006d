#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTest>
#include <array>

#include "support/PrintQt.h"
#include "ui/NarrowScreen.h"
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

TEST(ReportList, TellsOfAKeyWhatItShows) {
    ui::ReportList list(nullptr);
    list.setColumns(std::array{ui::ListColumn{u"수"_s, 50}, ui::ListColumn{u"이름"_s, 50}});
    list.setRows({.columns = 2, .cells = {u"1"_s, u"하나"_s, u"2"_s, u"둘"_s}});
    QList<int> chosen;
    QString text;
    QObject::connect(&list, &ui::ReportList::rowClicked, [&](int row) { chosen << row; });
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_End, Qt::Key_Home}) {
        list.setRows(list.rows());
        // Where the focus alone puts it.
        list.selectionModel()->setCurrentIndex(list.model()->index(0, key == Qt::Key_Home ? 1 : 0),
                                               QItemSelectionModel::NoUpdate);
        QTest::keyClick(&list, key);
        EXPECT_EQ(list.selectedRow(), 0);
    }
    EXPECT_EQ(chosen, QList({0, 0, 0}));
    QTest::keyClick(&list, Qt::Key_Right);
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(chosen, QList({0, 0, 0, 1}));

    // Before the first narrowing as well.
    QTest::keyClick(&list, '4');
    QObject::connect(&list, &ui::ReportList::typed, [&](const QString& typed) { text += typed; });
    QTest::keyClick(&list, '9');
    EXPECT_EQ(text, u"9");
    EXPECT_EQ(list.selectedRow(), 1);
}

class Search : public ui::NarrowScreen {
  public:
    Search() : NarrowScreen(1) {
        list = addList(
            2, {0, 40, 240, 100}, u"수"_s, {{u"수"_s, 50}, {u"이름"_s, 50}}, [](int) {}, [] {});
        addNarrowing(list, 2, [](QStringView name, QStringView typed) { return name.contains(typed); });
    }
    ui::ReportList* list;
};

TEST(NarrowScreen, ReadsAListPieceByPieceOnceItsLineIsEmptyAgain) {
    Search search;
    const auto pairs = [next = 0](platform::Rows* rows) mutable {
        rows->columns = 2;
        for (int i = 0; i < kPiece; ++i) rows->cells << QString::number(next++) << u"소주"_s;
        return next < kRows;
    };
    auto* line = search.findChild<QLineEdit*>();
    search.list->readRows(pairs);
    line->setText(u"4"_s);
    EXPECT_EQ(search.list->rowCount(), 11);
    search.list->readRows(pairs);
    EXPECT_EQ(search.list->rowCount(), 11);
    line->clear();
    EXPECT_EQ(search.list->rowCount(), kRows);
    search.list->readRows(pairs);
    EXPECT_EQ(search.list->rowCount(), kPiece);
}

}  // namespace
