// Segments of every kind against answers found another way: dense sampling for lengths, nearest points, boxes
// and areas, difference quotients for derivatives, and identities of reversed, cut and moved pieces.

#include "ge/segment.h"

#include <gtest/gtest.h>

#include <random>

namespace {

struct NamedSegment {
    std::string name;
    KcGeSegment2d segment;
};

KcGeNurbsCurve3d cubic()
{
    KcGeNurbsCurve3d curve;
    curve.controlPoints = { { 0, 0, 0 }, { 1, 5, 0 }, { 4, -6, 0 }, { 6, 7, 0 }, { 9, 1, 0 }, { 2, 3, 0 } };
    curve.knots = { 0, 0, 0, 0, 1, 2.5, 3, 3, 3, 3 };
    return curve;
}

/// Weights, a double knot, and a loop in which it crosses itself.
KcGeNurbsCurve3d rational()
{
    KcGeNurbsCurve3d curve;
    curve.degree = 2;
    curve.controlPoints = { { 0, 0, 0 }, { 8, 1, 0 }, { 7, 6, 0 }, { 2, 5, 0 }, { 5, -3, 0 }, { 9, -2, 0 } };
    curve.weights = { 1, 0.4, 2, 1, 3, 1 };
    curve.knots = { 0, 0, 0, 1, 2, 2, 4, 4, 4 };
    return curve;
}

std::vector<NamedSegment> segments()
{
    std::vector<NamedSegment> all{
        { "line", KcGeSegment2d::line({ 1, 2 }, { 5, -1 }) },
        { "quarter", KcGeSegment2d::arc({ { 1, 1 }, 3, 0.4, kPi / 2 }) },
        { "clockwise major arc", KcGeSegment2d::arc({ { -2, 1 }, 3, 1.4, -5.1 }) },
        { "full circle", KcGeSegment2d::arc({ { 4, 1 }, 2, 1.0, kTwoPi }) },
        { "bulge 0.3", KcGeSegment2d::bulge({ 0, 0 }, { 4, 2 }, 0.3) },
        { "bulge -3", KcGeSegment2d::bulge({ 0, 0 }, { 4, 2 }, -3.0) },
        { "flat bulge", KcGeSegment2d::bulge({ 0, 0 }, { 4, 2 }, 1e-7) },
        { "ellipse arc", KcGeSegment2d::ellipse({ 1, 1 }, { 3, 1 }, { -0.4, 1.2 }, 0.7, 4.5) },
        { "conjugate axes", KcGeSegment2d::ellipse({ 1, 1 }, { 3, 1 }, { 1, 2 }, 2.0, -3.0) },
        { "flat ellipse", KcGeSegment2d::ellipse({ 1, 1 }, { 3, 0 }, { 0, 0.01 }, 0.3, kTwoPi) },
        { "cubic spline", *KcGeSegment2d::spline(cubic()) },
        { "rational spline", *KcGeSegment2d::spline(rational()) },
    };
    const size_t plain = all.size();
    for (size_t i = 0; i < plain; ++i) {
        const NamedSegment one = all[i];
        all.push_back({ one.name + ", reversed", one.segment.reversed() });
        all.push_back({ one.name + ", a part of it", one.segment.between(0.1, 0.9) });
        all.push_back(
            { one.name + ", turned and mirrored",
              one.segment.transformed(
                  KcGeMatrix3d::mirroring({ 1, 0, 0 }, { 2, 1, 0 }) * KcGeMatrix3d::rotation(0.9)) });
        all.push_back({ one.name + ", unevenly scaled",
                        one.segment.transformed(KcGeMatrix3d::scaling(KcGeVector3d{ 2, 0.5, 1 })) });
        all.push_back({ one.name + ", far away", one.segment.translated({ 5e8, -5e8 }) });
    }
    return all;
}

/// What rounding of coordinates at a place costs.
double noiseAt(const KcGeSegment2d& segment)
{
    const KcGePoint2d p = segment.startPoint();
    const auto ellipse = segment.asEllipse();
    const double reach = ellipse ? ellipse->u.length() + ellipse->v.length() : 0.0; // of its centre
    return 1e-9 + 1e-15 * std::max({ std::abs(p.x), std::abs(p.y), 4.0 * reach });
}

constexpr int kSamples = 20000;

std::vector<KcGePoint2d> sampled(const KcGeSegment2d& segment)
{
    std::vector<KcGePoint2d> points;
    for (int i = 0; i <= kSamples; ++i)
        points.push_back(segment.pointAt(double(i) / kSamples));
    return points;
}

} // namespace

