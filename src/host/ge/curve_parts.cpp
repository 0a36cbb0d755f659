// Curves turned round, cut, and taken to pieces.

#include "ge/curve_body.h"

namespace {

/// Half a turn about the X axis: the plane seen from behind.
const KcGeMatrix3d& turnedOver()
{
    static const KcGeMatrix3d matrix = KcGeMatrix3d::scaling(KcGeVector3d{ 1.0, -1.0, -1.0 });
    return matrix;
}

} // namespace

KcGeCurve3d KcGeCurve3d::ofPiece(const KcGeMatrix3d& frame, const KcGeSegment2d& piece)
{
    switch (piece.kind()) {
    case KcGeSegment2d::Kind::Line:
        break;
    case KcGeSegment2d::Kind::Arc: {
        const KcGeCircArc2d& arc = *piece.asArc();
        if (!arc.isClockwise()) {
            const double start = normalizedAngle(arc.startAngle());
            return single(frame, piece, start, start + arc.sweep());
        }
        return ofPiece(frame * turnedOver(), piece.transformed(turnedOver()));
    }
    case KcGeSegment2d::Kind::Ellipse: {
        const KcGeEllipArc3d arc = *piece.asEllipse();
        const bool turnsLeft = arc.u.crossProduct(arc.v).z * arc.sweep > 0.0;
        if (!turnsLeft && arc.u.crossProduct(arc.v).z != 0.0) // exact: a flat one has no side
            return ofPiece(frame * turnedOver(), piece.transformed(turnedOver()));
        if (arc.sweep >= 0.0) {
            const double start = normalizedAngle(arc.start);
            return single(frame, piece, start, start + arc.sweep);
        }
        // The same points with anomalies that increase: the second axis the other way.
        const double start = normalizedAngle(-arc.start);
        return single(
            frame,
            KcGeSegment2d::ellipse(
                arc.center.plan(), { arc.u.x, arc.u.y }, { -arc.v.x, -arc.v.y }, start, -arc.sweep),
            start, start - arc.sweep);
    }
    case KcGeSegment2d::Kind::Spline:
        if (const auto curve = piece.asSpline())
            return spline(curve->transformed(frame));
        break;
    }
    const auto world = [&](KcGePoint2d p) { return frame * KcGePoint3d{ p.x, p.y, 0.0 }; };
    return line(world(piece.startPoint()), world(piece.endPoint()));
}

KcGeCurve3d KcGeCurve3d::reversed() const
{
    if (!isBounded())
        return *this;
    if (m_body->isChain) {
        if (!m_body->isPlanar) {
            std::vector<KcGePoint3d> vertices = m_body->spaceVertices;
            std::reverse(vertices.begin(), vertices.end());
            if (isClosed())
                vertices.pop_back();
            return polyline(std::move(vertices), isClosed());
        }
        std::vector<KcGeSegment2d> pieces;
        for (size_t i = m_body->pieces.size(); i-- > 0;)
            pieces.push_back(m_body->pieces[i].reversed());
        return chain(m_body->frame, std::move(pieces), isClosed());
    }
    if (const auto curve = asSpline())
        return spline(curve->reversed());
    return ofPiece(m_body->frame, m_body->pieces[0].reversed());
}

KcGeCurve3d KcGeCurve3d::between(double from, double to) const
{
    const auto a = m_body->placeOf(from), b = m_body->placeOf(to);
    if (!a || !b)
        return {};
    if (!m_body->isChain) {
        if (m_body->carrier)
            return spline(asSpline()->between(from, to));
        const KcGeSegment2d part = m_body->pieces[0].between(a->t, b->t);
        if (part.isLine() || part.kind() == KcGeSegment2d::Kind::Spline)
            return ofPiece(m_body->frame, part);
        return single(m_body->frame, part, from, to);
    }
    std::vector<KcGeSegment2d> pieces;
    std::vector<KcGePoint3d> vertices;
    if (!m_body->isPlanar)
        vertices.push_back(m_body->pointAt(a->piece, a->t));
    for (size_t i = a->piece; i <= b->piece; ++i) {
        const double start = i == a->piece ? a->t : 0.0, end = i == b->piece ? b->t : 1.0;
        // A cut at a vertex leaves nothing of the piece before or behind it.
        if (start == end) // exact
            continue;
        if (m_body->isPlanar)
            pieces.push_back(m_body->pieces[i].between(start, end));
        else
            vertices.push_back(m_body->pointAt(i, end));
    }
    return m_body->isPlanar ? chain(m_body->frame, std::move(pieces), false)
                            : polyline(std::move(vertices), false);
}

