// Arcs, ellipses and splines against values derived by hand and against dense sampling, each case also moved,
// turned and mirrored.

#include "ge/arc.h"
#include "ge/ellipse.h"
#include "ge/spline.h"

#include <gtest/gtest.h>

namespace {

constexpr double kNear = KcGeContext::gTol.equalPoint;

struct NamedTransform {
    const char* name;
    KcGeMatrix3d matrix;
};

const std::vector<NamedTransform>& transforms()
{
    static const std::vector<NamedTransform> all{
        { "as it is", {} },
        { "turned 37°", KcGeMatrix3d::rotation(37.0 * kPi / 180.0) },
        { "mirrored", KcGeMatrix3d::mirroring({ 1, 2, 0 }, { 3, 1, 0 }) },
        { "far away", KcGeMatrix3d::translation({ 4e6, -3e6, 0 }) },
        { "tilted", KcGeMatrix3d::rotation(1.1, { 1, 2, 3 }) },
    };
    return all;
}

template <class PointAt> KcGeExtents3d sampled(PointAt pointAt)
{
    constexpr int kSamples = 200000;
    KcGeExtents3d box;
    for (int i = 0; i <= kSamples; ++i)
        box.addPoint(pointAt(double(i) / kSamples));
    return box;
}

void expectSameBox(
    const KcGeExtents3d& box, const KcGeExtents3d& expected, double tolerance, const char* what)
{
    ASSERT_FALSE(box.isEmpty()) << what;
    EXPECT_NEAR(box.min.x, expected.min.x, tolerance) << what;
    EXPECT_NEAR(box.min.y, expected.min.y, tolerance) << what;
    EXPECT_NEAR(box.min.z, expected.min.z, tolerance) << what;
    EXPECT_NEAR(box.max.x, expected.max.x, tolerance) << what;
    EXPECT_NEAR(box.max.y, expected.max.y, tolerance) << what;
    EXPECT_NEAR(box.max.z, expected.max.z, tolerance) << what;
}

KcGeNurbsCurve3d uniformCubic()
{
    KcGeNurbsCurve3d curve;
    curve.controlPoints = { { 0, 0, 0 }, { 1, 5, 1 }, { 4, -6, 2 }, { 6, 7, -1 }, { 9, 1, 0 }, { 2, 3, 4 } };
    curve.knots = { 0, 0, 0, 0, 1, 2.5, 3, 3, 3, 3 };
    return curve;
}

/// A quarter of the unit circle, exactly.
KcGeNurbsCurve3d quarterCircle()
{
    KcGeNurbsCurve3d curve;
    curve.degree = 2;
    curve.controlPoints = { { 1, 0, 0 }, { 1, 1, 0 }, { 0, 1, 0 } };
    curve.weights = { 1, std::sqrt(0.5), 1 };
    curve.knots = { 0, 0, 0, 1, 1, 1 };
    return curve;
}

} // namespace

TEST(Arc, FromBulge)
{
    // A half circle over (0,0)-(2,0) with bulge 1 runs counter-clockwise: below the chord.
    struct Case {
        const char* name;
        double bulge;
        KcGePoint2d center;
        double radius, sweep;
        KcGePoint2d middle;
    };
    const double s2 = std::sqrt(2.0);
    const Case cases[] = {
        { "half circle", 1.0, { 1, 0 }, 1.0, kPi, { 1, -1 } },
        { "half circle clockwise", -1.0, { 1, 0 }, 1.0, -kPi, { 1, 1 } },
        { "quarter circle", s2 - 1.0, { 1, 1 }, s2, kPi / 2, { 1, 1 - s2 } },
        { "three quarters", s2 + 1.0, { 1, -1 }, s2, 3 * kPi / 2, { 1, -1 - s2 } },
    };
    for (const Case& c : cases) {
        const auto arc = KcGeCircArc2d::fromBulge({ 0, 0 }, { 2, 0 }, c.bulge);
        ASSERT_TRUE(arc) << c.name;
        EXPECT_TRUE(arc->center().isEqualTo(c.center)) << c.name;
        EXPECT_NEAR(arc->radius(), c.radius, 1e-12) << c.name;
        EXPECT_NEAR(arc->sweep(), c.sweep, 1e-12) << c.name;
        EXPECT_TRUE(arc->pointAt(0.5).isEqualTo(c.middle)) << c.name;
        EXPECT_TRUE(arc->endPoint().isEqualTo({ 2, 0 })) << c.name;
        EXPECT_NEAR(arc->bulge(), c.bulge, 1e-12) << c.name;
        EXPECT_TRUE(arc->reversed().startPoint().isEqualTo({ 2, 0 })) << c.name;
    }
}