TEST(Segment, LengthIsThatOfFineChords)
{
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        const std::vector<KcGePoint2d> points = sampled(segment);
        double length = 0.0, coarse = 0.0;
        for (size_t i = 1; i < points.size(); ++i)
            length += points[i].distanceTo(points[i - 1]);
        for (size_t i = 2; i < points.size(); i += 2)
            coarse += points[i].distanceTo(points[i - 2]);
        // Chords miss by the square of their number: Richardson's step takes that away.
        length += (length - coarse) / 3.0;
        const bool isFar = std::abs(points[0].x) > 1e6;
        // A flat ellipse turns so sharply that chords converge more slowly; far out they add up their
        // rounding.
        EXPECT_NEAR(segment.length(), length, isFar ? 2e-3 : 1e-7 * length);
    }
}

TEST(Segment, LengthsInvert)
{
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        const double length = segment.length();
        EXPECT_NEAR(
            segment.lengthBetween(0.0, 0.37) + segment.lengthBetween(0.37, 1.0), length, 1e-9 * length);
        EXPECT_EQ(segment.lengthBetween(0.7, 0.2), -segment.lengthBetween(0.2, 0.7));
        for (int i = 0; i <= 40; ++i) {
            const double wanted = length * i / 40;
            const double t = segment.paramAtLength(wanted);
            EXPECT_NEAR(segment.lengthBetween(0.0, t), wanted, 1e-9 * length + noiseAt(segment)) << wanted;
        }
        EXPECT_EQ(segment.paramAtLength(-1.0), 0.0);
        EXPECT_EQ(segment.paramAtLength(length * 2), 1.0);
    }
}

TEST(Segment, DerivativesAreLimitsOfDifferences)
{
    for (const auto& [name, segment] : segments()) {
        if (noiseAt(segment) > 1e-8)
            continue; // differences of such coordinates tell nothing
        SCOPED_TRACE(name);
        for (const double t : { 0.01, 0.123, 0.31, 0.52, 0.77, 0.94 }) {
            const double h = 1e-5;
            const KcGeVector2d first = (segment.pointAt(t + h) - segment.pointAt(t - h)) / (2 * h);
            const KcGeVector2d second = (segment.firstDeriv(t + h) - segment.firstDeriv(t - h)) / (2 * h);
            const double size = 1.0 + segment.firstDeriv(t).length() + segment.secondDeriv(t).length();
            EXPECT_LT((segment.firstDeriv(t) - first).length(), 1e-6 * size) << t;
            EXPECT_LT((segment.secondDeriv(t) - second).length(), 1e-4 * size) << t;
        }
    }
}

TEST(Segment, ClosestPointIsNoFurtherThanAnySample)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-12.0, 12.0);
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        const std::vector<KcGePoint2d> points = sampled(segment);
        const KcGeVector2d origin = segment.startPoint().asVector();
        for (int i = 0; i < 25; ++i) {
            const KcGePoint2d p = KcGePoint2d{ place(random), place(random) } + origin;
            const auto found = segment.closest(p);
            EXPECT_GE(found.t, 0.0);
            EXPECT_LE(found.t, 1.0);
            EXPECT_EQ(found.point, segment.pointAt(found.t));
            EXPECT_EQ(found.distance, found.point.distanceTo(p));
            double best = 1e300;
            for (const KcGePoint2d q : points)
                best = std::min(best, q.distanceTo(p));
            EXPECT_LE(found.distance, best + noiseAt(segment)) << p.x << "," << p.y;
            EXPECT_LE(segment.closestExtended(p).distance, found.distance + noiseAt(segment));
        }
        // Points on the piece are found where they are.
        for (const double t : { 0.0, 0.21, 0.5, 0.83, 1.0 })
            EXPECT_LE(segment.closest(segment.pointAt(t)).distance, noiseAt(segment)) << t;
    }
}

