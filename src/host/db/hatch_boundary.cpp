// The outlines of a hatch as curves of their own.

#include "db/hatch.h"

namespace {

/// Arcs in place of what no polyline can hold leave it by this share of the outline's size at most.
constexpr double kOutlineTolerance = 1e-6;

/// The outline as vertices about the drawing's origin.
std::vector<KcDbPolyline::Vertex> verticesOf(const KcGeFillArea::Contour& contour, KcGeVector2d origin)
{
    std::vector<KcDbPolyline::Vertex> vertices;
    const auto add = [&](const KcGeSegment2d& piece) {
        const KcGePoint2d p = piece.startPoint() + origin;
        vertices.push_back({ p.x, p.y, piece.bulge() });
    };
    const double size = std::max(contour.box.max.x - contour.box.min.x, contour.box.max.y - contour.box.min.y);
    for (const KcGeSegment2d& piece : contour.pieces)
        for (const KcGeSegment2d& simple : piece.simpleSegments(size * kOutlineTolerance)) {
            const KcGeCircArc2d* arc = simple.asArc();
            if (arc && std::abs(arc->sweep()) > kPi) {
                // Written as two: bulges of nearly full circles say little.
                add(simple.between(0.0, 0.5));
                add(simple.between(0.5, 1.0));
            } else if (arc || !simple.startPoint().isEqualTo(simple.endPoint())) {
                // Bridges over gaps that no plan shows are left out, or vertices would stand twice.
                add(simple);
            }
        }
    return vertices;
}

} // namespace

std::vector<std::unique_ptr<KcDbCurve>> KcDbHatch::boundaryCurves() const
{
    std::vector<std::unique_ptr<KcDbCurve>> curves;
    const KcGeFillArea area = fillArea();
    const KcGeVector2d origin = area.origin().asVector();
    for (const KcGeFillArea::Contour& contour : area.contours()) {
        std::unique_ptr<KcDbCurve> curve;
        const KcGeCircArc2d* arc = contour.pieces.front().asArc();
        // A full turn, and perhaps the speck that rounding left between its ends.
        if (arc && arc->isFullCircle() && contour.pieces.size() <= 2) {
            auto circle = std::make_unique<KcDbCircle>();
            const KcGePoint2d center = arc->center() + origin;
            circle->data().center = { center.x, center.y, m_data.elevation };
            circle->data().radius = arc->radius();
            circle->data().normal = m_data.normal;
            curve = std::move(circle);
        } else {
            auto polyline = std::make_unique<KcDbPolyline>();
            polyline->data().vertices = verticesOf(contour, origin);
            polyline->data().elevation = m_data.elevation;
            polyline->data().normal = m_data.normal;
            polyline->setClosed(true);
            curve = std::move(polyline);
        }
        curves.push_back(std::move(curve));
    }
    return curves;
}
