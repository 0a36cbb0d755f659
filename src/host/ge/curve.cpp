// Whole curves: questions are handed on to the piece that they concern, found by what was worked out once.

#include "ge/curve_body.h"

namespace {

/// By this share of the range a parameter or distance may miss it and count as its end: what rounding costs
/// callers.
constexpr double kRangeSlack = KcGeContext::gTol.equalVector;
/// A polyline or spline is level, or in a plane, when it leaves it by no more than this share of its size.
constexpr double kPlanarSlack = KcGeContext::gTol.equalVector;

KcGeMatrix3d frameOf(KcGeVector3d normal, KcGePoint3d point)
{
    return KcGeMatrix3d::planeToWorld(normal)
        * KcGeMatrix3d::translation({ 0.0, 0.0, (KcGeMatrix3d::worldToPlane(normal) * point).z });
}

/// The frame of a plane that holds all points: a level one when they are; nothing when there is none, or more
/// than one.
std::optional<KcGeMatrix3d> frameThrough(const std::vector<KcGePoint3d>& points)
{
    const KcGePoint3d first = points.front();
    if (std::all_of(
            points.begin(), points.end(), [&](KcGePoint3d p) { return p.z == first.z; })) // exact: as drawn
        return KcGeMatrix3d::translation({ 0.0, 0.0, first.z });
    // Newell's normal: the sum of the triangles that the edges make with the first point; where those cancel
    // out, the largest of them.
    KcGeVector3d sum, largest;
    double size = 0.0;
    for (size_t i = 1; i < points.size(); ++i) {
        const KcGeVector3d triangle = (points[i - 1] - first).crossProduct(points[i] - first);
        sum = sum + triangle;
        if (triangle.length() > largest.length())
            largest = triangle;
        size = std::max(size, points[i].distanceTo(first));
    }
    const KcGeVector3d normal = (sum.length() > largest.length() / 2.0 ? sum : largest).normal();
    if (!(normal.length() > 0.5) || !(largest.length() > kPlanarSlack * size * size))
        return std::nullopt;
    for (const KcGePoint3d p : points)
        if (!(std::abs((p - first).dotProduct(normal)) <= kPlanarSlack * size))
            return std::nullopt;
    // Of the two normals the one that points up.
    return frameOf(normal.z < 0.0 ? -normal : normal, first);
}

/// A frame for a straight way, with its X axis along it.
KcGeMatrix3d frameAlong(KcGePoint3d origin, KcGeVector3d direction)
{
    const KcGeVector3d level{ -direction.y, direction.x, 0.0 };
    const KcGeVector3d y = level.length() > 0.0 ? level.normal() : KcGeVector3d::kYAxis;
    return KcGeMatrix3d::fromAxes(origin, direction, y, direction.crossProduct(y));
}

} // namespace

// The body: pieces in a plane, or a polyline or spline in space.

size_t KcGeCurve3d::Body::size() const
{
    if (isPlanar)
        return pieces.size();
    return carrier ? 1 : spaceVertices.size() - 1;
}

KcGePoint3d KcGeCurve3d::Body::world(KcGePoint2d p) const
{
    return frame * KcGePoint3d{ p.x, p.y, 0.0 };
}

KcGePoint3d KcGeCurve3d::Body::pointAt(size_t i, double t) const
{
    if (isPlanar)
        return world(pieces[i].pointAt(t));
    if (carrier)
        return carrier->pointAt(splineParam(t));
    const KcGePoint3d a = spaceVertices[i], b = spaceVertices[i + 1];
    return t == 1.0 ? b : a + (b - a) * t; // exact: the ends as given
}

KcGeVector3d KcGeCurve3d::Body::first(size_t i, double t) const
{
    if (isPlanar) {
        const KcGeVector2d v = pieces[i].firstDeriv(t);
        return frame * KcGeVector3d{ v.x, v.y, 0.0 };
    }
    if (carrier)
        return carrier->firstAt(splineParam(t)) * (carrierTo - carrierFrom);
    return spaceVertices[i + 1] - spaceVertices[i];
}

KcGeVector3d KcGeCurve3d::Body::second(size_t i, double t) const
{
    if (isPlanar) {
        const KcGeVector2d v = pieces[i].secondDeriv(t);
        return frame * KcGeVector3d{ v.x, v.y, 0.0 };
    }
    const double width = carrierTo - carrierFrom;
    return carrier ? carrier->at(splineParam(t)).second * (width * width) : KcGeVector3d();
}

