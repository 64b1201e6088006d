#include "ui/Discard.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QObject>
#include <algorithm>
#include <utility>

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

/// A fraction of a millisecond's work.
constexpr qsizetype kPiece = 4096;

class Remains : public QObject {
  public:
    Remains(QList<QString> cells, QObject* parent) : QObject(parent), cells_(std::move(cells)) {
        setObjectName(u"discarded"_s);
        idle_.start(0, this);
    }

  protected:
    void timerEvent(QTimerEvent*) override {
        cells_.resize(std::max<qsizetype>(0, cells_.size() - kPiece));
        if (!cells_.isEmpty()) return;
        idle_.stop();
        deleteLater();
    }

  private:
    QList<QString> cells_;
    QBasicTimer idle_;
};

}  // namespace

void discard(platform::Rows rows) {
    // What others hold as well costs nothing to let go of, and would have to be copied to be made shorter.
    if (rows.cells.size() <= kPiece || !rows.cells.isDetached() || QCoreApplication::instance() == nullptr)
        return;
    new Remains(std::move(rows.cells), QCoreApplication::instance());
}

}  // namespace ui