TEST(Segment, ExtensionsGoOnAlongTheCarrier)
{
    // Worked by hand: the quarter circle about the origin from (2,0) to (0,2) goes on to the full circle.
    const auto quarter = KcGeSegment2d::arc({ { 0, 0 }, 2, 0, kPi / 2 });
    const auto beyond = quarter.closestExtended({ -3, -3 });
    EXPECT_TRUE(beyond.point.isEqualTo({ -std::sqrt(2.0), -std::sqrt(2.0) }));
    EXPECT_TRUE(quarter.closest({ -3, 0.1 }).point.isEqualTo({ 0, 2 }));
    const auto line = KcGeSegment2d::line({ 0, 0 }, { 2, 0 });
    EXPECT_EQ(line.closestExtended({ 5, 3 }).t, 2.5);
    EXPECT_EQ(line.closest({ 5, 3 }).t, 1.0);
    const auto ellipse = KcGeSegment2d::ellipse({ 0, 0 }, { 4, 0 }, { 0, 1 }, 0.0, 1.0);
    EXPECT_TRUE(ellipse.closestExtended({ -6, 0 }).point.isEqualTo({ -4, 0 }));
}

TEST(Segment, BoxIsThatOfItsSamples)
{
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        KcGeExtents2d expected;
        for (const KcGePoint2d p : sampled(segment))
            expected.addPoint(p);
        const KcGeExtents2d box = segment.extents();
        const double near = 2e-5 + noiseAt(segment);
        EXPECT_NEAR(box.min.x, expected.min.x, near);
        EXPECT_NEAR(box.min.y, expected.min.y, near);
        EXPECT_NEAR(box.max.x, expected.max.x, near);
        EXPECT_NEAR(box.max.y, expected.max.y, near);
    }
}

TEST(Segment, AreaIsThatOfFineChords)
{
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        const std::vector<KcGePoint2d> points = sampled(segment);
        const KcGePoint2d origin = segment.pointAt(0.4) + KcGeVector2d{ 3, -1 };
        const auto sum = [&](size_t step) {
            double area = 0.0;
            for (size_t i = step; i < points.size(); i += step)
                area += (points[i - step] - origin).crossProduct(points[i] - origin) / 2.0;
            return area;
        };
        const double fine = sum(1), expected = fine + (fine - sum(2)) / 3.0;
        const bool isFar = std::abs(origin.x) > 1e6;
        EXPECT_NEAR(segment.areaAbout(origin), expected, isFar ? 1e-4 : 1e-8);
        EXPECT_NEAR(segment.reversed().areaAbout(origin), -expected, isFar ? 1e-4 : 1e-8);
    }
}

TEST(Segment, CutsLieOnThePieceAndAddUp)
{
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        const std::vector<KcGeSegment2d> parts = segment.split({ 0.9, 0.25, 0.25, -1, 0.6, 2, 1 });
        ASSERT_EQ(parts.size(), 4u);
        const KcGePoint2d origin = segment.startPoint();
        double length = 0.0, area = 0.0;
        KcGePoint2d end = segment.startPoint();
        for (const KcGeSegment2d& part : parts) {
            EXPECT_LE(part.startPoint().distanceTo(end), noiseAt(segment));
            EXPECT_LE(segment.closest(part.midPoint()).distance, noiseAt(segment));
            end = part.endPoint();
            length += part.length();
            area += part.areaAbout(origin);
        }
        EXPECT_LE(segment.endPoint().distanceTo(end), noiseAt(segment));
        EXPECT_NEAR(length, segment.length(), 1e-9 * segment.length() + noiseAt(segment));
        EXPECT_NEAR(area, segment.areaAbout(origin), 1e-9 + 1e2 * noiseAt(segment));
        const double fraction = 0.4321;
        EXPECT_LE(
            segment.reversed().pointAt(fraction).distanceTo(segment.pointAt(1.0 - fraction)),
            noiseAt(segment));
    }
}

