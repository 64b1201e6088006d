#include "desk/Desk.h"

#include <QAbstractEventDispatcher>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>

#include "desk/CardSlot.h"
#include "desk/PaperView.h"
#include "desk/RollFollower.h"
#include "desk/StatusStrip.h"
#include "platform/Clock.h"
#include "platform/termdev/CardReader.h"
#include "ui/Fonts.h"
#include "ui/Terminal.h"

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

/// The body of the device around its screen.
class Frame : public QWidget {
  public:
    Frame(ui::Terminal* terminal, QWidget* parent) : QWidget(parent) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(14, 14, 14, 26);
        layout->addWidget(terminal);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QLinearGradient body(rect().topLeft(), rect().bottomLeft());
        body.setColorAt(0, QColor(0x4a, 0x50, 0x5a));
        body.setColorAt(1, QColor(0x24, 0x28, 0x2e));
        painter.setPen(QPen(QColor(0x17, 0x19, 0x1d), 1));
        painter.setBrush(body);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 16, 16);
        // The rim of the screen.
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF(11, 11, width() - 22, height() - 34), 4, 4);
        QFont brand = font();
        brand.setBold(true);
        brand.setLetterSpacing(QFont::AbsoluteSpacing, 3);
        painter.setFont(brand);
        painter.setPen(QColor(0xc4, 0xc8, 0xcd));
        painter.drawText(QRect(0, height() - 23, width(), 20), Qt::AlignCenter, u"ROVANA"_s);
    }
};

QPushButton* makeButton(const QString& text, const QString& accessibleName, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setAccessibleName(accessibleName);
    button->setToolTip(accessibleName);
    button->setFocusPolicy(Qt::TabFocus);
    button->setMinimumHeight(24);
    return button;
}

}  // namespace

Desk::Desk(ui::Terminal* terminal, const platform::Settings& settings, QWidget* parent)
    : QWidget(parent), terminal_(terminal) {
    constexpr int kGap = 10;
    constexpr int kTextPixels = 11;
    // What another program or thread has changed shows after this.
    constexpr auto kRefreshTime = 1s;
    QFont small = ui::font(ui::FontHeight::Small);
    small.setPixelSize(kTextPixels);
    small.setWeight(QFont::Normal);
    setFont(small);
    setPalette(QPalette(QColor(0xe6, 0xe2, 0xda)));
    setAutoFillBackground(true);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(kGap, kGap, kGap, kGap);
    layout->setSpacing(kGap);
    layout->addWidget(new Frame(terminal, this), 0, 0, Qt::AlignCenter);
    layout->addWidget(makePaperSide(settings.printer.kind == platform::PrinterSettings::Kind::Roll), 0, 1);
    status_ = new StatusStrip(settings, this);
    layout->addWidget(status_, 1, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(0, 1);

    auto* changing = new QShortcut(Qt::Key_F6, this);
    connect(changing, &QShortcut::activated, this, &Desk::changeSides);
    auto* refreshing = new QTimer(this);
    connect(refreshing, &QTimer::timeout, this, &Desk::refresh);
    refreshing->start(kRefreshTime);
    // What this one has done shows when it is about to rest.
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &Desk::refresh);
}

QWidget* Desk::makePaperSide(bool isRoll) {
    auto* side = new QWidget(this);
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    auto* head = new QHBoxLayout;
    auto* title = new QLabel(isRoll ? u"용지 Paper"_s : u"실제 프린터 Real printer"_s, side);
    head->addWidget(title);
    head->addStretch();
    paper_ = new PaperView(side);
    auto* tear = makeButton(u"뜯기 Tear"_s, u"용지 뜯기 Tear the paper off"_s, side);
    auto* picture = makeButton(u"PNG"_s, u"PNG로 저장 Save as PNG"_s, side);
    auto* document = makeButton(u"PDF"_s, u"PDF로 저장 Save as PDF"_s, side);
    for (QPushButton* button : {tear, picture, document}) {
        head->addWidget(button);
        connect(paper_, &PaperView::changed, button,
                [this, button] { button->setEnabled(!paper_->isEmpty()); });
    }
    connect(tear, &QPushButton::clicked, paper_, &PaperView::tearOff);
    connect(picture, &QPushButton::clicked, this, [this] { askWhereToSave(u"png"_s); });
    connect(document, &QPushButton::clicked, this, [this] { askWhereToSave(u"pdf"_s); });
    slot_ = new CardSlot(side);
    column->addLayout(head);
    column->addWidget(paper_, 1);
    column->addWidget(slot_);

    auto* follower = new RollFollower(this);
    connect(follower, &RollFollower::printed, paper_, &PaperView::append);
    paper_->append(follower->earlierPaper());
    Q_EMIT paper_->changed();
    return side;
}

void Desk::askWhereToSave(const QString& ending) {
    const QString name = platform::clock::now().toString(u"'rovana'-yyyyMMdd-hhmmss."_s) + ending;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    auto* dialog = new QFileDialog(this, u"용지 저장 Save the paper"_s, folder, u"*."_s + ending);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    // The dates of a detailed list would be in the language of the machine.
    dialog->setViewMode(QFileDialog::List);
    dialog->setDefaultSuffix(ending);
    dialog->selectFile(name);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
        if (paper_->save(path)) return;
        auto* box = new QMessageBox(QMessageBox::Warning, u"용지 저장 Save the paper"_s,
                                    u"저장하지 못했습니다.\nThe file could not be written:\n%1"_s.arg(path),
                                    QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
    // Not waited for: the terminal goes on meanwhile.
    dialog->open();
}

void Desk::refresh() {
    status_->refresh();
    slot_->setReading(platform::termdev::CardReader::instance().isReading());
}

void Desk::changeSides() {
    if (terminal_->isAncestorOf(focusWidget()) || terminal_->hasFocus()) {
        focusNextPrevChild(true);
    } else {
        returnToTerminal();
    }
}

void Desk::returnToTerminal() {
    QWidget* before = terminal_->focusWidget();
    (before != nullptr ? before : terminal_)->setFocus();
}

bool Desk::focusNextPrevChild(bool next) {
    // Round the desk's own controls; the terminal keeps Tab to itself as well.
    QList<QWidget*> stops;
    for (QWidget* widget : findChildren<QWidget*>()) {
        const bool isStop = (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible() &&
                            widget->isEnabled() && widget != terminal_ && !terminal_->isAncestorOf(widget);
        if (isStop) stops.append(widget);
    }
    if (stops.isEmpty()) return false;
    const qsizetype at = stops.indexOf(focusWidget());
    const qsizetype to = next ? at + 1 : std::max<qsizetype>(at, 0) + stops.size() - 1;
    stops[to % stops.size()]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void Desk::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return returnToTerminal();
    QWidget::keyPressEvent(event);
}

}  // namespace desk
