// Curve operations of the entities: points of each entity's own formula, states of damaged ones, and entities
// made of parts of others.

#include "db/block_table_record.h"
#include "db/curves.h"
#include "db/database.h"
#include "db/polyline.h"

#include <gtest/gtest.h>

namespace {

using Curves = KcDbCurve::Curves;

constexpr double kNear = 1e-9;

std::unique_ptr<KcDbArc> arc(KcGeVector3d normal = KcGeVector3d::kZAxis)
{
    auto entity = std::make_unique<KcDbArc>();
    entity->data().center = { 10, 5, 2 };
    entity->data().radius = 4.0;
    entity->data().startAngle = 5.5;
    entity->data().endAngle = 1.0;
    entity->data().normal = normal;
    return entity;
}

std::unique_ptr<KcDbEllipse> ellipse()
{
    auto entity = std::make_unique<KcDbEllipse>();
    entity->data().center = { 3, 3, 0 };
    entity->data().majorAxis = { 4, 2, 0 };
    entity->data().radiusRatio = 0.4;
    entity->data().startParam = 5.0;
    entity->data().endParam = 2.0;
    return entity;
}

std::unique_ptr<KcDbPolyline> polyline(bool closed, KcGeVector3d normal = KcGeVector3d::kZAxis)
{
    auto entity = std::make_unique<KcDbPolyline>();
    entity->addVertex({ 0, 0 });
    entity->addVertex({ 10, 0 }, 1.0);
    entity->addVertex({ 10, 6 }, -0.3);
    entity->addVertex({ 0, 6 });
    entity->data().elevation = 3.0;
    entity->data().normal = normal;
    entity->data().constantWidth = 0.5;
    entity->setClosed(closed);
    return entity;
}

std::unique_ptr<KcDbSpline> spline(bool closed)
{
    auto entity = std::make_unique<KcDbSpline>();
    entity->data().fitPoints = { { 0, 0, 0 }, { 5, 4, 0 }, { 9, -2, 0 }, { 4, -6, 0 } };
    entity->data().flags = closed ? 9 : 8;
    return entity;
}

std::vector<std::pair<std::string, std::unique_ptr<KcDbCurve>>> curves()
{
    std::vector<std::pair<std::string, std::unique_ptr<KcDbCurve>>> all;
    const KcGeVector3d tilted{ 0.3, -0.4, 0.8 }, behind{ 0, 0, -1 };
    all.emplace_back("line", std::make_unique<KcDbLine>(KcGePoint3d{ 1, 2, 0 }, KcGePoint3d{ 7, -3, 4 }));
    all.emplace_back("arc", arc());
    all.emplace_back("arc from behind", arc(behind));
    all.emplace_back("tilted arc", arc(tilted));
    all.emplace_back("circle", std::make_unique<KcDbCircle>(KcGePoint3d{ 3, 4, 0 }, 2.0));
    all.emplace_back("ellipse", ellipse());
    all.emplace_back("spline", spline(false));
    all.emplace_back("closed spline", spline(true));
    all.emplace_back("polyline", polyline(false));
    all.emplace_back("closed polyline", polyline(true));
    all.emplace_back("tilted polyline", polyline(true, tilted));
    return all;
}

double lengthOf(const KcDbCurve& curve)
{
    double end = 0.0, length = -1.0;
    EXPECT_EQ(curve.getEndParam(end), Kcad::eOk);
    EXPECT_EQ(curve.getDistAtParam(end, length), Kcad::eOk);
    return length;
}

KcGePoint3d pointAtDist(const KcDbCurve& curve, double distance)
{
    KcGePoint3d point;
    EXPECT_EQ(curve.getPointAtDist(distance, point), Kcad::eOk) << distance;
    return point;
}

} // namespace

