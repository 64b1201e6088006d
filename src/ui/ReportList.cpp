#include "ui/ReportList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "ui/CellDelegate.h"
#include "ui/Discard.h"
#include "ui/FlickScroll.h"
#include "ui/Fonts.h"

namespace ui {
namespace {

constexpr int kRowHeight = 24;
constexpr int kHeaderHeight = 24;
constexpr int kDetailHeight = 15;
constexpr QColor kDetailColour(0x4a, 0x5a, 0x6a);
constexpr int kScrollBarWidth = 6;
/// The reading of a long list lets a touch wait no longer than this.
constexpr int kReadingMs = 4;
constexpr QColor kSelection(0x1f, 0x6f, 0xb2);
constexpr QColor kScrollMark(0x8f, 0xa3, 0xb5);
constexpr QColor kGrid(0xd5, 0xdc, 0xe4);

/// Shows where a list stands. The finger scrolls the list itself, so the bar can be narrow.
class ScrollMark : public QScrollBar {
  public:
    using QScrollBar::QScrollBar;

    QSize sizeHint() const override {
        const QSize hint = QScrollBar::sizeHint();
        return orientation() == Qt::Vertical ? QSize(kScrollBarWidth, hint.height())
                                             : QSize(hint.width(), kScrollBarWidth);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        const int whole = maximum() - minimum() + pageStep();
        const int length = orientation() == Qt::Vertical ? height() : width();
        const int begin = int(qint64(length) * (value() - minimum()) / whole);
        const int extent = int(qint64(length) * pageStep() / whole);
        painter.fillRect(orientation() == Qt::Vertical ? QRect(1, begin, width() - 1, extent)
                                                       : QRect(begin, 1, extent, height() - 1),
                         kScrollMark);
    }
};

constexpr int kDetailMargin = 3;
constexpr int kSmallestDetail = 8;

struct DetailType {
    QFont font;
    QSize size;
};

/// The type in which both ends of a second line fit beside each other.
DetailType typeFor(const RowDetail& detail, QFont font, int width) {
    constexpr int kGap = 6;
    const bool isAlone = detail.left.isEmpty() || detail.right.isEmpty();
    for (int pixels = font.pixelSize() - 1;; --pixels) {
        font.setPixelSize(pixels);
        const QFontMetrics metrics(font);
        const int taken = metrics.horizontalAdvance(detail.left) + metrics.horizontalAdvance(detail.right) +
                          (isAlone ? 0 : kGap);
        if (taken <= width || pixels <= kSmallestDetail) return {font, {taken, metrics.height()}};
    }
}

/// The style keeps a picture of each title under the number of its palette. With a palette of each list's
/// own, every list that is opened would add them once more.
class Titles : public QHeaderView {
  public:
    explicit Titles(QWidget* list) : QHeaderView(Qt::Horizontal, list) {}

