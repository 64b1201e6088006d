#pragma once

#include <QSize>
#include <QString>

namespace ui {

/// The scale at which a window fills the display. Qt wants it before the application object is made, and only
/// one can tell how large the display is: so the scale is kept in the device folder, and a passing
/// application object looks at the display only where nothing is kept or the display is another one.
class DisplayScale {
  public:
    /// Reads what is kept for a window of that many pixels at scale 1.
    explicit DisplayScale(QSize window) : DisplayScale(window, 0) {}
    /// The same for one that is shown no larger than `most`, and in whole quarters: they keep letters even.
    DisplayScale(QSize window, double most);
    /// One that was asked for: it is taken as it is unless the window would not fit the display.
    static DisplayScale asked(QSize window, double scale);

    /// False when the display has to be measured first.
    bool isKnown() const { return scale_ > 0; }
    /// The largest scale at which the window fits, at least 1 for one that may have any.
    double value() const { return scale_; }

    /// Looks at the display by way of a passing application object.
    void measure(int argc, char** argv);

    /// With the application object made at value(): whether the display is the one that it was found for. One
    /// that was measured takes the display as its own.
    bool fits();

    /// Keeps what was measured. Where that cannot be, the next start measures again.
    void keep() const;

  private:
    DisplayScale() = default;

    QSize window_;
    double most_ = 0;
    double scale_ = 0;
    QSize display_;  ///< As Qt reports it at the scale.
    bool isMeasured_ = false;
    bool isAsked_ = false;
};

}  // namespace ui
