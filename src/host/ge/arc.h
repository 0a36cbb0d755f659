// Circular arcs of the plane, and the bulges by which polylines describe them.
#pragma once

#include "ge/extents.h"
#include "ge/point.h"

#include <optional>

/// An arc of a circle, walked from its start through a signed sweep: counter-clockwise when positive. Angles
/// in radians, lengths in drawing units.
class KcGeCircArc2d {
public:
    /// Bulges below this, and above its reciprocal, are no arcs: the circle's centre could not be told from
    /// noise.
    static constexpr double kFlatBulge = KcGeContext::gTol.equalVector;

    /// The unit circle about the origin.
    KcGeCircArc2d() = default;
    /// A sweep of more than a full turn is one full turn.
    KcGeCircArc2d(KcGePoint2d center, double radius, double startAngle, double sweep);

    /// Counter-clockwise from one angle to the other; equal angles, or angles whole turns apart, give the
    /// full circle.
    static KcGeCircArc2d betweenAngles(KcGePoint2d center, double radius, double startAngle, double endAngle);
    /// The arc between two vertices of a polyline. Nothing when it is a straight segment: the bulge is flat,
    /// too large to describe an arc, or no number, or the two points are one.
    static std::optional<KcGeCircArc2d> fromBulge(KcGePoint2d start, KcGePoint2d end, double bulge);
    /// The arc over a chord with the given signed included angle, within a full turn: positive bulges to the
    /// right of the way from start to end, as a counter-clockwise arc does. Nothing when that is a straight
    /// line.
    static std::optional<KcGeCircArc2d> fromChord(KcGePoint2d start, KcGePoint2d end, double includedAngle);
    /// The arc over a chord with the given radius and an included angle up to a half turn. Nothing when the
    /// points are one, or further apart than the diameter.
    static std::optional<KcGeCircArc2d>
    fromRadius(KcGePoint2d start, KcGePoint2d end, double radius, bool counterClockwise);
    /// The arc through three points in their order. Nothing when they lie on one line or two of them are one.
    static std::optional<KcGeCircArc2d>
    throughPoints(KcGePoint2d start, KcGePoint2d between, KcGePoint2d end);

    KcGePoint2d center() const { return m_center; }
    double radius() const { return m_radius; }
    double startAngle() const { return m_startAngle; }
    /// Signed, within a full turn.
    double sweep() const { return m_sweep; }
    /// Start angle plus sweep; not brought into a range.
    double endAngle() const { return m_startAngle + m_sweep; }
    bool isClockwise() const { return m_sweep < 0.0; }
    bool isFullCircle() const;
    double length() const { return m_radius * std::abs(m_sweep); }

    KcGePoint2d pointAtAngle(double angle) const;
    /// 0 is the start, 1 the end.
    KcGePoint2d pointAt(double fraction) const { return pointAtAngle(m_startAngle + fraction * m_sweep); }
    KcGePoint2d startPoint() const { return pointAtAngle(m_startAngle); }
    KcGePoint2d endPoint() const { return pointAtAngle(endAngle()); }
    /// True when the direction lies within the arc, ends included.
    bool containsAngle(double angle) const;
    KcGeCircArc2d reversed() const { return { m_center, m_radius, endAngle(), -m_sweep }; }

    /// Tangent of a quarter of the signed included angle; a full circle has none that ends could carry:
    /// ±infinity.
    double bulge() const;
    KcGeExtents2d extents() const;
    /// Signed area between the arc and its chord; positive for counter-clockwise arcs.
    double segmentArea() const;

private:
    KcGePoint2d m_center;
    double m_radius = 1.0;
    double m_startAngle = 0.0;
    double m_sweep = kTwoPi;
};

/// Signed area between a bulge segment and its chord, positive for positive bulges; 0 for a straight segment.
double bulgeSegmentArea(KcGePoint2d start, KcGePoint2d end, double bulge);
/// Length of a bulge segment.
double bulgeSegmentLength(KcGePoint2d start, KcGePoint2d end, double bulge);
/// The box of a bulge segment, its ends included.
KcGeExtents2d bulgeSegmentExtents(KcGePoint2d start, KcGePoint2d end, double bulge);
