// Places along a path, and the set of points that tells when it has come round.

#include "planting/array_places.h"
#include "planting/point_set.h"

#include <gtest/gtest.h>

#include <random>

TEST(PointSet, DecidesAsComparingWithEveryPointDoes)
{
    std::mt19937 engine(5);
    const double tolerance = KcGeContext::gTol.equalPoint;
    int found = 0;
    // Far away, steps between numbers come near the tolerance and pass it.
    for (const double away : { 0.0, 5e8, -3e11, 1e20 }) {
        PointSet set;
        std::vector<KcGePoint3d> all;
        std::uniform_real_distribution<double> near(-12.0 * tolerance, 12.0 * tolerance);
        for (int i = 0; i < 1500; ++i) {
            const KcGePoint3d point{ away + near(engine), away + near(engine), near(engine) };
            const bool expected = std::any_of(
                all.begin(), all.end(), [&](KcGePoint3d other) { return point.isEqualTo(other); });
            ASSERT_EQ(set.contains(point), expected) << away << ' ' << i;
            found += expected;
            if (!expected) {
                set.add(point);
                all.push_back(point);
            }
        }
    }
    EXPECT_GT(found, 1000);
}

TEST(ArrayPlaces, ReachTheEndInSpiteOfRounding)
{
    // Three times 0.1 is above 0.3.
    const KcGeCurve3d path = KcGeCurve3d::line({ 0, 0, 0 }, { 0.3, 0, 0 });
    EXPECT_EQ(arrayPlaces(path, { true, 0.1, 0, false }).size(), 4u);
    EXPECT_EQ(arrayPlaces(path, { true, 0.1, 0, true }).size(), 4u);
    for (int count = 2; count < 200; ++count)
        EXPECT_EQ(arrayPlaces(path, { false, 0.0, count, false }).size(), size_t(count));
}

TEST(ArrayPlaces, OfNoCurveAreNone)
{
    EXPECT_TRUE(arrayPlaces({}, { true, 1.0, 0, false }).empty());
    EXPECT_EQ(arrayPlaces(KcGeCurve3d::line({}, { 5, 0, 0 }), { false, 0.0, 1, false }).size(), 1u);
}
