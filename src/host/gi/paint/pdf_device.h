// A page of a PDF file, written directly: curves, texts and definitions stay what they are.
#pragma once

#include "gi/paint/device.h"
#include "gi/paint/pdf_fonts.h"

#include <QBrush>
#include <QHash>

class KcGiPdfDevice : public KcGiDevice {
public:
    struct Options {
        QSizeF paper; ///< millimetres
        double unitsPerMillimetre = 1.0; ///< device units, y downward from the upper left corner
        double hairline = 0.0; ///< device units: the width of thinner lines
        QString title;
    };
    explicit KcGiPdfDevice(const Options& options);

    /// The file with what was drawn.
    QByteArray finish();

    double sagitta() const override { return m_options.unitsPerMillimetre * 0.01; }
    bool keepsCurves() const override { return true; }
    void stroke(const QPainterPath& path, const Pen& pen) override;
    void strokeLines(const std::vector<QLineF>& lines, const Pen& pen) override;
    void fill(const QPainterPath& path, QRgb color) override;
    void fill(const QPainterPath& path, const QBrush& brush) override;
    void mask(const QPainterPath& path) override;
    void dot(QPointF at, QRgb color) override;
    void text(const KcGiTextRun& run, const QTransform& transform, QRgb color) override;
    void pushClip(const QPainterPath& path) override;
    void popClip() override;

private:
    /// What the page's graphics state holds.
    struct State {
        QRgb stroke = 0xff000000, fill = 0xff000000;
        double width = -1.0;
        int alpha = 255;
    };
    void setStroke(const Pen& pen);
    void setFill(QRgb color);
    void setAlpha(int alpha);
    void putColor(QRgb color, const char* op);
    int shading(const QGradient& gradient);

    Options m_options;
    KcGiPdfFile m_file;
    KcGiPdfFonts m_fonts;
    QByteArray m_content;
    State m_state;
    std::vector<State> m_saved;
    QHash<int, int> m_alphas; ///< value → number of the state object, written at the end
    std::vector<int> m_shadings; ///< object numbers
};
