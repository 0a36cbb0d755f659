// Parallels of entities, and the points in which entities meet.

#include "db/polyline.h"

#include <gtest/gtest.h>

namespace {

using Curves = KcDbCurve::Curves;

KcDbPolyline polyline(const std::vector<KcDbPolyline::Vertex>& vertices, bool closed, double elevation = 0.0)
{
    KcDbPolyline result;
    result.data().vertices = vertices;
    result.data().elevation = elevation;
    result.setClosed(closed);
    return result;
}

KcDbEllipse ellipse(double major, double ratio)
{
    KcDbEllipse result;
    result.data().majorAxis = { major, 0, 0 };
    result.data().radiusRatio = ratio;
    return result;
}

Curves parallels(const KcDbCurve& curve, double distance)
{
    Curves result;
    EXPECT_EQ(curve.getOffsetCurves(distance, result), Kcad::eOk);
    return result;
}

/// The distance of a curve's points from another curve, smallest and largest of many.
std::pair<double, double> distances(const KcDbCurve& curve, const KcDbCurve& from)
{
    std::pair<double, double> result{ 1e300, 0.0 };
    double low = 0.0, high = 0.0;
    EXPECT_EQ(curve.getStartParam(low), Kcad::eOk);
    EXPECT_EQ(curve.getEndParam(high), Kcad::eOk);
    for (int i = 0; i <= 500; ++i) {
        KcGePoint3d p, q;
        EXPECT_EQ(curve.getPointAtParam(low + (high - low) * i / 500, p), Kcad::eOk);
        EXPECT_EQ(from.getClosestPointTo(p, q), Kcad::eOk);
        result = { std::min(result.first, p.distanceTo(q)), std::max(result.second, p.distanceTo(q)) };
    }
    return result;
}

std::vector<KcGePoint3d>
meet(const KcDbEntity& a, const KcDbEntity& b, KcDbIntersect mode = KcDbIntersect::OnBothOperands)
{
    std::vector<KcGePoint3d> points;
    EXPECT_EQ(a.intersectWith(b, mode, points), Kcad::eOk);
    return points;
}

} // namespace

TEST(CurveParallels, SidesAreThoseThatCallersExpect)
{
    const auto startY = [](const Curves& curves) {
        KcGePoint3d p{ 0, 1e9, 0 };
        EXPECT_EQ(curves.size(), 1u);
        for (const auto& curve : curves)
            EXPECT_EQ(curve->getStartPoint(p), Kcad::eOk);
        return p.y;
    };
    EXPECT_NEAR(startY(parallels(KcDbLine({ 0, 0, 0 }, { 10, 0, 0 }), -1)), -1, 1e-9); // right of a line
    const auto straight = polyline({ { 0, 0 }, { 10, 0 } }, false);
    const Curves left = parallels(straight, -1);
    EXPECT_NEAR(startY(left), 1, 1e-9); // left of a polyline
    EXPECT_TRUE(left.at(0)->isKindOf(KcDbPolyline::desc()));
    KcDbSpline spline;
    spline.data().fitPoints = { { 0, 0, 0 }, { 5, 0, 0 }, { 10, 0, 0 } };
    EXPECT_NEAR(startY(parallels(spline, -1)), 1, 1e-5);

    const Curves larger = parallels(KcDbCircle({ 1, 2, 0 }, 5), 1);
    ASSERT_EQ(larger.size(), 1u);
    ASSERT_TRUE(larger[0]->isKindOf(KcDbCircle::desc()));
    EXPECT_NEAR(static_cast<const KcDbCircle&>(*larger[0]).radius(), 6, 1e-9);
    EXPECT_TRUE(parallels(KcDbCircle({ 1, 2, 0 }, 5), -5).empty());
    Curves none;
    EXPECT_EQ(KcDbCircle({ 0, 0, 0 }, 5).getOffsetCurves(std::nan(""), none), Kcad::eInvalidInput);
    EXPECT_EQ(KcDbPolyline().getOffsetCurves(1, none), Kcad::eDegenerateGeometry);
}

