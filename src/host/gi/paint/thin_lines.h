// Lines one pixel wide with smooth edges, straight into the pixels of a picture: what most of a drawing
// consists of.
#pragma once

#include <QImage>

/// The pixels of a picture (Format_RGB32 or premultiplied), which must outlive this and not be copied
/// meanwhile.
struct KcGiPixels {
    explicit KcGiPixels(QImage& image)
        : bits(reinterpret_cast<QRgb*>(image.bits()))
        , stride(image.bytesPerLine() / qsizetype(sizeof(QRgb)))
        , width(image.width())
        , height(image.height())
    {
    }
    QRgb* bits;
    qsizetype stride; ///< pixels
    int width, height;
};

class KcGiThinLines {
public:
    explicit KcGiThinLines(const KcGiPixels& pixels)
        : m_pixels(pixels)
    {
    }
    const KcGiPixels& pixels() const { return m_pixels; }

    void setColor(QRgb color);
    /// Device coordinates, the middle of the first pixel at (0.5, 0.5). What lies outside is cut off.
    void line(QPointF from, QPointF to);
    /// A run of lines; of a run that is smaller than a pixel something is seen all the same.
    void run(const QPointF* points, size_t count, bool closed);

private:
    template <bool kSteep> void smooth(double a0, double b0, double a1, double b1);
    void blend(QRgb& pixel, uint32_t cover) const;
    void pixel(int x, int y, uint32_t cover);

    KcGiPixels m_pixels;
    uint32_t m_redBlue = 0, m_alphaGreen = 0; ///< of the colour
    uint32_t m_strength = 256; ///< 256: opaque
};
