#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTimer>
#include <future>
#include <limits>

#include "platform/termdev/LinePrinter.h"

namespace platform::termdev {

inline constexpr qint64 kRollBytes = 1024 * 1024;
inline constexpr int kRollDots = 8000;  ///< roll.png keeps this much of the paper's end, about 1 m.
/// The picture costs as much for one slip as for all of this time.
inline constexpr int kDrawingMs = 3000;

/// The printer of a machine without one: the paper goes on in two files of the device folder. roll.txt is
/// written when the device closes, roll.png a few seconds later and by a thread of its own, for nobody waits
/// for a picture. That needs a QGuiApplication; without one there is only the text.
class PaperRoll : public LinePrinter {
  public:
    /// roll.txt is kept under `limitBytes`: a full one becomes roll.txt.1, replacing the one before. The
    /// picture is drawn so many milliseconds after the first paper that it lacks.
    explicit PaperRoll(qint64 limitBytes = kRollBytes, int drawingMs = kDrawingMs);
    ~PaperRoll() override;

  protected:
    bool putOut(const QList<PaperLine>& lines) override;

  private:
    void draw();
    void awaitPicture();

    qint64 limit_;
    QList<PaperLine> undrawn_;
    QTimer drawing_;
    std::future<bool> picture_;  ///< The one that is being drawn.
};

/// Reads on in the paper's text as it is printed, also where roll.txt turns over.
class RollReader {
  public:
    /// The whole lines that came since the last call, UTF-8; at the first call those of roll.txt. Of more
    /// than `most` bytes of one file the end.
    QByteArray read(qint64 most = std::numeric_limits<qint64>::max());

  private:
    quint64 file_ =
        0;  ///< The number in the file system of the roll.txt that was read; 0 before there is one.
    qint64 read_ = 0;  ///< Bytes of it.
};

}  // namespace platform::termdev
