// Pieces of curves in a plane: points, derivatives, lengths and parts of them.

#include "ge/segment.h"

#include <numeric>

namespace {

/// Below this share of its length a piece's derivative tells no direction.
constexpr double kNoSpeed = 1e-9;

bool isFinitePoint(KcGePoint2d p)
{
    return std::isfinite(p.x) && std::isfinite(p.y);
}

KcGeVector2d plan(KcGeVector3d v)
{
    return { v.x, v.y };
}

/// The part of a transform that shows seen along the Z axis.
struct PlanTransform {
    const KcGeMatrix3d& matrix;
    KcGePoint2d operator()(KcGePoint2d p) const { return (matrix * KcGePoint3d{ p.x, p.y, 0.0 }).plan(); }
    KcGeVector2d operator()(KcGeVector2d v) const { return plan(matrix * KcGeVector3d{ v.x, v.y, 0.0 }); }
};

bool samePerpendicular(KcGeVector2d u, KcGeVector2d v)
{
    const double lu = u.length(), lv = v.length(), slack = KcGeContext::gTol.equalVector * lu;
    return lu > 0.0 && std::abs(lu - lv) <= slack && std::abs(u.dotProduct(v)) <= slack * lu;
}

} // namespace

// Making segments.

KcGeSegment2d KcGeSegment2d::line(KcGePoint2d start, KcGePoint2d end)
{
    KcGeSegment2d segment;
    segment.m_shape = Line{ start, end };
    return segment;
}

KcGeSegment2d KcGeSegment2d::arc(const KcGeCircArc2d& arc)
{
    const KcGePoint2d start = arc.startPoint();
    const KcGePoint2d end = arc.isFullCircle() ? start : arc.endPoint();
    if (!(arc.radius() > 0.0) || arc.sweep() == 0.0) // exact: what is left is a point
        return line(start, end);
    KcGeSegment2d segment;
    segment.m_shape = Arc{ arc, start, end };
    return segment;
}

KcGeSegment2d KcGeSegment2d::bulge(KcGePoint2d start, KcGePoint2d end, double bulge)
{
    const auto circle = KcGeCircArc2d::fromBulge(start, end, bulge);
    if (!circle)
        return line(start, end);
    KcGeSegment2d segment;
    segment.m_shape = Arc{ *circle, start, end };
    return segment;
}

KcGeSegment2d
KcGeSegment2d::ellipse(KcGePoint2d center, KcGeVector2d u, KcGeVector2d v, double start, double sweep)
{
    if (samePerpendicular(u, v)) {
        const bool turnsLeft = u.crossProduct(v) > 0.0;
        return arc({ center, u.length(), turnsLeft ? u.angle() + start : u.angle() - start,
                     turnsLeft ? sweep : -sweep });
    }
    const KcGeEllipArc3d whole{ { center.x, center.y, 0.0 }, { u.x, u.y, 0.0 }, { v.x, v.y, 0.0 } };
    auto carrier = KcGeCarrier3d::ellipse(whole);
    if (!carrier || !std::isfinite(start) || !std::isfinite(sweep)) {
        const KcGePoint2d none{ std::numeric_limits<double>::quiet_NaN(), 0.0 };
        return line(none, none);
    }
    return piece(std::move(carrier), start, start + std::clamp(sweep, -kTwoPi, kTwoPi));
}

std::optional<KcGeSegment2d> KcGeSegment2d::spline(const KcGeNurbsCurve3d& curve)
{
    KcGeNurbsCurve3d flat = curve;
    for (KcGePoint3d& p : flat.controlPoints)
        p.z = 0.0;
    auto carrier = KcGeCarrier3d::spline(std::move(flat));
    if (!carrier)
        return std::nullopt;
    const double from = carrier->breaks().front(), to = carrier->breaks().back();
    return piece(std::move(carrier), from, to);
}

KcGeSegment2d KcGeSegment2d::piece(std::shared_ptr<const KcGeCarrier3d> carrier, double from, double to)
{
    KcGeSegment2d segment;
    segment.m_shape = Piece{ std::move(carrier), from, to };
    return segment;
}

// What it is.

