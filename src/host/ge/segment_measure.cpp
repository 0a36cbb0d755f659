// Pieces of curves in a plane: nearest points, boxes, areas, and what they are replaced by where only lines
// and arcs will do.

#include "ge/segment.h"

namespace {

KcGeSegment2d::Nearest nearest(const KcGeSegment2d& segment, double t, KcGePoint2d point)
{
    const KcGePoint2d foot = segment.pointAt(t);
    return { t, foot, foot.distanceTo(point) };
}

/// The parameter at which an arc's circle passes nearest to a point, in turns of the arc counted from its
/// middle.
double arcParam(const KcGeSegment2d& segment, const KcGeCircArc2d& circle, KcGePoint2d point)
{
    const double sweep = circle.sweep();
    double fromMiddle = 0.0; // angle seen from the centre, in (-π, π], positive onwards
    if (std::abs(sweep) <= kPi) {
        // In coordinates of the chord the centre keeps its digits, however flat the arc.
        const KcGeVector2d chord = segment.endPoint() - segment.startPoint(),
                           off = point - segment.startPoint();
        const double length = chord.length();
        const double x = off.dotProduct(chord) / length;
        const double y = (sweep < 0.0 ? -1.0 : 1.0) * chord.crossProduct(off) / length;
        const double bulge = std::abs(std::tan(sweep / 4.0));
        const double height = length * (1.0 - bulge * bulge) / (4.0 * bulge);
        fromMiddle = std::atan2(x - length / 2.0, height - y);
    } else {
        const KcGeVector2d off = point - circle.center();
        if (off.x == 0.0 && off.y == 0.0) // exact: every direction is as good
            return 0.5;
        const double middle = circle.startAngle() + sweep / 2.0;
        fromMiddle = normalizedAngle(std::atan2(off.y, off.x) - middle);
        if (fromMiddle > kPi)
            fromMiddle -= kTwoPi;
        if (sweep < 0.0)
            fromMiddle = -fromMiddle;
    }
    return 0.5 + fromMiddle / std::abs(sweep);
}

double crossOf(KcGePoint2d a, KcGePoint2d b, KcGePoint2d origin)
{
    return (a - origin).crossProduct(b - origin) / 2.0;
}

} // namespace

KcGeSegment2d::Nearest KcGeSegment2d::closest(KcGePoint2d point) const
{
    const auto* piece = std::get_if<Piece>(&m_shape);
    if (piece) {
        const double width = piece->to - piece->from;
        const double u = piece->carrier->closest(
            { point.x, point.y, 0.0 }, std::min(piece->from, piece->to), std::max(piece->from, piece->to));
        if (u == piece->to) // exact: so that the end is found as the end
            return nearest(*this, 1.0, point);
        return nearest(*this, width == 0.0 ? 0.0 : (u - piece->from) / width, point);
    }
    const Nearest whole = closestExtended(point);
    if (whole.t >= 0.0 && whole.t <= 1.0)
        return whole;
    const Nearest start = nearest(*this, 0.0, point), end = nearest(*this, 1.0, point);
    return end.distance < start.distance ? end : start;
}

KcGeSegment2d::Nearest KcGeSegment2d::closestExtended(KcGePoint2d point) const
{
    if (const auto* line = std::get_if<Line>(&m_shape)) {
        const KcGeVector2d way = line->end - line->start;
        const double square = way.dotProduct(way);
        if (!(square > 0.0))
            return nearest(*this, 0.0, point);
        const double t = (point - line->start).dotProduct(way) / square;
        return nearest(*this, std::isfinite(t) ? t : 0.0, point);
    }
    if (const auto* arc = std::get_if<Arc>(&m_shape))
        return nearest(*this, arcParam(*this, arc->circle, point), point);
    const auto& piece = std::get<Piece>(m_shape);
    const double width = piece.to - piece.from;
    if (!piece.carrier->asEllipse() || width == 0.0) // exact: a speck has no extension
        return closest(point);
    const double middle = piece.param(0.5);
    const double u = piece.carrier->closest({ point.x, point.y, 0.0 }, middle - kPi, middle + kPi);
    return nearest(*this, (u - piece.from) / width, point);
}

std::optional<double> KcGeSegment2d::paramAtPoint(KcGePoint2d point, double tolerance) const
{
    const Nearest found = closest(point);
    if (!(found.distance <= tolerance))
        return std::nullopt;
    return found.t;
}

KcGeExtents2d KcGeSegment2d::extents() const
{
    KcGeExtents2d box;
    if (kind() == Kind::Spline) {
        const auto& piece = std::get<Piece>(m_shape);
        const KcGeExtents3d all
            = piece.carrier->extents(std::min(piece.from, piece.to), std::max(piece.from, piece.to));
        box.addPoint(all.min.plan());
        box.addPoint(all.max.plan());
        return box;
    }
    box.addPoint(startPoint());
    box.addPoint(endPoint());
    if (!isLine())
        for (const double t : monotoneParams())
            box.addPoint(pointAt(t));
    return box;
}

double KcGeSegment2d::areaAbout(KcGePoint2d origin) const
{
    const double triangle = crossOf(startPoint(), endPoint(), origin);
    if (isLine())
        return triangle;
    if (const auto* arc = std::get_if<Arc>(&m_shape))
        return triangle
            + (std::abs(arc->circle.sweep()) <= kPi ? bulgeSegmentArea(arc->start, arc->end, bulge())
                                                    : arc->circle.segmentArea());
    if (const auto ellipse = asEllipse()) {
        // An ellipse is a circle's affine image: areas scale by the determinant.
        const double factor = ellipse->u.x * ellipse->v.y - ellipse->u.y * ellipse->v.x;
        return triangle + factor / 2.0 * (ellipse->sweep - std::sin(ellipse->sweep));
    }
    const auto spline = asSpline();
    return spline ? spline->transformed(KcGeMatrix3d::translation({ -origin.x, -origin.y, 0.0 })).planArea()
                  : 0.0;
}