double KcGeCurve3d::Body::lengthTo(size_t i, double t) const
{
    if (isPlanar)
        return pieces[i].lengthBetween(0.0, t);
    if (carrier)
        return std::abs(carrier->lengthBetween(carrierFrom, splineParam(t)));
    return spaceVertices[i].distanceTo(spaceVertices[i + 1]) * t;
}

double KcGeCurve3d::Body::paramAtLength(size_t i, double length) const
{
    if (isPlanar)
        return pieces[i].paramAtLength(length);
    if (carrier) {
        const double width = carrierTo - carrierFrom;
        const double u = carrier->paramAtLength(carrierFrom, width < 0.0 ? -length : length);
        return std::clamp((u - carrierFrom) / width, 0.0, 1.0);
    }
    const double whole = spaceVertices[i].distanceTo(spaceVertices[i + 1]);
    return length < whole ? std::max(0.0, length / whole) : 1.0;
}

double KcGeCurve3d::Body::closest(size_t i, KcGePoint3d point) const
{
    if (isPlanar)
        return pieces[i].closest(point.plan()).t;
    if (carrier) {
        const double u
            = carrier->closest(point, std::min(carrierFrom, carrierTo), std::max(carrierFrom, carrierTo));
        return u == carrierTo ? 1.0
                              : (u - carrierFrom) / (carrierTo - carrierFrom); // exact: the end as the end
    }
    const KcGeVector3d way = spaceVertices[i + 1] - spaceVertices[i];
    const double square = way.dotProduct(way);
    return square > 0.0 ? std::clamp((point - spaceVertices[i]).dotProduct(way) / square, 0.0, 1.0) : 0.0;
}

KcGeExtents3d KcGeCurve3d::Body::box(size_t i) const
{
    KcGeExtents3d box;
    if (isPlanar) {
        const KcGeExtents2d flat = pieces[i].extents();
        box.addPoint({ flat.min.x, flat.min.y, 0.0 });
        box.addPoint({ flat.max.x, flat.max.y, 0.0 });
    } else if (carrier) {
        box = carrier->extents(std::min(carrierFrom, carrierTo), std::max(carrierFrom, carrierTo));
    } else {
        box.addPoint(spaceVertices[i]);
        box.addPoint(spaceVertices[i + 1]);
    }
    return box;
}

const std::vector<double>& KcGeCurve3d::Body::lengths() const
{
    std::call_once(lengthsOnce, [this] {
        cumulated.reserve(size() + 1);
        cumulated.push_back(0.0);
        for (size_t i = 0; i < size(); ++i)
            cumulated.push_back(cumulated.back() + lengthTo(i, 1.0));
    });
    return cumulated;
}

const KcGeBoxTree& KcGeCurve3d::Body::tree() const
{
    std::call_once(treeOnce, [this] {
        std::vector<KcGeExtents3d> boxes;
        boxes.reserve(size());
        for (size_t i = 0; i < size(); ++i)
            boxes.push_back(box(i));
        boxTree = KcGeBoxTree(std::move(boxes));
    });
    return boxTree;
}

double KcGeCurve3d::Body::paramOf(size_t i, double t) const
{
    if (i + 1 == size() && t == 1.0) // exact: the end's own value
        return lastParam;
    return firstParam + step * (double(i) + t);
}

std::optional<KcGeCurve3d::Body::Place> KcGeCurve3d::Body::placeOf(double param) const
{
    const double x = (param - firstParam) / step;
    if (extent == Extent::Line || (extent == Extent::Ray && x >= 0.0))
        return std::isfinite(x) ? std::optional(Place{ 0, x }) : std::nullopt;
    const double n = double(size()), slack = kRangeSlack * n;
    if (!(x >= -slack && x <= n + slack))
        return std::nullopt;
    if (param == lastParam || x >= n) // exact: the end's own value
        return Place{ size() - 1, 1.0 };
    const double whole = std::floor(std::max(0.0, x));
    return Place{ size_t(whole), std::max(0.0, x) - whole };
}

