// Areas, boxes and transforms of hatches. Areas follow from elementary formulas.

#include "db/hatch.h"

#include "ge/arc.h"
#include "ge/spline.h"

#include <gtest/gtest.h>

namespace {

using Loop = KcDbHatch::Loop;

Loop polygon(std::vector<KcDbPolyline::Vertex> vertices)
{
    Loop loop;
    loop.type = 1 | 2;
    loop.hasBulges = true;
    loop.vertices = std::move(vertices);
    return loop;
}

Loop square(double x, double y, double side)
{
    return polygon({ { x, y }, { x + side, y }, { x + side, y + side }, { x, y + side } });
}

Loop edges(std::vector<KcDbHatch::Edge> list)
{
    Loop loop;
    loop.type = 1;
    loop.edges = std::move(list);
    return loop;
}

KcDbHatch::LineEdge line(double x1, double y1, double x2, double y2)
{
    return { { x1, y1 }, { x2, y2 } };
}

/// The upper half of an ellipse of half axes 3 and 1 about the origin, closed by its longer axis.
Loop halfEllipse(bool counterClockwise)
{
    KcDbHatch::EllipseEdge arc;
    arc.majorAxis = { 3, 0 };
    arc.radiusRatio = 1.0 / 3;
    arc.counterClockwise = counterClockwise;
    // Clockwise angles are counted the other way round: the same half from 180° to 360°.
    arc.startAngle = counterClockwise ? 0 : kPi;
    arc.endAngle = counterClockwise ? kPi : kTwoPi;
    if (counterClockwise)
        return edges({ arc, line(-3, 0, 3, 0) });
    return edges({ arc, line(3, 0, -3, 0) });
}

struct Case {
    const char* name;
    std::vector<Loop> loops;
    std::optional<double> area;
};

std::vector<Case> cases()
{
    Loop open = square(0, 0, 10);
    open.closed = false;
    Loop fullCircle = edges({ KcDbHatch::ArcEdge{ { 5, 5 }, 2, 0, kTwoPi, true } });
    // Sides of the unit square in any order and direction.
    const Loop shuffled = edges({ line(1, 0, 0, 0), line(1, 1, 0, 1), line(1, 0, 1, 1), line(0, 1, 0, 0) });
    KcDbHatch::SplineEdge spline;
    const auto curve = KcGeNurbsCurve3d::throughPoints({ { 0, 0, 0 }, { 2, 0, 0 } }, {});
    spline.knots = curve->knots;
    spline.controlPoints = { { 0, 0 }, { 0, 3 }, { 2, 3 }, { 2, 0 } };
    KcDbHatch::SplineEdge broken;
    return {
        { "square", { square(0, 0, 10) }, 100 },
        { "clockwise square", { polygon({ { 0, 0 }, { 0, 10 }, { 10, 10 }, { 10, 0 } }) }, 100 },
        { "half circle", { polygon({ { 0, 0, 1 }, { 2, 0, 0 } }) }, kPi / 2 },
        { "island", { square(0, 0, 10), square(2, 2, 3) }, 91 },
        { "island first", { square(2, 2, 3), square(0, 0, 10) }, 91 },
        { "island in an island", { square(0, 0, 10), square(1, 1, 6), square(2, 2, 3) }, 100 - 36 + 9 },
        { "side by side", { square(0, 0, 10), square(20, 0, 2) }, 104 },
        { "island that touches", { square(0, 0, 10), square(0, 2, 3) }, 91 },
        { "round island", { square(0, 0, 10), fullCircle }, 100 - 4 * kPi },
        { "half ellipse", { halfEllipse(true) }, 1.5 * kPi },
        { "half ellipse clockwise", { halfEllipse(false) }, 1.5 * kPi },
        { "edges in any order", { shuffled }, 1 },
        // A cubic over (0,0) (0,3) (2,3) (2,0) encloses 3/20 of the cross products' sum: 3.6 over its chord.
        { "spline", { edges({ spline, line(2, 0, 0, 0) }) }, 3.6 },
        { "open polyline", { open }, std::nullopt },
        { "open edges", { edges({ line(0, 0, 1, 0), line(1, 0, 1, 1) }) }, std::nullopt },
        { "one good loop, one open", { square(0, 0, 10), open }, std::nullopt },
        { "no area", { polygon({ { 0, 0 }, { 5, 5 } }) }, std::nullopt },
        { "broken spline", { edges({ broken, line(2, 0, 0, 0) }) }, std::nullopt },
        { "no loops", {}, std::nullopt },
        { "a loop of nothing", { edges({}) }, std::nullopt },
        { "a value that is no number",
          { polygon({ { std::numeric_limits<double>::quiet_NaN(), 0 }, { 1, 0 }, { 1, 1 } }) },
          std::nullopt },
    };
}

} // namespace