KcGeSegment2d::Kind KcGeSegment2d::kind() const
{
    if (const auto* piece = std::get_if<Piece>(&m_shape))
        return piece->carrier->asEllipse() ? Kind::Ellipse : Kind::Spline;
    return m_shape.index() == 0 ? Kind::Line : Kind::Arc;
}

const KcGeCircArc2d* KcGeSegment2d::asArc() const
{
    const auto* arc = std::get_if<Arc>(&m_shape);
    return arc ? &arc->circle : nullptr;
}

double KcGeSegment2d::bulge() const
{
    const KcGeCircArc2d* arc = asArc();
    return arc ? arc->bulge() : 0.0;
}

std::optional<KcGeEllipArc3d> KcGeSegment2d::asEllipse() const
{
    const auto* piece = std::get_if<Piece>(&m_shape);
    if (!piece || !piece->carrier->asEllipse())
        return std::nullopt;
    KcGeEllipArc3d arc = *piece->carrier->asEllipse();
    arc.start = piece->from;
    arc.sweep = piece->to - piece->from;
    return arc;
}

std::optional<KcGeNurbsCurve3d> KcGeSegment2d::asSpline() const
{
    const auto* piece = std::get_if<Piece>(&m_shape);
    const KcGeNurbsCurve3d* whole = piece ? piece->carrier->asSpline() : nullptr;
    const double low = piece ? std::min(piece->from, piece->to) : 0.0;
    const double high = piece ? std::max(piece->from, piece->to) : 0.0;
    if (!whole || !(low < high))
        return std::nullopt;
    const bool isWhole = low == whole->startParam() && high == whole->endParam(); // exact: nothing was cut
    KcGeNurbsCurve3d part = isWhole ? *whole : whole->between(low, high);
    return piece->to < piece->from ? part.reversed() : part;
}

std::shared_ptr<const KcGeCarrier3d> KcGeSegment2d::carrier() const
{
    const auto* piece = std::get_if<Piece>(&m_shape);
    return piece ? piece->carrier : nullptr;
}

bool KcGeSegment2d::isFinite() const
{
    if (const auto* line = std::get_if<Line>(&m_shape))
        return isFinitePoint(line->start) && isFinitePoint(line->end)
            && std::isfinite(line->start.distanceTo(line->end));
    if (const auto* arc = std::get_if<Arc>(&m_shape))
        return isFinitePoint(arc->start) && isFinitePoint(arc->end) && std::isfinite(arc->circle.radius())
            && isFinitePoint(arc->circle.center()) && std::isfinite(arc->circle.sweep());
    const auto& piece = std::get<Piece>(m_shape);
    return piece.carrier && std::isfinite(piece.from) && std::isfinite(piece.to)
        && isFinitePoint(startPoint()) && isFinitePoint(endPoint());
}

bool KcGeSegment2d::isDegenerate(double tolerance) const
{
    if (const auto* line = std::get_if<Line>(&m_shape))
        return line->start.distanceTo(line->end) <= tolerance;
    const KcGeExtents2d box = extents();
    const KcGePoint2d start = startPoint();
    return std::max({ start.x - box.min.x, box.max.x - start.x, start.y - box.min.y, box.max.y - start.y })
        <= tolerance;
}

bool KcGeSegment2d::isClosed(double tolerance) const
{
    return startPoint().distanceTo(endPoint()) <= tolerance;
}

// Points and derivatives. An arc up to a half turn is worked out from its chord: with the included angle A,
// the chord from the start to the fraction t has length c·sin(tA/2)/sin(A/2) and lies (1 - t)·A/2 to the
// right of the whole chord. Flat arcs keep their digits so, of which a centre far away would take most.

namespace {

bool isUpToHalfTurn(const KcGeCircArc2d& circle)
{
    return std::abs(circle.sweep()) <= kPi;
}

/// The arc's length over its chord's, up to a half turn.
double stretch(double sweep)
{
    return sweep / 2.0 / std::sin(sweep / 2.0);
}

} // namespace

