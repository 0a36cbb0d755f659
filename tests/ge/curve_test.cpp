// Whole curves of every kind against answers found another way: sums over fine chords, difference quotients,
// and identities of reversed and cut curves.

#include "ge/curve.h"

#include <gtest/gtest.h>

#include <random>

namespace {

struct NamedCurve {
    std::string name;
    KcGeCurve3d curve;
    double start, end; ///< the parameters that the host gives it
};

KcGeNurbsCurve3d waves(double height, bool rational)
{
    KcGeNurbsCurve3d curve;
    for (int i = 0; i < 12; ++i) {
        curve.controlPoints.push_back({ i * 2.0, (i % 3) * 3.0, height * (i % 2) });
        if (rational)
            curve.weights.push_back(1.0 + 0.5 * (i % 4));
    }
    curve.knots = { 1, 1, 1, 1, 2, 3, 4, 5, 5.5, 6, 7, 8, 9, 9, 9, 9 };
    return curve;
}

/// A spline without ends: three points more than a turn of uniform knots.
KcGeNurbsCurve3d periodic()
{
    KcGeNurbsCurve3d curve;
    const KcGePoint3d points[] = { { 0, 0, 0 }, { 6, 0, 0 }, { 8, 5, 0 }, { 3, 9, 0 }, { -2, 4, 0 } };
    for (int i = 0; i < 8; ++i)
        curve.controlPoints.push_back(points[i % 5]);
    for (int i = 0; i < 12; ++i)
        curve.knots.push_back(i);
    return curve;
}

std::vector<KcGeSegment2d> cloud(bool closed)
{
    const KcGePoint2d v[] = { { 0, 0 }, { 4, 0 }, { 4, 0 }, { 6, 3 }, { 3, 7 }, { -1, 4 } };
    const double bulges[] = { 0.5, 0.7, 0.0, -1.5, 1e-8, 0.2 };
    std::vector<KcGeSegment2d> pieces;
    for (size_t i = 0; i < (closed ? 6 : 5); ++i)
        pieces.push_back(KcGeSegment2d::bulge(v[i], v[(i + 1) % 6], bulges[i]));
    return pieces;
}

std::vector<NamedCurve> curves()
{
    const KcGeMatrix3d tilted
        = KcGeMatrix3d::planeToWorld({ 0.3, -0.4, 0.8 }) * KcGeMatrix3d::translation({ 0, 0, 5 });
    const KcGeMatrix3d behind
        = KcGeMatrix3d::planeToWorld({ 0, 0, -1 }) * KcGeMatrix3d::translation({ 0, 0, 2 });
    std::vector<KcGeSegment2d> farCloud;
    for (const KcGeSegment2d& piece : cloud(true))
        farCloud.push_back(piece.translated({ 5e8, -5e8 }));
    const KcGeCircArc2d arc({ 2, 1 }, 3, 5.0, 4.0), circle({ 2, 1 }, 3, 0.0, kTwoPi);
    return {
        { "level line", KcGeCurve3d::line({ 1, 2, 3 }, { 4, 6, 3 }), 0, 5 },
        { "sloping line", KcGeCurve3d::line({ 1, 2, 3 }, { 3, 5, 9 }), 0, 7 },
        { "upright line", KcGeCurve3d::line({ 1, 2, 3 }, { 1, 2, 9 }), 0, 6 },
        { "arc over the X axis", KcGeCurve3d::single({}, KcGeSegment2d::arc(arc), 5.0, 9.0), 5, 9 },
        { "tilted arc", KcGeCurve3d::single(tilted, KcGeSegment2d::arc(arc), 5.0, 9.0), 5, 9 },
        { "circle from behind", KcGeCurve3d::single(behind, KcGeSegment2d::arc(circle), 0, kTwoPi), 0,
          kTwoPi },
        { "tilted ellipse", KcGeCurve3d::ellipse({ { 1, 2, 3 }, { 4, 0, 1 }, { -0.5, 1, 2 }, 1.0, 3.5 }), 1,
          4.5 },
        { "whole ellipse", KcGeCurve3d::ellipse({ { 1, 2, 3 }, { 4, 1, 0 }, { -0.5, 2, 0 }, 0, kTwoPi }), 0,
          kTwoPi },
        { "level spline", KcGeCurve3d::spline(waves(0, false)), 1, 9 },
        { "rational spline in space", KcGeCurve3d::spline(waves(4, true)), 1, 9 },
        { "periodic spline", KcGeCurve3d::spline(periodic()), 3, 8 },
        { "open cloud", KcGeCurve3d::chain({}, cloud(false), false), 0, 5 },
        { "closed tilted cloud", KcGeCurve3d::chain(tilted, cloud(true), true), 0, 6 },
        { "far cloud", KcGeCurve3d::chain({}, farCloud, true), 0, 6 },
        { "polyline in space",
          KcGeCurve3d::polyline({ { 0, 0, 0 }, { 5, 0, 1 }, { 5, 0, 1 }, { 7, 4, -3 }, { 2, 6, 2 } }, true),
          0, 5 },
        { "polyline in a plane askew",
          KcGeCurve3d::polyline({ { 0, 0, 0 }, { 4, 0, 4 }, { 4, 3, 4 } }, false), 0, 2 },
        { "polyline far in space",
          KcGeCurve3d::polyline({ { 5e8, 0, 0 }, { 5e8 + 5, 0, 1 }, { 5e8, 4, -3 }, { 5e8, 1, 9 } }, false),
          0, 3 },
    };
}

double noiseAt(const KcGeCurve3d& curve)
{
    const KcGePoint3d p = *curve.startPoint();
    return 1e-9 + 1e-15 * std::max({ std::abs(p.x), std::abs(p.y), std::abs(p.z) });
}

constexpr int kSamples = 30000;

double paramOf(const NamedCurve& c, double fraction)
{
    return fraction == 1.0 ? c.end : c.start + (c.end - c.start) * fraction;
}

} // namespace