  protected:
    void initStyleOptionForIndex(QStyleOptionHeader* option, int column) const override {
        QHeaderView::initStyleOptionForIndex(option, column);
        static const QPalette shared = option->palette;
        option->palette = shared;
        option->palette.setCurrentColorGroup(palette().currentColorGroup());
    }
};

}  // namespace

void RowsModel::setTitles(const QStringList& titles) {
    beginResetModel();
    titles_ = titles;
    endResetModel();
}

void RowsModel::setRows(platform::Rows rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

void RowsModel::growTo(platform::Rows rows) {
    if (rows.count() == rows_.count()) return;
    beginInsertRows({}, rows_.count(), rows.count() - 1);
    rows_ = std::move(rows);
    endInsertRows();
}

void RowsModel::setDetail(std::function<RowDetail(const platform::Rows& rows, int row)> detail) {
    beginResetModel();
    detail_ = std::move(detail);
    endResetModel();
}

void RowsModel::setCellDetails(CellDetails details) {
    beginResetModel();
    cellDetails_ = std::move(details);
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
    if (role == Qt::AccessibleTextRole)
        return QString(titles_.value(index.column()) + u' ' + rows_.at(index.row(), index.column()));
    if (role == Qt::AccessibleDescriptionRole && hasDetail()) {
        const RowDetail said = detail(index.row());
        return QString(said.left + u' ' + said.right).simplified();
    }
    if (role == Qt::AccessibleDescriptionRole) return cellDetail(index.row(), index.column()).text;
    if (role == Qt::TextAlignmentRole && index.column() < alignments_.size()) {
        return int(alignments_[index.column()]);
    }
    return {};
}

QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
    return titles_.value(section);
}

ReportList::ReportList(QWidget* parent)
    : QTableView(parent), model_(new RowsModel(this)), cells_(new CellDelegate(this)) {
    setModel(model_);
    cells_->setHeight(kRowHeight);
    setItemDelegate(cells_);
    setFont(ui::font(FontHeight::Small));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setShowGrid(true);
    setCornerButtonEnabled(false);
    setVerticalScrollBar(new ScrollMark(Qt::Vertical, this));
    setHorizontalScrollBar(new ScrollMark(Qt::Horizontal, this));
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    // Rows of one fixed height keep a list of any length quick: no row is measured.
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(kRowHeight);
    verticalHeader()->setDefaultSectionSize(kRowHeight);
    setHorizontalHeader(new Titles(this));
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

    auto* finger = new FlickScroll(this);
    connect(finger, &FlickScroll::tapped, this, [this](QPoint place) { tap(place, false); });
    connect(finger, &FlickScroll::tappedAgain, this, [this](QPoint place) { tap(place, true); });
}

ReportList::~ReportList() {
    model_->forgetRows();
    discard(std::move(all_));
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

void ReportList::setRows(platform::Rows rows) {
    readRows(platform::wholeRows(std::move(rows)));
}

void ReportList::readRows(platform::RowSource source) {
    platform::Rows before = std::exchange(all_, {});
    more_ = std::move(source);
    readPieces(filter_ ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(0));
    showRows();
    discard(std::move(before));
    more_ ? idle_.start(0, this) : idle_.stop();
}

void ReportList::readPieces(QDeadlineTimer until) {
    while (more_) {
        if (!more_(&all_)) more_ = nullptr;
        if (until.hasExpired()) return;
    }
}

void ReportList::readOn(QDeadlineTimer until) {
    if (!more_) return;
    readPieces(until);
    if (more_) return;
    idle_.stop();
    // All at once: the list is laid out and painted anew each time that it grows.
    model_->growTo(all_);
}

void ReportList::timerEvent(QTimerEvent* event) {
    if (event->timerId() != idle_.timerId()) return QTableView::timerEvent(event);
    readOn(QDeadlineTimer(kReadingMs));
}

void ReportList::narrow(Filter filter) {
    readToEnd();
    filter_ = std::move(filter);
    showRows();
    Q_EMIT narrowed();
}

void ReportList::setDetail(Detail detail) {
    const int height = kRowHeight + (detail ? kDetailHeight : 0);
    model_->setDetail(std::move(detail));
    verticalHeader()->setDefaultSectionSize(height);
}

void ReportList::setCellDetails(int rowHeight, RowsModel::CellDetails details) {
    model_->setCellDetails(std::move(details));
    cells_->setHeight(rowHeight);
    verticalHeader()->setDefaultSectionSize(rowHeight);
}

QRect ReportList::detailArea(int place) const {
    const int top = rowViewportPosition(place) + kRowHeight - 1;
    return {0, top, std::min(viewport()->width(), horizontalHeader()->length()), kDetailHeight};
}

QSize ReportList::detailSize(int place) const {
    if (!model_->hasDetail()) return {};
    const int width = detailArea(place).width() - 2 * kDetailMargin;
    return typeFor(model_->detail(place), font(), width).size + QSize(2 * kDetailMargin, 0);
}

void ReportList::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (rowCount() == 0) return paintEmptyText();
    if (!model_->hasDetail()) return;
    QPainter painter(viewport());
    const int first = rowAt(event->rect().top());
    if (first < 0) return;
    for (int place = first; place < rowCount() && rowViewportPosition(place) <= event->rect().bottom();
         ++place)
        paintDetail(painter, place);
}

void ReportList::setEmptyText(const QString& text) {
    emptyText_ = text;
    setAccessibleDescription(text);
    viewport()->update();
}

void ReportList::paintEmptyText() {
    if (emptyText_.isEmpty()) return;
    QPainter painter(viewport());
    painter.setPen(kDetailColour);
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
}

void ReportList::paintDetail(QPainter& painter, int place) const {
    const QRect area = detailArea(place);
    const bool isChosen = selectionModel()->isRowSelected(place);
    painter.fillRect(area, isChosen ? kSelection : QColor(Qt::white));
    const RowDetail detail = model_->detail(place);
    const QRect text = area.adjusted(kDetailMargin, 0, -kDetailMargin, 0);
    painter.setFont(typeFor(detail, font(), text.width()).font);
    painter.setPen(isChosen ? QColor(Qt::white) : kDetailColour);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, detail.left);
    painter.drawText(text, Qt::AlignRight | Qt::AlignVCenter, detail.right);
}

