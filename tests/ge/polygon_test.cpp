// Closed outlines: point tests against angles summed along fine chords, nodes that can be spared.

#include "ge/polygon.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Relation = KcGePointRelation;
using Vertices = std::vector<KcGeBulgeVertex2d>;

struct Placement {
    const char* name;
    double angle;
    KcGeVector2d shift;

    KcGePoint2d operator()(KcGePoint2d p) const
    {
        const KcGeVector2d v = p.asVector().rotateBy(angle) + shift;
        return { v.x, v.y };
    }
};

const Placement kPlacements[]{
    { "as it is", 0.0, {} },
    { "turned", 0.6, {} },
    { "far away", 0.0, { 5e8, -4e8 } },
    { "far away and turned", 2.0, { -5e8, 3e8 } },
};

KcGePolygon2d
placed(const std::vector<KcGeBulgeVertex2d>& vertices, const Placement& place, size_t first, bool reverse)
{
    KcGePolygon2d polygon;
    for (size_t i = 0; i < vertices.size(); ++i) {
        const KcGeBulgeVertex2d& v = vertices[(i + first) % vertices.size()];
        polygon.append(place(v.point), v.bulge);
    }
    return reverse ? polygon.reversed() : polygon;
}

const std::vector<KcGeBulgeVertex2d> kSquare{ { { 0, 0 } }, { { 4, 0 } }, { { 4, 4 } }, { { 0, 4 } } };
/// A circle of radius 2 about (2, 0), of two halves.
const std::vector<KcGeBulgeVertex2d> kCircle{ { { 0, 0 }, 1.0 }, { { 4, 0 }, 1.0 } };
/// A square whose right side bulges out beyond a half circle (of 270°) and whose top dents in by a half
/// circle.
const std::vector<KcGeBulgeVertex2d> kKeyhole{
    { { 0, 0 } }, { { 4, 0 }, std::tan(0.375 * kPi) }, { { 4, 4 }, -1.0 }, { { 0, 4 } }
};

} // namespace

TEST(Polygon, PointsAgainstOutlines)
{
    struct Case {
        const char* name;
        const std::vector<KcGeBulgeVertex2d>& outline;
        KcGePoint2d point;
        Relation expected;
    };
    const double d = std::sqrt(2.0);
    const Case cases[]{
        { "middle of a square", kSquare, { 2, 2 }, Relation::Inside },
        { "beside a square, level with a corner", kSquare, { -1, 4 }, Relation::Outside },
        { "beside a square, level with the other corner", kSquare, { -1, 0 }, Relation::Outside },
        { "corner", kSquare, { 4, 4 }, Relation::OnVertex },
        { "a millionth off the corner", kSquare, { 4 + 1e-6, 4 }, Relation::OnVertex },
        { "side", kSquare, { 4, 1 }, Relation::OnOutline },
        { "a millionth inside the side", kSquare, { 4 - 1e-6, 1 }, Relation::OnOutline },
        { "a thousandth inside the side", kSquare, { 4 - 1e-3, 1 }, Relation::Inside },
        { "a thousandth outside the side", kSquare, { 4 + 1e-3, 1 }, Relation::Outside },
        { "middle of a circle, on both chords", kCircle, { 2, 0 }, Relation::Inside },
        { "in a circle near its top", kCircle, { 2, 1.999 }, Relation::Inside },
        { "over a circle", kCircle, { 2, 2.001 }, Relation::Outside },
        { "top of a circle", kCircle, { 2, 2 }, Relation::OnOutline },
        { "level with the chord of a circle", kCircle, { -1, 0 }, Relation::Outside },
        { "in the corner of a circle's box", kCircle, { 2 + 2 * 0.75, 2 * 0.75 }, Relation::Outside },
        // The arc of 270° over a chord of 4: radius 2·√2, centre (6, 2).
        { "in the bulge", kKeyhole, { 7, 3 }, Relation::Inside },
        { "in the bulge behind the chord's end", kKeyhole, { 4.5, 4.2 }, Relation::Inside },
        { "on the bulge", kKeyhole, { 6 + 2 * d, 2 }, Relation::OnOutline },
        { "in the dent", kKeyhole, { 2, 3 }, Relation::Outside },
        { "in the dent, on its chord", kKeyhole, { 2, 4 }, Relation::Outside },
        { "on the chord of the bulge", kKeyhole, { 4, 1 }, Relation::Inside },
        { "under the dent", kKeyhole, { 2, 1.9 }, Relation::Inside },
    };
    for (const Case& c : cases)
        for (const Placement& place : kPlacements)
            for (size_t first = 0; first < c.outline.size(); ++first)
                for (const bool reverse : { false, true })
                    EXPECT_EQ(placed(c.outline, place, first, reverse).relation(place(c.point)), c.expected)
                        << c.name << ", " << place.name << ", from vertex " << first
                        << (reverse ? ", reversed" : "");
}

TEST(Polygon, RandomOutlinesAgreeWithSummedAngles)
{
    std::mt19937 engine(99);
    const auto random
        = [&](double low, double high) { return std::uniform_real_distribution(low, high)(engine); };
    int inside = 0;
    for (int round = 0; round < 60; ++round) {
        KcGePolygon2d polygon; // crosses itself, as it comes
        const int count = 3 + round % 9;
        for (int i = 0; i < count; ++i)
            polygon.append({ random(-10, 10), random(-10, 10) }, i % 2 ? random(-3, 3) : 0.0);
        std::vector<KcGePoint2d> chords;
        for (const KcGeSegment2d& s : polygon.segments())
            for (int i = 0; i < 400; ++i)
                chords.push_back(s.pointAt(i / 400.0));
        for (int k = 0; k < 50; ++k) {
            const KcGePoint2d p{ random(-15, 15), random(-15, 15) };
            double sum = 0.0, nearest = 1e300;
            for (size_t i = 0; i < chords.size(); ++i) {
                const KcGeVector2d a = chords[i] - p, b = chords[(i + 1) % chords.size()] - p;
                sum += std::atan2(a.crossProduct(b), a.dotProduct(b));
                nearest = std::min(nearest, a.length());
            }
            if (nearest < 0.3)
                continue;
            const bool odd = std::llround(sum / kTwoPi) % 2 != 0;
            inside += odd;
            EXPECT_EQ(polygon.relation(p), odd ? Relation::Inside : Relation::Outside) << "round " << round;
        }
    }
    EXPECT_GT(inside, 100);
}

