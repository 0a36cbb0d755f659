// From entities to segments, and from regions to polylines.

#include "core/regions.h"

#include "core/curves.h"
#include "core/prompts.h"
#include "ge/polygon.h"
#include "ge/region_tree.h"

#include <algorithm>
#include <numeric>

double _distSnap = KcGeContext::gTol.equalPoint;

namespace {

/// A curve is closed by a line no longer than this part of itself: a bow may, a line or an angle may not.
constexpr double kLongestGap = 0.25;

KcGeRegionTolerances tolerancesFor(double snap)
{
    KcGeRegionTolerances tolerances;
    if (snap > 0.0 && std::isfinite(snap))
        tolerances.onCurve = snap;
    return tolerances;
}

/// The outline of a region: lines and arcs, with arcs in the place of splines and ellipses.
std::unique_ptr<KcDbPolyline> polylineOf(const std::vector<KcGeSegment2d>& outline)
{
    std::vector<KcGeSegment2d> simple;
    for (const KcGeSegment2d& segment : outline)
        for (const KcGeSegment2d& part : segment.simpleSegments(kArcsForCurve))
            simple.push_back(part);
    auto polyline = std::make_unique<KcDbPolyline>();
    for (const KcGeBulgeVertex2d& vertex : verticesOfSegments(simple, true))
        polyline->addVertex(vertex.point, vertex.bulge);
    polyline->setClosed(true);
    return polyline;
}

KcEdFilter curveKinds()
{
    return { { 0, QStringLiteral("LINE,ARC,CIRCLE,ELLIPSE,SPLINE,LWPOLYLINE,POLYLINE") } };
}

} // namespace

double GetSnap()
{
    return _distSnap;
}

void SetSnap(double value)
{
    if (value > 0.0 && std::isfinite(value))
        _distSnap = value;
}

bool GetCurves(const std::vector<KcDbObjectId>& selection, XEntSet& entities, double tolerance, bool close)
{
    entities.clear();
    for (const KcDbObjectId id : selection) {
        const KcDbRead<KcDbCurve> curve(id);
        if (!curve)
            continue;
        const KcGeCurve3d geometry = curve->curve();
        const auto start = geometry.startPoint(), end = geometry.endPoint();
        const auto length = geometry.length();
        if (!start || !end || !length)
            continue;
        const double gap = start->distanceTo(*end);
        const bool closes
            = close && !curve->isClosed() && gap <= tolerance && gap <= kLongestGap * *length;
        // An old-style polyline's vertices live in its drawing; its copy is a lightweight one.
        if (closes || curve->isKindOf(KcDb2dPolyline::desc())) {
            if (auto polyline = Curve2Polyline(*curve, closes, true))
                entities.push_back(std::move(polyline));
            continue;
        }
        entities.emplace_back(static_cast<KcDbCurve*>(curve->copy().release()));
    }
    return !entities.empty();
}

bool GetClosedCurves(XEntSet& entities, double tolerance)
{
    entities.clear();
    std::vector<KcDbObjectId> ids;
    if (!GetEntities(ids, curveKinds()))
        return false;
    XCurveSegments segments;
    for (const KcDbObjectId id : ids)
        if (const KcDbRead<KcDbCurve> curve(id); curve)
            ExplodeCurve(*curve, segments);
    KcGeRegionOptions options;
    options.tolerances = tolerancesFor(GetSnap());
    options.bridge = std::max(tolerance, 0.0);
    const KcGeRegionSearch search(segments, options);
    for (size_t i = 0; i < search.size(); ++i)
        entities.push_back(polylineOf(search.outline(i)));
    return !entities.empty();
}

void ReleaseEntSet(XEntSet& entities)
{
    entities.clear();
}

bool ExplodeCurve(const KcDbCurve& curve, XCurveSegments& segments)
{
    const KcGeCurve3d geometry = curve.curve();
    if (!geometry.isBounded())
        return false;
    const std::vector<KcGeSegment2d> pieces = geometry.plan();
    segments.insert(segments.end(), pieces.begin(), pieces.end());
    return !pieces.empty();
}

void RemoveDupCurves(XCurveSegments& segments)
{
    removeCopies(segments, tolerancesFor(GetSnap()));
}

void _IntersectCurves(XCurveSegments& segments, double tolerance, size_t start)
{
    const size_t first = start == 0 || start > segments.size() ? 0 : segments.size() - start;
    splitAtMeetings(segments, first, tolerancesFor(tolerance));
}

size_t ExtendCurveSegIsolatedPoints(XCurveSegments& segments, double distance)
{
    return bridgeFreeEnds(segments, distance, tolerancesFor(GetSnap()));
}

void XSearchRegionFromCurve::InitStart(XCurveSegments segments)
{
    m_segments = std::move(segments);
    m_search.reset();
    m_kept.clear();
    m_inside.clear();
}

bool XSearchRegionFromCurve::SearchRegions()
{
    KcGeRegionOptions options;
    options.tolerances = tolerancesFor(GetSnap());
    options.reportFreeEnds = true;
    options.progress = m_progress;
    m_search.emplace(m_segments, options);
    m_kept.resize(m_search->size());
    std::iota(m_kept.begin(), m_kept.end(), 0u);
    return !m_kept.empty();
}

