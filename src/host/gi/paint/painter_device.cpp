// Painting with the toolkit.

#include "gi/paint/painter_device.h"

#include "gi/paint/font_stretches.h"

#include <QCache>
#include <QPainter>

namespace {

constexpr int kGlyphPixels = 200; // size at which outlines are taken from the font
constexpr int kKeptRuns = 20'000;
constexpr double kBarBelow = 2.0; // pixels of capital height: smaller texts are drawn as a bar

struct RunKey {
    KcGi::TextStyle style;
    QString text;
    friend bool operator==(const RunKey&, const RunKey&) = default;
};

size_t qHash(const RunKey& key, size_t seed = 0)
{
    return qHashMulti(
        seed, key.style.font, key.style.bigFont, key.style.typeface, key.style.bold, key.style.italic,
        key.text);
}

} // namespace

const QPainterPath& kcgiGlyphs(const KcGi::TextStyle& style, const QString& text)
{
    static QCache<RunKey, QPainterPath> kept(kKeptRuns);
    const RunKey key{ style, text };
    if (const QPainterPath* known = kept.object(key))
        return *known;
    auto* path = new QPainterPath;
    path->setFillRule(Qt::WindingFill);
    double x = 0.0;
    kcgiForFamilies(style, text, [&](const QString& family, const QString& stretch) {
        QPainterPath glyphs;
        glyphs.addText(0, 0, kcgiFont(style, family, kGlyphPixels), stretch);
        const double scale = KcGi::emOfCapHeight(family, style.bold, style.italic) / kGlyphPixels;
        path->addPath(QTransform(scale, 0, 0, -scale, x, 0).map(glyphs));
        x += KcGi::textAdvance(style, stretch, 1.0);
    });
    kept.insert(key, path);
    return *kept.object(key);
}

KcGiPainterDevice::KcGiPainterDevice(QPainter& painter, const Options& options)
    : m_painter(painter)
    , m_options(options)
{
}

void KcGiPainterDevice::setPen(const Pen& pen)
{
    if (pen.color == m_penColor && pen.width == m_penWidth)
        return;
    QPen line(QColor::fromRgba(pen.color));
    const double width = std::max(pen.width, m_options.hairline);
    // Lines up to a pixel wide are drawn thin: faster, and as clear.
    line.setWidthF(!m_options.page && width <= 1.0 ? 0.0 : width);
    line.setCapStyle(Qt::RoundCap);
    line.setJoinStyle(Qt::RoundJoin);
    m_painter.setPen(line);
    m_painter.setBrush(Qt::NoBrush);
    m_penColor = pen.color;
    m_penWidth = pen.width;
}

void KcGiPainterDevice::stroke(const QPainterPath& path, const Pen& pen)
{
    setPen(pen);
    m_painter.drawPath(path);
}

void KcGiPainterDevice::strokeLines(const std::vector<QLineF>& lines, const Pen& pen)
{
    if (lines.empty())
        return;
    setPen(pen);
    std::vector<QPointF> dots;
    if (std::any_of(lines.begin(), lines.end(), [](const QLineF& l) { return l.p1() == l.p2(); })) {
        std::vector<QLineF> dashes;
        for (const QLineF& line : lines) {
            if (line.p1() == line.p2())
                dots.push_back(line.p1());
            else
                dashes.push_back(line);
        }
        m_painter.drawLines(dashes.data(), int(dashes.size()));
        m_painter.drawPoints(dots.data(), int(dots.size()));
        return;
    }
    m_painter.drawLines(lines.data(), int(lines.size()));
}

void KcGiPainterDevice::fill(const QPainterPath& path, QRgb color)
{
    m_painter.fillPath(path, QColor::fromRgba(color));
}

void KcGiPainterDevice::fill(const QPainterPath& path, const QBrush& brush)
{
    m_painter.fillPath(path, brush);
}

void KcGiPainterDevice::mask(const QPainterPath& path)
{
    m_painter.fillPath(path, QColor::fromRgb(m_options.background));
}

void KcGiPainterDevice::dot(QPointF at, QRgb color)
{
    setPen({ color, 0.0 });
    m_painter.drawPoint(at);
}

void KcGiPainterDevice::text(const KcGiTextRun& run, const QTransform& transform, QRgb color)
{
    const double pixels = run.height * std::hypot(transform.m21(), transform.m22());
    if (!m_options.page) {
        if (pixels < kBarBelow) {
            const double length = KcGi::textAdvance(run.style, run.text, run.height);
            m_penWidth = -1.0;
            QColor faint = QColor::fromRgba(color);
            faint.setAlphaF(faint.alphaF() * 0.5f);
            m_painter.setPen(QPen(faint, std::max(pixels, 0.5), Qt::SolidLine, Qt::FlatCap));
            m_painter.drawLine(transform.map(QLineF(0, run.height / 2, length, run.height / 2)));
            return;
        }
        const QTransform toDevice = QTransform::fromScale(run.height, run.height) * transform;
        m_painter.fillPath(toDevice.map(kcgiGlyphs(run.style, run.text)), QColor::fromRgba(color));
        return;
    }
    // A page keeps the characters, in fonts of its own.
    m_painter.save();
    m_painter.setTransform(transform, true);
    m_painter.setPen(QColor::fromRgba(color));
    double x = 0.0;
    kcgiForFamilies(run.style, run.text, [&](const QString& family, const QString& stretch) {
        const double em = KcGi::emOfCapHeight(family, run.style.bold, run.style.italic) * run.height;
        m_painter.save();
        m_painter.translate(x, 0);
        m_painter.scale(em / kGlyphPixels, -em / kGlyphPixels);
        m_painter.setFont(kcgiFont(run.style, family, kGlyphPixels));
        m_painter.drawText(QPointF(0, 0), stretch);
        m_painter.restore();
        x += KcGi::textAdvance(run.style, stretch, run.height);
    });
    m_painter.restore();
    m_penWidth = -1.0;
}

void KcGiPainterDevice::pushClip(const QPainterPath& path)
{
    m_painter.save();
    m_painter.setClipPath(path, Qt::IntersectClip);
}

void KcGiPainterDevice::popClip()
{
    m_painter.restore();
    m_penWidth = -1.0;
}
