// Hatch lines against what is known without them: the area they fill, the points they may touch, and the same
// drawing turned, mirrored and moved far away.

#include "ge/hatch_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using Loops = std::vector<std::vector<KcGeSegment2d>>;
using Segments = std::vector<std::pair<KcGePoint2d, KcGePoint2d>>;

std::vector<KcGeSegment2d> polygon(const std::vector<KcGePoint2d>& points)
{
    std::vector<KcGeSegment2d> pieces;
    for (size_t i = 0; i < points.size(); ++i)
        pieces.push_back(KcGeSegment2d::line(points[i], points[(i + 1) % points.size()]));
    return pieces;
}

std::vector<KcGeSegment2d> box(double x, double y, double w, double h)
{
    return polygon({ { x, y }, { x + w, y }, { x + w, y + h }, { x, y + h } });
}

KcGeSegment2d arc(KcGePoint2d c, double rx, double ry, double start, double sweep)
{
    return KcGeSegment2d::ellipse(c, { rx, 0 }, { 0, ry }, start, sweep);
}

/// A cubic over (0,0) (0,3) (2,3) (2,0).
KcGeSegment2d arch()
{
    KcGeNurbsCurve3d curve;
    curve.knots = { 0, 0, 0, 0, 1, 1, 1, 1 };
    curve.controlPoints = { { 0, 0, 0 }, { 0, 3, 0 }, { 2, 3, 0 }, { 2, 0, 0 } };
    return *KcGeSegment2d::spline(curve);
}

struct Shape {
    const char* name;
    Loops loops;
    double normal, outer, ignore; ///< areas by style
};

std::vector<Shape> shapes()
{
    const Loops nested{ box(0, 0, 10, 10), box(1, 1, 6, 6), box(2, 2, 3, 3) };
    return {
        { "square", { box(0, 0, 10, 10) }, 100, 100, 100 },
        { "nested three deep", nested, 100 - 36 + 9, 100 - 36, 100 },
        { "disc", { { arc({ 3, 4 }, 5, 5, 0.3, kTwoPi) } }, 25 * kPi, 25 * kPi, 25 * kPi },
        { "ring, islands clockwise",
          { { arc({ 0, 0 }, 5, 5, 0, kTwoPi) }, { arc({ 0, 0 }, 2, 2, 1, -kTwoPi) } },
          21 * kPi,
          21 * kPi,
          25 * kPi },
        { "half ellipse",
          { { arc({ 0, 0 }, 3, 1, 0, kPi), KcGeSegment2d::line({ -3, 0 }, { 3, 0 }) } },
          1.5 * kPi,
          1.5 * kPi,
          1.5 * kPi },
        // The cubic encloses 3.6 over its chord.
        { "spline", { { arch(), KcGeSegment2d::line({ 2, 0 }, { 0, 0 }) } }, 3.6, 3.6, 3.6 },
        { "star with vertices on lines",
          { polygon({ { 0, 0 }, { 4, 1 }, { 8, 0 }, { 7, 4 }, { 8, 8 }, { 4, 7 }, { 0, 8 }, { 1, 4 } }) },
          48,
          48,
          48 },
        { "side by side", { box(0, 0, 5, 5), box(5, 0, 5, 5) }, 50, 50, 50 },
        { "island on the edge", { box(0, 0, 10, 10), box(0, 3, 4, 4) }, 84, 84, 100 },
        { "sides in any order",
          { { KcGeSegment2d::line({ 1, 0 }, { 0, 0 }),
              KcGeSegment2d::line({ 1, 1 }, { 0, 1 }),
              KcGeSegment2d::line({ 1, 0 }, { 1, 1 }),
              KcGeSegment2d::line({ 0, 1 }, { 0, 0 }) } },
          1,
          1,
          1 },
    };
}

struct Move {
    const char* name;
    KcGeMatrix3d matrix;
};

std::vector<Move> moves()
{
    return {
        { "as it is", {} },
        { "turned", KcGeMatrix3d::rotation(1.234) },
        { "mirrored", KcGeMatrix3d::mirroring({ 3, 1, 0 }, { 1, 2, 0 }) },
        { "far away", KcGeMatrix3d::translation({ 5e5, 4e6, 0 }) },
        { "at 5e8", KcGeMatrix3d::translation({ 5e8, -5e8, 0 }) },
    };
}

Loops under(const KcGeMatrix3d& m, Loops loops)
{
    for (auto& loop : loops)
        for (KcGeSegment2d& piece : loop)
            piece = piece.transformed(m);
    return loops;
}