TEST(Segment, MonotonePartsRiseOrFallThroughout)
{
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        for (const KcGeSegment2d& part : segment.split(segment.monotoneParams())) {
            const KcGeVector2d way = part.endPoint() - part.startPoint();
            for (int i = 0; i < 50; ++i) {
                const KcGeVector2d step = part.pointAt((i + 1) / 50.0) - part.pointAt(i / 50.0);
                EXPECT_GE(step.x * (way.x < 0 ? -1 : 1), -noiseAt(segment));
                EXPECT_GE(step.y * (way.y < 0 ? -1 : 1), -noiseAt(segment));
            }
        }
    }
}

TEST(Segment, ChordsAndArcsStayWithinTheirTolerance)
{
    constexpr double kTolerance = 1e-3;
    for (const auto& [name, segment] : segments()) {
        SCOPED_TRACE(name);
        const std::vector<KcGePoint2d> points = segment.chords(kTolerance);
        const std::vector<KcGeSegment2d> simple = segment.simpleSegments(kTolerance);
        EXPECT_EQ(points.front(), segment.startPoint());
        EXPECT_EQ(points.back(), segment.endPoint());
        EXPECT_LE(simple.front().startPoint().distanceTo(segment.startPoint()), noiseAt(segment));
        EXPECT_LE(simple.back().endPoint().distanceTo(segment.endPoint()), noiseAt(segment));
        for (size_t i = 1; i < simple.size(); ++i)
            EXPECT_LE(simple[i].startPoint().distanceTo(simple[i - 1].endPoint()), noiseAt(segment));
        double length = 0.0;
        for (const KcGeSegment2d& one : simple) {
            EXPECT_TRUE(one.isSimple());
            length += one.length();
        }
        EXPECT_NEAR(length, segment.length(), 0.02 * segment.length());
        for (int i = 0; i <= 500; ++i) {
            const KcGePoint2d p = segment.pointAt(i / 500.0);
            double toChords = 1e300, toArcs = 1e300;
            for (size_t k = 1; k < points.size(); ++k)
                toChords
                    = std::min(toChords, KcGeSegment2d::line(points[k - 1], points[k]).closest(p).distance);
            for (const KcGeSegment2d& one : simple)
                toArcs = std::min(toArcs, one.closest(p).distance);
            EXPECT_LE(toChords, kTolerance + noiseAt(segment)) << i;
            EXPECT_LE(toArcs, 1.1 * kTolerance + noiseAt(segment)) << i; // checked at samples only
        }
    }
}

TEST(Segment, FlatAndHugeArcsKeepTheirDigits)
{
    // Sagitta of a flat bulge b over a chord c: b·c/2, here 5e-5 at a radius of 2.5e13.
    const auto flat = KcGeSegment2d::bulge({ 0, 0 }, { 1e5, 0 }, 1e-9);
    EXPECT_NEAR(flat.midPoint().y, -5e-5, 1e-12);
    EXPECT_NEAR(flat.closest({ 5e4, 1 }).distance, 1.00005, 1e-9);
    EXPECT_NEAR(flat.closest({ 2.5e4, -1 }).t, 0.25, 1e-12);
    EXPECT_NEAR(flat.extents().min.y, -5e-5, 1e-12);
    EXPECT_NEAR(flat.areaAbout({ 0, 0 }), 2.0 / 3.0 * 5e-5 * 1e5, 1e-9); // a flat arc is a parabola
    // Nearly a full circle of radius 2.5e8 over a chord of 1.
    const auto huge = KcGeSegment2d::bulge({ 0, 0 }, { 1, 0 }, 9.9e8);
    EXPECT_EQ(huge.endPoint(), (KcGePoint2d{ 1, 0 }));
    EXPECT_NEAR(huge.length() / (kTwoPi * 0.25 * 9.9e8), 1.0, 1e-8);
    EXPECT_TRUE(std::isfinite(huge.closest({ 3, 4 }).distance));
    EXPECT_TRUE(KcGeSegment2d::bulge({ 0, 0 }, { 1, 0 }, 1e9 * 1.001).isLine());
}