TEST(Arc, BulgesThatAreNoArcs)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(KcGeCircArc2d::fromBulge({ 0, 0 }, { 2, 0 }, 0.0));
    EXPECT_FALSE(KcGeCircArc2d::fromBulge({ 0, 0 }, { 2, 0 }, none));
    EXPECT_FALSE(KcGeCircArc2d::fromBulge({ 0, 0 }, { 2, 0 }, 1e200));
    EXPECT_FALSE(KcGeCircArc2d::fromBulge({ 1, 1 }, { 1, 1 }, 1.0));
    EXPECT_FALSE(KcGeCircArc2d::fromBulge({ none, 0 }, { 2, 0 }, 1.0));
    const KcGeExtents2d box = bulgeSegmentExtents({ 0, 0 }, { 2, 0 }, 1e200);
    EXPECT_EQ(box.max.x, 2.0);
    EXPECT_EQ(box.max.y, 0.0);
    // The largest that is still an arc, and the flattest: the ends stay on the outline.
    const KcGeExtents2d large = bulgeSegmentExtents({ 0, 0 }, { 2, 0 }, 9e8);
    EXPECT_TRUE(std::isfinite(large.min.y) && large.min.y < -1e8);
    EXPECT_NEAR(bulgeSegmentExtents({ 0, 0 }, { 2, 0 }, 1e-8).min.y, -1e-8, kNear);
}

TEST(Arc, SegmentAreaAndLength)
{
    // Half circle: π/2; quarter of radius √2: (π/2 − 1)·2/2.
    EXPECT_NEAR(bulgeSegmentArea({ 0, 0 }, { 2, 0 }, 1.0), kPi / 2, 1e-12);
    EXPECT_NEAR(bulgeSegmentArea({ 0, 0 }, { 2, 0 }, -(std::sqrt(2.0) - 1)), -(kPi / 2 - 1), 1e-12);
    EXPECT_NEAR(bulgeSegmentLength({ 0, 0 }, { 2, 0 }, 1.0), kPi, 1e-12);
    // The series takes over where the closed formula is still good: both sides of the seam agree.
    const auto closed = [](double b) {
        return KcGeCircArc2d::fromBulge({ 0, 0 }, { 1, 0 }, b)->segmentArea();
    };
    EXPECT_NEAR(bulgeSegmentArea({ 0, 0 }, { 1, 0 }, 0.009999), closed(0.009999), 1e-12);
    // A flat arc is a parabola of height b·c/2: two thirds of chord times height.
    EXPECT_NEAR(bulgeSegmentArea({ 0, 0 }, { 100, 0 }, 1e-6) / (2.0 / 3.0 * 100 * 50e-6), 1.0, 1e-9);
}