TEST(Curve, RangesAreTheHosts)
{
    for (const NamedCurve& c : curves()) {
        SCOPED_TRACE(c.name);
        ASSERT_FALSE(c.curve.isEmpty());
        EXPECT_NEAR(*c.curve.startParam(), c.start, 1e-12);
        EXPECT_NEAR(*c.curve.endParam(), c.end, 1e-12);
        EXPECT_EQ(*c.curve.pointAtParam(*c.curve.startParam()), *c.curve.startPoint());
        EXPECT_EQ(*c.curve.pointAtParam(*c.curve.endParam()), *c.curve.endPoint());
        const double range = c.end - c.start;
        EXPECT_FALSE(c.curve.pointAtParam(c.start - 0.01 * range));
        EXPECT_FALSE(c.curve.firstDeriv(c.end + 0.01 * range));
        EXPECT_FALSE(c.curve.distAtParam(std::numeric_limits<double>::quiet_NaN()));
        EXPECT_FALSE(c.curve.pointAtDist(-0.01));
        EXPECT_FALSE(c.curve.pointAtDist(*c.curve.length() * 1.01));
        EXPECT_FALSE(c.curve.paramAtDist(std::numeric_limits<double>::infinity()));
        EXPECT_FALSE(c.curve.closest({ 0, std::numeric_limits<double>::quiet_NaN(), 0 }));
    }
}

