// Curves as lightweight polylines, and cut at points, as commands ask for it.

#include "core/curves.h"
#include "core/entity.h"
#include "db/text.h"
#include "support.h"

using namespace core_test;

namespace {

/// The largest distance of points along one curve from the other.
double largestGap(const KcDbCurve& from, const KcDbCurve& to)
{
    const KcGeCurve3d a = from.curve(), b = to.curve();
    double gap = 0.0;
    for (int i = 0; i <= 997; ++i)
        gap = std::max(gap, b.closest(*a.pointAtDist(*a.length() * i / 997))->distance);
    return gap;
}

std::unique_ptr<KcDbSpline> spline()
{
    auto entity = std::make_unique<KcDbSpline>();
    entity->data().fitPoints
        = { { 0, 0, 0 }, { 500, 400, 0 }, { 900, -200, 0 }, { 400, -600, 0 }, { 300, 500, 0 } };
    return entity;
}

std::unique_ptr<KcDbEllipse> ellipse()
{
    auto entity = std::make_unique<KcDbEllipse>();
    entity->data().center = { 5e8, -5e8, 0 };
    entity->data().majorAxis = { 4000, 2000, 0 };
    entity->data().radiusRatio = 0.2;
    return entity;
}

} // namespace

TEST(Curve2Polyline, StaysOnTheCurve)
{
    std::vector<std::unique_ptr<KcDbCurve>> curves;
    curves.push_back(spline());
    curves.push_back(ellipse());
    curves.push_back(std::make_unique<KcDbCircle>(KcGePoint3d{ 10, 20, 0 }, 300.0));
    curves.push_back(std::make_unique<KcDbLine>(KcGePoint3d{ 1, 2, 0 }, KcGePoint3d{ 300, 400, 0 }));
    for (const auto& curve : curves) {
        SCOPED_TRACE(curve->isA()->name());
        curve->setColorIndex(5);
        for (const bool keepArcs : { true, false }) {
            const auto polyline = Curve2Polyline(*curve, false, keepArcs);
            ASSERT_TRUE(polyline);
            const double tolerance = 1.1 * (keepArcs ? kArcsForCurve : kChordsForCurve);
            EXPECT_LT(largestGap(*curve, *polyline), tolerance);
            EXPECT_LT(largestGap(*polyline, *curve), tolerance);
            EXPECT_EQ(polyline->isClosed(), curve->isClosed());
            EXPECT_EQ(polyline->colorIndex(), 5);
            // As many chords as close to the curve would be thousands.
            if (keepArcs)
                EXPECT_LT(polyline->numVerts(), 500u);
        }
    }
}

TEST(Curve2Polyline, KeepsBulgesInWorldCoordinates)
{
    KcDbPolyline below;
    below.addVertex({ 0, 0 }, 0.4);
    below.addVertex({ 10, 0 });
    below.addVertex({ 10, 5 });
    below.data().normal = { 0, 0, -1 };
    below.data().elevation = 2.0;
    const auto polyline = Curve2Polyline(below, true, true);
    ASSERT_EQ(polyline->numVerts(), 3u);
    EXPECT_EQ(polyline->data().normal, KcGeVector3d::kZAxis);
    EXPECT_EQ(polyline->data().elevation, -2.0);
    EXPECT_TRUE(polyline->isClosed());
    EXPECT_NEAR(polyline->getBulgeAt(0), -0.4, 1e-12);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(polyline->worldPointAt(i).isEqualTo(below.worldPointAt(i)));
    EXPECT_FALSE(Curve2Polyline(KcDbXline(), false, true));
    EXPECT_FALSE(Curve2Polyline(KcDbPolyline(), false, true));
}

TEST(SplitCurve, CutsWhereThePointsLieAndPassesOverTheOthers)
{
    const KcDbCircle circle({ 0, 0, 0 }, 10.0);
    const auto parts = SplitCurve(circle, { { 10, 0, 0 }, { 0, 10.005, 0 }, { 0, -50, 0 } });
    ASSERT_EQ(parts.size(), 2u);
    KcGePoint3d end;
    ASSERT_EQ(parts[0]->getEndPoint(end), Kcad::eOk);
    EXPECT_TRUE(end.isEqualTo({ 0, 10, 0 }));
    EXPECT_EQ(parts[1]->isA(), KcDbArc::desc());
    EXPECT_EQ(SplitCurve(circle, {}).size(), 1u);
    EXPECT_TRUE(SplitCurve(KcDbXline(), { { 0, 0, 0 } }).empty());
}

TEST(EntityWrapper, MeasuresCurvesOfEveryKind)
{
    Drawing drawing;
    CEntity entity;
    double length = 0.0;
    KcGePoint3d point;
    ASSERT_TRUE(entity.Initialize(drawing.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 1, 1, 0 }, 2.0))));
    EXPECT_TRUE(entity.GetLength(length));
    EXPECT_NEAR(length, 4 * kPi, 1e-12);
    EXPECT_TRUE(entity.GetClosestPoint({ 5, 1, 0 }, point));
    EXPECT_TRUE(point.isEqualTo({ 3, 1, 0 }));
    ASSERT_TRUE(entity.Initialize(drawing.add(std::make_unique<KcDbXline>())));
    EXPECT_FALSE(entity.GetLength(length));
    ASSERT_TRUE(entity.Initialize(drawing.add(std::make_unique<KcDbText>())));
    EXPECT_FALSE(entity.GetLength(length));
    EXPECT_FALSE(entity.GetClosestPoint({}, point));
}
