// Outlines in the plan as the commands handle them: from entities or node by node, with the test whether a
// point lies inside. The mathematics is that of ge/polygon.h.
#pragma once

#include "db/polyline.h"
#include "ge/polygon.h"

#include <memory>

using XPoint = KcGePoint2d;
using XCurveSegment = KcGeSegment2d;
/// In the order of the codes 0 to 4: outside, on a vertex, on the outline, inside, not to be told.
using XPointRelation = KcGePointRelation;

/// An arc over a chord, counter-clockwise for positive included angles; angles in radians.
class XArc {
public:
    /// The included angle may reach from −2π to 2π, both excluded.
    XArc(XPoint start, XPoint end, double includedAngle)
        : m_arc(KcGeCircArc2d::fromChord(start, end, includedAngle))
    {
    }
    /// False when the two points are one, and for angles that are flat or no arc's.
    bool IsValid() const { return m_arc.has_value(); }
    // Of a valid arc only.
    XPoint GetCenter() const { return m_arc->center(); }
    double GetRadius() const { return m_arc->radius(); }
    /// Counter-clockwise from start to end angle, whichever way the arc was given, in [0, 2π).
    double GetStartAngle() const
    {
        return normalizedAngle(m_arc->isClockwise() ? m_arc->endAngle() : m_arc->startAngle());
    }
    double GetEndAngle() const
    {
        return normalizedAngle(m_arc->isClockwise() ? m_arc->startAngle() : m_arc->endAngle());
    }
    XPoint GetMidPoint() const { return m_arc->pointAt(0.5); }
    double GetLength() const { return m_arc->length(); }
    double GetBulge() const { return m_arc->bulge(); }

private:
    std::optional<KcGeCircArc2d> m_arc;
};

struct XCircle {
    XPoint center;
    double radius = 0.0;

    /// Never on a vertex; not to be told without a radius.
    XPointRelation PtRelation(XPoint point) const;
};

/// An outline of nodes and bulges, or of pieces of any kind when it comes from an ellipse or spline.
class XPoly2D {
public:
    /// Closed and without nodes.
    XPoly2D() = default;
    /// A curve seen along the Z axis, in world coordinates; closed when the curve is. Empty for entities that
    /// are no curves, have no shape, or no ends.
    explicit XPoly2D(const KcDbEntity& entity);
    /// Opens the entity; false, leaving the outline empty, when that fails or it gives no outline.
    bool Initialize(KcDbObjectId id);

    /// The bulge is that of the piece from this node to the next one.
    void AppendNode(XPoint point, double bulge = 0.0);
    /// Drops doubled and straight nodes, as `KcGePolygon2d::compress` says; of an open outline the doubled
    /// ones only. One with pieces other than lines and arcs stays as it is.
    void Compress(double tolerance = KcGeContext::gTol.equalPoint);

    bool IsEmpty() const { return m_nodes.empty() && m_pieces.empty(); }
    bool IsClosed() const { return m_closed; }
    void SetClosed(bool closed) { m_closed = closed; }
    /// Empty for outlines with pieces other than lines and arcs.
    const std::vector<KcGeBulgeVertex2d>& GetNodes() const { return m_nodes; }
    /// In order; a closed outline includes the way back to its start.
    std::vector<XCurveSegment> GetSegments() const;
    /// Not negative; an open outline is closed by a line.
    double GetArea() const;
    /// Of an open outline as if it were closed by a line.
    XPointRelation PtRelation(XPoint point, double tolerance = KcGeContext::gTol.equalPoint) const;

private:
    std::vector<KcGeBulgeVertex2d> m_nodes; ///< of an outline of lines and arcs
    std::vector<XCurveSegment> m_pieces; ///< of any other
    bool m_closed = true;
};

/// A lightweight polyline over the outline's nodes, of no drawing; null for fewer than two nodes. Pieces
/// other than lines and arcs are replaced by arcs that leave them by no more than `tolerance`.
std::unique_ptr<KcDbPolyline>
PolyConvert(const XPoly2D& polygon, double tolerance = 1e2 * KcGeContext::gTol.equalPoint);
/// Adds the outline's pieces to the segments.
void ExplodePoly2D(const XPoly2D& polygon, std::vector<XCurveSegment>& segments);

/// 0: on the curve, seen along the Z axis; 1: inside the area that it encloses, an open one closed by a line;
/// −1: outside, or not to be told.
int PtRelationToPoly(const KcDbCurve& curve, KcGePoint3d point);
/// True when a point lies inside or on the outline of a curve, seen along the Z axis.
bool CheckPointOnRegion(KcGePoint3d point, const KcDbCurve& region);
bool CheckPointOnRegion(KcGePoint3d point, KcDbObjectId region);
