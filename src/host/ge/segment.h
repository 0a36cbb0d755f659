// One piece of a curve in a plane, of any kind: what lengths, areas, crossings, offsets and regions are
// worked out with.
#pragma once

#include "ge/arc.h"
#include "ge/carrier.h"

#include <variant>

/// A straight piece, a circular arc, or a piece of an ellipse or of a B-spline, from its start to its end. A
/// value: copies are cheap, what an ellipse or spline costs to examine is shared by all pieces of it.
///
/// The parameter runs from 0 to 1: evenly along lines and along the angle of arcs; along the anomaly of
/// ellipses and the knots of splines. Lengths in drawing units, areas in their square, angles in radians.
/// Ends that were given as points are returned exactly as given. A segment with a coordinate that is no
/// number is not finite (`isFinite`); do not ask it anything else.
class KcGeSegment2d {
public:
    enum class Kind { Line, Arc, Ellipse, Spline };

    /// A speck at the origin.
    KcGeSegment2d() = default;
    static KcGeSegment2d line(KcGePoint2d start, KcGePoint2d end);
    static KcGeSegment2d arc(const KcGeCircArc2d& arc);
    /// The arc between vertices of a polyline; a line when the bulge makes no arc
    /// (`KcGeCircArc2d::fromBulge`).
    static KcGeSegment2d bulge(KcGePoint2d start, KcGePoint2d end, double bulge);
    /// The points center + u·cos a + v·sin a for the anomaly a from `start` through a signed sweep; u and v
    /// need not be perpendicular. An arc where they are, and equally long.
    static KcGeSegment2d
    ellipse(KcGePoint2d center, KcGeVector2d u, KcGeVector2d v, double start, double sweep);
    /// The spline seen along the Z axis. Nothing when the curve is not valid.
    static std::optional<KcGeSegment2d> spline(const KcGeNurbsCurve3d& curve);
    /// A stretch of a carrier seen along the Z axis; `to` below `from` runs against it. The carrier must lie
    /// in the plane (all z 0).
    static KcGeSegment2d piece(std::shared_ptr<const KcGeCarrier3d> carrier, double from, double to);

    Kind kind() const;
    bool isLine() const { return kind() == Kind::Line; }
    bool isArc() const { return kind() == Kind::Arc; }
    /// True for lines and arcs, the kinds that a lightweight polyline can hold.
    bool isSimple() const { return m_shape.index() < 2; }
    /// Null for other kinds.
    const KcGeCircArc2d* asArc() const;
    /// Of an arc; 0 for other kinds. A full circle has none: ±infinity.
    double bulge() const;
    /// Nothing for other kinds.
    std::optional<KcGeEllipArc3d> asEllipse() const;
    /// The piece as a curve of its own, from its start to its end; nothing for other kinds.
    std::optional<KcGeNurbsCurve3d> asSpline() const;
    /// The ellipse or spline that this is a piece of; null for other kinds.
    std::shared_ptr<const KcGeCarrier3d> carrier() const;

    bool isFinite() const;
    /// True when the whole piece stays within the tolerance of its start.
    bool isDegenerate(double tolerance = KcGeContext::gTol.equalPoint) const;
    /// True when start and end lie within the tolerance: full circles and ellipses, closed splines, specks.
    bool isClosed(double tolerance = KcGeContext::gTol.equalPoint) const;

    KcGePoint2d startPoint() const { return pointAt(0.0); }
    KcGePoint2d endPoint() const { return pointAt(1.0); }
    KcGePoint2d midPoint() const { return pointAt(0.5); }
    /// Outside 0 to 1: on the extension of lines, arcs and ellipses; splines stay at their ends.
    KcGePoint2d pointAt(double t) const;
    KcGeVector2d firstDeriv(double t) const;
    KcGeVector2d secondDeriv(double t) const;
    /// Unit vector along the curve; where the derivative vanishes, the limit from inside. Zero only for
    /// specks.
    KcGeVector2d directionAt(double t) const;
    KcGeVector2d startDirection() const { return directionAt(0.0); }
    KcGeVector2d endDirection() const { return directionAt(1.0); }
    /// Direction from an end into the piece, to the point that lies `distance` along the piece from that end
    /// (at most to the other end, of a closed piece to its middle): the sampled direction that edges around a
    /// node are sorted by.
    KcGeVector2d sampledDirection(bool fromEnd, double distance) const;
    /// Signed: positive turns left. 0 where the derivative vanishes.
    double curvatureAt(double t) const;

