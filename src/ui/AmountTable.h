#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "ui/Bitmaps.h"
#include "ui/Fonts.h"

namespace ui {

/// A column of values in a table of amounts.
struct AmountColumn {
    int left;
    int width;
    QString title{};                  ///< Also part of its values' names for a reader of the screen.
    bool isOfChosenLine = false;      ///< Blue.
    std::function<void()> pressed{};  ///< What a press on a value does.
};

/// A table of amounts: in each row a caption, or the button that keys the amount, and a value in each column.
struct AmountTable {
    int left;          ///< Of its buttons; a caption beside its values stands 2 pixels further in.
    int captionWidth;  ///< Of a caption that is a text.
    int rowHeight;
    QList<AmountColumn> columns;
    ButtonBitmaps bitmaps = bitmaps::kAmount;
    FontHeight font = FontHeight::Small;
    int captionHeight = 0;  ///< Where the values stand below their captions; 0 where beside them.
};

struct AmountRow {
    QString caption;
    int top;
    QList<int> values;                ///< Control ids, by column.
    int button = 0;                   ///< Control id; 0 for a caption that is a text.
    std::function<void()> pressed{};  ///< A button without it is disabled.
    int height = 0;                   ///< 0 for that of the table.
    QString name{};                   ///< For a reader of the screen, where the caption does not serve.
};

}  // namespace ui