std::shared_ptr<KcGeCurve3d::Body>
KcGeCurve3d::Body::planar(const KcGeMatrix3d& frame, std::vector<KcGeSegment2d> pieces)
{
    if (pieces.empty()
        || !std::all_of(pieces.begin(), pieces.end(), [](const auto& p) { return p.isFinite(); }))
        return nullptr;
    auto body = std::make_shared<Body>();
    body->isPlanar = true;
    body->frame = frame;
    body->toPlane = frame.inverse();
    body->pieces = std::move(pieces);
    body->lastParam = double(body->pieces.size());
    // A frame that is no number would let a sound piece yield none.
    if (!isFinitePoint(body->pointAt(0, 0.0)) || !isFinitePoint(body->pointAt(body->size() - 1, 1.0)))
        return nullptr;
    return body;
}

void KcGeCurve3d::Body::setRange(double start, double end)
{
    firstParam = start;
    lastParam = end;
    // A range without width can only be a speck's; any step will do.
    step = end - start != 0.0 ? end - start : 1.0; // exact
}

// Making curves.

KcGeCurve3d KcGeCurve3d::line(KcGePoint3d start, KcGePoint3d end)
{
    KcGeCurve3d curve;
    const double length = start.distanceTo(end);
    std::shared_ptr<Body> body;
    if (start.z == end.z) // exact: a level line keeps its ends to the last bit
        body = Body::planar(
            KcGeMatrix3d::translation({ 0.0, 0.0, start.z }),
            { KcGeSegment2d::line(start.plan(), end.plan()) });
    else
        body = Body::planar(
            frameAlong(start, (end - start).normal()),
            { KcGeSegment2d::line({ 0.0, 0.0 }, { length, 0.0 }) });
    if (body)
        body->setRange(0.0, length);
    curve.m_body = std::move(body);
    return curve;
}

std::shared_ptr<KcGeCurve3d::Body>
KcGeCurve3d::Body::endless(KcGePoint3d base, KcGeVector3d direction, Extent extent)
{
    const KcGeVector3d unit = direction.normal();
    if (!(unit.length() > 0.5))
        return nullptr;
    const bool level = unit.z == 0.0; // exact
    auto body = level ? planar(
                    KcGeMatrix3d::translation({ 0.0, 0.0, base.z }),
                    { KcGeSegment2d::line(base.plan(), base.plan() + KcGeVector2d{ unit.x, unit.y }) })
                      : planar(frameAlong(base, unit), { KcGeSegment2d::line({ 0.0, 0.0 }, { 1.0, 0.0 }) });
    if (body)
        body->extent = extent;
    return body;
}

KcGeCurve3d KcGeCurve3d::infiniteLine(KcGePoint3d base, KcGeVector3d direction)
{
    KcGeCurve3d curve;
    curve.m_body = Body::endless(base, direction, Extent::Line);
    return curve;
}

KcGeCurve3d KcGeCurve3d::ray(KcGePoint3d base, KcGeVector3d direction)
{
    KcGeCurve3d curve;
    curve.m_body = Body::endless(base, direction, Extent::Ray);
    return curve;
}

KcGeCurve3d
KcGeCurve3d::single(const KcGeMatrix3d& frame, KcGeSegment2d piece, double startParam, double endParam)
{
    KcGeCurve3d curve;
    auto body = Body::planar(frame, { std::move(piece) });
    if (!body || !std::isfinite(startParam) || !std::isfinite(endParam))
        return curve;
    body->setRange(startParam, endParam);
    body->isClosed = body->pieces[0].isClosed() && !body->pieces[0].isDegenerate();
    curve.m_body = std::move(body);
    return curve;
}

KcGeCurve3d KcGeCurve3d::chain(const KcGeMatrix3d& frame, std::vector<KcGeSegment2d> pieces, bool closed)
{
    KcGeCurve3d curve;
    auto body = Body::planar(frame, std::move(pieces));
    if (!body)
        return curve;
    body->isChain = true;
    body->isClosed = closed;
    curve.m_body = std::move(body);
    return curve;
}