KcGeHatchFamily under(const KcGeMatrix3d& m, KcGeHatchFamily family)
{
    const auto vector = [&](KcGeVector2d v) {
        const KcGeVector3d image = m * KcGeVector3d{ v.x, v.y, 0 };
        return KcGeVector2d{ image.x, image.y };
    };
    family.base = (m * KcGePoint3d{ family.base.x, family.base.y, 0 }).plan();
    family.offset = vector(family.offset);
    family.angle = vector({ std::cos(family.angle), std::sin(family.angle) }).angle();
    return family;
}

Segments lines(
    const Loops& loops, const KcGeHatchFamily& family, KcGeHatchStyle style = KcGeHatchStyle::Normal,
    const KcGeHatchLimits& limits = {}, KcGeHatchDrawn expected = KcGeHatchDrawn::Whole)
{
    Segments found;
    const KcGeHatchDrawn drawn
        = kcgeHatchLines(KcGeFillArea(loops), style, family, limits, [&](KcGePoint2d a, KcGePoint2d b) {
              found.emplace_back(a, b);
          });
    EXPECT_EQ(int(drawn), int(expected));
    return found;
}

double length(const Segments& segments)
{
    double sum = 0.0;
    for (const auto& [a, b] : segments)
        sum += a.distanceTo(b);
    return sum;
}

KcGeHatchFamily family(double angle, double spacing, double shift = 0.0, std::vector<double> dashes = {})
{
    return { angle, { 0.1, 0.03 }, KcGeVector2d{ shift, spacing }.rotateBy(angle), std::move(dashes) };
}

/// Winding by angles over fine chords: knows nothing of heights or crossings.
int windings(const std::vector<std::vector<KcGePoint2d>>& outlines, KcGePoint2d p)
{
    int odd = 0;
    for (const auto& outline : outlines) {
        double turn = 0.0;
        for (size_t i = 0; i + 1 < outline.size(); ++i) {
            const KcGeVector2d a = outline[i] - p, b = outline[i + 1] - p;
            turn += std::atan2(a.crossProduct(b), a.dotProduct(b));
        }
        odd += std::abs(std::lround(turn / kTwoPi)) % 2;
    }
    return odd;
}

} // namespace

TEST(FillArea, AreaByStyleUnderMoves)
{
    for (const Shape& shape : shapes())
        for (const Move& move : moves()) {
            const KcGeFillArea area(under(move.matrix, shape.loops));
            EXPECT_TRUE(area.isSound()) << shape.name << ' ' << move.name;
            // At 5e8 a coordinate holds 6e-8.
            const double tolerance = std::string(move.name) == "at 5e8" ? 1e-5 : 1e-8;
            EXPECT_NEAR(area.area(KcGeHatchStyle::Normal), shape.normal, tolerance) << shape.name << move.name;
            EXPECT_NEAR(area.area(KcGeHatchStyle::Outer), shape.outer, tolerance) << shape.name << move.name;
            EXPECT_NEAR(area.area(KcGeHatchStyle::Ignore), shape.ignore, tolerance) << shape.name << move.name;
        }
}

// As many islands as a scanned plan has specks: none is compared with all the others.
TEST(FillArea, ManyIslands)
{
    Loops loops{ box(0, 0, 600, 600) };
    for (int i = 0; i < 200; ++i)
        for (int j = 0; j < 200; ++j)
            loops.push_back(box(1 + i * 2.5, 1 + j * 2.5, 1, 1));
    const KcGeFillArea area(loops);
    EXPECT_NEAR(area.area(KcGeHatchStyle::Normal), 360000 - 40000, 1e-6);
    EXPECT_NEAR(area.area(KcGeHatchStyle::Ignore), 360000, 1e-6);
}

TEST(FillArea, WhatIsBrokenIsToldAndStillFilled)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const KcGeFillArea open({ { KcGeSegment2d::line({ 0, 0 }, { 4, 0 }), KcGeSegment2d::line({ 4, 0 }, { 4, 4 }) } });
    EXPECT_FALSE(open.isSound());
    EXPECT_NEAR(open.area(KcGeHatchStyle::Normal), 8, 1e-12); // closed by a line
    const KcGeFillArea bad({ { KcGeSegment2d::line({ nan, 0 }, { 4, 0 }) }, box(0, 0, 1, 1) });
    EXPECT_FALSE(bad.isSound());
    EXPECT_NEAR(bad.area(KcGeHatchStyle::Normal), 1, 1e-12);
    EXPECT_FALSE(KcGeFillArea(Loops{}).isSound());
    EXPECT_FALSE(KcGeFillArea(Loops{ {} }).isSound());
}