TEST(Curve, LengthsBoxesAndNearestPointsAgreeWithFineSamples)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(-10.0, 15.0);
    for (const NamedCurve& c : curves()) {
        SCOPED_TRACE(c.name);
        std::vector<KcGePoint3d> points;
        KcGeExtents3d box;
        // Vertices fall on samples: their number is a multiple of those of all pieces.
        for (int i = 0; i <= kSamples; ++i) {
            points.push_back(*c.curve.pointAtParam(paramOf(c, double(i) / kSamples)));
            box.addPoint(points.back());
        }
        double fine = 0.0, coarse = 0.0;
        for (size_t i = 1; i < points.size(); ++i)
            fine += points[i].distanceTo(points[i - 1]);
        for (size_t i = 2; i < points.size(); i += 2)
            coarse += points[i].distanceTo(points[i - 2]);
        const bool isFar = noiseAt(c.curve) > 1e-8;
        EXPECT_NEAR(*c.curve.length(), fine + (fine - coarse) / 3.0, isFar ? 5e-3 : 1e-8 * fine);
        const KcGeExtents3d found = c.curve.extents();
        EXPECT_LT((found.min - box.min).length() + (found.max - box.max).length(), 1e-4);
        const KcGeVector3d origin = c.curve.startPoint()->asVector();
        for (int i = 0; i < 20; ++i) {
            const KcGePoint3d p = KcGePoint3d{ place(random), place(random), place(random) } + origin;
            const auto nearest = *c.curve.closest(p);
            double best = 1e300;
            for (const KcGePoint3d q : points)
                best = std::min(best, q.distanceTo(p));
            EXPECT_LE(nearest.distance, best + noiseAt(c.curve));
            EXPECT_LE(nearest.point.distanceTo(*c.curve.pointAtParam(nearest.param)), noiseAt(c.curve));
            EXPECT_LE(c.curve.closestExtended(p)->distance, nearest.distance + noiseAt(c.curve));
        }
    }
}

TEST(Curve, DistancesInvert)
{
    for (const NamedCurve& c : curves()) {
        SCOPED_TRACE(c.name);
        const double length = *c.curve.length(), near = 1e-9 * length + noiseAt(c.curve);
        for (int i = 0; i <= 60; ++i) {
            const double d = i == 60 ? length : length * i / 60;
            const double param = *c.curve.paramAtDist(d);
            EXPECT_NEAR(*c.curve.distAtParam(param), d, near);
            EXPECT_LE(c.curve.pointAtDist(d)->distanceTo(*c.curve.pointAtParam(param)), near);
            const auto back = c.curve.distAtPoint(*c.curve.pointAtDist(d));
            ASSERT_TRUE(back);
            // The end of a closed curve is its start.
            const bool isEnd = c.curve.isClosed() && d > length - 1e-5;
            EXPECT_NEAR(*back, isEnd ? 0.0 : d, 10 * near);
        }
    }
}

TEST(Curve, DerivativesAreLimitsOfDifferences)
{
    for (const NamedCurve& c : curves()) {
        if (noiseAt(c.curve) > 1e-8)
            continue;
        SCOPED_TRACE(c.name);
        const double range = c.end - c.start, h = 1e-5 * range;
        for (const double fraction : { 0.03, 0.12, 0.36, 0.57, 0.71, 0.95 }) {
            const double p = paramOf(c, fraction);
            const KcGeVector3d first
                = (*c.curve.pointAtParam(p + h) - *c.curve.pointAtParam(p - h)) / (2 * h);
            const KcGeVector3d second = (*c.curve.firstDeriv(p + h) - *c.curve.firstDeriv(p - h)) / (2 * h);
            const double size = 1.0 + c.curve.firstDeriv(p)->length() + c.curve.secondDeriv(p)->length();
            EXPECT_LT((*c.curve.firstDeriv(p) - first).length(), 1e-6 * size) << p;
            EXPECT_LT((*c.curve.secondDeriv(p) - second).length(), 1e-4 * size) << p;
        }
    }
}

TEST(Curve, ReversedRunsTheSameWayBack)
{
    for (const NamedCurve& c : curves()) {
        SCOPED_TRACE(c.name);
        const KcGeCurve3d back = c.curve.reversed();
        const double length = *c.curve.length();
        ASSERT_NEAR(*back.length(), length, 1e-9 * length);
        EXPECT_EQ(back.isClosed(), c.curve.isClosed());
        EXPECT_LT(*back.startParam(), *back.endParam());
        for (int i = 0; i <= 10; ++i)
            EXPECT_LE(
                back.pointAtDist(length * i / 10)->distanceTo(*c.curve.pointAtDist(length * (10 - i) / 10)),
                1e-7 + noiseAt(c.curve));
        if (const auto area = c.curve.area()) {
            const double sides = c.curve.normal()->dotProduct(*back.normal());
            EXPECT_NEAR(*back.area(), -*area * sides, 1e-9 + 1e3 * noiseAt(c.curve));
        }
    }
}

