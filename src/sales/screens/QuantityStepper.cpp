#include "sales/screens/QuantityStepper.h"

#include <QFrame>
#include <QLabel>
#include <QScrollBar>

#include "ui/BitmapButton.h"
#include "ui/ReportList.h"
#include "ui/Screen.h"

namespace sales {
namespace {

/// The column before the numbers, at whose end the buttons lie.
constexpr int kNameColumn = 1;
constexpr int kBoxColumn = 2;
/// The height of a line's second line, and its type.
constexpr int kDetailHeight = 14;

}  // namespace

QuantityStepper::QuantityStepper(ui::ReportList* list, ui::BitmapButton* less, ui::BitmapButton* more)
    : QObject(list),
      list_(*list),
      less_(*less),
      more_(*more),
      frame_(new QFrame(list->viewport())),
      name_(new QLabel(list->viewport())),
      detail_(new QLabel(list->viewport())) {
    frame_->setFrameShape(QFrame::Box);
    frame_->setLineWidth(2);
    frame_->setAttribute(Qt::WA_TransparentForMouseEvents);
    QPalette colours = frame_->palette();
    colours.setColor(QPalette::WindowText, QColor(0xf5, 0x9e, 0x0b));
    frame_->setPalette(colours);
    frame_->setForegroundRole(QPalette::WindowText);
    for (ui::BitmapButton* button : {less, more}) {
        button->setRepeated(true);
        button->setFont(ui::font(ui::FontHeight::Title));
        button->setFocusPolicy(Qt::NoFocus);
    }
    for (QLabel* text : {name_, detail_}) {
        text->setAttribute(Qt::WA_TransparentForMouseEvents);
        text->setTextFormat(Qt::PlainText);
        text->setAutoFillBackground(true);
        text->setBackgroundRole(QPalette::Highlight);
        text->setForegroundRole(QPalette::HighlightedText);
        text->setContentsMargins(3, 0, 3, 0);
    }
    // They would stand at another line's number.
    connect(list->verticalScrollBar(), &QScrollBar::valueChanged, this, &QuantityStepper::hide);
    connect(list->horizontalScrollBar(), &QScrollBar::valueChanged, this, &QuantityStepper::hide);
    hide();
}

void QuantityStepper::showAt(int row, int column) {
    const QModelIndex number = list_.model()->index(row, column);
    list_.scrollTo(number);
    const QPoint origin = list_.viewport()->mapTo(list_.parentWidget(), QPoint(0, 0));
    const QRect name = list_.visualRect(number.siblingAtColumn(kNameColumn)).translated(origin);
    const int top = name.center().y() - more_.height() / 2;
    // Side by side: a finger between them touches one of them.
    more_.move(name.right() + 1 - more_.width(), top);
    less_.move(more_.x() - less_.width(), top);
    frame_->setGeometry(list_.visualRect(number));
    column_ = column;
    showName(number.siblingAtColumn(kNameColumn), less_.x() - origin.x());
    frame_->show();
    for (ui::BitmapButton* button : {&less_, &more_}) {
        button->raise();
        button->show();
    }
}

/// They cover the end of the name: it is shown again before them, where the code was.
void QuantityStepper::showName(const QModelIndex& name, int width) {
    QRect place = list_.visualRect(name);
    place = {0, place.top(), width, place.height()};
    const QRect lower = place.adjusted(0, place.height() - kDetailHeight, 0, 0);
    name_->setGeometry(place.adjusted(0, 0, 0, -lower.height()));
    detail_->setGeometry(lower);
    const auto* model = static_cast<const ui::RowsModel*>(name.model());
    ui::Screen::fitText(name_, name.data().toString(), ui::FontHeight::Small);
    ui::Screen::fitText(detail_, model->cellDetail(name.row(), name.column()).text, ui::FontHeight::Small);
    name_->show();
    detail_->show();
}

std::optional<Quantities> QuantityStepper::stepped(Quantities quantities, int by) const {
    const bool isBox = column_ == kBoxColumn;
    std::int64_t& number = isBox ? quantities.boxes : quantities.bottles;
    const std::int64_t other = isBox ? quantities.bottles : quantities.boxes;
    number += by;
    if (by * number > 0 && by * other < 0) return std::nullopt;
    return quantities;
}

void QuantityStepper::hide() {
    column_ = -1;
    frame_->hide();
    name_->hide();
    detail_->hide();
    less_.hide();
    more_.hide();
}

}  // namespace sales