KcGePoint2d KcGeSegment2d::pointAt(double t) const
{
    if (const auto* line = std::get_if<Line>(&m_shape)) {
        if (t == 1.0) // exact: the ends as given
            return line->end;
        return line->start + (line->end - line->start) * t;
    }
    if (const auto* arc = std::get_if<Arc>(&m_shape)) {
        if (t == 0.0)
            return arc->start;
        if (t == 1.0)
            return arc->end;
        if (!isUpToHalfTurn(arc->circle))
            return arc->circle.pointAt(t);
        const double half = arc->circle.sweep() / 2.0;
        return arc->start
            + (arc->end - arc->start).rotateBy((t - 1.0) * half) * (std::sin(t * half) / std::sin(half));
    }
    const auto& piece = std::get<Piece>(m_shape);
    return piece.carrier->pointAt(piece.param(t)).plan();
}

KcGeVector2d KcGeSegment2d::firstDeriv(double t) const
{
    if (const auto* line = std::get_if<Line>(&m_shape))
        return line->end - line->start;
    if (const auto* arc = std::get_if<Arc>(&m_shape)) {
        const double sweep = arc->circle.sweep();
        if (isUpToHalfTurn(arc->circle))
            return (arc->end - arc->start).rotateBy((t - 0.5) * sweep) * stretch(sweep);
        const double angle = arc->circle.startAngle() + t * sweep;
        return KcGeVector2d{ -std::sin(angle), std::cos(angle) } * (arc->circle.radius() * sweep);
    }
    const auto& piece = std::get<Piece>(m_shape);
    return plan(piece.carrier->firstAt(piece.param(t))) * (piece.to - piece.from);
}

KcGeVector2d KcGeSegment2d::secondDeriv(double t) const
{
    if (std::holds_alternative<Line>(m_shape))
        return {};
    if (const auto* arc = std::get_if<Arc>(&m_shape))
        return firstDeriv(t).perpVector() * arc->circle.sweep();
    const auto& piece = std::get<Piece>(m_shape);
    const double width = piece.to - piece.from;
    return plan(piece.carrier->at(piece.param(t)).second) * (width * width);
}

KcGeVector2d KcGeSegment2d::directionAt(double t) const
{
    const KcGeVector2d first = firstDeriv(t);
    if (std::holds_alternative<Line>(m_shape) || std::holds_alternative<Arc>(m_shape))
        return first.normal();
    const double speed = first.length();
    // Two chords tell the size well enough; the length itself would cost a hundred times as much.
    const KcGePoint2d middle = pointAt(0.5);
    const double size = startPoint().distanceTo(middle) + middle.distanceTo(endPoint());
    if (speed > kNoSpeed * size)
        return first / speed;
    // Where the curve stands still for a moment: the direction to the nearest point that can be told apart.
    for (double step = 1e-6; step <= 1.0; step *= 10.0) {
        const KcGeVector2d way = t < 1.0 ? pointAt(std::min(1.0, t + step)) - pointAt(t)
                                         : pointAt(t) - pointAt(std::max(0.0, t - step));
        if (way.length() > kNoSpeed * step * size)
            return way.normal();
    }
    return {};
}

KcGeVector2d KcGeSegment2d::sampledDirection(bool fromEnd, double distance) const
{
    const double whole = length();
    const double reach = std::min(distance, isClosed() ? whole / 2.0 : whole);
    const KcGePoint2d origin = fromEnd ? endPoint() : startPoint();
    const KcGePoint2d sample = pointAt(paramAtLength(fromEnd ? whole - reach : reach));
    if (sample == origin) // exact: a direction exists otherwise
        return fromEnd ? -endDirection() : startDirection();
    return (sample - origin).normal();
}

double KcGeSegment2d::curvatureAt(double t) const
{
    if (std::holds_alternative<Line>(m_shape))
        return 0.0;
    const KcGeVector2d first = firstDeriv(t);
    if (const auto* arc = std::get_if<Arc>(&m_shape))
        return arc->circle.sweep() / first.length();
    const double speed = first.length();
    return speed > kNoSpeed * length() ? first.crossProduct(secondDeriv(t)) / (speed * speed * speed) : 0.0;
}

// Lengths.