// The lines of a family share the area among them: length times distance is the area.
TEST(HatchLines, LengthTimesDistanceIsTheArea)
{
    for (const Shape& shape : shapes())
        for (const Move& move : moves())
            for (const double angle : { 0.0, kPi / 2, kPi / 4, 1.0 }) {
                const double spacing = 0.01;
                const Loops loops = under(move.matrix, shape.loops);
                const KcGeHatchFamily f = under(move.matrix, family(angle, spacing));
                const std::pair<KcGeHatchStyle, double> styles[]
                    = { { KcGeHatchStyle::Normal, shape.normal },
                        { KcGeHatchStyle::Outer, shape.outer },
                        { KcGeHatchStyle::Ignore, shape.ignore } };
                for (const auto& [style, area] : styles)
                    // Where the area's sides run along the lines, one line more or less is met.
                    EXPECT_NEAR(length(lines(loops, f, style)) * spacing, area, 0.011 * std::sqrt(area) * 2)
                        << shape.name << ' ' << move.name << " at " << angle;
            }
}

TEST(HatchLines, SpansLieInsideAndGapsOutside)
{
    for (const Shape& shape : shapes()) {
        const KcGeFillArea area(shape.loops);
        std::vector<std::vector<KcGePoint2d>> outlines;
        for (const auto& contour : area.contours()) {
            outlines.emplace_back();
            for (const KcGeSegment2d& piece : contour.pieces)
                for (const KcGePoint2d p : piece.chords(1e-7))
                    outlines.back().push_back(p + area.origin().asVector());
        }
        const KcGeHatchFamily f = family(0.7, 0.137);
        const Segments found = lines(shape.loops, f);
        ASSERT_GT(found.size(), 5u) << shape.name;
        const KcGeVector2d along{ std::cos(0.7), std::sin(0.7) }, across = along.perpVector();
        for (size_t i = 0; i < found.size(); ++i) {
            const auto& [a, b] = found[i];
            EXPECT_EQ(windings(outlines, a + (b - a) * 0.5) % 2, 1) << shape.name << " span " << i;
            if (i > 0 && std::abs((a - found[i - 1].second).dotProduct(across)) < 1e-6) {
                const KcGeVector2d gap = a - found[i - 1].second;
                EXPECT_GT(gap.dotProduct(along), 0.0);
                EXPECT_EQ(windings(outlines, a - gap * 0.5) % 2, 0) << shape.name << " before span " << i;
            }
        }
    }
}

// The same hatch turned, mirrored and moved with its pattern gives the same number of dashes of the same length.
TEST(HatchLines, MovedWithItsPatternNothingChanges)
{
    const Loops loops = shapes()[1].loops;
    const KcGeHatchFamily f = family(0.4, 0.31, 0.17, { 0.5, -0.25, 0.0, -0.125 });
    const Segments expected = lines(loops, f);
    for (const Move& move : moves()) {
        const Segments found = lines(under(move.matrix, loops), under(move.matrix, f));
        EXPECT_EQ(found.size(), expected.size()) << move.name;
        EXPECT_NEAR(length(found), length(expected), 1e-4) << move.name;
    }
}

// Lines through vertices: a comb whose teeth end on lines, a rhombus whose corners lie on them.
TEST(HatchLines, VerticesOnLinesLoseAndDoubleNothing)
{
    KcGeHatchFamily f;
    f.offset = { 0, 1 };
    std::vector<KcGePoint2d> comb{ { 0, -0.5 } };
    for (int i = 0; i < 10; ++i) {
        comb.push_back({ i + 0.25, 3 });
        comb.push_back({ i + 0.5, 1 });
    }
    comb.push_back({ 10, -0.5 });
    for (const auto& [a, b] : lines({ polygon(comb) }, f)) {
        EXPECT_GT(b.x - a.x, 0.0);
        EXPECT_LT(a.y, 3.0);
    }
    // On y = 0 the rhombus is 4 wide, on y = ±1 it is 2, in its tips nothing.
    EXPECT_NEAR(length(lines({ polygon({ { 2, 0 }, { 0, 2 }, { -2, 0 }, { 0, -2 } }) }, f)), 8, 1e-12);
}