TEST(CurveEntity, PointsFollowTheEntitysOwnFormula)
{
    KcGePoint3d point;
    for (const KcGeVector3d normal :
         { KcGeVector3d{ 0, 0, 1 }, { 0, 0, -1 }, { 0.3, -0.4, 0.8 }, { 0, 0, 0 } }) {
        const auto entity = arc(normal);
        const KcGeMatrix3d toWorld = KcGeMatrix3d::planeToWorld(normal);
        for (const double angle : { 5.5, 6.0, 7.0, 1.0 + kTwoPi }) {
            ASSERT_EQ(entity->getPointAtParam(angle, point), Kcad::eOk) << angle;
            const KcGePoint3d expected
                = toWorld * KcGePoint3d{ 10 + 4 * std::cos(angle), 5 + 4 * std::sin(angle), 2 };
            EXPECT_LT(point.distanceTo(expected), kNear);
        }
        EXPECT_EQ(entity->getPointAtParam(5.0, point), Kcad::eInvalidInput);
        EXPECT_NEAR(lengthOf(*entity), 4 * (1.0 + kTwoPi - 5.5), kNear);
    }
    const auto oval = ellipse();
    for (const double a : { 5.0, 6.2, 8.0, 2.0 + kTwoPi }) {
        ASSERT_EQ(oval->getPointAtParam(a, point), Kcad::eOk);
        const KcGePoint3d expected{ 3 + 4 * std::cos(a) - 0.8 * std::sin(a),
                                    3 + 2 * std::cos(a) + 1.6 * std::sin(a), 0 };
        EXPECT_LT(point.distanceTo(expected), kNear);
    }
    // Half circle of radius 3 beside a line of 10: its far side is at parameter 1.5.
    const auto outline = polyline(true);
    ASSERT_EQ(outline->getPointAtParam(1.5, point), Kcad::eOk);
    EXPECT_LT(point.distanceTo({ 13, 3, 3 }), kNear);
    ASSERT_EQ(outline->getPointAtParam(4.0, point), Kcad::eOk);
    EXPECT_EQ(point, (KcGePoint3d{ 0, 0, 3 }));
    KcGeVector3d derivative;
    ASSERT_EQ(outline->getFirstDeriv(KcGePoint3d{ 13, 3, 3 }, derivative), Kcad::eOk);
    EXPECT_LT((derivative.normal() - KcGeVector3d::kYAxis).length(), kNear);
    EXPECT_EQ(outline->getFirstDeriv(KcGePoint3d{ 5, 1, 3 }, derivative), Kcad::eInvalidInput);
    EXPECT_TRUE(outline->isClosed());
    EXPECT_FALSE(polyline(false)->isClosed());
}

TEST(CurveEntity, AChangedCurveIsAskedAnew)
{
    auto entity = polyline(false);
    for (int round = 0; round < 4; ++round) {
        const double before = lengthOf(*entity);
        entity->data().vertices[0].x -= 1.0;
        EXPECT_NEAR(lengthOf(*entity), before + 1.0, kNear) << round;
    }
    entity->setBulgeAt(1, 0.0);
    EXPECT_NEAR(lengthOf(*entity), 14.0 + 6.0 + bulgeSegmentLength({ 10, 6 }, { 0, 6 }, -0.3), kNear);
}

TEST(CurveEntity, ReversedRunsTheSameWayBack)
{
    for (auto& [name, curve] : curves()) {
        SCOPED_TRACE(name);
        const double length = lengthOf(*curve);
        std::vector<KcGePoint3d> points;
        for (int i = 0; i <= 8; ++i)
            points.push_back(pointAtDist(*curve, length * i / 8));
        const bool oneWay = curve->isKindOf(KcDbArc::desc()) || curve->isKindOf(KcDbCircle::desc());
        ASSERT_EQ(curve->reverseCurve(), oneWay ? Kcad::eNotApplicable : Kcad::eOk);
        if (oneWay)
            continue;
        EXPECT_NEAR(lengthOf(*curve), length, 1e-8);
        for (int i = 0; i <= 8; ++i)
            EXPECT_LT(pointAtDist(*curve, length * i / 8).distanceTo(points[size_t(8 - i)]), 1e-7) << i;
    }
    // Widths stay where they were drawn.
    auto band = polyline(false);
    band->data().vertices[0].startWidth = 1.0;
    band->data().vertices[0].endWidth = 2.0;
    ASSERT_EQ(band->reverseCurve(), Kcad::eOk);
    EXPECT_EQ(band->data().vertices[2].startWidth, 2.0);
    EXPECT_EQ(band->data().vertices[2].endWidth, 1.0);
}