KcGeCurve3d KcGeCurve3d::overTheStart(double from, double to) const
{
    const KcGeCurve3d before = between(from, m_body->lastParam), behind = between(m_body->firstParam, to);
    if (m_body->isChain) {
        if (!m_body->isPlanar) {
            std::vector<KcGePoint3d> vertices = before.vertices();
            const std::vector<KcGePoint3d> rest = behind.vertices();
            vertices.insert(vertices.end(), rest.begin() + 1, rest.end());
            return polyline(std::move(vertices), false);
        }
        std::vector<KcGeSegment2d> pieces = before.pieces();
        pieces.insert(pieces.end(), behind.pieces().begin(), behind.pieces().end());
        return chain(m_body->frame, std::move(pieces), false);
    }
    if (asSpline()) {
        const auto first = before.asSpline(), second = behind.asSpline();
        if (first && second)
            return spline(first->joinedWith(*second));
        return first ? before : behind;
    }
    const double turn = m_body->lastParam - m_body->firstParam;
    const KcGeSegment2d& piece = m_body->pieces[0];
    const double start = (from - m_body->firstParam) / turn, end = 1.0 + (to - m_body->firstParam) / turn;
    return single(m_body->frame, piece.between(start, end), from, to + turn);
}

std::vector<KcGeCurve3d> KcGeCurve3d::split(std::vector<double> params) const
{
    if (!isBounded())
        return {};
    const double first = m_body->firstParam, last = m_body->lastParam;
    std::erase_if(params, [&](double p) { return !m_body->placeOf(p); });
    for (double& p : params)
        p = std::clamp(p, first, last);
    std::sort(params.begin(), params.end());
    const double whole = *length(), tolerance = KcGeContext::gTol.equalPoint;
    // The cuts as far as they lie apart, and away from the start and end, which are one on a closed curve.
    std::vector<double> cuts;
    double before = 0.0;
    bool atStart = false;
    for (const double p : params) {
        const double at = *distAtParam(p);
        if (at <= tolerance || at >= whole - tolerance)
            atStart = true;
        else if (cuts.empty() || at - before > tolerance) {
            cuts.push_back(p);
            before = at;
        }
    }
    std::vector<KcGeCurve3d> result;
    if (cuts.empty())
        return { *this };
    const bool goesOver = isClosed() && !atStart;
    if (!goesOver)
        result.push_back(between(first, cuts.front()));
    for (size_t i = 1; i < cuts.size(); ++i)
        result.push_back(between(cuts[i - 1], cuts[i]));
    result.push_back(goesOver ? overTheStart(cuts.back(), cuts.front()) : between(cuts.back(), last));
    return result;
}

std::vector<KcGeCurve3d> KcGeCurve3d::exploded() const
{
    std::vector<KcGeCurve3d> result;
    if (!isBounded())
        return result;
    if (!m_body->isPlanar && !m_body->carrier)
        for (size_t i = 0; i < m_body->size(); ++i)
            result.push_back(line(m_body->spaceVertices[i], m_body->spaceVertices[i + 1]));
    else if (m_body->carrier)
        result.push_back(*this);
    else
        for (const KcGeSegment2d& piece : m_body->pieces) {
            const auto ellipse = piece.asEllipse();
            const bool clockwise = piece.isArc()
                ? piece.asArc()->isClockwise()
                : ellipse && ellipse->u.crossProduct(ellipse->v).z * ellipse->sweep < 0.0;
            result.push_back(ofPiece(m_body->frame, clockwise ? piece.reversed() : piece));
        }
    return result;
}
