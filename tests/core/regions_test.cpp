// Regions as the zone commands use them: from entities to outlines, gaps, islands.

#include "core/regions.h"

#include "core/draw.h"
#include "core/support.h"
#include "db/curves.h"

namespace {

using core_test::Drawing;

class Regions : public testing::Test {
protected:
    KcDbObjectId line(double x1, double y1, double x2, double y2)
    {
        return AppendToModelSpace(
            std::make_unique<KcDbLine>(KcGePoint3d{ x1, y1, 0 }, KcGePoint3d{ x2, y2, 0 }), true, &drawing.database);
    }
    KcDbObjectId circle(double x, double y, double r)
    {
        return AppendToModelSpace(std::make_unique<KcDbCircle>(KcGePoint3d{ x, y, 0 }, r), true, &drawing.database);
    }
    /// The steps of a zone extraction.
    bool extract(const std::vector<KcDbObjectId>& ids, double distance)
    {
        GetCurves(ids, entities, 120.0, true);
        XCurveSegments segments;
        for (const auto& entity : entities)
            ExplodeCurve(*entity, segments);
        ReleaseEntSet(entities);
        RemoveDupCurves(segments);
        _IntersectCurves(segments, _distSnap, 0);
        if (const size_t n = ExtendCurveSegIsolatedPoints(segments, distance); n != 0)
            _IntersectCurves(segments, _distSnap, n);
        search.InitStart(segments);
        search.SearchRegions();
        EXPECT_EQ(search.RemoveDupRegions(), 0u);
        search._SearchInclusionRelation();
        search.UpdateInclusionRelation();
        search.GetFullRegionIndexArray(full);
        return search.GetCurves(entities, inside);
    }
    double area(size_t i) const { return static_cast<KcDbPolyline&>(*entities[i]).area(); }

    Drawing drawing;
    XSearchRegionFromCurve search;
    XEntSet entities;
    XInclusionMap inside;
    std::vector<int> full;
};

} // namespace

// A square of lines that miss each other by 3 closes with a distance of 3, not with less; circles are its islands, one
// in the other.
TEST_F(Regions, BridgesUpToTheDistanceAndKnowsIslands)
{
    const std::vector<KcDbObjectId> ids{ line(0, 0, 97, 0), line(100, 0, 100, 100), line(100, 100, 0, 100),
        line(0, 100, 0, 0), line(0, 100, 0, 0), circle(50, 50, 20), circle(50, 50, 10) };
    ASSERT_TRUE(extract(ids, 3.0));
    ASSERT_EQ(entities.size(), 3u);
    std::vector<size_t> order{ 0, 1, 2 };
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return area(a) > area(b); });
    EXPECT_NEAR(area(order[0]), 1e4, 1e-6);
    EXPECT_NEAR(area(order[1]), kPi * 400, 1e-6);
    EXPECT_NEAR(area(order[2]), kPi * 100, 1e-6);
    EXPECT_EQ(inside[int(order[0])], std::vector<int>{ int(order[1]) });
    EXPECT_EQ(inside[int(order[1])], std::vector<int>{ int(order[2]) });
    EXPECT_TRUE(full.empty());

    ASSERT_TRUE(extract(ids, 2.9));
    EXPECT_EQ(entities.size(), 2u);
    const auto ends = search.GetFreeEnds(); // on both sides of the gap
    ASSERT_EQ(ends.size(), 2u);
    for (const auto& end : ends)
        EXPECT_NEAR(end.distance, 3.0, 1e-9);
}

// An open bow closes itself; a line and an angle whose ends are within the same tolerance do not become areas.
TEST_F(Regions, ClosesOneCurveButNoLine)
{
    auto bow = std::make_unique<KcDbArc>();
    bow->setCenter({ 0, 0, 0 });
    bow->setRadius(100);
    bow->setStartAngle(0.5);
    bow->setEndAngle(kTwoPi);
    const KcDbObjectId arc = AppendToModelSpace(std::move(bow), true, &drawing.database);
    ASSERT_TRUE(GetCurves({ arc, line(0, 0, 50, 0) }, entities, 120.0, true));
    ASSERT_EQ(entities.size(), 2u);
    EXPECT_TRUE(entities[0]->isClosed());
    EXPECT_FALSE(entities[1]->isClosed());
    ASSERT_TRUE(GetCurves({ arc }, entities, 1.0, true));
    EXPECT_FALSE(entities[0]->isClosed());
    EXPECT_FALSE(GetCurves({}, entities, 1.0, true));
}

TEST_F(Regions, InclusionOfClosedCurvesAndWholeDrawing)
{
    const std::vector<KcDbObjectId> ids{ circle(0, 0, 10), circle(0, 0, 100), line(0, 0, 1, 1), circle(40, 0, 5),
        circle(0, 0, 5), circle(95, 0, 20) };
    XInclusionMap map;
    XSearchRegionFromCurve::SearchInclusionRelation(ids, map);
    EXPECT_EQ(map, (XInclusionMap{ { 0, { 4 } }, { 1, { 0, 3 } } }));
    // Two overlapping circles make three regions; the others are whole.
    ASSERT_TRUE(GetClosedCurves(entities, 0.0));
    EXPECT_EQ(entities.size(), 6u);
}

TEST_F(Regions, SnapIsRestored)
{
    const double before = GetSnap();
    {
        const SnapScope scope(1e-3);
        EXPECT_EQ(_distSnap, 1e-3);
        SetSnap(-1.0);
        EXPECT_EQ(GetSnap(), 1e-3);
    }
    EXPECT_EQ(GetSnap(), before);
}