TEST(CurveEntity, PartsAreEntitiesThatAddUp)
{
    for (const auto& [name, curve] : curves()) {
        SCOPED_TRACE(name);
        const double length = lengthOf(*curve);
        const bool closed = curve->isClosed();
        curve->setColorIndex(3);
        std::vector<KcGePoint3d> points;
        for (const double fraction : { 0.6, 0.25, 0.85 })
            points.push_back(pointAtDist(*curve, fraction * length));
        Curves parts;
        ASSERT_EQ(curve->getSplitCurves(points, parts), Kcad::eOk);
        ASSERT_EQ(parts.size(), closed ? 3u : 4u);
        double at = closed ? 0.25 * length : 0.0;
        for (const auto& part : parts) {
            EXPECT_EQ(part->colorIndex(), 3);
            const double own = lengthOf(*part);
            for (const double fraction : { 0.0, 0.4, 1.0 }) {
                const double d = std::fmod(at + fraction * own, length * (1 + 1e-12));
                EXPECT_LT(pointAtDist(*part, fraction * own).distanceTo(pointAtDist(*curve, d)), 1e-7);
            }
            at += own;
        }
        EXPECT_NEAR(at, closed ? 1.25 * length : length, 1e-7);
        EXPECT_EQ(curve->getSplitCurves({ KcGePoint3d{ 1e4, 0, 0 } }, parts), Kcad::eInvalidInput);
    }
    Curves parts;
    const auto outline = polyline(true);
    ASSERT_EQ(outline->getSplitCurves(std::vector<double>{ 0.5, 2.5 }, parts), Kcad::eOk);
    ASSERT_EQ(parts.size(), 2u);
    const auto& first = static_cast<const KcDbPolyline&>(*parts[0]);
    EXPECT_EQ(first.isA(), KcDbPolyline::desc());
    EXPECT_EQ(first.data().constantWidth, 0.5);
    EXPECT_EQ(first.data().elevation, 3.0);
    EXPECT_EQ(first.numVerts(), 4u);
    EXPECT_NEAR(first.getBulgeAt(1), 1.0, kNear);
}

TEST(CurveEntity, ExplodedPolylinesAreLinesAndArcsOfTheirPlane)
{
    const auto outline = polyline(true);
    Curves pieces;
    ASSERT_EQ(outline->explode(pieces), Kcad::eOk);
    ASSERT_EQ(pieces.size(), 4u);
    EXPECT_EQ(pieces[0]->isA(), KcDbLine::desc());
    ASSERT_EQ(pieces[1]->isA(), KcDbArc::desc());
    // The third runs clockwise; as an arc it is counter-clockwise about the same normal.
    ASSERT_EQ(pieces[2]->isA(), KcDbArc::desc());
    const auto& clockwise = static_cast<const KcDbArc&>(*pieces[2]);
    EXPECT_EQ(clockwise.data().normal, KcGeVector3d::kZAxis);
    KcGePoint3d start;
    ASSERT_EQ(clockwise.getStartPoint(start), Kcad::eOk);
    EXPECT_LT(start.distanceTo({ 0, 6, 3 }), kNear);
    EXPECT_EQ(arc()->explode(pieces), Kcad::eNotApplicable);
}

TEST(CurveEntity, AreasWorkedByHand)
{
    double area = 0.0;
    ASSERT_EQ(KcDbCircle({ 1, 1, 0 }, 3.0).getArea(area), Kcad::eOk);
    EXPECT_NEAR(area, 9 * kPi, kNear);
    auto outline = polyline(false); // closed by a line where it is open; the clockwise bulge bites into it
    ASSERT_EQ(outline->getArea(area), Kcad::eOk);
    EXPECT_NEAR(area, 60 + 4.5 * kPi + bulgeSegmentArea({ 10, 6 }, { 0, 6 }, -0.3), kNear);
    outline->reverseCurve();
    const double forward = area;
    ASSERT_EQ(outline->getArea(area), Kcad::eOk);
    EXPECT_NEAR(area, forward, kNear);
}