TEST(Polygon, OutlinesOfCurves)
{
    const std::vector<KcGeSegment2d> ellipse{ KcGeSegment2d::ellipse(
        { 0, 0 }, { 4, 1 }, { -1, 2 }, 0.3, kTwoPi) };
    for (double angle = 0.0; angle < kTwoPi; angle += 0.1) {
        const KcGeVector2d v
            = KcGeVector2d{ 4, 1 } * std::cos(angle) + KcGeVector2d{ -1, 2 } * std::sin(angle);
        EXPECT_EQ(relationToOutline(ellipse, { v.x * 0.999, v.y * 0.999 }), Relation::Inside) << angle;
        EXPECT_EQ(relationToOutline(ellipse, { v.x * 1.001, v.y * 1.001 }), Relation::Outside) << angle;
    }
}

TEST(Polygon, AreaAndSense)
{
    // Square 16, less a half disc of radius 2, plus three quarters of a disc of radius 2√2 with a triangle.
    const double keyhole = 16.0 - 2.0 * kPi + 0.75 * kPi * 8.0 + 4.0;
    for (const Placement& place : kPlacements)
        for (size_t first = 0; first < 4; ++first) {
            const KcGePolygon2d polygon = placed(kKeyhole, place, first, false);
            EXPECT_NEAR(polygon.area(), keyhole, place.shift.x != 0.0 ? 1e-5 : 1e-9);
            EXPECT_NEAR(polygon.reversed().area(), -keyhole, place.shift.x != 0.0 ? 1e-5 : 1e-9);
        }
    EXPECT_NEAR(KcGePolygon2d(kCircle).perimeter(), 4.0 * kPi, 1e-12);
}

TEST(Polygon, Compress)
{
    struct Case {
        const char* name;
        std::vector<KcGeBulgeVertex2d> vertices;
        size_t expected;
    };
    std::vector<KcGeBulgeVertex2d>
        roundish; // no three vertices on a line, though each is near its neighbours'
    for (int i = 0; i < 20000; ++i)
        roundish.push_back({ KcGePoint2d{ 0, 0 } + KcGeVector2d{ 10, 0 }.rotateBy(i * kTwoPi / 20000) });
    const Case cases[]{
        { "nothing to spare", kSquare, 4 },
        { "doubled",
          { { { 0, 0 } }, { { 4, 0 } }, { { 4, 0 } }, { { 4, 4 } }, { { 0, 4 } }, { { 0, 0 } } },
          4 },
        { "straight",
          { { { 2, 0 } },
            { { 4, 0 } },
            { { 4, 1 } },
            { { 4, 2 } },
            { { 4, 4 } },
            { { 0, 4 } },
            { { 0, 0 } },
            { { 1, 0 } } },
          4 },
        { "arcs stay",
          { { { 0, 0 } }, { { 1, 0 } }, { { 4, 0 }, 1.0 }, { { 4, 4 } }, { { 2, 4 } }, { { 0, 4 } } },
          4 },
        { "a spike stays", { { { 0, 0 } }, { { 9, 0 } }, { { 4, 0 } }, { { 4, 4 } } }, 4 },
        { "a speck", { { { 1, 1 } }, { { 1, 1 } }, { { 1, 1 } } }, 1 },
    };
    for (const Case& c : cases) {
        for (size_t first = 0; first < c.vertices.size(); ++first) {
            KcGePolygon2d polygon = placed(c.vertices, kPlacements[0], first, false);
            const double area = polygon.area();
            polygon.compress();
            EXPECT_EQ(polygon.size(), c.expected) << c.name << " from " << first;
            EXPECT_NEAR(polygon.area(), area, 1e-9) << c.name;
        }
    }
    KcGePolygon2d polygon(roundish);
    polygon.compress();
    EXPECT_LT(
        polygon.size(), 12000u); // a chord over two steps leaves the circle by half a millionth of a unit
    for (const KcGeBulgeVertex2d& v : roundish) {
        double nearest = 1e300;
        for (const KcGeSegment2d& s : polygon.segments())
            nearest = std::min(nearest, s.closest(v.point).distance);
        ASSERT_LE(nearest, 1.01e-5);
        if (&v - roundish.data() > 300)
            break;
    }
}

TEST(Polygon, WhatIsNoOutlineCannotBeTold)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(KcGePolygon2d{}.relation({ 0, 0 }), Relation::Unknown);
    EXPECT_EQ(KcGePolygon2d(Vertices{ { { 1, 1 } } }).relation({ 0, 0 }), Relation::Unknown);
    EXPECT_EQ(KcGePolygon2d(Vertices{ { { 1, 1 } }, { { 2, 2 } } }).relation({ 0, 0 }), Relation::Unknown);
    EXPECT_EQ(
        KcGePolygon2d(Vertices{ { { 0, nan } }, { { 4, 0 } }, { { 4, 4 } } }).relation({ 3, 1 }),
        Relation::Unknown);
    EXPECT_EQ(KcGePolygon2d(kSquare).relation({ nan, 1 }), Relation::Unknown);
}
