// From paths in space to lines and areas on the device: curves, line types, clips, points, texts.

#include "gi/paint/cut_line.h"
#include "gi/paint/scene.h"

#include "db/header.h"
#include "db/open.h"

#include <QBrush>
#include <QLinearGradient>
#include <QPolygonF>
#include <QRadialGradient>

namespace {

constexpr double kFinestPeriod = 3.0; // device units: shorter line type patterns look like an even line
constexpr double kSmallestText = 0.6; // device units of capital height: below it a text is not seen
constexpr qsizetype kPieceOfText = 256; // characters that are drawn together
constexpr double kFar = 1e6; // device units: what lies further outside is cut off

KcGePoint3d seen(const KcGeMatrix3d& matrix, KcGePoint3d p)
{
    return matrix * p;
}

bool isNear(QPointF p)
{
    return std::abs(p.x()) < kFar && std::abs(p.y()) < kFar;
}

} // namespace

// The path on the device. Lines that lead far outside the seen area are cut, so that no painter has to cope
// with gigantic coordinates.
QPainterPath KcGiScene::plane(const KcGiPath& path) const
{
    QPainterPath result;
    if (m_device.keepsCurves()) {
        bool open = false, drawable = true;
        const auto at = [&](KcGePoint3d p) {
            const KcGePoint3d device = seen(m_context.matrix, p);
            drawable = drawable && kcgiIsDrawable(device);
            return QPointF(device.x, device.y);
        };
        for (const KcGiPath::Element& element : path.elements()) {
            if (const auto* move = std::get_if<KcGiPath::Move>(&element)) {
                result.moveTo(at(move->to));
                open = true;
            } else if (const auto* line = std::get_if<KcGiPath::Line>(&element)) {
                result.lineTo(at(line->to));
            } else if (const auto* arc = std::get_if<KcGeEllipArc3d>(&element)) {
                if (!std::exchange(open, true))
                    result.moveTo(at(arc->startPoint()));
                const std::vector<KcGePoint3d> handles = KcGiPath::beziers(*arc);
                for (size_t i = 0; i + 2 < handles.size(); i += 3)
                    result.cubicTo(at(handles[i]), at(handles[i + 1]), at(handles[i + 2]));
            } else if (const auto* spline = std::get_if<KcGiPath::Spline>(&element)) {
                const double scale = kcgiLargestScale(m_context.matrix);
                for (const KcGePoint3d& p : (*spline)->chords(m_device.sagitta() / std::max(scale, 1e-300)))
                    result.lineTo(at(p));
            } else {
                result.closeSubpath();
                open = false;
            }
        }
        if (drawable)
            return result;
        result = {};
    }
    QPolygonF run;
    path.flatten(
        m_context.matrix, m_device.sagitta(),
        [&](KcGePoint3d p, bool begins) {
            if (begins)
                run.clear();
            run.append({ p.x, p.y });
        },
        [&](bool closed) {
            if (run.isEmpty())
                return;
            result.addPolygon(run);
            if (closed)
                result.closeSubpath();
        });
    return result;
}

void KcGiScene::stroke(const KcGiPath& path, Stroke options)
{
    const KcGiDevice::Pen pen{ m_traits.color, m_traits.width };
    const double scale = kcgiLargestScale(m_context.matrix);
    if (m_traits.pattern && !m_traits.continuous
        && (!m_options.area || m_traits.pattern->length * m_traits.patternScale * scale >= kFinestPeriod))
        return dash(path, options);
    if (!m_options.area)
        return m_device.stroke(plane(path), pen);

    // Most strokes are near the seen area; the others are cut piece by piece.
    const QPainterPath lines = plane(path);
    const QRectF box = lines.controlPointRect();
    if (isNear(box.topLeft()) && isNear(box.bottomRight()))
        return m_device.stroke(lines, pen);
    const double margin = 100.0 + 2.0 * m_traits.width;
    const QRectF area = m_options.area->adjusted(-margin, -margin, margin, margin);
    std::vector<QLineF> pieces;
    for (const QPolygonF& run : lines.toSubpathPolygons())
        for (int i = 0; i + 1 < run.size(); ++i) {
            QPointF a = run[i], b = run[i + 1];
            if (kcgiCutLine(a, b, area))
                pieces.push_back({ a, b });
        }
    m_device.strokeLines(pieces, pen);
}

