#include "ui/DisplayScale.h"

#include <QGuiApplication>
#include <QList>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/Device.h"
#include "platform/WholeFile.h"

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Width and height of the window, its scale, width and height of the display.
constexpr qsizetype kFigures = 5;
constexpr double kLargest = 100;

QString keptFile() {
    return platform::device::folder() + u"/display"_s;
}

QSize displaySize() {
    return QGuiApplication::primaryScreen()->size();
}

}  // namespace

DisplayScale::DisplayScale(QSize window, double most) : window_(window), most_(most) {
    const QList<QByteArray> figures =
        platform::readWholeFile(keptFile()).value_or(QByteArray()).simplified().split(' ');
    if (figures.size() != kFigures || QSize(figures[0].toInt(), figures[1].toInt()) != window) return;
    const double scale = figures[2].toDouble();
    if (!(scale >= 1 && scale <= kLargest) || (most_ > 0 && scale > most_)) return;
    scale_ = scale;
    display_ = {figures[3].toInt(), figures[4].toInt()};
}

DisplayScale DisplayScale::asked(QSize window, double scale) {
    DisplayScale asked;
    asked.window_ = window;
    asked.scale_ = asked.most_ = scale;
    asked.isAsked_ = true;
    return asked;
}

void DisplayScale::measure(int argc, char** argv) {
    qputenv("QT_SCALE_FACTOR", "1");
    // An application object takes what is its own out of the command line, which the next one shall see
    // whole.
    std::vector<char*> words(argv, argv + argc + 1);
    const QGuiApplication passing(argc, words.data());
    const QSize display = displaySize();
    scale_ = std::max(1.0, std::min(display.width() / double(window_.width()),
                                    display.height() / double(window_.height())));
    if (most_ > 0) scale_ = std::min(most_, std::floor(scale_ * 4) / 4);
    isMeasured_ = true;
}

bool DisplayScale::fits() {
    const QSize display = displaySize();
    if (isMeasured_) display_ = display;
    if (isAsked_) return window_.width() <= display.width() && window_.height() <= display.height();
    return display_ == display;
}

void DisplayScale::keep() const {
    if (!isMeasured_ || isAsked_) return;
    const QString figures = u"%1 %2 %3 %4 %5\n"_s.arg(window_.width())
                                .arg(window_.height())
                                .arg(scale_, 0, 'g', 17)
                                .arg(display_.width())
                                .arg(display_.height());
    platform::writeWholeFile(keptFile(), figures.toLatin1());
}

}  // namespace ui