KcGeCurve3d KcGeCurve3d::polyline(std::vector<KcGePoint3d> vertices, bool closed)
{
    KcGeCurve3d curve;
    if (vertices.empty() || !std::all_of(vertices.begin(), vertices.end(), isFinitePoint))
        return curve;
    if (closed || vertices.size() == 1)
        vertices.push_back(vertices.front());
    if (const auto frame = frameThrough(vertices)) {
        const KcGeMatrix3d toPlane = frame->inverse();
        std::vector<KcGeSegment2d> pieces;
        for (size_t i = 1; i < vertices.size(); ++i)
            pieces.push_back(
                KcGeSegment2d::line((toPlane * vertices[i - 1]).plan(), (toPlane * vertices[i]).plan()));
        return chain(*frame, std::move(pieces), closed);
    }
    auto body = std::make_shared<Body>();
    body->isChain = true;
    body->isClosed = closed;
    body->lastParam = double(vertices.size() - 1);
    body->spaceVertices = std::move(vertices);
    curve.m_body = std::move(body);
    return curve;
}

KcGeCurve3d KcGeCurve3d::ellipse(const KcGeEllipArc3d& arc)
{
    KcGeVector3d normal = arc.u.crossProduct(arc.v);
    // An ellipse that is a flat line lies in any plane through it.
    if (!(normal.length() > 0.0))
        normal = arc.u.z == 0.0 && arc.v.z == 0.0
            ? KcGeVector3d::kZAxis // exact: level
            : arc.u.crossProduct(arc.u.crossProduct(KcGeVector3d::kZAxis));
    const KcGeMatrix3d frame = frameOf(normal, arc.center);
    const KcGeEllipArc3d local = arc.transformed(frame.inverse());
    return single(
        frame,
        KcGeSegment2d::ellipse(
            local.center.plan(), { local.u.x, local.u.y }, { local.v.x, local.v.y }, arc.start, arc.sweep),
        arc.start, arc.start + arc.sweep);
}

KcGeCurve3d KcGeCurve3d::spline(KcGeNurbsCurve3d nurbs)
{
    KcGeCurve3d curve;
    if (!nurbs.isValid())
        return curve;
    const double first = nurbs.startParam(), last = nurbs.endParam();
    if (const auto frame = frameThrough(nurbs.controlPoints)) {
        const auto segment = KcGeSegment2d::spline(nurbs.transformed(frame->inverse()));
        return segment ? single(*frame, *segment, first, last) : curve;
    }
    auto body = std::make_shared<Body>();
    body->carrier = KcGeCarrier3d::spline(std::move(nurbs));
    body->carrierFrom = first;
    body->carrierTo = last;
    body->setRange(first, last);
    body->isClosed = body->pointAt(0, 0.0).isEqualTo(body->pointAt(0, 1.0))
        && body->carrier->lengthBetween(first, last) > KcGeContext::gTol.equalPoint;
    curve.m_body = std::move(body);
    return curve;
}

// What it is.

bool KcGeCurve3d::isBounded() const
{
    return m_body && m_body->extent == Extent::Bounded;
}

bool KcGeCurve3d::hasStart() const
{
    return m_body && m_body->extent != Extent::Line;
}

bool KcGeCurve3d::isClosed() const
{
    return m_body && m_body->isClosed;
}

bool KcGeCurve3d::isPolyline() const
{
    return m_body && m_body->isChain;
}

bool KcGeCurve3d::isPlanar() const
{
    return m_body && m_body->isPlanar;
}

std::optional<KcGeMatrix3d> KcGeCurve3d::frame() const
{
    return isPlanar() ? std::optional(m_body->frame) : std::nullopt;
}

std::optional<KcGeVector3d> KcGeCurve3d::normal() const
{
    return isPlanar() ? std::optional(m_body->frame.axis(2)) : std::nullopt;
}

size_t KcGeCurve3d::numPieces() const
{
    return m_body ? m_body->size() : 0;
}

const std::vector<KcGeSegment2d>& KcGeCurve3d::pieces() const
{
    static const std::vector<KcGeSegment2d> none;
    return m_body ? m_body->pieces : none;
}

std::vector<KcGeSegment2d> KcGeCurve3d::plan() const
{
    std::vector<KcGeSegment2d> result;
    if (!m_body)
        return result;
    if (m_body->isPlanar) {
        result = m_body->pieces;
        if (!m_body->isLevel())
            for (KcGeSegment2d& piece : result)
                piece = piece.transformed(m_body->frame);
    } else if (m_body->carrier) {
        if (const auto segment = KcGeSegment2d::spline(*asSpline()))
            result.push_back(*segment);
    } else {
        for (size_t i = 0; i < m_body->size(); ++i)
            result.push_back(
                KcGeSegment2d::line(m_body->spaceVertices[i].plan(), m_body->spaceVertices[i + 1].plan()));
    }
    return result;
}