TEST(CurveParallels, EllipsesAndSplinesKeepTheirDistance)
{
    const KcDbEllipse bed = ellipse(20, 0.5); // least radius of curvature: 100 / 20 = 5
    for (const double distance : { 3.0, -3.0, -7.0 }) {
        const Curves curves = parallels(bed, distance);
        ASSERT_EQ(curves.size(), 1u) << distance;
        EXPECT_TRUE(curves[0]->isKindOf(KcDbSpline::desc()));
        EXPECT_TRUE(curves[0]->isClosed());
        const auto [least, most] = distances(*curves[0], bed);
        EXPECT_NEAR(least, std::abs(distance), 3e-4) << distance;
        EXPECT_NEAR(most, std::abs(distance), 3e-4) << distance;
    }
    EXPECT_TRUE(parallels(bed, -11).empty());
    KcDbSpline path;
    path.data().fitPoints = { { 0, 0, 0 }, { 30, 20, 0 }, { 60, -10, 0 }, { 100, 10, 0 } };
    for (const double distance : { 2.0, -2.0 }) {
        const Curves curves = parallels(path, distance);
        ASSERT_EQ(curves.size(), 1u);
        const auto [least, most] = distances(*curves[0], path);
        EXPECT_NEAR(least, 2.0, 3e-4);
        EXPECT_NEAR(most, 2.0, 3e-4);
    }
}

TEST(CurvesMeet, InOnePlaneAtAnyElevation)
{
    const auto room = polyline({ { 0, 0 }, { 10, 0, 1.0 }, { 10, 10 }, { 0, 10 } }, true, 3.0);
    const KcDbLine row({ 2, 5, 0 }, { 3, 5, 0 });
    EXPECT_TRUE(meet(room, row).empty());
    const auto points = meet(room, row, KcDbIntersect::ExtendArg);
    ASSERT_EQ(points.size(), 2u);
    for (const KcGePoint3d p : points) {
        EXPECT_NEAR(p.y, 5.0, 1e-9);
        EXPECT_NEAR(p.z, 3.0, 1e-9); // on the first curve
        EXPECT_TRUE(std::abs(p.x) < 1e-9 || std::abs(p.x - 15.0) < 1e-9);
    }
    KcDbXline cut;
    cut.setBasePoint({ 5, 0, 0 });
    cut.setUnitDir({ 0, 1, 0 });
    EXPECT_EQ(meet(room, cut).size(), 2u);
    KcDbRay ray;
    ray.data().basePoint = { 5, 5, 0 };
    ray.data().unitDir = { 0, 1, 0 };
    EXPECT_EQ(meet(room, ray).size(), 1u);
    EXPECT_EQ(meet(ellipse(20, 0.5), KcDbCircle({ 0, 0, 0 }, 15)).size(), 4u);
    EXPECT_EQ(meet(ellipse(20, 0.5), cut).size(), 2u);
}

TEST(CurvesMeet, OnlyWhereTheyDoInSpace)
{
    const KcDbCircle level({ 0, 0, 0 }, 5);
    EXPECT_EQ(meet(level, KcDbLine({ 5, 0, -1 }, { 5, 0, 1 })).size(), 1u);
    EXPECT_TRUE(meet(level, KcDbLine({ 4, 0, -1 }, { 4, 0, 1 })).empty());
    EXPECT_TRUE(meet(level, KcDbLine({ 5, 0, 1 }, { 5, 0, 2 })).empty());
    EXPECT_EQ(meet(level, KcDbLine({ 5, 0, 1 }, { 5, 0, 2 }), KcDbIntersect::ExtendArg).size(), 1u);
    KcDbCircle upright({ 0, 0, 0 }, 5);
    upright.data().normal = { 1, 0, 0 };
    EXPECT_EQ(meet(level, upright).size(), 2u);
    EXPECT_TRUE(meet(KcDbLine({ 0, 0, 0 }, { 1, 1, 1 }), KcDbLine({ 1, 0, 0 }, { 0, 1, 2 })).empty());
    EXPECT_EQ(meet(KcDbLine({ 0, 0, 0 }, { 2, 2, 2 }), KcDbLine({ 2, 0, 1 }, { 0, 2, 1 })).size(), 1u);
    std::vector<KcGePoint3d> points;
    EXPECT_EQ(level.intersectWith(KcDbPoint(), KcDbIntersect::ExtendBoth, points), Kcad::eNotApplicable);
}
