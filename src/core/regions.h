// Closed regions of a drawing's curves as the commands ask for them: thin fronts of the host's region search.
#pragma once

#include "db/curve.h"
#include "db/polyline.h"
#include "ge/region_search.h"

#include <map>

/// The core's geometric tolerance, in drawing units: what `_IntersectCurves` and the region search take for one point.
/// The host's own tolerance stays as it is.
extern double _distSnap;
double GetSnap();
/// Values that are no positive number are refused.
void SetSnap(double value);
/// Sets the snap for the length of a scope.
class SnapScope {
public:
    explicit SnapScope(double value)
        : m_before(GetSnap())
    {
        SetSnap(value);
    }
    ~SnapScope() { SetSnap(m_before); }
    SnapScope(const SnapScope&) = delete;
    SnapScope& operator=(const SnapScope&) = delete;

private:
    double m_before;
};

/// A piece of a curve seen along the Z axis, world coordinates.
using XCurveSegment = KcGeSegment2d;
using XCurveSegments = std::vector<XCurveSegment>;
/// Curves that belong to no drawing.
using XEntSet = std::vector<std::unique_ptr<KcDbCurve>>;
/// Index of a region or curve → indices of those in it, ascending; those with nothing in them have no entry.
using XInclusionMap = std::map<int, std::vector<int>>;

/// Copies of the selected curves, anything else left out. With `close`, a curve whose own ends lie no further apart than
/// the tolerance, and than a quarter of its length, comes as a closed polyline; no two curves are ever joined. False
/// when there is no curve.
bool GetCurves(const std::vector<KcDbObjectId>& selection, XEntSet& entities, double tolerance, bool close);
/// The outlines of all regions that the curves of model space enclose, gaps up to the tolerance bridged; curves on
/// layers that are off or frozen left out. False when there is none.
bool GetClosedCurves(XEntSet& entities, double tolerance);
void ReleaseEntSet(XEntSet& entities);

/// The pieces of a curve, appended. False when it has no ends or no shape.
bool ExplodeCurve(const KcDbCurve& curve, XCurveSegments& segments);
/// Drops copies, and what lies on another segment from end to end.
void RemoveDupCurves(XCurveSegments& segments);
/// Cuts segments where they meet. `start` 0: all; n: the last n against all.
void _IntersectCurves(XCurveSegments& segments, double tolerance, size_t start);
/// Lets free ends go on by up to the distance until they meet: each other rather than a curve further off. Appends what
/// that takes and returns how many segments it appended.
size_t ExtendCurveSegIsolatedPoints(XCurveSegments& segments, double distance);

/// Regions enclosed by segments. The steps in the order of the declarations.
class XSearchRegionFromCurve {
public:
    void InitStart(XCurveSegments segments);
    /// Told of the part done, 0 to 1; false cancels.
    void SetProgress(std::function<bool(double)> progress) { m_progress = std::move(progress); }
    /// Finds the regions. False when there is none, or the search was cancelled.
    bool SearchRegions();
    bool WasCancelled() const { return m_search && m_search->wasCancelled(); }
    /// How many regions were found twice and dropped: the search gives each face once, so this is a check.
    size_t RemoveDupRegions();
    /// Finds for each region all that lie in it, at any depth.
    void _SearchInclusionRelation();
    /// Keeps of these the ones that lie directly in it.
    void UpdateInclusionRelation();
    /// The outlines as closed lightweight polylines, counter-clockwise, arcs as bulges, splines and ellipses as arcs; the
    /// position in `entities` is the region's index in the map. False when there is none.
    bool GetCurves(XEntSet& entities, XInclusionMap& map) const;
    /// Regions that are wholly made up of the regions in them.
    void GetFullRegionIndexArray(std::vector<int>& indices) const;
    /// Ends of curves at which outlines stay open, with the distance to the nearest other curve.
    std::vector<KcGeRegionSearch::FreeEnd> GetFreeEnds() const;

    /// For each of these closed curves those that lie directly in it. Curves that are not closed, and curves that cross
    /// others, lie in nothing that they are not wholly inside of.
    static void SearchInclusionRelation(const std::vector<KcDbObjectId>& ids, XInclusionMap& map);

private:
    XCurveSegments m_segments;
    std::function<bool(double)> m_progress;
    std::optional<KcGeRegionSearch> m_search;
    std::vector<uint32_t> m_kept; ///< numbers of regions
    XInclusionMap m_inside;
};
