// Parallels of whole curves: what kind of curve comes back, and the splines that stand for the parallels of
// ellipses and splines.

#include "ge/offset.h"

#include <array>

namespace {

constexpr double kPoint = KcGeContext::gTol.equalPoint;
using Bezier = std::array<KcGePoint2d, 4>;

KcGeVector3d inSpace(const KcGeMatrix3d& frame, KcGeVector2d v)
{
    return frame * KcGeVector3d{ v.x, v.y, 0.0 };
}

KcGePoint3d inSpace(const KcGeMatrix3d& frame, KcGePoint2d p)
{
    return frame * KcGePoint3d{ p.x, p.y, 0.0 };
}

/// The exact parallel of a smooth piece, point by point.
struct Parallel {
    const KcGeSegment2d& source;
    double left;

    KcGePoint2d pointAt(double t) const
    {
        return source.pointAt(t) + source.directionAt(t).perpVector() * left;
    }
    /// The derivative after the source's parameter (the normal turns by the curvature along the curve).
    KcGeVector2d derivAt(double t) const
    {
        return source.firstDeriv(t) * (1.0 - source.curvatureAt(t) * left);
    }
};

KcGePoint2d pointOf(const Bezier& b, double u)
{
    const double v = 1.0 - u;
    const KcGeVector2d sum = b[0].asVector() * (v * v * v) + b[1].asVector() * (3 * u * v * v)
        + b[2].asVector() * (3 * u * u * v) + b[3].asVector() * (u * u * u);
    return { sum.x, sum.y };
}

/// Cubics with the parallel's points and derivatives at their ends, halved until they are near enough.
void fit(
    const Parallel& parallel, double from, double to, double tolerance, int depth,
    std::vector<Bezier>& fitted)
{
    const double h = to - from;
    const KcGePoint2d start = parallel.pointAt(from), end = parallel.pointAt(to);
    const Bezier cubic{ start, start + parallel.derivAt(from) * (h / 3.0),
                        end - parallel.derivAt(to) * (h / 3.0), end };
    constexpr int kDeepest = 14;
    bool near = true;
    for (const double u : { 0.25, 0.5, 0.75 })
        near = near && pointOf(cubic, u).distanceTo(parallel.pointAt(from + u * h)) <= tolerance;
    if (near || depth >= kDeepest) {
        fitted.push_back(cubic);
        return;
    }
    const double middle = from + h / 2.0;
    fit(parallel, from, middle, tolerance, depth + 1, fitted);
    fit(parallel, middle, to, tolerance, depth + 1, fitted);
}

/// A line or arc as cubics.
void addSimple(const KcGeSegment2d& piece, std::vector<Bezier>& fitted)
{
    const KcGeCircArc2d* arc = piece.asArc();
    // A cubic leaves an arc by about 2.7e-4 radii at a quarter turn and by the sixth power of the angle
    // below.
    constexpr double kMostTurn = kPi / 16.0;
    const int parts = arc ? 1 + int(std::abs(arc->sweep()) / kMostTurn) : 1;
    for (int i = 0; i < parts; ++i) {
        const double from = double(i) / parts, to = double(i + 1) / parts;
        const KcGePoint2d start = piece.pointAt(from), end = piece.pointAt(to);
        const double reach = arc ? arc->radius() * 4.0 / 3.0 * std::tan(std::abs(arc->sweep()) / parts / 4.0)
                                 : start.distanceTo(end) / 3.0;
        fitted.push_back(
            { start, start + piece.directionAt(from) * reach, end - piece.directionAt(to) * reach, end });
    }
}

/// The stretch of a chain's parallel that belongs to one stretch of the source.
struct Run {
    double from = 0.0, to = 0.0;
    bool filling = false; ///< an arc or line at a corner of the source
    std::vector<KcGeSegment2d> pieces;
};

double turnBetween(KcGeVector2d a, KcGeVector2d b)
{
    return std::abs(std::atan2(a.crossProduct(b), a.dotProduct(b)));
}

std::vector<Run> runsOf(const KcGeChain2d& chain, const KcGeSegment2d& source, double left, double tolerance)
{
    std::vector<Run> runs;
    const bool closed = source.isClosed();
    for (const KcGeSegment2d& piece : chain.pieces) {
        const KcGePoint2d footFrom = piece.startPoint() - piece.startDirection().perpVector() * left;
        const KcGePoint2d footTo = piece.endPoint() - piece.endDirection().perpVector() * left;
        double from = source.closest(footFrom).t, to = source.closest(footTo).t;
        if (closed && std::abs(from - to) > 0.5) {
            // Of a foot at the seam the nearest point may name either end.
            const auto toEnd = [](double t) { return std::min(t, 1.0 - t); };
            double& seam = toEnd(from) < toEnd(to) ? from : to;
            seam = seam < 0.5 ? 1.0 : 0.0;
        }
        const bool offSource = source.closest(footFrom).distance > 8.0 * tolerance
            || source.closest(footTo).distance > 8.0 * tolerance;
        const bool filling = offSource || footFrom.distanceTo(footTo) <= 8.0 * tolerance;
        const bool smooth = !runs.empty() && !filling && !runs.back().filling
            && turnBetween(runs.back().pieces.back().endDirection(), piece.startDirection()) < 1e-2
            && std::abs(runs.back().to - from) < 1e-2;
        if (smooth) {
            runs.back().to = to;
            runs.back().pieces.push_back(piece);
        } else {
            runs.push_back({ from, to, filling, { piece } });
        }
    }
    return runs;
}

KcGeNurbsCurve3d splineOf(const std::vector<Bezier>& fitted, const KcGeMatrix3d& frame)
{
    KcGeNurbsCurve3d curve;
    curve.degree = 3;
    double knot = 0.0;
    curve.knots.push_back(knot);
    curve.controlPoints.push_back(inSpace(frame, fitted.front()[0]));
    for (const Bezier& b : fitted) {
        curve.knots.insert(curve.knots.end(), 3, knot);
        for (const size_t i : { 1u, 2u, 3u })
            curve.controlPoints.push_back(inSpace(frame, b[i]));
        knot += std::max(b[0].distanceTo(b[3]), kPoint);
    }
    curve.knots.insert(curve.knots.end(), 4, knot);
    return curve;
}

/// Joins the ends of neighbouring cubics, which at cuts agree within the tolerance only.
void join(std::vector<Bezier>& fitted, bool closed)
{
    for (size_t i = 0; i + (closed ? 0 : 1) < fitted.size(); ++i) {
        KcGePoint2d &end = fitted[i][3], &start = fitted[(i + 1) % fitted.size()][0];
        end = start = end + (start - end) * 0.5;
    }
}

std::vector<KcGeCurve3d> splineParallels(
    const KcGeSegment2d& source, const KcGeMatrix3d& frame, double distance, const KcGeOffsetOptions& options)
{
    std::vector<KcGeCurve3d> result;
    const KcGeExtents2d box = source.extents();
    constexpr double kShare = 1e-6; // of the size: invisible on any plan
    const double tolerance = options.fitTolerance > 0.0
        ? options.fitTolerance
        : std::max(kPoint, (box.max - box.min).length() * kShare);
    // Arcs in place of the curve tell which of its parallel is far enough from it.
    const auto chains = offsetChain(
        source.simpleSegments(tolerance), source.isClosed(), distance, { options.corners, tolerance });
    const double left = -distance;
    const Parallel parallel{ source, left };
    for (const KcGeChain2d& chain : *chains) {
        std::vector<Bezier> fitted;
        for (const Run& run : runsOf(chain, source, left, tolerance)) {
            if (run.filling || !(run.from < run.to)) {
                for (const KcGeSegment2d& piece : run.pieces)
                    addSimple(piece, fitted);
                continue;
            }
            std::vector<double> params = source.monotoneParams();
            std::erase_if(params, [&](double t) { return t <= run.from || t >= run.to; });
            params.push_back(run.to);
            double from = run.from;
            for (const double to : params) {
                fit(parallel, from, to, tolerance, 0, fitted);
                from = to;
            }
        }
        if (fitted.empty())
            continue;
        join(fitted, chain.closed);
        result.push_back(KcGeCurve3d::spline(splineOf(fitted, frame)));
    }
    return result;
}

} // namespace