std::vector<KcGePoint2d> KcGeSegment2d::chords(double sagitta) const
{
    std::vector<KcGePoint2d> points{ startPoint() };
    if (const auto* arc = std::get_if<Arc>(&m_shape)) {
        const double step = 4.0
            * std::asin(std::min(1.0, std::sqrt(std::max(0.0, sagitta) / (2.0 * arc->circle.radius()))));
        constexpr double kMostChords = 65536.0;
        // A circle needs three, however small, to enclose anything.
        const double least = arc->circle.isFullCircle() ? 3.0 : 1.0;
        const int count
            = int(std::clamp(std::ceil(std::abs(arc->circle.sweep()) / step), least, kMostChords));
        for (int i = 1; i < count; ++i)
            points.push_back(pointAt(double(i) / count));
    } else if (const auto* piece = std::get_if<Piece>(&m_shape)) {
        const std::vector<KcGePoint3d> all = piece->carrier->chords(piece->from, piece->to, sagitta);
        for (size_t i = 1; i + 1 < all.size(); ++i)
            points.push_back(all[i].plan());
    }
    points.push_back(endPoint());
    return points;
}

// Pairs of arcs.

namespace {

/// The bulge of an arc over a chord that leaves its start, or reaches its end, at an angle to it.
double bulgeOf(KcGeVector2d from, KcGeVector2d to)
{
    return std::tan(std::atan2(from.crossProduct(to), from.dotProduct(to)) / 2.0);
}

struct Biarc {
    KcGeSegment2d first, second;
};

/// Two arcs, touching each other where they meet, that leave `a` along `da` and reach `b` along `db` (unit
/// vectors). The joint is put at equal distances along both tangents: the usual choice, which never turns
/// back for small arcs.
Biarc biarc(KcGePoint2d a, KcGeVector2d da, KcGePoint2d b, KcGeVector2d db)
{
    const KcGeVector2d way = b - a;
    const double along = way.dotProduct(da + db), square = way.dotProduct(way);
    const double denominator = 2.0 * (1.0 - da.dotProduct(db));
    double reach = 0.0;
    // denominator·reach² + 2·along·reach = square, by the form of the root that does not cancel.
    // cancel.
    const double root = std::sqrt(along * along + denominator * square);
    if (along + root > 0.0)
        reach = square / (along + root);
    else if (denominator > 0.0)
        reach = (root - along) / denominator;
    const KcGePoint2d joint = a + (way + (da - db) * reach) * 0.5;
    return { KcGeSegment2d::bulge(a, joint, bulgeOf(da, joint - a)),
             KcGeSegment2d::bulge(joint, b, bulgeOf(b - joint, db)) };
}

void addSimple(
    std::vector<KcGeSegment2d>& result, const KcGeSegment2d& segment, double from, double to,
    double tolerance, int depth)
{
    const KcGePoint2d a = segment.pointAt(from), b = segment.pointAt(to);
    const KcGeSegment2d part = segment.between(from, to);
    const KcGeVector2d da = part.startDirection(), db = part.endDirection();
    constexpr int kSamples = 8;
    constexpr int kDeepest = 24;
    const auto fits = [&](const auto& distanceOf) {
        for (int i = 1; i < kSamples; ++i)
            if (!(distanceOf(part.pointAt(double(i) / kSamples)) <= tolerance))
                return false;
        return true;
    };
    const KcGeSegment2d chord = KcGeSegment2d::line(a, b);
    const bool straight = std::abs(da.crossProduct(db)) <= KcGeContext::gTol.equalVector
        && da.dotProduct(db) > 0.0 && fits([&](KcGePoint2d p) { return chord.closest(p).distance; });
    if (straight) {
        result.push_back(chord);
        return;
    }
    // Arcs of less than a quarter turn in sum follow the curve in its order.
    if (da.dotProduct(db) > 0.0) {
        const Biarc pair = biarc(a, da, b, db);
        if (fits([&](KcGePoint2d p) {
                return std::min(pair.first.closest(p).distance, pair.second.closest(p).distance);
            })
            && pair.first.length() + pair.second.length() <= 2.0 * part.length() + tolerance) {
            for (const KcGeSegment2d& arc : { pair.first, pair.second })
                if (arc.startPoint() != arc.endPoint()) // exact: specks only
                    result.push_back(arc);
            return;
        }
    }
    const double middle = from + (to - from) / 2.0;
    if (depth >= kDeepest || part.length() <= tolerance || !(from < middle && middle < to)) {
        if (a != b)
            result.push_back(chord);
        return;
    }
    addSimple(result, segment, from, middle, tolerance, depth + 1);
    addSimple(result, segment, middle, to, tolerance, depth + 1);
}

} // namespace

std::vector<KcGeSegment2d> KcGeSegment2d::simpleSegments(double tolerance) const
{
    if (isSimple())
        return { *this };
    std::vector<KcGeSegment2d> result;
    for (const KcGeSegment2d& span : spans())
        addSimple(result, span, 0.0, 1.0, tolerance, 0);
    return result;
}

double outlineArea(const std::vector<KcGeSegment2d>& outline)
{
    if (outline.empty())
        return 0.0;
    const KcGePoint2d origin = outline.front().startPoint();
    double area = 0.0;
    for (size_t i = 0; i < outline.size(); ++i) {
        area += outline[i].areaAbout(origin);
        const KcGePoint2d next = outline[(i + 1) % outline.size()].startPoint();
        area += crossOf(outline[i].endPoint(), next, origin);
    }
    return area;
}