TEST(Arc, ThroughPointsRadiusAndChord)
{
    const auto arc = KcGeCircArc2d::throughPoints({ 1, 0 }, { 0, 1 }, { -1, 0 });
    ASSERT_TRUE(arc);
    EXPECT_TRUE(arc->center().isEqualTo({ 0, 0 }));
    EXPECT_NEAR(arc->sweep(), kPi, 1e-12);
    const auto clockwise = KcGeCircArc2d::throughPoints({ -1, 0 }, { 0, 1 }, { 0, -1 });
    ASSERT_TRUE(clockwise);
    EXPECT_NEAR(clockwise->sweep(), -3 * kPi / 2, 1e-12);
    EXPECT_FALSE(KcGeCircArc2d::throughPoints({ 0, 0 }, { 1, 1 }, { 2, 2 }));

    const auto byRadius = KcGeCircArc2d::fromRadius({ 0, 0 }, { 2, 0 }, std::sqrt(2.0), true);
    ASSERT_TRUE(byRadius);
    EXPECT_TRUE(byRadius->center().isEqualTo({ 1, 1 }));
    EXPECT_FALSE(KcGeCircArc2d::fromRadius({ 0, 0 }, { 2, 0 }, 0.9, true));
    EXPECT_NEAR(KcGeCircArc2d::fromChord({ 0, 0 }, { 2, 0 }, -kPi)->pointAt(0.5).y, 1.0, 1e-12);
}

TEST(Arc, BoxOfEveryQuadrantPair)
{
    for (int from = 0; from < 8; ++from)
        for (int eighths = 1; eighths <= 8; ++eighths)
            for (const double side : { 1.0, -1.0 }) {
                const KcGeCircArc2d arc({ 10, 20 }, 3, from * kPi / 4 + 0.1, side * eighths * kPi / 4);
                const KcGeExtents3d expected = sampled([&](double t) {
                    const KcGePoint2d p = arc.pointAt(t);
                    return KcGePoint3d{ p.x, p.y, 0 };
                });
                const KcGeExtents2d box = arc.extents();
                EXPECT_NEAR(box.min.x, expected.min.x, 1e-8) << from << ' ' << eighths << ' ' << side;
                EXPECT_NEAR(box.max.x, expected.max.x, 1e-8) << from << ' ' << eighths << ' ' << side;
                EXPECT_NEAR(box.min.y, expected.min.y, 1e-8) << from << ' ' << eighths << ' ' << side;
                EXPECT_NEAR(box.max.y, expected.max.y, 1e-8) << from << ' ' << eighths << ' ' << side;
            }
}

TEST(Ellipse, BoxAndPrincipalAxesUnderTransforms)
{
    const KcGeEllipArc3d arcs[] = {
        { { 3, 4, 5 }, { 5, 1, 0 }, { -0.4, 2, 0 }, 0.0, kTwoPi },
        { { 3, 4, 5 }, { 5, 1, 0 }, { -0.4, 2, 1 }, 0.3, 2.2 },
        { { 3, 4, 5 }, { 1, 1, 0 }, { -4, 4, 0 }, 2.0, -4.5 }, // the second axis is the longer one
        { { 0, 0, 0 }, { 2, 0, 0 }, { 0, 0, 0 }, 0.0, kTwoPi }, // seen from the side
    };
    for (const auto& [name, matrix] : transforms())
        for (const KcGeEllipArc3d& arc : arcs) {
            const KcGeEllipArc3d image = arc.transformed(matrix);
            expectSameBox(
                image.extents(),
                sampled([&](double t) { return matrix * arc.pointAt(arc.start + t * arc.sweep); }), 1e-7,
                name);
            const KcGeEllipArc3d axes = image.principal();
            EXPECT_NEAR(axes.u.dotProduct(axes.v), 0.0, 1e-9) << name;
            EXPECT_GE(axes.u.length(), axes.v.length() - 1e-9) << name;
            for (const double t : { 0.0, 0.25, 1.0 })
                EXPECT_TRUE(axes.pointAt(axes.start + t * axes.sweep)
                                .isEqualTo(image.pointAt(image.start + t * image.sweep)))
                    << name;
        }
}