std::optional<KcGeNurbsCurve3d> KcGeCurve3d::asSpline() const
{
    if (!m_body || m_body->size() != 1)
        return std::nullopt;
    if (m_body->isPlanar) {
        const auto curve = m_body->pieces[0].asSpline();
        return curve ? std::optional(curve->transformed(m_body->frame)) : std::nullopt;
    }
    if (!m_body->carrier)
        return std::nullopt;
    return m_body->carrier->asSpline()->between(m_body->carrierFrom, m_body->carrierTo);
}

std::vector<KcGePoint3d> KcGeCurve3d::vertices() const
{
    std::vector<KcGePoint3d> result;
    for (size_t i = 0; i < numPieces(); ++i)
        result.push_back(m_body->pointAt(i, 0.0));
    if (isBounded() && !isClosed())
        result.push_back(m_body->pointAt(numPieces() - 1, 1.0));
    return result;
}

// Parameters, points, lengths.

std::optional<double> KcGeCurve3d::startParam() const
{
    return hasStart() ? std::optional(m_body->firstParam) : std::nullopt;
}

std::optional<double> KcGeCurve3d::endParam() const
{
    return isBounded() ? std::optional(m_body->lastParam) : std::nullopt;
}

std::optional<KcGePoint3d> KcGeCurve3d::startPoint() const
{
    return hasStart() ? std::optional(m_body->pointAt(0, 0.0)) : std::nullopt;
}

std::optional<KcGePoint3d> KcGeCurve3d::endPoint() const
{
    return isBounded() ? std::optional(m_body->pointAt(m_body->size() - 1, 1.0)) : std::nullopt;
}

std::optional<KcGePoint3d> KcGeCurve3d::pointAtParam(double param) const
{
    const auto place = m_body ? m_body->placeOf(param) : std::nullopt;
    return place ? std::optional(m_body->pointAt(place->piece, place->t)) : std::nullopt;
}

std::optional<KcGeVector3d> KcGeCurve3d::firstDeriv(double param) const
{
    const auto place = m_body ? m_body->placeOf(param) : std::nullopt;
    return place ? std::optional(m_body->first(place->piece, place->t) / m_body->step) : std::nullopt;
}

std::optional<KcGeVector3d> KcGeCurve3d::secondDeriv(double param) const
{
    const auto place = m_body ? m_body->placeOf(param) : std::nullopt;
    if (!place)
        return std::nullopt;
    return m_body->second(place->piece, place->t) / (m_body->step * m_body->step);
}

std::optional<double> KcGeCurve3d::length() const
{
    return isBounded() ? std::optional(m_body->lengths().back()) : std::nullopt;
}

std::optional<double> KcGeCurve3d::distAtParam(double param) const
{
    const auto place = hasStart() ? m_body->placeOf(param) : std::nullopt;
    if (!place)
        return std::nullopt;
    return m_body->lengths()[place->piece] + m_body->lengthTo(place->piece, place->t);
}

std::optional<double> KcGeCurve3d::paramAtDist(double distance) const
{
    if (!hasStart() || !std::isfinite(distance))
        return std::nullopt;
    if (!isBounded())
        return distance >= 0.0 ? std::optional(distance) : std::nullopt;
    const std::vector<double>& lengths = m_body->lengths();
    const double slack = kRangeSlack * lengths.back();
    if (distance < -slack || distance > lengths.back() + slack)
        return std::nullopt;
    if (distance >= lengths.back())
        return m_body->lastParam;
    // Of pieces without length the last, which leads on.
    const auto above = std::upper_bound(lengths.begin() + 1, lengths.end() - 1, distance);
    const size_t piece = size_t(above - lengths.begin()) - 1;
    return m_body->paramOf(piece, m_body->paramAtLength(piece, distance - lengths[piece]));
}

std::optional<KcGePoint3d> KcGeCurve3d::pointAtDist(double distance) const
{
    const auto param = paramAtDist(distance);
    return param ? pointAtParam(*param) : std::nullopt;
}