TEST(Curve, PartsFollowEachOtherAndAddUp)
{
    for (const NamedCurve& c : curves()) {
        SCOPED_TRACE(c.name);
        const double length = *c.curve.length(), near = 1e-7 + noiseAt(c.curve);
        const bool closed = c.curve.isClosed();
        std::vector<double> cuts;
        for (const double fraction : { 0.7, 0.2, 0.45, 0.2 })
            cuts.push_back(*c.curve.paramAtDist(fraction * length));
        const std::vector<KcGeCurve3d> parts = c.curve.split(cuts);
        ASSERT_EQ(parts.size(), closed ? 3u : 4u);
        double at = closed ? 0.2 * length : 0.0;
        for (const KcGeCurve3d& part : parts) {
            EXPECT_FALSE(part.isClosed());
            EXPECT_EQ(part.isPolyline(), c.curve.isPolyline());
            for (const double fraction : { 0.0, 0.3, 0.9, 1.0 }) {
                double d = at + fraction * *part.length();
                if (d > length + 1e-5)
                    d -= length;
                EXPECT_LE(
                    part.pointAtDist(fraction * *part.length())->distanceTo(*c.curve.pointAtDist(d)), near);
            }
            at += *part.length();
        }
        EXPECT_NEAR(at, closed ? 1.2 * length : length, near);
        // One cut opens a closed curve there, and one at the start opens it where it is.
        if (closed) {
            const std::vector<KcGeCurve3d> opened = c.curve.split({ cuts[0] });
            ASSERT_EQ(opened.size(), 1u);
            EXPECT_NEAR(*opened[0].length(), length, near);
            EXPECT_LE(opened[0].startPoint()->distanceTo(*c.curve.pointAtParam(cuts[0])), near);
            EXPECT_EQ(c.curve.split({ c.start, cuts[0] }).size(), 2u);
        } else {
            EXPECT_EQ(c.curve.split({ c.start, c.end }).size(), 1u);
        }
        double exploded = 0.0;
        for (const KcGeCurve3d& piece : c.curve.exploded())
            exploded += *piece.length();
        EXPECT_NEAR(exploded, length, near);
    }
}

TEST(Curve, LinesWithoutEnds)
{
    const KcGeCurve3d line = KcGeCurve3d::infiniteLine({ 1, 1, 0 }, { 0, 5, 0 });
    EXPECT_FALSE(line.startParam() || line.endParam() || line.length() || line.distAtParam(3) || line.area());
    EXPECT_EQ(*line.pointAtParam(-2), (KcGePoint3d{ 1, -1, 0 }));
    EXPECT_EQ(line.closest({ 4, -9, 0 })->param, -10.0);
    EXPECT_TRUE(line.extents().isEmpty());
    EXPECT_TRUE(line.split({ 1.0 }).empty());
    const KcGeCurve3d ray = KcGeCurve3d::ray({ 1, 1, 2 }, { 3, 0, 4 });
    EXPECT_EQ(*ray.startParam(), 0.0);
    EXPECT_FALSE(ray.endParam() || ray.pointAtParam(-1.0) || ray.paramAtDist(-1.0));
    EXPECT_TRUE(ray.pointAtDist(10.0)->isEqualTo({ 7, 1, 10 }));
    EXPECT_EQ(ray.closest({ -50, 1, 2 })->param, 0.0);
    EXPECT_TRUE(KcGeCurve3d::ray({ 0, 0, 0 }, { 0, 0, 0 }).isEmpty());
}

TEST(Curve, ExtensionsOfAPolylineGoOnAsItsOuterPiecesDo)
{
    // A line along X, then a half circle about (4,1) up to (4,2); the way on is the rest of that circle.
    const KcGeCurve3d curve = KcGeCurve3d::chain(
        {}, { KcGeSegment2d::line({ 0, 0 }, { 4, 0 }), KcGeSegment2d::bulge({ 4, 0 }, { 4, 2 }, 1.0) },
        false);
    EXPECT_TRUE(curve.closestExtended({ -3, 1, 0 })->point.isEqualTo({ -3, 0, 0 }));
    EXPECT_NEAR(curve.closestExtended({ -3, 1, 0 })->param, -0.75, 1e-12);
    EXPECT_TRUE(curve.closestExtended({ 2.9, 1, 0 })->point.isEqualTo({ 3, 1, 0 }));
    EXPECT_TRUE(curve.closest({ -3, 1, 0 })->point.isEqualTo({ 0, 0, 0 }));
}

