// Curves converted and cut for the commands.

#include "core/curves.h"

std::unique_ptr<KcDbPolyline> Curve2Polyline(const KcDbCurve& curve, bool close, bool keepArcs)
{
    const KcGeCurve3d shape = curve.curve();
    if (!shape.isBounded())
        return nullptr;
    std::vector<KcGeSegment2d> outline;
    for (const KcGeSegment2d& piece : shape.plan()) {
        if (keepArcs) {
            for (const KcGeSegment2d& part : piece.simpleSegments(kArcsForCurve)) {
                // A bulge cannot say a full circle.
                const bool full = part.isArc() && part.asArc()->isFullCircle();
                for (const KcGeSegment2d& half : full ? part.split({ 0.5 }) : std::vector{ part })
                    outline.push_back(half);
            }
        } else {
            const std::vector<KcGePoint2d> points = piece.chords(kChordsForCurve);
            for (size_t i = 1; i < points.size(); ++i)
                outline.push_back(KcGeSegment2d::line(points[i - 1], points[i]));
        }
    }
    auto polyline = std::make_unique<KcDbPolyline>();
    polyline->setPropertiesFrom(curve);
    polyline->data().elevation = shape.startPoint()->z;
    for (const KcGeSegment2d& piece : outline)
        polyline->addVertex(piece.startPoint(), piece.bulge());
    polyline->setClosed(close || shape.isClosed());
    // The way back to the start, where the curve does not lead there itself.
    if (!shape.isClosed() && !outline.empty())
        polyline->addVertex(outline.back().endPoint());
    return polyline;
}

std::vector<std::unique_ptr<KcDbCurve>>
SplitCurve(const KcDbCurve& curve, const std::vector<KcGePoint3d>& points)
{
    const KcGeCurve3d shape = curve.curve();
    std::vector<double> params;
    for (const KcGePoint3d point : points)
        if (const auto param = shape.paramAtPoint(point, KcGeContext::kJoinedEnds))
            params.push_back(*param);
    std::vector<std::unique_ptr<KcDbCurve>> parts;
    curve.getSplitCurves(params, parts);
    return parts;
}
