// record-bitmaps OUT.cpp PICTURE.svg...: writes the pictures as source code, each as the shapes that Qt's SVG
// renderer fills. The program needs neither the renderer nor an XML reader, and fills polygons several times
// as quickly as curves, which Qt takes apart anew each time, a corner into 190 pieces.

#include <QFile>
#include <QFileInfo>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace {

using namespace Qt::Literals::StringLiterals;

/// Curves are taken apart as if for a display of this scale.
constexpr qreal kFinestScale = 16;

QByteArray number(int is) {
    return QByteArray::number(is);
}

/// A row of a table in the source code.
void addRow(QByteArray* table, const QByteArrayList& values) {
    *table += "    {" + values.join(", ") + "},\n";
}

/// Writes down what is drawn, in the units of the picture.
class Recorder : public QPaintEngine {
  public:
    Recorder() : QPaintEngine(AllFeatures) {}

    QByteArray shapes;
    QByteArray stops;
    QByteArray points;
    int shapeCount = 0;

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState& now) override {
        // The flags of what is new say nothing of the rest, which stands too.
        transform_ = now.transform();
        brush_ = now.brush();
        pen_ = now.pen();
    }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {
        throw std::runtime_error("holds an image");
    }
    void drawPolygon(const QPointF* corners, int count, PolygonDrawMode mode) override {
        QPainterPath path;
        path.addPolygon(QPolygonF(QList<QPointF>(corners, corners + count)));
        path.closeSubpath();
        path.setFillRule(mode == WindingMode ? Qt::WindingFill : Qt::OddEvenFill);
        drawPath(path);
    }
    void drawPath(const QPainterPath& path) override {
        if (brush_.style() != Qt::NoBrush) fill(path, brush_);
        if (pen_.style() == Qt::NoPen) return;
        QPainterPath line = QPainterPathStroker(pen_).createStroke(path);
        line.setFillRule(Qt::WindingFill);
        fill(line, pen_.brush());
    }

  private:
    void fill(const QPainterPath& path, const QBrush& brush) {
        const QList<QPolygonF> polygons =
            path.toSubpathPolygons(transform_ * QTransform::fromScale(kFinestScale, kFinestScale));
        if (polygons.size() != 1) throw std::runtime_error("has a shape of several parts");
        const int first = pointCount_;
        QPolygonF polygon = polygons.first();
        if (polygon.isClosed()) polygon.removeLast();
        const QRectF bounds = polygon.boundingRect();
        const bool isRect = polygon.size() == 4 && std::ranges::all_of(polygon, [&](QPointF corner) {
                                return (corner.x() == bounds.left() || corner.x() == bounds.right()) &&
                                       (corner.y() == bounds.top() || corner.y() == bounds.bottom());
                            });
        if (isRect) polygon = {bounds.topLeft(), bounds.bottomRight()};
        for (const QPointF point : polygon) addPoint(point / kFinestScale);
        addShape(brush, path, first, path.fillRule() == Qt::WindingFill);
    }

    void addShape(const QBrush& brush, const QPainterPath& path, int first, bool isWinding) {
        const int count = pointCount_ - first;
        const int firstStop = stopCount_;
        if (brush.gradient() != nullptr) addGradient(*brush.gradient(), path);
        addRow(&shapes, {number(first), number(count), isWinding ? "true" : "false", colour(brush.color()),
                         number(stopCount_ - firstStop), number(firstStop)});
        ++shapeCount;
    }

    void addGradient(const QGradient& gradient, const QPainterPath& path) {
        if (gradient.type() != QGradient::LinearGradient)
            throw std::runtime_error("has a gradient in a circle");
        const auto& linear = static_cast<const QLinearGradient&>(gradient);
        const bool isOfShape = gradient.coordinateMode() != QGradient::LogicalMode;
        const QRectF box = isOfShape ? path.boundingRect() : QRectF(0, 0, 1, 1);
        for (const QPointF at : {linear.start(), linear.finalStop()}) {
            addPoint(transform_.map(box.topLeft() + QPointF(at.x() * box.width(), at.y() * box.height())));
        }
        for (const auto& [at, is] : gradient.stops()) {
            addRow(&stops, {QByteArray::number(at), colour(is)});
            ++stopCount_;
        }
    }

    static QByteArray colour(const QColor& is) { return "0x" + QByteArray::number(is.rgba(), 16); }
    void addPoint(QPointF point) {
        points += "    " + QByteArray::number(point.x(), 'g', 7) + ", " +
                  QByteArray::number(point.y(), 'g', 7) + ",\n";
        ++pointCount_;
    }

    int pointCount_ = 0;
    int stopCount_ = 0;
    QTransform transform_;
    QBrush brush_;
    QPen pen_;
};

class Sheet : public QPaintDevice {
  public:
    mutable Recorder recorder;

    QPaintEngine* paintEngine() const override { return &recorder; }

  protected:
    int metric(PaintDeviceMetric metric) const override {
        constexpr int kWide = 1000;
        switch (metric) {
            case PdmWidth:
            case PdmHeight: return kWide;
            case PdmDevicePixelRatioScaled: return int(devicePixelRatioFScale());
            default: return 1;
        }
    }
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    QByteArray records;
    Sheet sheet;
    for (int i = 2; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        QSvgRenderer renderer(path);
        const QSize size = renderer.defaultSize();
        const int first = sheet.recorder.shapeCount;
        try {
            if (!renderer.isValid()) throw std::runtime_error("is no picture");
            QPainter painter(&sheet);
            renderer.render(&painter, QRectF({}, QSizeF(size)));
        } catch (const std::exception& error) {
            std::fprintf(stderr, "record-bitmaps: %s %s\n", argv[i], error.what());
            return 1;
        }
        addRow(&records, {QFileInfo(path).baseName().toLatin1(), number(size.width()), number(size.height()),
                          number(first), number(sheet.recorder.shapeCount - first)});
    }
    QFile out(QString::fromLocal8Bit(argv[1]));
    if (!out.open(QIODevice::WriteOnly)) return 1;
    out.write("#include \"ui/BitmapRecords.h\"\n\nnamespace ui {\n\n");
    out.write("const BitmapRecord kBitmapRecords[] = {\n" + records + "    {},\n};\n\n");
    out.write("const BitmapShape kBitmapShapes[] = {\n" + sheet.recorder.shapes + "};\n\n");
    out.write("const BitmapStop kBitmapStops[] = {\n" + sheet.recorder.stops + "};\n\n");
    out.write("const float kBitmapPoints[] = {\n" + sheet.recorder.points + "};\n\n}  // namespace ui\n");
    return out.flush() && out.error() == QFile::NoError ? 0 : 1;
}
