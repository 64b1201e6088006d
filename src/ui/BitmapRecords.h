#pragma once

#include <QRgb>

/// The pictures as the build records them from their SVG files (res/record-bitmaps).
namespace ui {

/// A filled shape: an upright rectangle by two corners, else a polygon.
struct BitmapShape {
    unsigned firstPoint;
    unsigned points;
    bool isWinding;  ///< Filled by winding number, else by even and odd.
    QRgb colour;
    unsigned stops;  ///< 0, or those of a gradient: its two ends are the points behind the shape's own.
    unsigned firstStop;
};

struct BitmapStop {
    float at;
    QRgb colour;
};

struct BitmapRecord {
    int number;  ///< 0 behind the last picture.
    int width;   ///< Pixels at scale 1.
    int height;
    unsigned firstShape;
    unsigned shapes;
};

extern const BitmapRecord kBitmapRecords[];
extern const BitmapShape kBitmapShapes[];
extern const BitmapStop kBitmapStops[];
/// Pairs of x and y.
extern const float kBitmapPoints[];

}  // namespace ui
