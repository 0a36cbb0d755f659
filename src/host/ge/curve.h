// A whole curve in space: what every curve entity turns itself into, and what answers its questions.
#pragma once

#include "ge/segment.h"

/// A chain of pieces, each beginning where the one before it ends; or a line without ends. A value: copies
/// share what they hold, and what was once worked out (lengths, boxes), so that a point at a distance costs
/// the logarithm of the number of pieces after the first call.
///
/// Parameters are those of the host: a line's is the length from its start (from its base point, and negative
/// on the other side, when it has no ends); a circle's and arc's the angle in the plane of their normal, an
/// arc's end above its start; an ellipse's the eccentric anomaly; a spline's the knot; a polyline's the
/// number of the vertex plus the fraction of the way (of an arc: of its angle) to the next one.
///
/// Functions give nothing where there is no answer: a parameter or distance outside the curve (by more than
/// rounding), a curve without pieces, without ends, or not in a plane, a value that is no number.
class KcGeCurve3d {
public:
    /// A curve without pieces: of every question there is no answer.
    KcGeCurve3d() = default;
    static KcGeCurve3d line(KcGePoint3d start, KcGePoint3d end);
    static KcGeCurve3d infiniteLine(KcGePoint3d base, KcGeVector3d direction);
    static KcGeCurve3d ray(KcGePoint3d base, KcGeVector3d direction);
    /// One piece of a plane, with the parameters that its start and end are to have. `frame` leads from the
    /// plane's coordinates to the world's and must keep lengths and handedness.
    static KcGeCurve3d
    single(const KcGeMatrix3d& frame, KcGeSegment2d piece, double startParam, double endParam);
    /// One piece of a plane as an entity of its kind would have it: turned over where that makes arcs and
    /// ellipses run counter-clockwise, with the parameters of its kind.
    static KcGeCurve3d ofPiece(const KcGeMatrix3d& frame, const KcGeSegment2d& piece);
    /// A polyline in a plane, with vertices where pieces meet. A closed one includes the way back to the
    /// start.
    static KcGeCurve3d chain(const KcGeMatrix3d& frame, std::vector<KcGeSegment2d> pieces, bool closed);
    /// A polyline in space; a closed one gets the way back to the start.
    static KcGeCurve3d polyline(std::vector<KcGePoint3d> vertices, bool closed);
    static KcGeCurve3d ellipse(const KcGeEllipArc3d& arc);
    /// Without pieces when the curve is not valid.
    static KcGeCurve3d spline(KcGeNurbsCurve3d curve);

    bool isEmpty() const { return !m_body; }
    /// False for lines without ends, and rays.
    bool isBounded() const;
    bool hasStart() const;
    bool hasEnd() const { return isBounded(); }
    /// A polyline: when it was made so; any other curve: when its ends lie within the tolerance and it is no
    /// speck.
    bool isClosed() const;
    /// True for chains and polylines in space, of one piece too.
    bool isPolyline() const;
    /// True for lines too; they lie in many planes.
    bool isPlanar() const;
    /// From the coordinates of the curve's plane to the world's; of a curve that is level, the plane's are
    /// the world's with z as elevation, whenever the normal is up.
    std::optional<KcGeMatrix3d> frame() const;
    std::optional<KcGeVector3d> normal() const;

    size_t numPieces() const;
    /// The pieces in the coordinates of the curve's plane; empty when it has none. Of a line without ends:
    /// one piece of length 1 from its base point.
    const std::vector<KcGeSegment2d>& pieces() const;
    /// The pieces as seen along the Z axis, in world coordinates: tilted circles are ellipses.
    std::vector<KcGeSegment2d> plan() const;
    /// The spline, in world coordinates, when it is one.
    std::optional<KcGeNurbsCurve3d> asSpline() const;
    /// Vertices in world coordinates: the pieces' starts, and the end of an open curve.
    std::vector<KcGePoint3d> vertices() const;

    std::optional<double> startParam() const;
    std::optional<double> endParam() const;
    std::optional<KcGePoint3d> startPoint() const;
    std::optional<KcGePoint3d> endPoint() const;
    std::optional<KcGePoint3d> pointAtParam(double param) const;
    /// Derivatives after the parameter. At a vertex, those of the piece that begins there; at the end, of the
    /// last.
    std::optional<KcGeVector3d> firstDeriv(double param) const;
    std::optional<KcGeVector3d> secondDeriv(double param) const;

    std::optional<double> length() const;
    std::optional<double> distAtParam(double param) const;
    std::optional<double> paramAtDist(double distance) const;
    std::optional<KcGePoint3d> pointAtDist(double distance) const;

    struct Nearest {
        double param = 0.0;
        KcGePoint3d point;
        double distance = 0.0;
    };
    std::optional<Nearest> closest(KcGePoint3d point) const;
    /// Open curves go on beyond their ends: lines straight, arcs and ellipses all round, polylines as their
    /// first and last pieces do; splines do not. The parameter may lie outside the range.
    std::optional<Nearest> closestExtended(KcGePoint3d point) const;
    /// Of a point that lies on the curve within the tolerance; the start's where start and end are one.
    std::optional<double>
    paramAtPoint(KcGePoint3d point, double tolerance = KcGeContext::gTol.equalPoint) const;
    std::optional<double>
    distAtPoint(KcGePoint3d point, double tolerance = KcGeContext::gTol.equalPoint) const;

    /// Signed about the plane's normal, an open curve closed by a line; nothing for curves of no plane.
    std::optional<double> area() const;
    /// Empty for lines without ends.
    KcGeExtents3d extents() const;

    /// The same points from end to start. Parameters: arcs and ellipses keep their sense of increasing by
    /// turning their plane over; lines and polylines start anew at 0; splines keep their range.
    KcGeCurve3d reversed() const;
    /// The pieces between parameters, in the curve's order; the parameters need not be. A closed curve falls
    /// into as many pieces as there are parameters, the last going on over the start; an open one into one
    /// more. Parameters that coincide within the point tolerance count once, those at an open curve's ends
    /// not at all.
    std::vector<KcGeCurve3d> split(std::vector<double> params) const;
    /// Each piece as a curve of its own, arcs and ellipses counter-clockwise about this curve's normal,
    /// whichever way they ran.
    std::vector<KcGeCurve3d> exploded() const;
    /// Points from start to end whose chords stay within `sagitta` of the curve; empty for lines without
    /// ends.
    std::vector<KcGePoint3d> chords(double sagitta) const;

private:
    enum class Extent { Bounded, Ray, Line };
    struct Body;
    KcGeCurve3d between(double from, double to) const;
    /// Of a closed curve: from one parameter over the start to a smaller one, or the same.
    KcGeCurve3d overTheStart(double from, double to) const;
    std::shared_ptr<const Body> m_body;
};