// The outline says what is marked; what lies below stays to be seen.
void KcGiScene::markArea(const KcGiPath& path)
{
    constexpr int kVeil = 70; // of 255
    m_device.fill(plane(path), (m_traits.color & 0xffffffu) | QRgb(kVeil) << 24);
    const bool wasContinuous = std::exchange(m_traits.continuous, true);
    stroke(path, {});
    m_traits.continuous = wasContinuous;
}

void KcGiScene::fill(const KcGiPath& path)
{
    if (m_options.oneColor)
        return markArea(path);
    m_device.fill(plane(path), m_traits.color);
}

void KcGiScene::fill(const KcGiPath& path, const KcGiGradient& gradient)
{
    if (m_options.oneColor)
        return markArea(path);
    const QPainterPath area = plane(path);
    const QRectF box = area.boundingRect();
    QColor from = QColor::fromRgb(gradient.from), to = QColor::fromRgb(gradient.to);
    from.setAlpha(qAlpha(m_traits.color));
    to.setAlpha(qAlpha(m_traits.color));
    if (gradient.inverted)
        std::swap(from, to);
    const KcGeVector3d turned
        = m_context.matrix * KcGeVector3d{ std::cos(gradient.angle), std::sin(gradient.angle), 0.0 };
    const QPointF along = QPointF(turned.x, turned.y) / std::max(std::hypot(turned.x, turned.y), 1e-300);
    const double reach = (std::abs(along.x()) * box.width() + std::abs(along.y()) * box.height()) / 2.0;
    const QPointF middle = box.center() - along * (reach * gradient.shift / 2.0);
    using Shape = KcGiGradient::Shape;
    if (gradient.shape == Shape::Linear || gradient.shape == Shape::Cylinder) {
        QLinearGradient colors(middle - along * reach, middle + along * reach);
        colors.setColorAt(0.0, from);
        if (gradient.shape == Shape::Cylinder) {
            colors.setColorAt(0.5, to);
            colors.setColorAt(1.0, from);
        } else {
            colors.setColorAt(1.0, to);
        }
        return m_device.fill(area, QBrush(colors));
    }
    const double radius = std::hypot(box.width(), box.height()) / 2.0;
    const bool half = gradient.shape == Shape::Hemispherical;
    QRadialGradient colors(half ? box.center() + along * radius : middle, half ? 2.0 * radius : radius);
    colors.setColorAt(0.0, to);
    colors.setColorAt(1.0, from);
    m_device.fill(area, QBrush(colors));
}

void KcGiScene::mask(const KcGiPath& path)
{
    if (!m_options.oneColor)
        m_device.mask(plane(path));
}

void KcGiScene::infiniteLine(KcGePoint3d base, KcGeVector3d direction, bool bothWays)
{
    // Without a seen area it has no ends that could be drawn, and no extents.
    if (!m_options.area)
        return;
    const KcGePoint3d at = seen(m_context.matrix, base);
    const KcGeVector3d way = m_context.matrix * direction;
    const double length = std::hypot(way.x, way.y);
    if (!kcgiIsDrawable(at) || !(length > 0.0) || !std::isfinite(length))
        return;
    const QPointF unit(way.x / length, way.y / length), origin(at.x, at.y);
    const QPointF center = m_options.area->center();
    const double reach = std::hypot(center.x() - origin.x(), center.y() - origin.y())
        + std::hypot(m_options.area->width(), m_options.area->height());
    QPointF a = bothWays ? origin - unit * reach : origin, b = origin + unit * reach;
    if (kcgiCutLine(a, b, *m_options.area))
        m_device.strokeLines({ { a, b } }, { m_traits.color, m_traits.width });
}

