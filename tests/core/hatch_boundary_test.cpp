// Boundaries of hatches: as many curves as outlines, of the right kind, enclosing the area of the hatch.

#include "core/hatch_catalogue.h"
#include "core/draw.h"
#include "core/support.h"

#include <gtest/gtest.h>

namespace {

using core_test::Drawing;

KcDbHatch::Loop square(double x, double y, double side)
{
    KcDbHatch::Loop loop;
    loop.type = 3;
    for (const KcGePoint2d p : { KcGePoint2d{ x, y }, KcGePoint2d{ x + side, y }, KcGePoint2d{ x + side, y + side },
                                 KcGePoint2d{ x, y + side } })
        loop.vertices.push_back({ p.x, p.y });
    return loop;
}

KcDbHatch::Loop edges(std::vector<KcDbHatch::Edge> list)
{
    KcDbHatch::Loop loop;
    loop.type = 1;
    loop.edges = std::move(list);
    return loop;
}

double areaOf(const KcDbEntity& curve)
{
    if (curve.isKindOf(KcDbCircle::desc())) {
        const double r = static_cast<const KcDbCircle&>(curve).radius();
        return kPi * r * r;
    }
    EXPECT_TRUE(curve.isKindOf(KcDbPolyline::desc()));
    const auto& polyline = static_cast<const KcDbPolyline&>(curve);
    EXPECT_TRUE(polyline.isClosed());
    return std::abs(polyline.area());
}

} // namespace

TEST(HatchBoundary, OutlinesOfEveryKind)
{
    using H = KcDbHatch;
    H::EllipseEdge ellipse;
    ellipse.majorAxis = { 6, 0 };
    ellipse.radiusRatio = 0.5;
    ellipse.endAngle = kTwoPi;
    const struct {
        const char* name;
        std::vector<H::Loop> loops;
        std::vector<double> areas; ///< larger ones first
        size_t vertices; ///< of the first one; 0: a circle
        double tolerance;
    } cases[] = {
        { "square with island", { square(2, 2, 3), square(0, 0, 10) }, { 100, 9 }, 4, 1e-9 },
        { "circle", { edges({ H::ArcEdge{ { 1, 2 }, 3, 0, kTwoPi, true } }) }, { 9 * kPi }, 0, 1e-9 },
        { "clockwise circle", { edges({ H::ArcEdge{ { 1, 2 }, 3, 1, 1 + kTwoPi, false } }) }, { 9 * kPi }, 0, 1e-9 },
        { "arc and chord, any order",
          { edges({ H::LineEdge{ { 3, 0 }, { -3, 0 } }, H::ArcEdge{ { 0, 0 }, 3, 0, kPi, true } }) },
          { 4.5 * kPi },
          2,
          1e-9 },
        { "three quarters of a disc",
          { edges({ H::ArcEdge{ { 0, 0 }, 2, 0, 1.5 * kPi, true }, H::LineEdge{ { 0, -2 }, { 0, 0 } },
                    H::LineEdge{ { 0, 0 }, { 2, 0 } } }) },
          { 3 * kPi },
          4, // the arc in two
          1e-9 },
        // Runs of arcs: 1e-6 of the size, all round.
        { "ellipse", { edges({ ellipse }) }, { 18 * kPi }, size_t(-1), 1e-3 },
    };
    for (const auto& c : cases) {
        Drawing drawing;
        auto hatch = std::make_unique<KcDbHatch>();
        hatch->data().loops = c.loops;
        hatch->setColorIndex(3);
        const KcDbObjectId id = AppendToModelSpace(std::move(hatch));
        std::vector<std::unique_ptr<KcDbEntity>> curves;
        ASSERT_TRUE(RestoreHatchBoundary(id, curves)) << c.name;
        ASSERT_EQ(curves.size(), c.areas.size()) << c.name;
        for (size_t i = 0; i < curves.size(); ++i)
            EXPECT_NEAR(areaOf(*curves[i]), c.areas[i], c.tolerance) << c.name;
        EXPECT_EQ(curves[0]->colorIndex(), 3);
        EXPECT_TRUE(curves[0]->objectId().isNull());
        if (c.vertices == 0)
            EXPECT_TRUE(curves[0]->isKindOf(KcDbCircle::desc())) << c.name;
        else if (c.vertices != size_t(-1))
            EXPECT_EQ(static_cast<KcDbPolyline&>(*curves[0]).numVerts(), c.vertices) << c.name;

        std::vector<KcDbObjectId> ids;
        EXPECT_TRUE(GetHatchBoundary({ id, KcDbObjectId() }, ids)) << c.name;
        EXPECT_EQ(ids.size(), c.areas.size()) << c.name;
        const KcDbRead<KcDbEntity> drawn(ids[0]);
        EXPECT_EQ(drawn->colorIndex(), KcCmColor::kByLayer);
        EXPECT_LT((drawn->geomExtents().max - KcDbRead<KcDbHatch>(id)->geomExtents().max).length(), 1e-2);
        EXPECT_FALSE(GetHatchBoundary({ ids[0] }, ids)); // no hatch
        EXPECT_TRUE(ids.empty());
    }
}
