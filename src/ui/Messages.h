#pragma once

#include <QElapsedTimer>
#include <QString>

#include "ui/Screen.h"

namespace ui {

/// Dialog id of every message box, and the ids of its buttons.
inline constexpr int kMessageBoxId = 0;
inline constexpr int kMessageOk = 1;
inline constexpr int kMessageCancel = 2;
inline constexpr int kMessageNo = 3;

/// Shows a message without caption, with an OK button, and returns when it is answered.
void message(const QString& text);

/// The sign beside the text of a message box.
enum class MessageIcon { None, Information, Question };

/// Asks with OK and Cancel under a short caption. True on OK only.
bool confirm(const QString& text, const QString& caption, MessageIcon icon = MessageIcon::None);

/// Asks with Yes, No and Cancel under a short caption. True on Yes only.
bool askYesNo(const QString& text, const QString& caption, MessageIcon icon = MessageIcon::None);

/// A message box in front of the screens.
class MessageBox : public Screen {
    Q_OBJECT

  public:
    enum class Buttons { Ok, OkCancel, YesNoCancel };

    MessageBox(const QString& text, const QString& caption, Buttons buttons,
               MessageIcon icon = MessageIcon::None);

    const QString& text() const { return text_; }
    const QString& caption() const { return caption_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    /// The Enter that follows digits is no answer: a scanner sent it, and nobody may be looking.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addButtons(Buttons buttons);
    void paintIcon(QPainter* painter) const;

    QString text_;
    QString caption_;
    MessageIcon icon_;
    QRect panel_;
    QRect iconArea_;
    QElapsedTimer sinceDigit_;
};

}  // namespace ui