TEST(Ellipse, AnglesAndAnomalies)
{
    // On an ellipse twice as long as wide the anomaly 45° lies at atan(1/2).
    EXPECT_NEAR(angleOfAnomaly(kPi / 4, 0.5), std::atan(0.5), 1e-15);
    EXPECT_NEAR(anomalyOfAngle(std::atan(0.5), 0.5), kPi / 4, 1e-15);
    EXPECT_NEAR(anomalyOfAngle(3 * kPi + 0.2, 0.25) - 3 * kPi, std::atan(4 * std::tan(0.2)), 1e-12);
    EXPECT_NEAR(sweepBetween(0.0, kTwoPi), kTwoPi, 0.0);
    EXPECT_NEAR(sweepBetween(1.0, 0.5), kTwoPi - 0.5, 1e-12);
    EXPECT_EQ(sweepBetween(std::numeric_limits<double>::infinity(), 0.5), 0.0);
}

TEST(Ellipse, DamagedValuesGiveAnEmptyBox)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE((KcGeEllipArc3d{ { none, 0, 0 } }.extents().isEmpty()));
    EXPECT_TRUE((KcGeEllipArc3d{ {}, { 1, 0, 0 }, { 0, 1, 0 }, none, 1.0 }.extents().isEmpty()));
    const KcGeExtents3d huge = KcGeEllipArc3d{ { 1e20, 0, 0 }, { 1e20, 0, 0 }, { 0, 1e20, 0 } }.extents();
    EXPECT_NEAR(huge.max.x / 2e20, 1.0, 1e-12);
}

TEST(Spline, PointsOfAKnownCurve)
{
    const KcGeNurbsCurve3d quarter = quarterCircle();
    ASSERT_TRUE(quarter.isValid());
    for (const double t : { 0.0, 0.2, 0.5, 0.9, 1.0 }) {
        const KcGePoint3d p = quarter.pointAt(t);
        EXPECT_NEAR(std::hypot(p.x, p.y), 1.0, 1e-14) << t;
        // A tangent of a circle is perpendicular to its radius.
        EXPECT_NEAR(quarter.derivativeAt(t).dotProduct(p.asVector()), 0.0, 1e-13) << t;
    }
    EXPECT_NEAR(quarter.planArea(), kPi / 4, 1e-10);
    // Values outside the range are the ends'.
    EXPECT_TRUE(quarter.pointAt(7.0).isEqualTo({ 0, 1, 0 }));
    EXPECT_TRUE(quarter.pointAt(std::numeric_limits<double>::quiet_NaN()).isEqualTo({ 1, 0, 0 }));
}

TEST(Spline, BoxAreaAndChordsUnderTransforms)
{
    KcGeNurbsCurve3d rational = uniformCubic();
    rational.weights = { 1, 4, 0.5, 2, 1, 1 };
    KcGeNurbsCurve3d unclamped = uniformCubic();
    unclamped.knots = { -3, -2, -1, 0, 1, 2.5, 3, 4, 5, 6 };
    KcGeNurbsCurve3d doubled = uniformCubic();
    doubled.knots = { 0, 0, 0, 0, 2, 2, 3, 3, 3, 3 };
    for (const KcGeNurbsCurve3d& curve : { uniformCubic(), rational, unclamped, doubled, quarterCircle() })
        for (const auto& [name, matrix] : transforms()) {
            const KcGeNurbsCurve3d image = curve.transformed(matrix);
            ASSERT_TRUE(image.isValid());
            const double from = image.startParam(), span = image.endParam() - from;
            expectSameBox(
                image.extents(), sampled([&](double t) { return image.pointAt(from + t * span); }),
                1.1 * kNear, name);

            constexpr double kSagitta = 1e-3;
            const std::vector<KcGePoint3d> chords = image.chords(kSagitta);
            ASSERT_GT(chords.size(), 4u);
            double polygon = 0.0, sum = 0.0;
            for (size_t i = 0; i + 1 < chords.size(); ++i) {
                const KcGeVector3d a = chords[i] - chords[0], b = chords[i + 1] - chords[0];
                polygon += (a.x * b.y - a.y * b.x) / 2;
                sum += (b - a).length();
            }
            // The same outline closed over the first point, so that the origin does not count.
            const KcGePoint3d first = chords.front(), last = chords.back();
            const double exact
                = image.transformed(KcGeMatrix3d::translation(KcGePoint3d{} - first)).planArea();
            EXPECT_NEAR(exact, polygon, kSagitta * sum) << name;
            EXPECT_TRUE(last.isEqualTo(image.pointAt(image.endParam()))) << name;
        }
}