void KcGiScene::point(KcGePoint3d position, double turn)
{
    const KcDbRead<KcDbHeader> header(m_database.headerId());
    const int mode = header ? int(header->integer("$PDMODE", 0)) : 0;
    const double given = header ? header->real("$PDSIZE", 0.0) : 0.0;
    const KcGePoint3d at = seen(m_context.matrix, position);
    if (!kcgiIsDrawable(at))
        return;
    const QPointF center(at.x, at.y);
    // Nothing given: a twentieth of the height of the view; negative: that many hundredths of it.
    constexpr double kUsualShare = 0.05;
    const double tall = m_options.area ? m_options.area->height() : 0.0;
    const double size = given > 0.0 ? given * kcgiLargestScale(m_context.matrix)
                                    : tall * (given < 0.0 ? -given / 100.0 : kUsualShare);
    const double half = size / 2.0;
    const KcGeVector3d axis = m_context.matrix * KcGeVector3d{ std::cos(turn), std::sin(turn), 0.0 };
    const double angle = std::atan2(axis.y, axis.x);
    const QPointF u = QPointF(std::cos(angle), std::sin(angle)) * half, v(-u.y(), u.x());
    std::vector<QLineF> lines;
    switch (mode & 7) {
    case 0:
        lines = { { center, center } };
        break;
    case 2:
        lines = { { center - u * 2, center + u * 2 }, { center - v * 2, center + v * 2 } };
        break;
    case 3:
        lines = { { center - u - v, center + u + v }, { center - u + v, center + u - v } };
        break;
    case 4:
        lines = { { center, center - v } };
        break;
    default: // 1: nothing
        break;
    }
    const KcGiDevice::Pen pen{ m_traits.color, m_traits.width };
    m_device.strokeLines(lines, pen);
    QPainterPath frame;
    if (mode & 32)
        frame.addEllipse(center, half, half);
    if (mode & 64)
        frame.addPolygon(
            QPolygonF{ center - u - v, center + u - v, center + u + v, center - u + v, center - u - v });
    if (!frame.isEmpty())
        m_device.stroke(frame, pen);
}

void KcGiScene::text(const KcGiTextRun& run)
{
    const KcGePoint3d origin = seen(m_context.matrix, run.origin);
    const KcGeVector3d along = m_context.matrix * run.along, up = m_context.matrix * run.up;
    const double tall = std::hypot(up.x, up.y) * run.height;
    if (!kcgiIsDrawable(origin) || !std::isfinite(tall) || !std::isfinite(along.x) || !std::isfinite(along.y))
        return;
    if (m_options.area && tall < kSmallestText)
        return;
    const auto put = [&](const KcGiTextRun& part, KcGePoint3d at) {
        m_device.text(part, QTransform(along.x, along.y, up.x, up.y, at.x, at.y), m_traits.color);
    };
    if (!m_options.area || run.text.size() <= kPieceOfText)
        return put(run, origin);
    // Of a very long text only the pieces that are seen.
    const QRectF area = m_options.area->adjusted(-tall, -tall, tall, tall);
    KcGiTextRun part = run;
    for (qsizetype from = 0; from < run.text.size() && !m_stopped; from += part.text.size()) {
        qsizetype length = std::min(kPieceOfText, run.text.size() - from);
        if (from + length < run.text.size() && run.text[from + length].isLowSurrogate())
            ++length;
        part.text = run.text.mid(from, length);
        const double advance = KcGi::textAdvance(run.style, part.text, run.height);
        const KcGePoint3d at = seen(m_context.matrix, part.origin);
        const QRectF base(
            QPointF(std::min(0.0, along.x), std::min(0.0, along.y)) * advance + QPointF(at.x, at.y),
            QSizeF(std::abs(along.x), std::abs(along.y)) * advance);
        if (base.adjusted(-2 * tall, -2 * tall, 2 * tall, 2 * tall).intersects(area))
            put(part, at);
        part.origin = part.origin + run.along * advance;
    }
}

void KcGiScene::pushClip(const KcGiPath& area, bool inverted)
{
    QPainterPath path = plane(area);
    if (inverted && m_options.area) {
        QPainterPath outside;
        outside.addRect(m_options.area->adjusted(-1, -1, 1, 1));
        path = outside.subtracted(path);
    }
    m_device.pushClip(path);
}

void KcGiScene::popClip()
{
    m_device.popClip();
}
