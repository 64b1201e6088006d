#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QPainter>
#include <QStyleOption>

namespace test {
namespace {

TEST(Style, DrawsFieldsOfManyPixelsWithoutThreads) {
    const auto threads = [] {
        return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    };
    const QStringList before = threads();
    constexpr QSize kField(60, 30);
    constexpr int kRatio = 3;
    QImage display(kField * kRatio, QImage::Format_ARGB32_Premultiplied);
    display.setDevicePixelRatio(kRatio);
    QComboBox field;
    field.setEditable(true);
    field.resize(kField);
    field.render(&display);
    QStyleOptionFrame focused;
    focused.rect = QRect({}, kField);
    focused.state = QStyle::State_Enabled | QStyle::State_HasFocus;
    QPainter painter(&display);
    QApplication::style()->drawPrimitive(QStyle::PE_FrameLineEdit, &focused, &painter);
    EXPECT_EQ(threads(), before);
    const QColor edge = display.pixelColor(display.width() / 2, 1);
    EXPECT_GT(edge.blue(), edge.red() + 50) << "the focus shows";
}

}  // namespace
}  // namespace test
