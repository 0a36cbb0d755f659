// Outlines as the commands handle them.

#include "core/polygon.h"

#include <gtest/gtest.h>

namespace {

KcDbPolyline bed()
{
    KcDbPolyline result;
    result.addVertex({ 0, 0 });
    result.addVertex({ 5, 0 });
    result.addVertex({ 10, 0 }, 1.0); // a half circle of radius 5 about (10, 5)
    result.addVertex({ 10, 10 });
    result.addVertex({ 0, 10 });
    result.setClosed(true);
    return result;
}

} // namespace

TEST(Outline, OfPolylines)
{
    XPoly2D outline(bed());
    EXPECT_EQ(outline.GetNodes().size(), 5u);
    outline.Compress();
    EXPECT_EQ(outline.GetNodes().size(), 4u);
    EXPECT_NEAR(outline.GetArea(), 100 + 12.5 * kPi, 1e-9);
    EXPECT_EQ(int(outline.PtRelation({ 14, 5 })), 3);
    EXPECT_EQ(int(outline.PtRelation({ 15, 5 })), 2);
    EXPECT_EQ(int(outline.PtRelation({ 0, 10 })), 1);
    EXPECT_EQ(int(outline.PtRelation({ 14, 1 })), 0);
    EXPECT_EQ(int(XPoly2D().PtRelation({ 0, 0 })), 4);
    const auto polyline = PolyConvert(outline);
    ASSERT_TRUE(polyline);
    EXPECT_TRUE(polyline->isClosed());
    EXPECT_NEAR(std::abs(polyline->area()), outline.GetArea(), 1e-9);
    std::vector<XCurveSegment> segments;
    ExplodePoly2D(outline, segments);
    EXPECT_EQ(segments.size(), 4u);
    EXPECT_EQ(PtRelationToPoly(bed(), { 2, 0, 7 }), 0);
    EXPECT_EQ(PtRelationToPoly(bed(), { 2, 1, 7 }), 1);
    EXPECT_EQ(PtRelationToPoly(bed(), { 2, -1, 7 }), -1);
    EXPECT_TRUE(CheckPointOnRegion({ 14, 5, 0 }, bed()));
    EXPECT_FALSE(CheckPointOnRegion({ 16, 5, 0 }, bed()));
}

TEST(Outline, OfOtherEntities)
{
    EXPECT_EQ(int(XPoly2D(KcDbCircle({ 1, 1, 0 }, 3)).PtRelation({ 3, 3 })), 3);
    EXPECT_EQ(XPoly2D(KcDbCircle({ 1, 1, 0 }, 3)).GetNodes().size(), 2u);
    KcDbEllipse ellipse;
    ellipse.data().majorAxis = { 0, 4, 0 };
    ellipse.data().radiusRatio = 0.25;
    const XPoly2D outline(ellipse);
    EXPECT_TRUE(outline.GetNodes().empty());
    EXPECT_NEAR(outline.GetArea(), 4 * kPi, 1e-6);
    EXPECT_EQ(int(outline.PtRelation({ 0.5, 3 })), 3);
    EXPECT_EQ(int(outline.PtRelation({ 1, 1 })), 0);
    const auto polyline = PolyConvert(outline);
    ASSERT_TRUE(polyline);
    EXPECT_NEAR(std::abs(polyline->area()), 4 * kPi, 0.02);
    EXPECT_TRUE(XPoly2D(KcDbXline()).IsEmpty());
    EXPECT_TRUE(XPoly2D(KcDbPoint()).IsEmpty());
    const XPoly2D line(KcDbLine({ 0, 0, 0 }, { 4, 0, 0 }));
    EXPECT_FALSE(line.IsClosed());
    EXPECT_EQ(line.GetSegments().size(), 1u);
}

TEST(Outline, ArcsAndCircles)
{
    const XArc arc({ 0, 0 }, { 2, 0 }, kPi); // below the chord
    ASSERT_TRUE(arc.IsValid());
    EXPECT_NEAR(arc.GetRadius(), 1.0, 1e-12);
    EXPECT_NEAR(arc.GetMidPoint().y, -1.0, 1e-12);
    EXPECT_NEAR(arc.GetStartAngle(), kPi, 1e-12);
    const XArc above({ 0, 0 }, { 2, 0 }, -kPi);
    EXPECT_NEAR(above.GetMidPoint().y, 1.0, 1e-12);
    EXPECT_NEAR(
        normalizedAngle(above.GetEndAngle() - kPi), 0.0, 1e-12); // counter-clockwise it ends on the left
    EXPECT_FALSE(XArc({ 1, 1 }, { 1, 1 }, 1.0).IsValid());
    const XCircle circle{ { 1, 0 }, 2 };
    EXPECT_EQ(int(circle.PtRelation({ 2, 0 })), 3);
    EXPECT_EQ(int(circle.PtRelation({ 3, 0 })), 2);
    EXPECT_EQ(int(circle.PtRelation({ 4, 0 })), 0);
    EXPECT_EQ(int(XCircle{}.PtRelation({ 4, 0 })), 4);
}
