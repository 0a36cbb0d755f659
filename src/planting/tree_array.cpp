// Rows of trees between the arcs of a cloud.

#include "planting/tree_array.h"

#include "core/polygon.h"
#include "ge/intersect.h"

namespace {

/// The polygon of the arcs' centres, asked for crossings, distances and insides.
class Inner {
public:
    explicit Inner(const XPoly2D& polygon)
        : m_polygon(polygon)
        , m_sides(polygon.GetSegments())
        , m_curve(KcGeCurve3d::chain(KcGeMatrix3d(), m_sides, true))
    {
        for (const KcGeBulgeVertex2d& node : polygon.GetNodes())
            m_box.addPoint(node.point);
    }
    const KcGeExtents2d& box() const { return m_box; }

    /// The outermost points that a line has in common with the polygon, ascending along it; nothing for fewer
    /// than two points.
    std::optional<std::pair<KcGePoint2d, KcGePoint2d>> ends(const KcGeSegment2d& line) const
    {
        KcGeIntersectOptions options;
        options.extendFirst = true;
        const std::array first{ line };
        const KcGeChainIntersections2d common = intersectChains(first, m_sides, options);
        std::vector<std::pair<double, KcGePoint2d>> points;
        for (const KcGeChainCrossing2d& crossing : common.points)
            points.emplace_back(crossing.first, crossing.point);
        for (const KcGeChainOverlap2d& overlap : common.overlaps) {
            points.emplace_back(overlap.firstFrom, overlap.start);
            points.emplace_back(overlap.firstTo, overlap.end);
        }
        if (points.size() < 2)
            return std::nullopt;
        const auto [least, most] = std::minmax_element(
            points.begin(), points.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        return std::pair{ least->second, most->second };
    }
    bool holds(KcGePoint2d point, double distance) const
    {
        if (m_polygon.PtRelation(point) != XPointRelation::Inside)
            return false;
        const auto nearest = m_curve.closest({ point.x, point.y, 0.0 });
        return nearest && nearest->distance >= distance;
    }

private:
    XPoly2D m_polygon;
    std::vector<KcGeSegment2d> m_sides;
    KcGeCurve3d m_curve;
    KcGeExtents2d m_box;
};

void fillRow(
    const Inner& inner, KcGePoint2d from, KcGePoint2d to, double spacing, std::vector<KcGePoint2d>& trees)
{
    constexpr double kClearOfOutline = 1.0 / 5.0; // of the spacing
    const double length = from.distanceTo(to);
    const KcGeVector2d along = (to - from).normal();
    for (int i = 1; i <= int(length / spacing); ++i)
        if (const KcGePoint2d tree = from + along * (i * spacing);
            inner.holds(tree, spacing * kClearOfOutline))
            trees.push_back(tree);
}

} // namespace

std::optional<TreeArray> treeArrayIn(const CloudOutline& outline)
{
    const std::vector<KcGeCircArc2d> arcs = outline.arcs(false);
    if (arcs.empty())
        return std::nullopt;
    TreeArray array;
    XPoly2D polygon;
    for (const KcGeCircArc2d& arc : arcs) {
        array.boundary.push_back(arc.center());
        polygon.AppendNode(arc.center());
    }
    array.radius = arcs[std::min<size_t>(1, arcs.size() - 1)].radius() / 10.0;
    if (arcs.size() < 3)
        return array;

    const KcGePoint2d first = arcs[0].center();
    const KcGeVector2d v = first - arcs[1].center();
    array.spacing = v.length();
    polygon.Compress();
    const Inner inner(polygon);
    const KcGeVector2d size = (inner.box().max - inner.box().min) / array.spacing;
    if (!(array.spacing > KcGeContext::gTol.equalPoint)
        || !((1.0 + size.x) * (1.0 + size.y) <= kMostArrayTrees))
        return std::nullopt;

    // No side of the first row has room for more.
    const int rows = 2 + int((size.x + size.y) / std::sin(kPi / 3.0));
    for (const double angle : { kPi / 3.0, -kPi / 3.0 }) {
        const KcGeVector2d step = v.rotateBy(angle);
        for (int row = 0; row < rows; ++row) {
            const KcGePoint2d start = first + step * row;
            const auto ends = inner.ends(KcGeSegment2d::line(start, start + v));
            if (!ends)
                break;
            if (row > 0 || angle > 0.0)
                fillRow(inner, ends->first, ends->second, array.spacing, array.inside);
        }
    }
    return array;
}
