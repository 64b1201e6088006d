#include "ui/ReportList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include "ui/Fonts.h"

namespace ui {
namespace {

constexpr int kRowHeight = 24;
constexpr int kHeaderHeight = 24;
constexpr int kScrollBarWidth = 14;
constexpr QColor kSelection(0x1f, 0x6f, 0xb2);
constexpr QColor kGrid(0xd5, 0xdc, 0xe4);

/// Paints no frame around the cell that the keys stand on: a row is chosen as a whole or not at all.
class RowDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver);
    }
};

}  // namespace

void RowsModel::setTitles(const QStringList& titles) {
    beginResetModel();
    titles_ = titles;
    endResetModel();
}

void RowsModel::setRows(db::Rows rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int RowsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(rows_.count());
}

int RowsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(titles_.size());
}

QVariant RowsModel::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole) return rows_.at(index.row(), index.column());
    if (role == Qt::TextAlignmentRole && index.column() < alignments_.size()) {
        return int(alignments_[index.column()]);
    }
    return {};
}

QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
    return titles_.value(section);
}

ReportList::ReportList(QWidget* parent) : QTableView(parent), model_(new RowsModel(this)) {
    setModel(model_);
    setItemDelegate(new RowDelegate(this));
    setFont(ui::font(FontHeight::Small));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setShowGrid(true);
    setCornerButtonEnabled(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalScrollBar()->setFixedWidth(kScrollBarWidth);
    horizontalScrollBar()->setFixedHeight(kScrollBarWidth);
    // Rows of one fixed height keep a list of any length quick: no row is measured.
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(kRowHeight);
    verticalHeader()->setDefaultSectionSize(kRowHeight);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setFixedHeight(kHeaderHeight);
    horizontalHeader()->setFont(ui::font(FontHeight::Small));
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);

    QPalette colours = palette();
    // The chosen row stays visible when the focus moves on to a button.
    colours.setColor(QPalette::Active, QPalette::Highlight, kSelection);
    colours.setColor(QPalette::Inactive, QPalette::Highlight, kSelection);
    colours.setColor(QPalette::HighlightedText, Qt::white);
    colours.setColor(QPalette::Mid, kGrid);
    setPalette(colours);

    connect(this, &QTableView::clicked, this,
            [this](const QModelIndex& index) { Q_EMIT rowClicked(index.row()); });
    connect(this, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { Q_EMIT rowDoubleClicked(index.row()); });
}

void ReportList::setColumns(std::span<const ListColumn> columns) {
    QStringList titles;
    QList<Qt::Alignment> alignments;
    for (const ListColumn& column : columns) {
        titles.append(column.title);
        alignments.append(column.alignment);
    }
    model_->setTitles(titles);
    model_->setAlignments(alignments);
    for (int i = 0; i < int(columns.size()); ++i) setColumnWidth(i, columns[size_t(i)].width);
}

void ReportList::setRows(db::Rows rows) {
    model_->setRows(std::move(rows));
    scrollToTop();
}

QString ReportList::text(int row, int column) const {
    return model_->rows().cell(row, column);
}

int ReportList::selectedRow() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? -1 : selected.first().row();
}

bool ReportList::contains(int column, const QString& text) const {
    for (int row = 0; row < rowCount(); ++row) {
        if (this->text(row, column) == text) return true;
    }
    return false;
}

void ReportList::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    if (!indexAt(event->position().toPoint()).isValid()) Q_EMIT emptyPartClicked();
}

void ReportList::keyPressEvent(QKeyEvent* event) {
    // The focus alone stands on the first row without choosing it.
    if (event->key() == Qt::Key_Down && selectedRow() < 0 && rowCount() > 0) {
        selectRow(0);
        Q_EMIT rowClicked(0);
        return;
    }
    const int before = currentIndex().row();
    QTableView::keyPressEvent(event);
    if (currentIndex().isValid() && currentIndex().row() != before) Q_EMIT rowClicked(currentIndex().row());
}

}  // namespace ui