void ReportList::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    // The second lines stay where they are when the columns move.
    if (dx != 0 && model_->hasDetail()) viewport()->update();
}

void ReportList::showRows() {
    platform::Rows shown = all_;
    shown_.clear();
    if (filter_) {
        shown.cells.clear();
        for (int row = 0; row < all_.count(); ++row) {
            if (!filter_(all_, row)) continue;
            shown_.append(row);
            shown.cells += all_.cells.mid(qsizetype(row) * all_.columns, all_.columns);
        }
    }
    model_->setRows(std::move(shown));
    scrollToTop();
}

int ReportList::selectedRow() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? -1 : rowAtPlace(selected.first().row());
}

void ReportList::showChosen(int row) {
    readToEnd();
    const int place = filter_ ? int(shown_.indexOf(row)) : row;
    selectRow(place);
    scrollTo(model_->index(place, 0));
}

void ReportList::tap(QPoint place, bool isAgain) {
    const int row = rowAt(place.y());
    if (row < 0 || columnAt(place.x()) < 0) return Q_EMIT emptyPartClicked();
    // The second touch may meet another row than the first, or a list that was filled anew in between.
    if (isAgain && selectionModel()->isRowSelected(row)) return Q_EMIT rowDoubleClicked(rowAtPlace(row));
    choose(row, false);
    Q_EMIT rowTapped(row);
    Q_EMIT cellTapped(rowAtPlace(row), columnAt(place.x()));
}

void ReportList::choose(int row, bool isByKey) {
    // A finger leaves the list as it stands, also where a row or column is half out of it.
    setAutoScroll(isByKey);
    selectionModel()->setCurrentIndex(model_->index(row, 0),
                                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    setAutoScroll(true);
    Q_EMIT rowClicked(rowAtPlace(row));
}

void ReportList::keyPressEvent(QKeyEvent* event) {
    // The focus alone stands on the first row without choosing it.
    if (event->key() == Qt::Key_Down && selectedRow() < 0 && rowCount() > 0) return choose(0, true);
    if (event->key() == Qt::Key_Space) {
        if (currentIndex().isValid()) choose(currentIndex().row(), true);
        return;
    }
    const QString text = event->text();
    if (!text.isEmpty() && text[0].isPrint() && !text[0].isSpace()) {
        // The list's own search would go to a row without choosing it.
        isSignalConnected(QMetaMethod::fromSignal(&ReportList::typed)) ? Q_EMIT typed(text) : event->ignore();
        return;
    }
    readToEnd();
    // A key along a row chooses it too, where the focus alone stood on it.
    const int before = selectedRow();
    QTableView::keyPressEvent(event);
    const int now = selectedRow();
    if (now >= 0 && now != before) Q_EMIT rowClicked(now);
}

}  // namespace ui
