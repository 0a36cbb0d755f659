// Scenes on whatever the toolkit can paint on: images, PDF pages, SVG files.
#pragma once

#include "gi/paint/device.h"

class QPainter;

class KcGiPainterDevice : public KcGiDevice {
public:
    struct Options {
        QRgb background = 0xffffffff; ///< of masks
        double sagitta = 0.2; ///< device units
        double smallest = 0.0; ///< see KcGiDevice::smallest
        double hairline = 0.0; ///< width of lines that have none; 0: cosmetic, one pixel
        bool page = false; ///< curves stay curves, texts stay texts
    };
    KcGiPainterDevice(QPainter& painter, const Options& options);

    double sagitta() const override { return m_options.sagitta; }
    bool keepsCurves() const override { return m_options.page; }
    double smallest() const override { return m_options.smallest; }
    void stroke(const QPainterPath& path, const Pen& pen) override;
    void strokeLines(const std::vector<QLineF>& lines, const Pen& pen) override;
    void fill(const QPainterPath& path, QRgb color) override;
    void fill(const QPainterPath& path, const QBrush& brush) override;
    void mask(const QPainterPath& path) override;
    void dot(QPointF at, QRgb color) override;
    void text(const KcGiTextRun& run, const QTransform& transform, QRgb color) override;
    void pushClip(const QPainterPath& path) override;
    void popClip() override;

protected:
    QPainter& m_painter;
    Options m_options;

private:
    void setPen(const Pen& pen);

    QRgb m_penColor = 0;
    double m_penWidth = -1.0;
};

/// The glyphs of a run as one outline: capital height 1, y upward, beginning at the origin. The same fonts
/// and advances that texts are measured with. Recent ones are kept.
const QPainterPath& kcgiGlyphs(const KcGi::TextStyle& style, const QString& text);
