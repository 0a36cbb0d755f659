// How hatches are drawn.

#include "db/hatch.h"

#include "gi/sink/world_draw.h"

namespace {

/// Lines closer than this many pixels run together to an even tone.
constexpr double kClosestLines = 1.0;
/// A tone darker than this is drawn as a fill.
constexpr double kFullTone = 0.6;
/// How many dashes one hatch may have at most, and after how many a path is handed on: long ones cost memory that
/// is taken and given back with every hatch.
constexpr size_t kMostSpans = 1'000'000, kSpansOfPath = 256;

KcGePoint3d raised(KcGePoint2d p)
{
    return { p.x, p.y, 0.0 };
}

/// Adds an outline under the way from the hatch's plane.
void addOutline(KcGiPath& path, const KcGeFillArea::Contour& contour, const KcGeMatrix3d& toWorld)
{
    path.moveTo(toWorld * raised(contour.pieces.front().startPoint()));
    for (const KcGeSegment2d& piece : contour.pieces) {
        if (const KcGeCircArc2d* arc = piece.asArc()) {
            const KcGeEllipArc3d circle{ raised(arc->center()), { arc->radius(), 0, 0 }, { 0, arc->radius(), 0 },
                                         arc->startAngle(), arc->sweep() };
            path.arc(circle.transformed(toWorld));
        } else if (const auto ellipse = piece.asEllipse()) {
            path.arc(ellipse->transformed(toWorld));
        } else if (const auto spline = piece.asSpline()) {
            path.spline(spline->transformed(toWorld));
        } else {
            path.lineTo(toWorld * raised(piece.endPoint()));
        }
    }
    path.close();
}

KcGiPath outlineOf(const KcGeFillArea& area, KcGeHatchStyle style, const KcGeMatrix3d& toWorld)
{
    KcGiPath path;
    const KcGeMatrix3d shifted = toWorld * KcGeMatrix3d::translation({ area.origin().x, area.origin().y, 0 });
    for (const KcGeFillArea::Contour* contour : area.bounding(style))
        addOutline(path, *contour, shifted);
    return path;
}

/// Hands spans on to a sink as paths of bounded length.
class SpanPath {
public:
    SpanPath(KcGiWorldDraw& draw, const KcGeMatrix3d& toWorld, KcGeVector2d dot)
        : m_draw(draw)
        , m_toWorld(toWorld)
        , m_dot(dot)
    {
    }
    ~SpanPath() { flush(); }
    SpanPath(const SpanPath&) = delete;
    SpanPath& operator=(const SpanPath&) = delete;

    void add(KcGePoint2d a, KcGePoint2d b)
    {
        if (a == b) // a dot: as long as can just be seen
            b = a + m_dot;
        m_path.moveTo(m_toWorld * raised(a));
        m_path.lineTo(m_toWorld * raised(b));
        if (++m_count % kSpansOfPath == 0)
            flush();
    }

private:
    void flush()
    {
        if (!m_path.isEmpty())
            m_draw.stroke(m_path);
        m_path.clear();
    }