TEST(Hatch, AreaUnderTransforms)
{
    const std::pair<const char*, KcGeMatrix3d> transforms[] = {
        { "as it is", {} },
        { "turned", KcGeMatrix3d::rotation(1.234) },
        { "mirrored", KcGeMatrix3d::mirroring({ 3, 1, 0 }, { 1, 2, 0 }) },
        { "half the size", KcGeMatrix3d::scaling(0.5) },
        { "far away", KcGeMatrix3d::translation({ 5e5, 4e6, 0 }) },
        { "uneven", KcGeMatrix3d::scaling(KcGeVector3d{ 3, 0.5, 1 }) * KcGeMatrix3d::rotation(0.3) },
        { "turned over", KcGeMatrix3d::rotation(kPi, { 1, 1, 0 }) },
    };
    for (const Case& c : cases())
        for (const auto& [name, matrix] : transforms) {
            KcDbHatch hatch;
            hatch.data().loops = c.loops;
            const KcGeExtents3d expected = hatch.extentsUnder(matrix);
            ASSERT_EQ(hatch.transformBy(matrix), Kcad::eOk);
            const auto area = hatch.getArea();
            ASSERT_EQ(area.has_value(), c.area.has_value()) << c.name << ", " << name;
            const double factor = std::abs(matrix.determinant() / (name[0] == 'h' ? 0.5 : 1.0));
            if (area) {
                EXPECT_NEAR(*area, *c.area * factor, 1e-6 * std::max(1.0, *area)) << c.name << ", " << name;
                const KcGeExtents3d box = hatch.geomExtents();
                EXPECT_LT((box.min - expected.min).length(), 1e-4) << c.name << ", " << name;
                EXPECT_LT((box.max - expected.max).length(), 1e-4) << c.name << ", " << name;
            }
        }
}

TEST(Hatch, BoxCountsArcs)
{
    KcDbHatch hatch;
    hatch.data().loops = { polygon({ { 0, 0, 1 }, { 2, 0, 0 } }) };
    hatch.data().elevation = 7;
    const KcGeExtents3d box = hatch.geomExtents();
    EXPECT_NEAR(box.min.y, -1, 1e-9);
    EXPECT_NEAR(box.max.y, 0, 1e-9);
    EXPECT_EQ(box.max.z, 7);
    EXPECT_TRUE(KcDbHatch().geomExtents().isEmpty());
}

TEST(Hatch, PatternFollowsTheTransform)
{
    KcDbHatch hatch;
    hatch.data().loops = { square(0, 0, 10) };
    hatch.data().lines = { { 0.0, { 1, 1 }, { 0, 2 }, { 3, -1 } } };
    hatch.data().patternScale = 2;
    hatch.transformBy(KcGeMatrix3d::scaling(3) * KcGeMatrix3d::mirroring({}, { 1, 1, 0 }));
    const KcDbHatch::PatternLine& pattern = hatch.data().lines[0];
    EXPECT_NEAR(pattern.angle, kPi / 2, 1e-12); // the mirror exchanges X and Y
    EXPECT_NEAR(pattern.offset.x, 6, 1e-12);
    EXPECT_NEAR(pattern.base.y, 3, 1e-12);
    EXPECT_NEAR(pattern.dashes[1], -3, 1e-12);
    EXPECT_NEAR(hatch.data().patternScale, 6, 1e-12);
}