double KcGeSegment2d::lengthBetween(double from, double to) const
{
    if (const auto* line = std::get_if<Line>(&m_shape))
        return line->start.distanceTo(line->end) * (to - from);
    if (std::holds_alternative<Arc>(m_shape))
        return firstDeriv(0.0).length() * (to - from);
    const auto& piece = std::get<Piece>(m_shape);
    const double length = piece.carrier->lengthBetween(piece.param(from), piece.param(to));
    return piece.to < piece.from ? -length : length;
}

double KcGeSegment2d::paramAtLength(double length) const
{
    if (!(length > 0.0))
        return 0.0;
    const auto* piece = std::get_if<Piece>(&m_shape);
    if (!piece) {
        const double whole = this->length();
        return length < whole ? length / whole : 1.0;
    }
    const double u = piece->carrier->paramAtLength(piece->from, piece->to < piece->from ? -length : length);
    const double width = piece->to - piece->from;
    return width == 0.0 ? 0.0 : std::clamp((u - piece->from) / width, 0.0, 1.0); // exact: a speck
}

// Parts and images.

KcGeSegment2d KcGeSegment2d::reversed() const
{
    KcGeSegment2d result;
    if (const auto* line = std::get_if<Line>(&m_shape))
        result.m_shape = Line{ line->end, line->start };
    else if (const auto* arc = std::get_if<Arc>(&m_shape))
        result.m_shape = Arc{ arc->circle.reversed(), arc->end, arc->start };
    else {
        const auto& piece = std::get<Piece>(m_shape);
        result.m_shape = Piece{ piece.carrier, piece.to, piece.from };
    }
    return result;
}

KcGeSegment2d KcGeSegment2d::between(double from, double to) const
{
    if (std::holds_alternative<Line>(m_shape))
        return line(pointAt(from), pointAt(to));
    KcGeSegment2d result;
    if (const auto* arc = std::get_if<Arc>(&m_shape)) {
        const KcGeCircArc2d& circle = arc->circle;
        const double sweep = circle.sweep() * (to - from);
        if (sweep == 0.0) // exact: a speck is no arc
            return line(pointAt(from), pointAt(to));
        result.m_shape
            = Arc{ { circle.center(), circle.radius(), circle.startAngle() + from * circle.sweep(), sweep },
                   pointAt(from),
                   pointAt(to) };
        return result;
    }
    const auto& piece = std::get<Piece>(m_shape);
    result.m_shape = Piece{ piece.carrier, piece.param(from), piece.param(to) };
    return result;
}

std::vector<KcGeSegment2d> KcGeSegment2d::split(std::vector<double> params) const
{
    std::erase_if(params, [](double t) { return !(t > 0.0 && t < 1.0); });
    std::sort(params.begin(), params.end());
    params.erase(std::unique(params.begin(), params.end()), params.end());
    params.push_back(1.0);
    std::vector<KcGeSegment2d> pieces;
    pieces.reserve(params.size());
    double from = 0.0;
    for (const double t : params) {
        pieces.push_back(between(from, t));
        from = t;
    }
    return pieces;
}

std::vector<KcGeSegment2d> KcGeSegment2d::spans() const
{
    const auto* piece = std::get_if<Piece>(&m_shape);
    if (!piece || !piece->carrier->asSpline())
        return { *this };
    std::vector<double> cuts{ piece->from };
    const double low = std::min(piece->from, piece->to), high = std::max(piece->from, piece->to);
    for (const double knot : piece->carrier->breaks())
        if (knot > low && knot < high)
            cuts.push_back(knot);
    if (piece->to < piece->from)
        std::reverse(cuts.begin() + 1, cuts.end());
    cuts.push_back(piece->to);
    std::vector<KcGeSegment2d> result;
    for (size_t i = 0; i + 1 < cuts.size(); ++i)
        result.push_back(KcGeSegment2d::piece(piece->carrier, cuts[i], cuts[i + 1]));
    return result;
}