    double length() const { return lengthBetween(0.0, 1.0); }
    /// Signed: negative when the second parameter is the smaller one.
    double lengthBetween(double from, double to) const;
    /// The parameter at a length from the start; beyond the ends the parameter is that of the end.
    double paramAtLength(double length) const;

    struct Nearest {
        double t = 0.0;
        KcGePoint2d point;
        double distance = 0.0;
    };
    /// The nearest point of the piece; of several, one of them.
    Nearest closest(KcGePoint2d point) const;
    /// The nearest point of the piece or of its extension: the whole line, circle or ellipse; splines have
    /// none. The parameter of an arc or ellipse is the one nearest to [0, 1].
    Nearest closestExtended(KcGePoint2d point) const;
    /// The parameter of a point that lies on the piece; nothing when it is off by more than the tolerance.
    std::optional<double>
    paramAtPoint(KcGePoint2d point, double tolerance = KcGeContext::gTol.equalPoint) const;

    /// Exact for lines, arcs and ellipses; splines within the tolerance.
    KcGeExtents2d extents() const;
    /// Half the integral of x·dy − y·dx along the piece, with coordinates taken from `origin`: its share in
    /// the signed area of a closed outline, counter-clockwise positive. Exact for all but rational splines
    /// (1e-12 of their size squared). Take an origin near the outline.
    double areaAbout(KcGePoint2d origin) const;

    KcGeSegment2d reversed() const;
    /// From one parameter to another; runs backwards when the second is smaller. Lines, arcs and ellipses may
    /// be left on both sides, as far as they remain within one turn.
    KcGeSegment2d between(double from, double to) const;
    /// The pieces between parameters, which need not be in order; those outside (0, 1) are passed over.
    std::vector<KcGeSegment2d> split(std::vector<double> params) const;
    /// The polynomial spans of a spline; any other kind is one.
    std::vector<KcGeSegment2d> spans() const;
    /// Parameters inside (0, 1), ascending, at which the piece turns back in x or in y: between them it rises
    /// or falls steadily in both. Splines also at their knots.
    std::vector<double> monotoneParams() const;
    /// The image under an affine transform, seen along the Z axis. Arcs become ellipses where it scales
    /// unevenly.
    KcGeSegment2d transformed(const KcGeMatrix3d& matrix) const;
    KcGeSegment2d translated(KcGeVector2d by) const;
    /// Points from start to end whose chords stay within `sagitta` of the piece.
    std::vector<KcGePoint2d> chords(double sagitta) const;
    /// Lines and arcs from start to end, smooth where the piece is, that stay within `tolerance` of it:
    /// itself for lines and arcs, pairs of arcs with common tangents for ellipses and splines.
    std::vector<KcGeSegment2d> simpleSegments(double tolerance) const;

private:
    struct Line {
        KcGePoint2d start, end;
    };
    /// The ends as given: an arc's own are off by the rounding of its radius.
    struct Arc {
        KcGeCircArc2d circle;
        KcGePoint2d start, end;
    };
    struct Piece {
        std::shared_ptr<const KcGeCarrier3d> carrier;
        double from = 0.0, to = 1.0;
        double param(double t) const { return t == 1.0 ? to : from + t * (to - from); } // exact at the ends
    };

    std::variant<Line, Arc, Piece> m_shape;
};

/// Signed area of a closed outline, counter-clockwise positive; a gap between one piece and the next is
/// closed by a line.
double outlineArea(const std::vector<KcGeSegment2d>& outline);
