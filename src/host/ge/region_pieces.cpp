// Cutting curves into pieces, and what is asked of one piece.

#include "ge/region_pieces.h"

#include "ge/region_tree.h"

namespace kcge {

using Kind = RegionPiece::Kind;

namespace {

// Share of the tolerance by which a curve may differ from a cubic that is taken for it.
constexpr double kSameCurve = 1e-3;

} // namespace

void RegionPieces::sortAlongCurve()
{
    std::erase_if(m_pieces, [](const RegionPiece& piece) {
        const KcGeVector2d way = piece.end - piece.start;
        return !std::isfinite(way.x) || !std::isfinite(way.y); // too large to be worked with
    });
    std::vector<uint32_t> from = orderAlongCurve(m_pieces.size(), [&](uint32_t i) {
        return m_pieces[i].start + (m_pieces[i].end - m_pieces[i].start) / 2.0;
    });
    // In place, ring by ring: a second set of pieces would be the largest thing in memory.
    for (uint32_t first = 0; first < from.size(); ++first) {
        if (from[first] == first)
            continue;
        const RegionPiece kept = m_pieces[first];
        uint32_t to = first;
        while (from[to] != first) {
            m_pieces[to] = m_pieces[from[to]];
            to = std::exchange(from[to], to);
        }
        m_pieces[to] = kept;
        from[to] = to;
    }
}

void RegionPieces::add(const KcGeSegment2d& segment, uint32_t source)
{
    if (!segment.isFinite())
        return;
    addLocal(segment.translated(KcGePoint2d() - m_origin), source);
}

void RegionPieces::addLocal(const KcGeSegment2d& segment, uint32_t source)
{
    if (segment.isDegenerate(3.0 * m_tolerance))
        return;
    if (segment.isLine()) {
        RegionPiece piece;
        piece.start = segment.startPoint();
        piece.end = segment.endPoint();
        piece.source = source;
        m_pieces.push_back(piece);
    } else if (const KcGeCircArc2d* arc = segment.asArc()) {
        if (arc->isClockwise())
            addArc(arc->reversed(), segment.endPoint(), segment.startPoint(), source);
        else
            addArc(*arc, segment.startPoint(), segment.endPoint(), source);
    } else {
        addSmooth(segment, source);
    }
}

void RegionPieces::addWhole(const KcGeSegment2d& segment, uint32_t source)
{
    if (segment.isSimple()) {
        addLocal(segment, source);
        return;
    }
    appendSmooth(segment, 0.0, 1.0, source);
}

void RegionPieces::addArc(const KcGeCircArc2d& arc, KcGePoint2d start, KcGePoint2d end, uint32_t source)
{
    // Rounding must not make a third piece of a full circle.
    const int count = std::max(1, int(std::ceil(arc.sweep() / kPi - KcGeContext::gTol.equalVector)));
    for (int i = 0; i < count; ++i) {
        RegionPiece piece;
        piece.kind = Kind::Arc;
        piece.center = arc.center();
        piece.radius = arc.radius();
        piece.sweep = arc.sweep() / count;
        piece.startAngle = arc.startAngle() + i * piece.sweep;
        piece.start = i == 0 ? start : m_pieces.back().end;
        piece.end = i == count - 1 ? end : arc.pointAtAngle(piece.startAngle + piece.sweep);
        piece.source = source;
        m_pieces.push_back(piece);
    }
}

void RegionPieces::addSmooth(const KcGeSegment2d& segment, uint32_t source)
{
    std::vector<double> params = segment.monotoneParams();
    params.insert(params.begin(), 0.0);
    params.push_back(1.0);
    for (size_t i = 0; i + 1 < params.size(); ++i) {
        KcGeSegment2d part = segment.between(params[i], params[i + 1]);
        if (part.isDegenerate(m_tolerance / 4.0)) {
            // What is too short to be told from a point goes with its neighbour.
            if (i + 2 < params.size()) {
                params[i + 1] = params[i];
                continue;
            }
        }
        appendSmooth(std::move(part), params[i], params[i + 1], source);
    }
}

void RegionPieces::appendSmooth(KcGeSegment2d part, double from, double to, uint32_t source)
{
    RegionPiece piece;
    piece.start = part.startPoint();
    piece.end = part.endPoint();
    piece.center = { from, to };
    piece.source = source;
    const Cubic cubic
        = Cubic::through(piece.start, part.pointAt(1.0 / 3.0), part.pointAt(2.0 / 3.0), piece.end);
    // Whatever runs as a cubic is one: most splines do, ellipses and rational splines do not.
    const double slack = m_tolerance * kSameCurve;
    const bool isCubic = cubic.at(1.0 / 6.0).distanceTo(part.pointAt(1.0 / 6.0)) <= slack
        && cubic.at(0.5).distanceTo(part.pointAt(0.5)) <= slack
        && cubic.at(5.0 / 6.0).distanceTo(part.pointAt(5.0 / 6.0)) <= slack;
    if (isCubic) {
        piece.kind = Kind::Cubic;
        piece.smooth = uint32_t(m_cubics.size());
        m_cubics.push_back(cubic);
    } else {
        piece.kind = Kind::Smooth;
        piece.smooth = uint32_t(m_smooth.size());
        m_smooth.push_back(std::move(part));
    }
    m_pieces.push_back(piece);
}

KcGePoint2d RegionPieces::at(const RegionPiece& piece, double t) const
{
    if (t == 0.0) // exact: the ends as they were given
        return piece.start;
    if (t == 1.0)
        return piece.end;
    switch (piece.kind) {
    case Kind::Line:
        return piece.start + (piece.end - piece.start) * t;
    case Kind::Arc: {
        const double angle = piece.startAngle + t * piece.sweep;
        return { piece.center.x + piece.radius * std::cos(angle),
                 piece.center.y + piece.radius * std::sin(angle) };
    }
    case Kind::Cubic:
        return m_cubics[piece.smooth].at(t);
    case Kind::Smooth:
        break;
    }
    return m_smooth[piece.smooth].pointAt(t);
}

KcGeVector2d RegionPieces::derivative(const RegionPiece& piece, double t) const
{
    switch (piece.kind) {
    case Kind::Line:
        return piece.end - piece.start;
    case Kind::Arc: {
        const double angle = piece.startAngle + t * piece.sweep, speed = piece.radius * piece.sweep;
        return { -std::sin(angle) * speed, std::cos(angle) * speed };
    }
    case Kind::Cubic:
        return m_cubics[piece.smooth].derivative(t);
    case Kind::Smooth:
        break;
    }
    return m_smooth[piece.smooth].firstDeriv(t);
}

KcGeExtents2d RegionPieces::extents(const RegionPiece& piece, double from, double to) const
{
    KcGeExtents2d box;
    box.addPoint(at(piece, from));
    box.addPoint(at(piece, to));
    if (piece.kind == Kind::Arc) {
        const double a = piece.startAngle + std::min(from, to) * piece.sweep;
        const double b = piece.startAngle + std::max(from, to) * piece.sweep;
        for (double quarter = std::ceil(a / (kPi / 2.0)); quarter * (kPi / 2.0) < b; quarter += 1.0) {
            const int side = int(std::fmod(std::fmod(quarter, 4.0) + 4.0, 4.0));
            const double r = piece.radius;
            const KcGeVector2d out[] = { { r, 0 }, { 0, r }, { -r, 0 }, { 0, -r } };
            box.addPoint(piece.center + out[side]);
        }
    }
    return box;
}

double RegionPieces::length(const RegionPiece& piece, double from, double to) const
{
    switch (piece.kind) {
    case Kind::Line:
        return piece.start.distanceTo(piece.end) * std::abs(to - from);
    case Kind::Arc:
        return piece.radius * piece.sweep * std::abs(to - from);
    case Kind::Cubic:
    case Kind::Smooth:
        break;
    }
    // Only slivers ask: chords of eighths of a stretch that turns by less than a right angle are near enough.
    constexpr int kParts = 8;
    double length = 0.0;
    KcGePoint2d before = at(piece, from);
    for (int i = 1; i <= kParts; ++i) {
        const KcGePoint2d next = at(piece, from + (to - from) * i / kParts);
        length += before.distanceTo(next);
        before = next;
    }
    return length;
}

double RegionPieces::areaAbout(const RegionPiece& piece, double from, double to, KcGePoint2d about) const
{
    if (piece.kind == Kind::Cubic)
        return m_cubics[piece.smooth].areaAbout(from, to, about);
    if (piece.kind == Kind::Smooth)
        return m_smooth[piece.smooth].between(from, to).areaAbout(about);
    const KcGeVector2d a = at(piece, from) - about, b = at(piece, to) - about;
    double area = a.crossProduct(b) / 2.0;
    if (piece.kind == Kind::Arc) {
        const double angle = piece.sweep * (to - from);
        area += piece.radius * piece.radius * (angle - std::sin(angle)) / 2.0;
    }
    return area;
}

double RegionPieces::paramAtDistance(const RegionPiece& piece, double from, double to, double distance) const
{
    const KcGePoint2d start = at(piece, from);
    const double whole = at(piece, to).distanceTo(start);
    if (piece.kind == Kind::Line)
        return whole <= distance ? to : from + (to - from) * (distance / whole);
    if (piece.kind == Kind::Arc) {
        const double half = distance / (2.0 * piece.radius);
        if (half >= 1.0)
            return to;
        const double step = 2.0 * std::asin(half) / piece.sweep;
        return step >= std::abs(to - from) ? to : from + (to > from ? step : -step);
    }
    if (whole <= distance)
        return to;
    // The distance from one end grows steadily along a stretch without turning points.
    const double speed = derivative(piece, from).length();
    double low = 0.0, high = 1.0, u = speed > 0.0 ? distance / (speed * std::abs(to - from)) : 0.5;
    constexpr int kEnough = 30; // an order of edges needs no more digits
    for (int i = 0; i < kEnough; ++i) {
        if (!(u > low && u < high))
            u = (low + high) / 2.0;
        const double reached = at(piece, from + u * (to - from)).distanceTo(start);
        if (std::abs(reached - distance) < distance * 1e-3) // a thousandth is near enough for a direction
            break;
        (reached < distance ? low : high) = u;
        u *= distance / reached;
    }
    return from + u * (to - from);
}

double RegionPieces::closest(const RegionPiece& piece, KcGePoint2d point, double& distance) const
{
    double t = 0.0;
    switch (piece.kind) {
    case Kind::Line: {
        const KcGeVector2d along = piece.end - piece.start;
        t = std::clamp((point - piece.start).dotProduct(along) / along.dotProduct(along), 0.0, 1.0);
        break;
    }
    case Kind::Arc: {
        const KcGeVector2d out = point - piece.center;
        double angle = std::atan2(out.y, out.x) - piece.startAngle;
        angle -= kTwoPi * std::floor(angle / kTwoPi);
        if (angle <= piece.sweep)
            t = angle / piece.sweep;
        else
            t = point.distanceTo(piece.start) <= point.distanceTo(piece.end) ? 0.0 : 1.0;
        break;
    }
    case Kind::Cubic:
        t = m_cubics[piece.smooth].closest(point);
        break;
    case Kind::Smooth: {
        const KcGeSegment2d::Nearest nearest = m_smooth[piece.smooth].closest(point);
        distance = nearest.distance;
        return nearest.t;
    }
    }
    distance = at(piece, t).distanceTo(point);
    return t;
}

KcGeSegment2d RegionPieces::segment(const RegionPiece& piece, double from, double to) const
{
    switch (piece.kind) {
    case Kind::Line:
        return KcGeSegment2d::line(at(piece, from), at(piece, to));
    case Kind::Arc:
        return KcGeSegment2d::bulge(at(piece, from), at(piece, to), std::tan(piece.sweep * (to - from) / 4.0));
    case Kind::Cubic: {
        KcGeNurbsCurve3d curve;
        curve.knots = { 0.0, 0.0, 0.0, 0.0, 1.0, 1.0, 1.0, 1.0 };
        for (const KcGePoint2d p : m_cubics[piece.smooth].controlPoints(from, to))
            curve.controlPoints.push_back({ p.x, p.y, 0.0 });
        const KcGePoint2d start = at(piece, from), end = at(piece, to); // exact
        curve.controlPoints.front() = { start.x, start.y, 0.0 };
        curve.controlPoints.back() = { end.x, end.y, 0.0 };
        return KcGeSegment2d::spline(curve).value_or(KcGeSegment2d::line(start, end));
    }
    case Kind::Smooth:
        break;
    }
    if (from == 0.0 && to == 1.0)
        return m_smooth[piece.smooth];
    return m_smooth[piece.smooth].between(from, to);
}

} // namespace kcge