std::vector<double> KcGeSegment2d::monotoneParams() const
{
    std::vector<double> params;
    // Angles at which the piece turns back are a half turn apart, each of two kinds.
    const auto addEvery = [&](double first, double step, double start, double sweep) {
        if (!std::isfinite(sweep) || sweep == 0.0) // exact: a speck has none
            return;
        const double low = std::min(start, start + sweep), high = std::max(start, start + sweep);
        for (double angle = first + std::ceil((low - first) / step) * step; angle < high; angle += step)
            params.push_back((angle - start) / sweep);
    };
    if (const auto* arc = std::get_if<Arc>(&m_shape)) {
        // Told by the chord's direction, which is known better than a flat arc's centre.
        const double start = isUpToHalfTurn(arc->circle)
            ? (arc->end - arc->start).angle() - arc->circle.sweep() / 2.0
            : arc->circle.startAngle() + (arc->circle.isClockwise() ? -kPi : kPi) / 2.0;
        addEvery(0.0, kPi / 2.0, start, arc->circle.sweep());
    } else if (const auto* piece = std::get_if<Piece>(&m_shape)) {
        const double width = piece->to - piece->from;
        if (const KcGeEllipArc3d* ellipse = piece->carrier->asEllipse()) {
            addEvery(std::atan2(ellipse->v.x, ellipse->u.x), kPi, piece->from, width);
            addEvery(std::atan2(ellipse->v.y, ellipse->u.y), kPi, piece->from, width);
        } else {
            const double low = std::min(piece->from, piece->to), high = std::max(piece->from, piece->to);
            std::vector<double> knots = piece->carrier->breaks();
            for (const KcGeVector3d axis : { KcGeVector3d::kXAxis, KcGeVector3d::kYAxis }) {
                const std::vector<double> turns = piece->carrier->turningParams(axis, low, high);
                knots.insert(knots.end(), turns.begin(), turns.end());
            }
            for (const double knot : knots)
                params.push_back((knot - piece->from) / width);
        }
    }
    std::erase_if(params, [](double t) { return !(t > 0.0 && t < 1.0); });
    std::sort(params.begin(), params.end());
    params.erase(std::unique(params.begin(), params.end()), params.end());
    return params;
}

KcGeSegment2d KcGeSegment2d::transformed(const KcGeMatrix3d& matrix) const
{
    const PlanTransform image{ matrix };
    if (const auto* line = std::get_if<Line>(&m_shape))
        return KcGeSegment2d::line(image(line->start), image(line->end));
    const KcGeVector2d ex = image(KcGeVector2d{ 1, 0 }), ey = image(KcGeVector2d{ 0, 1 });
    if (const auto* arc = std::get_if<Arc>(&m_shape)) {
        const KcGeCircArc2d& circle = arc->circle;
        const KcGePoint2d center = image(circle.center());
        if (!samePerpendicular(ex, ey))
            return ellipse(
                center, ex * circle.radius(), ey * circle.radius(), circle.startAngle(), circle.sweep());
        const bool mirrored = ex.crossProduct(ey) < 0.0;
        const double turn = ex.angle();
        KcGeSegment2d result;
        result.m_shape = Arc{ { center, circle.radius() * ex.length(),
                                mirrored ? turn - circle.startAngle() : turn + circle.startAngle(),
                                mirrored ? -circle.sweep() : circle.sweep() },
                              image(arc->start),
                              image(arc->end) };
        return result;
    }
    const auto& piece = std::get<Piece>(m_shape);
    if (const KcGeEllipArc3d* whole = piece.carrier->asEllipse())
        return ellipse(
            image(whole->center.plan()), image(plan(whole->u)), image(plan(whole->v)), piece.from,
            piece.to - piece.from);
    KcGeMatrix3d flat = KcGeMatrix3d::scaling(KcGeVector3d{ 1, 1, 0 }) * matrix;
    KcGeSegment2d result;
    result.m_shape = Piece{ piece.carrier->transformed(flat), piece.from, piece.to };
    if (!std::get<Piece>(result.m_shape).carrier) {
        const KcGePoint2d none{ std::numeric_limits<double>::quiet_NaN(), 0.0 };
        return KcGeSegment2d::line(none, none);
    }
    return result;
}

KcGeSegment2d KcGeSegment2d::translated(KcGeVector2d by) const
{
    return transformed(KcGeMatrix3d::translation({ by.x, by.y, 0.0 }));
}