std::optional<std::vector<KcGeCurve3d>>
offsetCurve(const KcGeCurve3d& curve, double distance, const KcGeOffsetOptions& options)
{
    const auto frame = curve.frame();
    if (!frame || curve.pieces().empty() || !std::isfinite(distance))
        return std::nullopt;
    const std::vector<KcGeSegment2d>& pieces = curve.pieces();
    const KcGeSegment2d& piece = pieces.front();
    if (curve.isPolyline()) {
        const auto chains = offsetChain(pieces, curve.isClosed(), distance, options);
        if (!chains)
            return std::nullopt;
        std::vector<KcGeCurve3d> result;
        for (const KcGeChain2d& chain : *chains)
            result.push_back(KcGeCurve3d::chain(*frame, chain.pieces, chain.closed));
        return result;
    }
    if (std::abs(distance) <= kPoint)
        return std::vector{ curve };
    if (piece.isLine()) {
        const KcGeVector2d shift = piece.startDirection().perpVector() * -distance;
        if (curve.isBounded())
            return std::vector{ KcGeCurve3d::line(
                inSpace(*frame, piece.startPoint() + shift), inSpace(*frame, piece.endPoint() + shift)) };
        const KcGePoint3d base = inSpace(*frame, piece.startPoint() + shift);
        const KcGeVector3d direction = inSpace(*frame, piece.startDirection());
        return std::vector{ curve.hasStart() ? KcGeCurve3d::ray(base, direction)
                                             : KcGeCurve3d::infiniteLine(base, direction) };
    }
    if (const KcGeCircArc2d* arc = piece.asArc()) {
        const double radius = arc->radius() + (arc->isClockwise() ? -distance : distance);
        if (!(radius > kPoint) || !std::isfinite(radius))
            return std::vector<KcGeCurve3d>{};
        const auto moved = KcGeSegment2d::arc({ arc->center(), radius, arc->startAngle(), arc->sweep() });
        return std::vector{ KcGeCurve3d::single(*frame, moved, *curve.startParam(), *curve.endParam()) };
    }
    return splineParallels(piece, *frame, distance, options);
}
