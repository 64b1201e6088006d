#pragma once

#include <QEventLoop>
#include <QList>
#include <QPointer>
#include <QWidget>
#include <functional>

#include "platform/Won.h"
#include "ui/BitmapButton.h"
#include "ui/Fonts.h"

class QComboBox;
class QLabel;

namespace ui {

class ReportList;
struct AmountRow;
struct AmountTable;
struct ListColumn;

/// Size of the terminal's screen in pixels at scale 1.
inline constexpr QSize kScreenSize(240, 320);

/// The grid of the screens: four columns of a button's width, 4 pixels apart, 2 from the edges.
inline constexpr int kGridLeft = 2;
inline constexpr int kGridPitch = 60;
/// Where the row of buttons at the bottom begins.
inline constexpr int kBottomRow = 286;

/// How figures stand in their place.
inline constexpr Qt::Alignment kRight = Qt::AlignRight | Qt::AlignVCenter;

/// A full-screen modal dialog. It is found by its dialog id, its controls by their control ids.
class Screen : public QWidget {
    Q_OBJECT

  public:
    /// What a screen was left with.
    enum Result { Cancelled = 0, Accepted = 1 };

    explicit Screen(int id);
    ~Screen() override;

    int id() const { return id_; }

    /// Shows the screen above all others on the terminal and returns when it is closed.
    Result run();

    /// Closes the screen; run() then returns `result`.
    void close(Result result);
    /// True from close() until run() returns.
    bool isClosing() const { return isClosing_; }

    /// Moves the focus to the screen's next control, or the one before; never to another screen.
    bool focusNextPrevChild(bool next) override;

    /// Closes the screen and opens the dialog with that id in its place.
    void closeAndOpen(int dialogId);
    /// The dialog that takes this screen's place; 0 when none does.
    int successor() const { return successor_; }

    /// The control with that id, or null.
    QWidget* control(int controlId) const;

    /// Shows a text in the largest type, up to `height`, that fits the label on one line.
    static void fitText(QLabel* label, const QString& text, FontHeight height);

  protected:
    /// A button without `pressed` is disabled.
    BitmapButton* addButton(int controlId, const QString& caption, QPoint at, ButtonBitmaps bitmaps,
                            std::function<void()> pressed);
    /// A button in the row at the bottom, which has four places.
    BitmapButton* addBottomButton(int controlId, const QString& caption, int place, ButtonBitmaps bitmaps,
                                  std::function<void()> pressed);
    /// The left one of that row, which Esc presses: it closes the screen, unless `pressed` does otherwise.
    BitmapButton* addLeaveButton(int controlId, const QString& caption, std::function<void()> pressed = {});
    /// The right one, the screen's main button, which Enter presses while no focus ring shows.
    BitmapButton* addMainButton(int controlId, const QString& caption, std::function<void()> pressed);
    /// A static text. `controlId` 0 marks a text that nothing refers to.
    QLabel* addLabel(int controlId, const QString& text, const QRect& area,
                     FontHeight height = FontHeight::Small,
                     Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter);
    /// A figure, right-aligned, that a reader of the screen announces after `name`.
    QLabel* addAmount(int controlId, const QString& name, const QRect& area,
                      FontHeight height = FontHeight::Small);
    /// A static picture.
    QLabel* addPicture(int controlId, int bitmapNumber, QPoint at);
    /// A heading across the screen: a picture with the title on it.
    void addHeading(int pictureId, int bitmapNumber, const QString& title);
    /// A list, named for a reader of the screen. `chosen` is given the row that is tapped or chosen with
    /// keys; a double tap chooses its row, then calls `opened`.
    ReportList* addList(int controlId, const QRect& area, const QString& name,
                        const QList<ListColumn>& columns, std::function<void(int row)> chosen = {},
                        std::function<void()> opened = {});
    /// The titles of a table's columns.
    void addAmountTitles(const AmountTable& table, int top, int height);
    void addAmountRow(const AmountTable& table, const AmountRow& row);
    /// A combo box whose entries are high enough for a finger.
    QComboBox* addCombo(int controlId, const QRect& area);
    /// Places any other control.
    template <typename Control>
    Control* place(int controlId, Control* widget, const QRect& area) {
        adopt(controlId, widget);
        widget->setGeometry(area);
        return widget;
    }

    QLabel* label(int controlId) const;
    /// Names a control for a reader of the screen. A label's text follows its name.
    static void describe(QWidget* control, const QString& name);
    static void setTextColour(QWidget* widget, const QColor& colour);
    void setText(int controlId, const QString& text);
    /// Shows an amount with the slip screens' grouping, in the largest type that fits its control.
    void setAmount(int controlId, platform::Won amount);
    /// Shows a text in the largest type, up to `height`, that fits its control on one line.
    void setFittedText(int controlId, const QString& text, FontHeight height);

    /// The buttons that Enter, while no focus ring shows, and Esc press.
    void setDefaultButton(BitmapButton* button) { default_ = button; }
    void setCancelButton(BitmapButton* button) { cancel_ = button; }

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void adopt(int controlId, QWidget* widget);

    int id_;
    Result result_ = Cancelled;
    int successor_ = 0;
    bool isClosing_ = false;
    QEventLoop loop_;
    QPointer<BitmapButton> default_;
    QPointer<BitmapButton> cancel_;
};

}  // namespace ui
