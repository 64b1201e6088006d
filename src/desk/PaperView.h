#pragma once

#include <QAbstractScrollArea>
#include <QList>

#include "platform/termdev/PaperLine.h"

namespace desk {

/// The roll's paper, coming out at the lower edge. Keeps the last metres of it.
class PaperView : public QAbstractScrollArea {
    Q_OBJECT

  public:
    explicit PaperView(QWidget* parent = nullptr);

    /// Adds paper at the end; the oldest goes when there is more than a picture may be high.
    void append(const QList<platform::termdev::PaperLine>& lines);
    /// Tears the paper off: the view is empty, the roll's files stay.
    void tearOff();

    bool isEmpty() const { return lines_.isEmpty(); }

    /// Writes the paper as a picture, a dot of the printer's head each pixel, or as a PDF of one page in the
    /// paper's true size, by the file's ending. False when it cannot be written; the file is then as it was.
    bool save(const QString& path) const;

  Q_SIGNALS:
    void changed();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void draw(QPainter& painter, int from, int to) const;
    void updateScrollBar();

    QList<platform::termdev::PaperLine> lines_;
    int height_ = 0;  ///< Dots.
};

}  // namespace desk