TEST(Curve, AreasWorkedByHand)
{
    // A square of 4 with a half circle of radius 2 on one side, run clockwise.
    const KcGeCurve3d outline = KcGeCurve3d::chain(
        KcGeMatrix3d::translation({ 5e8, 5e8, 3 }),
        { KcGeSegment2d::line({ 0, 0 }, { 0, 4 }), KcGeSegment2d::bulge({ 0, 4 }, { 4, 4 }, -1.0),
          KcGeSegment2d::line({ 4, 4 }, { 4, 0 }), KcGeSegment2d::line({ 4, 0 }, { 0, 0 }) },
        true);
    EXPECT_NEAR(*outline.area(), -(16 + 2 * kPi), 1e-12);
    EXPECT_NEAR(
        *KcGeCurve3d::ellipse({ { 9, 9, 9 }, { 3, 0, 0 }, { 0, 2, 0 }, 1.0, kTwoPi }).area(), 6 * kPi, 1e-12);
    EXPECT_FALSE(KcGeCurve3d::spline(waves(4, true)).area());
}

TEST(Curve, DamageMakesNoCurve)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(KcGeCurve3d::line({ none, 0, 0 }, { 1, 1, 1 }).isEmpty());
    EXPECT_TRUE(KcGeCurve3d::line({ 0, 0, 0 }, { 1.5e308, -1.5e308, 1e308 }).isEmpty());
    EXPECT_TRUE(KcGeCurve3d::polyline({ { 0, 0, 0 }, { 1, none, 0 } }, false).isEmpty());
    EXPECT_TRUE(KcGeCurve3d::polyline({}, true).isEmpty());
    EXPECT_TRUE(KcGeCurve3d::chain({}, {}, false).isEmpty());
    EXPECT_TRUE(KcGeCurve3d::spline({}).isEmpty());
    const KcGeCurve3d empty;
    EXPECT_FALSE(
        empty.startPoint() || empty.length() || empty.closest({}) || empty.area() || empty.isClosed());
    EXPECT_TRUE(empty.reversed().isEmpty() && empty.split({ 1.0 }).empty() && empty.plan().empty());
    // Specks answer, with lengths of 0.
    for (const KcGeCurve3d& speck :
         { KcGeCurve3d::line({ 1, 2, 3 }, { 1, 2, 3 }), KcGeCurve3d::polyline({ { 1, 2, 3 } }, true),
           KcGeCurve3d::polyline({ { 1, 2, 3 }, { 1, 2, 3 } }, false) }) {
        EXPECT_EQ(*speck.length(), 0.0);
        EXPECT_EQ(*speck.pointAtDist(0.0), (KcGePoint3d{ 1, 2, 3 }));
        EXPECT_NEAR(speck.closest({ 1, 2, 8 })->distance, 5.0, 1e-12);
        EXPECT_EQ(speck.split({ *speck.startParam() }).size(), 1u);
        EXPECT_EQ(*speck.reversed().length(), 0.0);
    }
}

TEST(Curve, PlanShowsTiltedCirclesAsEllipses)
{
    const KcGeMatrix3d tilted = KcGeMatrix3d::rotation(kPi / 3, KcGeVector3d::kXAxis);
    const KcGeCurve3d circle
        = KcGeCurve3d::single(tilted, KcGeSegment2d::arc({ { 0, 0 }, 2, 0, kTwoPi }), 0, kTwoPi);
    const std::vector<KcGeSegment2d> plan = circle.plan();
    ASSERT_EQ(plan.size(), 1u);
    EXPECT_EQ(plan[0].kind(), KcGeSegment2d::Kind::Ellipse);
    EXPECT_NEAR(std::abs(outlineArea(plan)), 2 * kPi, 1e-9); // 4π by cos 60°
}