TEST(Segment, SpecksAndDamageGiveNoNumbersThatAreNone)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(KcGeSegment2d::line({ none, 0 }, { 1, 1 }).isFinite());
    EXPECT_FALSE(KcGeSegment2d::ellipse({ none, 0 }, { 1, 1 }, { 2, 0 }, 0, 1).isFinite());
    EXPECT_FALSE(KcGeSegment2d::arc({ { 0, 0 }, 1, none, 1 }).isFinite());
    KcGeNurbsCurve3d damaged = cubic();
    damaged.knots[4] = none;
    EXPECT_FALSE(KcGeSegment2d::spline(damaged));

    KcGeNurbsCurve3d stands = cubic();
    for (KcGePoint3d& p : stands.controlPoints)
        p = { 2, 3, 0 };
    const NamedSegment specks[] = {
        { "line", KcGeSegment2d::line({ 2, 3 }, { 2, 3 }) },
        { "arc", KcGeSegment2d::arc({ { 2, 3 }, 0, 0, 1 }) },
        { "bulge", KcGeSegment2d::bulge({ 2, 3 }, { 2, 3 }, 0.5) },
        { "part of an arc", KcGeSegment2d::arc({ { 1, 3 }, 1, 0, 1 }).between(0.0, 0.0) },
        { "ellipse", KcGeSegment2d::ellipse({ 2, 3 }, { 0, 0 }, { 0, 0 }, 0, 1) },
        { "spline", *KcGeSegment2d::spline(stands) },
        { "part of a spline", KcGeSegment2d::spline(cubic())->between(0.3, 0.3) },
    };
    for (const auto& [name, speck] : specks) {
        SCOPED_TRACE(name);
        const KcGePoint2d place = speck.startPoint();
        EXPECT_TRUE(speck.isFinite());
        EXPECT_TRUE(speck.isDegenerate());
        EXPECT_EQ(speck.length(), 0.0);
        EXPECT_EQ(speck.areaAbout(place), 0.0);
        EXPECT_TRUE(speck.pointAt(speck.paramAtLength(0.0)).isEqualTo(place));
        EXPECT_NEAR(speck.closest(place + KcGeVector2d{ 3, 4 }).distance, 5.0, 1e-9);
        EXPECT_NEAR(speck.closestExtended(place + KcGeVector2d{ 3, 4 }).distance, 5.0, 1e-9);
        EXPECT_TRUE(std::isfinite(speck.directionAt(0.5).length()));
        EXPECT_TRUE(std::isfinite(speck.curvatureAt(0.5)));
        EXPECT_GE(speck.chords(0.1).size(), 2u);
        speck.simpleSegments(0.1);
        speck.monotoneParams();
    }
}

TEST(Segment, DirectionAtACuspIsTheLimit)
{
    // The first two control points are one: the derivative vanishes there, the direction is that to the
    // third.
    KcGeNurbsCurve3d curve;
    curve.controlPoints = { { 0, 0, 0 }, { 0, 0, 0 }, { 3, 4, 0 }, { 9, 0, 0 } };
    curve.knots = { 0, 0, 0, 0, 1, 1, 1, 1 };
    const auto segment = *KcGeSegment2d::spline(curve);
    EXPECT_LT((segment.startDirection() - KcGeVector2d{ 0.6, 0.8 }).length(), 1e-5);
    EXPECT_LT((segment.reversed().endDirection() + KcGeVector2d{ 0.6, 0.8 }).length(), 1e-5);
}