size_t XSearchRegionFromCurve::RemoveDupRegions()
{
    if (!m_search)
        return 0;
    const size_t before = m_kept.size();
    std::map<std::pair<double, double>, uint32_t> seen;
    std::erase_if(m_kept, [&](uint32_t region) {
        return !seen.emplace(std::pair(m_search->area(region), m_search->length(region)), region).second
            && m_search->outline(region).front().startPoint()
            == m_search->outline(seen.at({ m_search->area(region), m_search->length(region) })).front().startPoint();
    });
    return before - m_kept.size();
}

void XSearchRegionFromCurve::_SearchInclusionRelation()
{
    m_inside.clear();
    if (!m_search)
        return;
    std::vector<int> indexOf(m_search->size(), -1);
    for (size_t i = 0; i < m_kept.size(); ++i)
        indexOf[m_kept[i]] = int(i);
    for (size_t i = 0; i < m_kept.size(); ++i)
        for (uint32_t around = m_search->parent(m_kept[i]); around != KcGeRegionSearch::kNone;
             around = m_search->parent(around))
            if (indexOf[around] >= 0)
                m_inside[indexOf[around]].push_back(int(i));
}

void XSearchRegionFromCurve::UpdateInclusionRelation()
{
    const XInclusionMap all = m_inside;
    for (auto& [region, inside] : m_inside)
        for (const int between : all.at(region))
            if (const auto deeper = all.find(between); deeper != all.end())
                std::erase_if(inside, [&](int i) {
                    return std::binary_search(deeper->second.begin(), deeper->second.end(), i);
                });
}

bool XSearchRegionFromCurve::GetCurves(XEntSet& entities, XInclusionMap& map) const
{
    entities.clear();
    for (const uint32_t region : m_kept)
        entities.push_back(polylineOf(m_search->outline(region)));
    map = m_inside;
    return !entities.empty();
}

void XSearchRegionFromCurve::GetFullRegionIndexArray(std::vector<int>& indices) const
{
    indices.clear();
    if (!m_search)
        return;
    for (const uint32_t full : m_search->fullRegions())
        if (const auto it = std::lower_bound(m_kept.begin(), m_kept.end(), full); it != m_kept.end() && *it == full)
            indices.push_back(int(it - m_kept.begin()));
}

std::vector<KcGeRegionSearch::FreeEnd> XSearchRegionFromCurve::GetFreeEnds() const
{
    return m_search ? m_search->freeEnds() : std::vector<KcGeRegionSearch::FreeEnd>();
}

void XSearchRegionFromCurve::SearchInclusionRelation(const std::vector<KcDbObjectId>& ids, XInclusionMap& map)
{
    struct Outline {
        int index = 0;
        std::vector<KcGeSegment2d> pieces;
        KcGeExtents2d box;
        double area = 0.0;
    };
    std::vector<Outline> outlines;
    for (size_t i = 0; i < ids.size(); ++i) {
        const KcDbRead<KcDbCurve> curve(ids[i]);
        if (!curve || !curve->isClosed())
            continue;
        Outline outline{ int(i), curve->curve().plan(), {}, 0.0 };
        for (const KcGeSegment2d& piece : outline.pieces)
            outline.box.addExtents(piece.extents());
        outline.area = std::abs(outlineArea(outline.pieces));
        if (!outline.pieces.empty())
            outlines.push_back(std::move(outline));
    }
    // The smallest outline that holds all of another one is directly around it.
    std::stable_sort(outlines.begin(), outlines.end(), [](const Outline& a, const Outline& b) { return a.area < b.area; });
    const auto holds = [](const Outline& outer, const Outline& inner) {
        bool inside = false;
        for (const KcGeSegment2d& piece : inner.pieces)
            for (const double t : { 0.0, 0.5 }) {
                const KcGePointRelation where = relationToOutline(outer.pieces, piece.pointAt(t));
                if (where == KcGePointRelation::Outside || where == KcGePointRelation::Unknown)
                    return false;
                inside = inside || where == KcGePointRelation::Inside;
            }
        return inside; // a copy of the outline is not in it
    };
    const kcge::ScatteredBoxes tree(outlines.size(), [&](uint32_t i) { return outlines[i].box; });
    std::vector<uint32_t> larger;
    map.clear();
    for (uint32_t i = 0; i < outlines.size(); ++i) {
        larger.clear();
        tree.overlapping(outlines[i].box, [&](uint32_t other) {
            if (other > i && outlines[other].box.contains(outlines[i].box))
                larger.push_back(other);
        });
        std::sort(larger.begin(), larger.end());
        const auto around = std::find_if(
            larger.begin(), larger.end(), [&](uint32_t k) { return holds(outlines[k], outlines[i]); });
        if (around != larger.end())
            map[outlines[*around].index].push_back(outlines[i].index);
    }
    for (auto& [outer, inside] : map)
        std::sort(inside.begin(), inside.end());
}