TEST(CurveEntity, WhatIsNoCurveSaysSo)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    KcDbPolyline empty;
    KcDbPolyline damaged;
    damaged.addVertex({ none, 0 });
    damaged.addVertex({ 1, 0 });
    KcDbCircle negative({ 0, 0, 0 }, -1.0);
    KcDbArc infinite;
    infinite.data().radius = 1.0;
    infinite.data().endAngle = std::numeric_limits<double>::infinity();
    KcDbSpline nothing;
    KcDbRay nowhere;
    nowhere.data().unitDir = { 0, 0, 0 };
    for (const KcDbCurve* curve : std::initializer_list<const KcDbCurve*>{ &empty, &damaged, &negative,
                                                                           &infinite, &nothing, &nowhere }) {
        double value = 7.0;
        KcGePoint3d point{ 7, 7, 7 };
        Curves parts;
        EXPECT_EQ(curve->getStartParam(value), Kcad::eDegenerateGeometry);
        EXPECT_EQ(curve->getDistAtParam(0.0, value), Kcad::eDegenerateGeometry);
        EXPECT_EQ(curve->getClosestPointTo({}, point), Kcad::eDegenerateGeometry);
        EXPECT_EQ(curve->getSplitCurves(std::vector<double>{ 0.5 }, parts), Kcad::eDegenerateGeometry);
        EXPECT_EQ(value, 7.0);
        EXPECT_FALSE(curve->isClosed());
        EXPECT_FALSE(kcdbCurveFrom(curve->curve()));
    }
    KcDbXline endless;
    double value = 0.0;
    KcGePoint3d point;
    EXPECT_EQ(endless.getEndParam(value), Kcad::eNotApplicable);
    EXPECT_EQ(endless.getStartPoint(point), Kcad::eNotApplicable);
    EXPECT_EQ(endless.getClosestPointTo({ -5, 3, 0 }, point), Kcad::eOk);
    EXPECT_EQ(point, (KcGePoint3d{ -5, 0, 0 }));
}

TEST(CurveEntity, OldPolylinesRunOverTheirVertices)
{
    struct Vertex {
        KcGePoint3d position;
        double bulge;
        int flags;
    };
    const auto build = [](KcDbDatabase& database, int flags, const std::vector<Vertex>& vertices) {
        KcDbObjectId id;
        {
            const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
            id = space->appendEntity(std::make_unique<KcDb2dPolyline>());
        }
        KcDbWrite<KcDb2dPolyline> polyline(id);
        polyline->data().flags = flags;
        for (const Vertex& v : vertices) {
            auto vertex = std::make_unique<KcDbVertex>();
            vertex->data().position = v.position;
            vertex->data().bulge = v.bulge;
            vertex->data().flags = v.flags;
            polyline->data().vertices.push_back(database.addObject(std::move(vertex), id));
        }
        return id;
    };
    KcDbDatabase database;
    const KcDbObjectId flat
        = build(database, 0, { { { 0, 0, 0 }, 0, 0 }, { { 10, 0, 0 }, 1.0, 0 }, { { 10, 6, 0 }, 0, 0 } });
    EXPECT_NEAR(lengthOf(*KcDbRead<KcDbCurve>(flat)), 10 + 3 * kPi, kNear);
    {
        KcDbWrite<KcDb2dPolyline> polyline(flat);
        ASSERT_EQ(polyline->reverseCurve(), Kcad::eOk);
        EXPECT_LT(pointAtDist(*polyline, 1.5 * kPi).distanceTo({ 13, 3, 0 }), kNear);
    }
    // Of a fitted curve the frame is not run over.
    const KcDbObjectId fitted = build(
        database, 4,
        { { { 99, 99, 0 }, 0, 16 }, { { 0, 0, 0 }, 0, 8 }, { { 3, 4, 0 }, 0, 8 }, { { 98, 0, 0 }, 0, 16 } });
    EXPECT_NEAR(lengthOf(*KcDbRead<KcDbCurve>(fitted)), 5.0, kNear);
    const KcDbObjectId spatial = build(
        database, 8 | 1,
        { { { 0, 0, 0 }, 0, 32 }, { { 2, 3, 6 }, 0, 32 }, { { 2, 3, 0 }, 0, 32 }, { { 9, 9, 1 }, 0, 32 } });
    const KcDbRead<KcDbCurve> closed(spatial);
    EXPECT_TRUE(closed->isClosed());
    EXPECT_FALSE(closed->isPlanar());
    EXPECT_NEAR(pointAtDist(*closed, 10.0).z, 3.0, kNear);
    Curves parts;
    ASSERT_EQ(closed->getSplitCurves(std::vector<double>{ 0.5, 1.5 }, parts), Kcad::eOk);
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_NEAR(lengthOf(*parts[0]) + lengthOf(*parts[1]), lengthOf(*closed), kNear);
    const KcDbObjectId mesh = build(database, 16, { { { 0, 0, 0 }, 0, 64 }, { { 1, 0, 0 }, 0, 64 } });
    double value = 0.0;
    EXPECT_EQ(KcDbRead<KcDbCurve>(mesh)->getEndParam(value), Kcad::eDegenerateGeometry);
}