// The phase of dashes by hand: on line k they start at base + k·shift.
TEST(HatchLines, DashesKeepThePhaseOfTheirBase)
{
    KcGeHatchFamily f;
    f.base = { 0.5, 0 };
    f.offset = { 0.25, 1 };
    f.dashes = { 1, -1 };
    const Segments found = lines({ box(0, 0, 4, 1.5) }, f);
    const Segments expected{ { { 0.5, 0 }, { 1.5, 0 } }, { { 2.5, 0 }, { 3.5, 0 } },
                             { { 0.75, 1 }, { 1.75, 1 } }, { { 2.75, 1 }, { 3.75, 1 } } };
    ASSERT_EQ(found.size(), expected.size());
    for (size_t i = 0; i < found.size(); ++i) {
        EXPECT_NEAR(found[i].first.distanceTo(expected[i].first), 0, 1e-12);
        EXPECT_NEAR(found[i].second.distanceTo(expected[i].second), 0, 1e-12);
    }
    // A dash that begins outside is cut; dots are points.
    f.base.x = -0.5;
    f.dashes = { 1, -1, 0, -1 };
    const Segments cut = lines({ box(0, 0, 4, 0.5) }, f);
    ASSERT_EQ(cut.size(), 3u);
    EXPECT_NEAR(cut[0].second.x, 0.5, 1e-12);
    EXPECT_NEAR(cut[1].first.x, 1.5, 1e-12);
    EXPECT_EQ(cut[1].first, cut[1].second);
    EXPECT_NEAR(cut[2].first.x, 2.5, 1e-12);
}

TEST(HatchLines, AWindowChangesNothingInside)
{
    const Loops loops = shapes()[3].loops;
    const KcGeHatchFamily f = family(0.6, 0.21, 0.05, { 0.4, -0.1 });
    KcGeHatchLimits limits;
    limits.window = KcGeExtents2d{ { -3, -1 }, { 1, 4 } };
    const Segments whole = lines(loops, f);
    double expected = 0.0;
    for (const auto& [a, b] : whole)
        for (int i = 0; i < 1000; ++i) // what of each dash lies in the window, by sampling
            expected += limits.window->contains(a + (b - a) * ((i + 0.5) / 1000)) ? a.distanceTo(b) / 1000 : 0;
    EXPECT_NEAR(length(lines(loops, f, KcGeHatchStyle::Normal, limits)), expected, 0.02);
    limits.window = KcGeExtents2d{ { 100, 100 }, { 101, 101 } };
    EXPECT_TRUE(lines(loops, f, KcGeHatchStyle::Normal, limits).empty());
}

// Hostile patterns end soon, with no more spans than asked for, and say what they left out.
TEST(HatchLines, HostileInputStaysBounded)
{
    const Loops loops{ box(0, 0, 1000, 1000) };
    KcGeHatchLimits limits;
    limits.mostSpans = 10000;
    const auto count = [&](const KcGeHatchFamily& f, KcGeHatchDrawn expected) {
        return lines(loops, f, KcGeHatchStyle::Normal, limits, expected).size();
    };
    EXPECT_LE(count(family(0.3, 1e-6), KcGeHatchDrawn::Thinned), 10000u);
    EXPECT_LE(count(family(0.3, 1, 0, { 1e-9, -1e-9 }), KcGeHatchDrawn::NoGaps), 10000u);
    EXPECT_LE(count(family(0.3, 1e-300), KcGeHatchDrawn::Nothing), 0u);
    EXPECT_EQ(count({ 0.0, {}, { 1, 0 }, {} }, KcGeHatchDrawn::Nothing), 0u);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(count({ nan, {}, { 0, 1 }, {} }, KcGeHatchDrawn::Nothing), 0u);
    EXPECT_EQ(count({ 0.0, { 1e300, 1e300 }, { 0, 1 }, {} }, KcGeHatchDrawn::Nothing), 0u);
    limits.smallest = 0.5;
    EXPECT_EQ(count(family(0.3, 0.1), KcGeHatchDrawn::Solid), 0u);
    EXPECT_GT(count(family(0.3, 1, 0, { 0.1, -0.1 }), KcGeHatchDrawn::NoGaps), 0u);

    // Many random pieces, most of them broken: nothing is asked but an end.
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-1, 1);
    Loops wild(50);
    for (auto& loop : wild)
        for (int i = 0; i < 40; ++i) {
            const double size = std::pow(10.0, 12 * any(random));
            loop.push_back(KcGeSegment2d::line({ size * any(random), any(random) }, { any(random), size }));
            loop.push_back(arc({ any(random), size }, size, any(random), 100 * any(random), 7 * any(random)));
        }
    limits.smallest = 0.0;
    kcgeHatchLines(
        KcGeFillArea(wild), KcGeHatchStyle::Normal, family(0.3, 1, 0, { 1, -1 }), limits, [](auto, auto) {});
}

TEST(HatchLines, Coverage)
{
    EXPECT_NEAR(kcgeHatchCoverage(family(0.5, 2), 0.5), 0.25, 1e-12);
    EXPECT_NEAR(kcgeHatchCoverage(family(0.5, 2, 0, { 1, -3 }), 0.5), 0.0625, 1e-12);
    EXPECT_NEAR(kcgeHatchCoverage(family(0.5, 2), 50), 1, 1e-12);
}
