// Whole curves: nearest points, areas, boxes, chords.

#include "ge/curve_body.h"

// Nearest points.

std::optional<KcGeCurve3d::Nearest> KcGeCurve3d::closest(KcGePoint3d point) const
{
    if (!m_body || !isFinitePoint(point))
        return std::nullopt;
    const Body& body = *m_body;
    const auto at = [&](size_t piece, double t) {
        const KcGePoint3d foot = body.pointAt(piece, t);
        return Nearest{ body.paramOf(piece, t), foot, foot.distanceTo(point) };
    };
    if (body.extent != Extent::Bounded) {
        const double t = body.pieces[0].closestExtended((body.toPlane * point).plan()).t;
        return at(0, body.extent == Extent::Ray ? std::max(0.0, t) : t);
    }
    // In the plane the distance to it plays no part.
    const KcGePoint3d local = body.isPlanar ? body.toPlane * point : point;
    const KcGePoint3d foot{ local.x, local.y, body.isPlanar ? 0.0 : local.z };
    if (body.size() == 1)
        return at(0, body.closest(0, foot));
    double best = std::numeric_limits<double>::infinity(), nearestT = 0.0;
    size_t nearestPiece = 0;
    body.tree().nearest(foot, 0, body.size(), best, [&](size_t piece, double& distance) {
        const double t = body.closest(piece, foot);
        const double found = body.isPlanar ? body.pieces[piece].pointAt(t).distanceTo(foot.plan())
                                           : body.pointAt(piece, t).distanceTo(foot);
        if (found < distance) {
            distance = found;
            nearestPiece = piece;
            nearestT = t;
        }
    });
    return at(nearestPiece, nearestT);
}

std::optional<KcGeCurve3d::Nearest> KcGeCurve3d::closestExtended(KcGePoint3d point) const
{
    std::optional<Nearest> best = closest(point);
    if (!best || !isBounded() || isClosed())
        return best;
    const Body& body = *m_body;
    const auto consider = [&](size_t piece, double t) {
        const KcGePoint3d foot = body.isPlanar
            ? body.world(body.pieces[piece].pointAt(t))
            : body.spaceVertices[piece] + (body.spaceVertices[piece + 1] - body.spaceVertices[piece]) * t;
        const double distance = foot.distanceTo(point);
        if (distance < best->distance)
            best = Nearest{ body.firstParam + body.step * (double(piece) + t), foot, distance };
    };
    const auto extended = [&](size_t piece) {
        if (body.isPlanar)
            return body.pieces[piece].closestExtended((body.toPlane * point).plan()).t;
        if (body.carrier)
            return 0.0;
        const KcGeVector3d way = body.spaceVertices[piece + 1] - body.spaceVertices[piece];
        const double square = way.dotProduct(way);
        return square > 0.0 ? (point - body.spaceVertices[piece]).dotProduct(way) / square : 0.0;
    };
    const size_t last = body.size() - 1;
    if (const double t = extended(0); t < 0.0)
        consider(0, t);
    if (const double t = extended(last); t > 1.0)
        consider(last, t);
    return best;
}

std::optional<double> KcGeCurve3d::paramAtPoint(KcGePoint3d point, double tolerance) const
{
    // Where start and end are one, both are nearest: the start stands for them.
    if (const auto start = startPoint(); start && start->distanceTo(point) <= tolerance) {
        const auto end = endPoint();
        if (end && end->distanceTo(*start) <= tolerance)
            return m_body->firstParam;
    }
    const auto found = closest(point);
    return found && found->distance <= tolerance ? std::optional(found->param) : std::nullopt;
}

std::optional<double> KcGeCurve3d::distAtPoint(KcGePoint3d point, double tolerance) const
{
    const auto param = paramAtPoint(point, tolerance);
    return param ? distAtParam(*param) : std::nullopt;
}

// Areas and boxes.

std::optional<double> KcGeCurve3d::area() const
{
    return isPlanar() && isBounded() ? std::optional(outlineArea(m_body->pieces)) : std::nullopt;
}

KcGeExtents3d KcGeCurve3d::extents() const
{
    KcGeExtents3d box;
    if (!isBounded())
        return box;
    const Body& body = *m_body;
    for (size_t i = 0; i < body.size(); ++i) {
        box.addPoint(body.pointAt(i, 0.0));
        box.addPoint(body.pointAt(i, 1.0));
        if (!body.isPlanar) {
            box.addExtents(body.box(i));
            continue;
        }
        const KcGeSegment2d& piece = body.pieces[i];
        if (body.isLevel()) {
            const KcGeExtents2d flat = piece.extents();
            const double z = body.world({}).z;
            box.addPoint({ flat.min.x, flat.min.y, z });
            box.addPoint({ flat.max.x, flat.max.y, z });
        } else if (const KcGeCircArc2d* arc = piece.asArc()) {
            const KcGePoint2d c = arc->center();
            const KcGeEllipArc3d round{ { c.x, c.y, 0.0 },
                                        { arc->radius(), 0, 0 },
                                        { 0, arc->radius(), 0 },
                                        arc->startAngle(),
                                        arc->sweep() };
            box.addExtents(round.transformed(body.frame).extents());
        } else if (const auto ellipse = piece.asEllipse()) {
            box.addExtents(ellipse->transformed(body.frame).extents());
        } else if (const auto spline = piece.asSpline()) {
            box.addExtents(spline->transformed(body.frame).extents());
        }
    }
    return box;
}

std::vector<KcGePoint3d> KcGeCurve3d::chords(double sagitta) const
{
    std::vector<KcGePoint3d> points;
    if (!isBounded())
        return points;
    const Body& body = *m_body;
    if (body.carrier)
        return body.carrier->chords(body.carrierFrom, body.carrierTo, sagitta);
    if (!body.isPlanar)
        return body.spaceVertices;
    points.push_back(body.pointAt(0, 0.0));
    for (const KcGeSegment2d& piece : body.pieces) {
        const std::vector<KcGePoint2d> flat = piece.chords(sagitta);
        for (size_t i = 1; i < flat.size(); ++i)
            points.push_back(body.world(flat[i]));
    }
    return points;
}