TEST(Spline, DamageIsRecognised)
{
    const auto spoiled = [](auto spoil) {
        KcGeNurbsCurve3d curve = uniformCubic();
        spoil(curve);
        return curve.isValid();
    };
    EXPECT_TRUE(spoiled([](KcGeNurbsCurve3d&) {}));
    EXPECT_FALSE(spoiled([](KcGeNurbsCurve3d& c) { c.knots.pop_back(); }));
    EXPECT_FALSE(spoiled([](KcGeNurbsCurve3d& c) { std::swap(c.knots[4], c.knots[5]); }));
    EXPECT_FALSE(spoiled([](KcGeNurbsCurve3d& c) { c.knots.assign(c.knots.size(), 1.0); }));
    EXPECT_FALSE(spoiled([](KcGeNurbsCurve3d& c) { c.weights = { 1, 0, 1, 1, 1, 1 }; }));
    EXPECT_FALSE(spoiled(
        [](KcGeNurbsCurve3d& c) { c.controlPoints[2].y = std::numeric_limits<double>::quiet_NaN(); }));
    EXPECT_FALSE(spoiled([](KcGeNurbsCurve3d& c) { c.degree = 0; }));
    EXPECT_FALSE(spoiled([](KcGeNurbsCurve3d& c) { c.degree = 1000000; }));
    EXPECT_FALSE(KcGeNurbsCurve3d().isValid());
}

TEST(Spline, ThroughPoints)
{
    const std::vector<KcGePoint3d> points{
        { 0, 0, 0 }, { 3, 4, 0 }, { 3, 4, 0 }, { 10, 4, 1 }, { 12, -2, 0 }
    };
    struct Case {
        const char* name;
        KcGeNurbsCurve3d::EndConditions ends;
    };
    for (const Case& c :
         { Case{ "free", {} }, Case{ "held", { KcGeVector3d{ 0, 5, 0 }, KcGeVector3d{ 1, 0, 0 }, false } },
           Case{ "closed", { {}, {}, true } } }) {
        const auto curve = KcGeNurbsCurve3d::throughPoints(points, c.ends);
        ASSERT_TRUE(curve) << c.name;
        const std::vector<double> breaks = curve->breaks();
        ASSERT_EQ(breaks.size(), c.ends.closed ? 5u : 4u) << c.name;
        const size_t at[] = { 0, 1, 3, 4 }; // the repeated point is passed over
        for (size_t i = 0; i < 4; ++i)
            EXPECT_TRUE(curve->pointAt(breaks[i]).isEqualTo(points[at[i]])) << c.name << ' ' << i;
        // Slope and curvature are continuous: differences of both sides vanish with the step.
        const double h = 1e-4;
        for (size_t i = 1; i + 1 < breaks.size(); ++i) {
            const auto slope = [&](double t) { return curve->derivativeAt(t); };
            const KcGeVector3d before = (slope(breaks[i] - h) - slope(breaks[i] - 2 * h)) / h;
            const KcGeVector3d after = (slope(breaks[i] + 2 * h) - slope(breaks[i] + h)) / h;
            EXPECT_LT((after - before).length(), 1e-2) << c.name << ' ' << i;
        }
        if (c.ends.closed) {
            EXPECT_TRUE(curve->pointAt(curve->endParam()).isEqualTo(points[0]));
            EXPECT_LT((curve->derivativeAt(0) - curve->derivativeAt(curve->endParam())).length(), 1e-9);
        }
        if (c.ends.startTangent) {
            EXPECT_NEAR(curve->derivativeAt(0).normal().y, 1.0, 1e-12);
        }
    }
    EXPECT_FALSE(KcGeNurbsCurve3d::throughPoints({ { 1, 1, 1 }, { 1, 1, 1 } }, {}));
    EXPECT_FALSE(KcGeNurbsCurve3d::throughPoints({}, {}));
}