    KcGiWorldDraw& m_draw;
    const KcGeMatrix3d& m_toWorld;
    KcGeVector2d m_dot;
    KcGiPath m_path;
    size_t m_count = 0;
};

KcGiGradient gradientOf(const KcDbHatch::Gradient& gradient)
{
    KcGiGradient result;
    QString name = gradient.name.toUpper();
    result.inverted = name.startsWith(QLatin1String("INV"));
    if (result.inverted)
        name = name.mid(3);
    using Shape = KcGiGradient::Shape;
    result.shape = name == QLatin1String("CYLINDER") ? Shape::Cylinder
        : name == QLatin1String("SPHERICAL")         ? Shape::Spherical
        : name == QLatin1String("HEMISPHERICAL")     ? Shape::Hemispherical
        : name == QLatin1String("CURVED")            ? Shape::Curved
                                                     : Shape::Linear;
    const auto colorOf = [&](size_t i, uint32_t other) {
        return i < gradient.stops.size() && gradient.stops[i].rgb >= 0 ? uint32_t(gradient.stops[i].rgb)
                                                                       : other;
    };
    result.from = colorOf(0, 0);
    if (gradient.stops.size() > 1) {
        result.to = colorOf(1, 0xffffff);
    } else {
        // One colour: the other end is a shade of it, from black (0) to white (1).
        const double tint = std::clamp(gradient.tint, 0.0, 1.0);
        result.to = 0;
        for (const int shift : { 16, 8, 0 }) {
            const double c = (result.from >> shift) & 0xff;
            const double shade = tint < 0.5 ? c * tint * 2.0 : c + (255.0 - c) * (tint * 2.0 - 1.0);
            result.to |= uint32_t(std::lround(shade)) << shift;
        }
    }
    result.angle = gradient.angle;
    result.shift = gradient.shift;
    return result;
}

/// The part of a hatch's plane that the sink wants to see.
std::optional<KcGeExtents2d> windowInPlane(const KcGiWorldDraw& draw, const KcGeMatrix3d& toWorld)
{
    const auto window = draw.window();
    if (!window)
        return std::nullopt;
    const KcGeMatrix3d fromWorld = toWorld.inverse();
    // A plane that stands on edge or leans shows other stretches of its lines than the window's image.
    if (std::abs(std::abs(toWorld.axis(2).z) - 1.0) > KcGeContext::gTol.equalVector)
        return std::nullopt;
    KcGeExtents2d box;
    for (const KcGePoint2d p : { window->min, KcGePoint2d{ window->max.x, window->min.y }, window->max,
                                 KcGePoint2d{ window->min.x, window->max.y } })
        box.addPoint((fromWorld * raised(p)).plan());
    return box;
}

} // namespace

void KcDbHatch::worldDraw(KcGiWorldDraw& draw) const
{
    const KcGeFillArea area = fillArea();
    if (area.contours().empty())
        return;
    const KcGeMatrix3d toWorld = KcGeMatrix3d::planeToWorld(m_data.normal)
        * KcGeMatrix3d::translation({ 0, 0, m_data.elevation });
    const KcGiPath outline = outlineOf(area, fillStyle(), toWorld);
    const double pixel = draw.pixel();
    if (m_data.gradient.filled) {
        draw.fill(outline, gradientOf(m_data.gradient));
        return;
    }
    // Who asks for boxes needs no dashes: they lie inside.
    if (m_data.solid || (!draw.window() && !(pixel > 0.0))) {
        draw.fill(outline);
        return;
    }
    if (const auto background = backgroundColor()) {
        draw.setColor({ background->index, background->rgb });
        draw.fill(outline);
        draw.setColor(draw.entityColor());
    }
    draw.setContinuous(true);
    const std::vector<PatternLine> families = drawnLines();
    if (families.empty()) {
        draw.stroke(outline);
        draw.leftOut(QStringLiteral("the hatch pattern %1 is not defined; outlines are drawn")
                         .arg(m_data.patternName));
        return;
    }
    KcGeHatchLimits limits;
    limits.window = windowInPlane(draw, toWorld);
    limits.smallest = pixel * kClosestLines;
    limits.mostSpans = std::max<size_t>(1000, kMostSpans / families.size());
    double tone = 0.0;
    bool partly = false;
    for (const PatternLine& family : families) {
        const KcGeVector2d along{ std::cos(family.angle), std::sin(family.angle) };
        SpanPath path(draw, toWorld, along * (pixel / 2.0));
        const auto span = [&](KcGePoint2d a, KcGePoint2d b) { path.add(a, b); };
        const KcGeHatchDrawn drawn = kcgeHatchLines(area, fillStyle(), family, limits, span);
        if (drawn == KcGeHatchDrawn::Solid)
            tone += kcgeHatchCoverage(family, pixel);
        partly = partly || drawn == KcGeHatchDrawn::Thinned || drawn == KcGeHatchDrawn::Nothing
            || (drawn == KcGeHatchDrawn::NoGaps && family.period() >= limits.smallest);
    }
    if (tone >= kFullTone) {
        draw.fill(outline);
    } else if (tone > 0.0) {
        // Lines without gaps, so far apart that they cover as much.
        PatternLine family = families.front();
        family.dashes.clear();
        const KcGeVector2d across{ -std::sin(family.angle), std::cos(family.angle) };
        family.offset = across * (pixel / tone);
        SpanPath path(draw, toWorld, {});
        kcgeHatchLines(area, fillStyle(), family, limits, [&](KcGePoint2d a, KcGePoint2d b) { path.add(a, b); });
    }
    if (partly)
        draw.leftOut(QStringLiteral("some lines of a hatch with too many dashes (%1)").arg(m_data.patternName));
}
