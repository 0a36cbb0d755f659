// Orders of tree centres against orders known beforehand: shuffled points must come back as they were laid
// out.

#include "core/point_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using Points = std::vector<KcGePoint3d>;

Points shuffled(Points points, unsigned seed)
{
    std::shuffle(points.begin(), points.end(), std::mt19937(seed));
    return points;
}

Points moved(Points points, KcGeVector3d by)
{
    for (KcGePoint3d& p : points)
        p = p + by;
    return points;
}

} // namespace

TEST(PointOrder, FromLeftToRight)
{
    const Points laid{ { -3, 9, 0 }, { 1, -2, 5 }, { 1, 4, 1 }, { 2, 0, 0 }, { 8, 8, 8 } };
    for (unsigned seed = 0; seed < 20; ++seed) {
        Points sorted{ { 7, 7, 7 } };
        SortPointByX(shuffled(laid, seed), sorted);
        EXPECT_EQ(sorted, laid);
    }
}

// Each is nearer to the next than to any later one, so the chain is known.
TEST(PointOrder, FromNeighbourToNeighbour)
{
    Points spiral;
    for (int i = 0; i < 40; ++i) {
        const double angle = 0.25 * i, radius = 50.0 - i;
        spiral.push_back(
            { radius * std::cos(angle) * 10, radius * std::sin(angle) * 10, double(i % 3) * 1e4 });
    }
    for (const KcGeVector3d by : { KcGeVector3d{ 0, 0, 0 }, KcGeVector3d{ 5e8, -5e8, 0 } })
        for (unsigned seed = 0; seed < 10; ++seed) {
            const Points laid = moved(spiral, by);
            Points path;
            Prim(laid.front(), shuffled(laid, seed), path);
            EXPECT_EQ(path, laid) << "elevations play no part";
        }
    Points path{ { 1, 1, 1 } };
    Prim({ 0, 0, 0 }, {}, path);
    EXPECT_TRUE(path.empty());
    Prim({ 0, 0, 0 }, { { 2, 0, 0 }, { -2, 0, 0 }, { 2, 0, 0 } }, path);
    EXPECT_EQ(path, Points({ { 2, 0, 0 }, { 2, 0, 0 }, { -2, 0, 0 } }))
        << "every point once, of equals the first";
}

TEST(PointOrder, AlongAPath)
{
    // Up, to the right, down: the last leg lies beside the first one.
    const Points path{ { 0, 0, 0 }, { 0, 0, 0 }, { 0, 100, 0 }, { 60, 100, 0 }, { 60, 0, 0 } };
    const Points laid{ { 2, -20, 0 }, { -3, -5, 9 }, { 4, 30, 0 },  { -9, 80, 0 }, { 20, 108, 0 },
                       { 50, 91, 0 }, { 55, 70, 0 }, { 66, 10, 0 }, { 50, -4, 0 }, { 61, -30, 0 } };
    for (unsigned seed = 0; seed < 20; ++seed) {
        Points centers = shuffled(laid, seed);
        GetArrangePnts(path, centers);
        EXPECT_EQ(centers, laid);
        Points backwards(path.rbegin(), path.rend()), reversed(laid.rbegin(), laid.rend());
        centers = shuffled(laid, seed);
        GetArrangePnts(backwards, centers);
        EXPECT_EQ(centers, reversed);
    }
    Points centers = laid;
    GetArrangePnts({}, centers);
    EXPECT_EQ(centers, laid);
    GetArrangePnts({ { 61, -31, 0 } }, centers);
    EXPECT_EQ(centers.front(), laid.back()) << "from a single point outwards";
}
