// Regions of small drawings made by hand, each also reversed, shuffled, turned, mirrored and far away; and of generated
// linework against its truth.

#include "ge/region_search.h"

#include "linework.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <random>

namespace {

using Segments = std::vector<KcGeSegment2d>;

Segments polygon(const std::vector<KcGePoint2d>& points)
{
    Segments result;
    for (size_t i = 0; i < points.size(); ++i)
        result.push_back(KcGeSegment2d::line(points[i], points[(i + 1) % points.size()]));
    return result;
}
Segments square(double x, double y, double side)
{
    return polygon({ { x, y }, { x + side, y }, { x + side, y + side }, { x, y + side } });
}
KcGeSegment2d circle(double x, double y, double r)
{
    return KcGeSegment2d::arc({ { x, y }, r, 0.0, kTwoPi });
}
KcGeSegment2d line(double x1, double y1, double x2, double y2)
{
    return KcGeSegment2d::line({ x1, y1 }, { x2, y2 });
}
KcGeSegment2d spline(const std::vector<KcGePoint2d>& control, int degree = 3)
{
    KcGeNurbsCurve3d curve;
    curve.degree = degree;
    for (const KcGePoint2d p : control)
        curve.controlPoints.push_back({ p.x, p.y, 0 });
    const int spans = int(control.size()) - degree;
    for (int i = 0; i <= int(control.size()) + degree; ++i)
        curve.knots.push_back(std::clamp(i - degree, 0, spans));
    return *KcGeSegment2d::spline(curve);
}
Segments join(std::initializer_list<Segments> parts)
{
    Segments all;
    for (const Segments& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

struct Case {
    const char* name;
    Segments segments;
    std::vector<double> areas; ///< of the outlines, ascending
    size_t islands = 0; ///< regions that lie in another one
    double bridge = 0.0;
};

std::vector<Case> cases()
{
    // A loop: the control points of a curve that crosses itself once.
    const KcGeSegment2d loop = spline({ { 0, 0 }, { 12, 10 }, { -2, 10 }, { 10, 0 } });
    const double quarterGap = 0.25;
    return {
        { "a square", square(0, 0, 10), { 100 } },
        { "a circle", { circle(3, 4, 5) }, { kPi * 25 } },
        { "a circle drawn twice", { circle(3, 4, 5), circle(3, 4, 5) }, { kPi * 25 } },
        { "lines that overshoot", { line(-1, 0, 11, 0), line(10, -2, 10, 12), line(11, 10, -3, 10), line(0, 13, 0, -1) },
            { 100 } },
        { "a square cut by a line through", join({ square(0, 0, 10), { line(4, -1, 4, 11) } }), { 40, 60 } },
        { "a T on a line", join({ square(0, 0, 10), { line(4, 0, 4, 10) } }), { 40, 60 } },
        { "an island", join({ square(0, 0, 10), { circle(5, 5, 2) } }), { kPi * 4, 100 }, 1 },
        { "an island of two that share a side", join({ square(0, 0, 10), square(2, 2, 2), square(4, 2, 2) }),
            { 4, 4, 100 }, 2 },
        { "an island in an island", join({ square(0, 0, 10), square(2, 2, 6), { circle(5, 5, 1) } }), { kPi, 36, 100 },
            2 },
        { "an island that touches at a point", join({ square(0, 0, 10), { circle(5, 2, 2) } }), { kPi * 4, 100 }, 1 },
        { "two regions joined by a bridge", join({ square(0, 0, 10), square(20, 0, 10), { line(10, 5, 20, 5) } }),
            { 100, 100 } },
        { "an island on a stalk", join({ square(0, 0, 10), square(4, 4, 2), { line(0, 5, 4, 5) } }), { 4, 100 }, 1 },
        { "two circles that overlap", { circle(0, 0, 5), circle(5, 0, 5) },
            { kPi * 25 - (50 * kPi / 3 - 12.5 * std::sqrt(3.0)), kPi * 25 - (50 * kPi / 3 - 12.5 * std::sqrt(3.0)),
                50 * kPi / 3 - 12.5 * std::sqrt(3.0) } },
        { "circles that touch outside", { circle(0, 0, 5), circle(8, 0, 3) }, { kPi * 9, kPi * 25 } },
        { "lines that lie on each other in part", join({ square(0, 0, 10), { line(2, 0, 14, 0), line(10, 3, 10, 8) } }),
            { 100 } },
        { "a spline that crosses itself and a chord", { loop, line(0, 0, 10, 0) }, {} },
        { "an ellipse cut by its axis",
            { KcGeSegment2d::ellipse({ 1, 1 }, { 6, 0 }, { 0, 2 }, 0.3, kTwoPi), line(-6, 1, 8, 1) },
            { kPi * 6, kPi * 6 } },
        { "corners that are open", { line(0, 0, 9.8, 0), line(10, 0.2, 10, 10), line(10, 10, 0, 10), line(0, 10, 0, 0) },
            { 100 }, 0, quarterGap },
        { "a gap in an arc", { KcGeSegment2d::arc({ { 0, 0 }, 5, 0.04, kTwoPi - 0.08 }) }, { kPi * 25 }, 0, 0.4 },
        { "a gap too wide", { line(0, 0, 9.5, 0), line(10, 0, 10, 10), line(10, 10, 0, 10), line(0, 10, 0, 0) }, {}, 0,
            0.4 },
    };
}

struct Variant {
    const char* name;
    KcGeMatrix3d matrix;
    bool reverse = false, shuffle = false;
    double areaTolerance = 1e-6;
};

std::vector<Variant> variants()
{
    // Far out coordinates are spaced by 6e-8, which moves sides of length 10 to 60.
    return {
        { "as it is", {} },
        { "reversed", {}, true },
        { "shuffled", {}, false, true },
        { "turned", KcGeMatrix3d::rotation(0.7), false, true },
        { "mirrored", KcGeMatrix3d::mirroring({ 1, 2, 0 }, { 3, 1, 0 }), true },
        { "at 1e6", KcGeMatrix3d::translation({ 1e6, -2e6, 0 }), false, true },
        { "at 5e8", KcGeMatrix3d::translation({ 5e8, 4e8, 0 }), false, false, 1e-4 },
    };
}

Segments varied(Segments segments, const Variant& variant)
{
    for (KcGeSegment2d& segment : segments) {
        segment = segment.transformed(variant.matrix);
        if (variant.reverse)
            segment = segment.reversed();
    }
    if (variant.shuffle)
        std::shuffle(segments.begin(), segments.end(), std::mt19937(7));
    return segments;
}

} // namespace

TEST(RegionSearch, FindsEveryRegionOfHandMadeCases)
{
    for (const Case& c : cases())
        for (const Variant& v : variants()) {
            SCOPED_TRACE(std::string(c.name) + ", " + v.name);
            KcGeRegionOptions options;
            options.bridge = c.bridge;
            const KcGeRegionSearch found(varied(c.segments, v), options);
            if (std::string(c.name).find("crosses itself") != std::string::npos) {
                // The loop, and what the two legs and the chord enclose: together what is under the curve.
                EXPECT_EQ(found.size(), 2u);
                continue;
            }
            std::vector<double> areas;
            size_t islands = 0;
            for (size_t i = 0; i < found.size(); ++i) {
                areas.push_back(found.area(i));
                islands += found.parent(i) != KcGeRegionSearch::kNone;
                const Segments outline = found.outline(i);
                EXPECT_NEAR(outlineArea(outline), found.area(i), std::max(v.areaTolerance, 1e-6));
                for (size_t k = 0; k < outline.size(); ++k)
                    EXPECT_LT(outline[k].endPoint().distanceTo(outline[(k + 1) % outline.size()].startPoint()), 1e-4);
            }
            std::sort(areas.begin(), areas.end());
            std::vector<double> expected = c.areas;
            std::sort(expected.begin(), expected.end());
            ASSERT_EQ(areas.size(), expected.size());
            for (size_t i = 0; i < areas.size(); ++i)
                EXPECT_NEAR(areas[i], expected[i], v.areaTolerance);
            EXPECT_EQ(islands, c.islands);
        }
}

// Random circles and lines: the faces fill what the curves enclose, counted once.
TEST(RegionSearch, FacesFillTheUnion)
{
    for (unsigned seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        std::uniform_real_distribution<> place(10, 90), size(2, 15);
        Segments segments = square(0, 0, 100);
        for (int i = 0; i < 25; ++i) {
            segments.push_back(circle(place(random), place(random), std::min(size(random), 9.9)));
            segments.push_back(line(place(random), place(random), place(random), place(random)));
            const KcGePoint2d p{ place(random), place(random) };
            segments.push_back(spline({ p, { place(random), place(random) }, { place(random), place(random) },
                { place(random), place(random) }, { place(random), place(random) }, p }));
            segments.push_back(KcGeSegment2d::ellipse({ place(random), place(random) }, { 7, 3 }, { -2, 5 }, 0, kTwoPi));
        }
        const KcGeRegionSearch found(segments);
        // The square holds everything: net areas, islands taken away once per island, add up to it.
        const double inHundred = 1e4;
        double net = 0.0;
        const auto islands = found.islands();
        for (size_t i = 0; i < found.size(); ++i) {
            net += found.area(i);
            for (const uint32_t island : islands[i])
                net -= found.area(island);
        }
        EXPECT_NEAR(net, inHundred, 0.02);
        EXPECT_GT(found.size(), 100u);
    }
}

// Curves that run side by side about as near as the tolerance: what is between them is no region, and which side of
// which they pass decides what the regions beside them are.
TEST(RegionSearch, KeepsTheOrderOfCurvesThatHardlyPart)
{
    const double off = 1.2 * KcGeRegionTolerances().onCurve;
    std::mt19937 random(3);
    for (int turn = 0; turn < 40; ++turn)
        for (const double side : { 1.0, -1.0 }) {
            const KcGeMatrix3d placed = KcGeMatrix3d::translation({ turn * 37.3, -turn * 11.9, 0 })
                * KcGeMatrix3d::rotation(turn * 0.161);
            // Two ends beside a line, one on each side of it, are one node, which the line passes by.
            Segments ends{ line(0, 0, 5, -side * off), line(5, side * off, 5, 5), line(0, 0, 10, 0),
                           line(0, 0, 5, 5), line(5, 5, 10, 0) };
            // A line and an arc between the same two points that part by little in the middle only.
            Segments bows = square(0, 0, 10);
            bows.push_back(line(0, 5, 10, 5));
            bows.push_back(KcGeSegment2d::bulge({ 0, 5 }, { 10, 5 }, side * off));
            for (const auto& [segments, area] : { std::pair{ &ends, 12.5 }, std::pair{ &bows, 50.0 } }) {
                SCOPED_TRACE(std::to_string(area) + " at turn " + std::to_string(turn));
                for (KcGeSegment2d& segment : *segments)
                    segment = segment.transformed(placed);
                std::shuffle(segments->begin(), segments->end(), random);
                const KcGeRegionSearch found(*segments);
                ASSERT_EQ(found.size(), 2u);
                EXPECT_NEAR(found.area(0), area, 1e-2);
                EXPECT_NEAR(found.area(1), area, 1e-2);
            }
        }
}

// No number that is none, no speck and no huge value may stop the search or get into a region.
TEST(RegionSearch, StandsDegenerateInput)
{
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    Segments bad = square(0, 0, 10);
    bad.push_back(line(nan, 0, 1, 1));
    bad.push_back(line(0, inf, 1, 1));
    bad.push_back(line(3, 3, 3, 3));
    bad.push_back(circle(5, 5, 0.0));
    bad.push_back(circle(5, 5, 1e-9));
    bad.push_back(line(1e20, 1e20, -1e20, 1e20));
    bad.push_back(KcGeSegment2d::bulge({ 2, 2 }, { 3, 3 }, 1e9));
    bad.push_back(spline({ { 1, 1 }, { 1, 1 }, { 1, 1 }, { 1, 1 } }));
    const KcGeRegionSearch found(bad);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_NEAR(found.area(0), 100.0, 1e-6);
    EXPECT_EQ(KcGeRegionSearch(Segments()).size(), 0u);
    EXPECT_EQ(KcGeRegionSearch(Segments{ line(nan, nan, nan, nan) }).size(), 0u);
}

TEST(RegionSearch, CancelsAndReportsFreeEnds)
{
    Segments many;
    for (int i = 0; i < 100; ++i)
        for (int k = 0; k < 50; ++k)
            many.push_back(line(i, k, i + 1, k));
    KcGeRegionOptions options;
    options.progress = [](double part) {
        EXPECT_GE(part, 0.0);
        EXPECT_LE(part, 1.0);
        return false;
    };
    const KcGeRegionSearch cancelled(many, options);
    EXPECT_TRUE(cancelled.wasCancelled());
    EXPECT_EQ(cancelled.size(), 0u);

    KcGeRegionOptions report;
    report.reportFreeEnds = true;
    const KcGeRegionSearch open(
        Segments{ line(0, 0, 10, 0), line(10, 0, 10, 7), line(12, 9, 0, 9) }, report);
    ASSERT_EQ(open.freeEnds().size(), 4u);
    EXPECT_EQ(open.freeEnds()[1].segment, 1u);
    EXPECT_NEAR(open.freeEnds()[1].distance, 2.0, 1e-9);
}

// What bench/make_linework.py draws: shared edges, T-junctions, ends a little off, copies, overshoots, islands, gaps.
TEST(RegionSearch, GeneratedLineworkAgainstItsTruth)
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty())
        GTEST_SKIP() << "python3 is not there";
    QTemporaryDir folder;
    struct Row {
        const char* name;
        QStringList options;
        double bridge;
    };
    const Row rows[] = {
        { "clean", { QStringLiteral("--clean") }, 0.0 },
        { "dirty", {}, 0.0 },
        { "gaps", { QStringLiteral("--gap"), QStringLiteral("0.2") }, 0.21 },
        { "splines of several spans and ellipses", { QStringLiteral("--smooth"), QStringLiteral("0.4") }, 0.0 },
        { "far out", { QStringLiteral("--origin"), QStringLiteral("4e8"), QStringLiteral("3e8") }, 0.0 },
    };
    for (const Row& row : rows)
        for (int seed = 1; seed <= 3; ++seed) {
            SCOPED_TRACE(std::string(row.name) + ", seed " + std::to_string(seed));
            const QString out = folder.filePath(QStringLiteral("linework"));
            const QStringList arguments = QStringList{ QStringLiteral(VERDELIS_SOURCE_DIR "/bench/make_linework.py"),
                                              QStringLiteral("-n"), QStringLiteral("400"), QStringLiteral("--seed"),
                                              QString::number(seed) }
                + row.options + QStringList{ out };
            ASSERT_EQ(QProcess::execute(python, arguments), 0);
            KcGeRegionOptions options;
            options.bridge = row.bridge;
            const KcGeRegionSearch found(linework::readLinework((out + QStringLiteral(".crv")).toStdString()), options);
            const linework::Score score
                = linework::compare(found, linework::readTruth((out + QStringLiteral(".truth")).toStdString()), 1e-3);
            EXPECT_GT(score.zones, 400u);
            EXPECT_EQ(score.right, score.zones);
            EXPECT_EQ(score.extra, 0u);
        }
}
