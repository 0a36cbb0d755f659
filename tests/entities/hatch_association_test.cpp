// Hatches as commands make them: patterns from files, loops from curves, and curves that are followed.

#include "db/block_table_record.h"
#include "db/database.h"
#include "db/hatch.h"
#include "db/hatch_patterns.h"
#include "platform/app_root.h"

#include <gtest/gtest.h>

namespace {

class HatchTest : public testing::Test {
protected:
    HatchTest()
    {
        platform::setAppRoot(QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis"));
        KcDbHatchPatterns::instance().reread();
    }
    ~HatchTest() override { platform::setAppRoot({}); }

    template <class T> KcDbObjectId add(std::unique_ptr<T> entity)
    {
        const KcDbRead<KcDbBlockTableRecord> space(m_database.modelSpace());
        return space->appendEntity(std::move(entity));
    }
    KcDbObjectId addLine(double x1, double y1, double x2, double y2)
    {
        return add(std::make_unique<KcDbLine>(KcGePoint3d{ x1, y1, 0 }, KcGePoint3d{ x2, y2, 0 }));
    }
    KcDbObjectId addSquare(double x, double y, double side)
    {
        auto polyline = std::make_unique<KcDbPolyline>();
        for (const KcGePoint2d p : { KcGePoint2d{ x, y }, KcGePoint2d{ x + side, y },
                                     KcGePoint2d{ x + side, y + side }, KcGePoint2d{ x, y + side } })
            polyline->addVertex(p);
        polyline->setClosed(true);
        return add(std::move(polyline));
    }
    void move(KcDbObjectId id, KcGeVector3d by)
    {
        KcDbWrite<KcDbEntity>(id)->transformBy(KcGeMatrix3d::translation(by));
    }
    /// An associative hatch along curves, one loop each.
    KcDbObjectId hatchAlong(const std::vector<std::vector<KcDbObjectId>>& loops)
    {
        auto hatch = std::make_unique<KcDbHatch>();
        hatch->setAssociative(true);
        hatch->setPattern(1, QStringLiteral("ANSI31"));
        for (const auto& ids : loops)
            EXPECT_EQ(hatch->appendLoop(KcDbHatch::kExternal, ids), Kcad::eOk);
        EXPECT_EQ(hatch->evaluateHatch(&m_database), Kcad::eOk);
        const KcDbObjectId id = add(std::move(hatch));
        KcDbWrite<KcDbHatch>(id)->watchSources();
        return id;
    }
    double areaOf(KcDbObjectId hatch) { return KcDbRead<KcDbHatch>(hatch)->getArea().value_or(-1.0); }
    double leftOf(KcDbObjectId hatch) { return KcDbRead<KcDbHatch>(hatch)->geomExtents().min.x; }

    KcDbDatabase m_database;
};

struct UndoStep {
    explicit UndoStep(KcDbDatabase& database)
        : undo(database.undo())
    {
        undo.beginStep(QStringLiteral("TEST"));
    }
    ~UndoStep() { undo.endStep(); }
    KcDbUndo& undo;
};

} // namespace

TEST_F(HatchTest, PatternScaledTurnedAndAnchored)
{
    KcDbHatch hatch;
    ASSERT_EQ(hatch.setPattern(KcDbHatch::kPreDefined, QStringLiteral("brick")), Kcad::eOk);
    ASSERT_EQ(hatch.setPatternScale(2), Kcad::eOk);
    ASSERT_EQ(hatch.setPatternAngle(kPi / 2), Kcad::eOk);
    ASSERT_EQ(hatch.setOriginPoint({ 100, 50 }), Kcad::eOk);
    ASSERT_EQ(hatch.evaluateHatch(), Kcad::eOk);
    // Courses 6.35 mm apart, joints of the second kind half a brick further: 2 × 6.35 along the course.
    ASSERT_EQ(hatch.data().lines.size(), 3u);
    const auto expectLines = [&](double scale, double angle, KcGePoint2d origin) {
        const auto& courses = hatch.data().lines[0];
        EXPECT_NEAR(courses.angle, normalizedAngle(angle), 1e-12);
        EXPECT_NEAR(courses.spacing(), 6.35 * scale, 1e-9);
        EXPECT_NEAR(courses.base.distanceTo(origin), 0, 1e-9);
        const auto& joints = hatch.data().lines[2];
        EXPECT_NEAR(joints.base.distanceTo(origin), 6.35 * scale, 1e-9);
        EXPECT_NEAR(joints.period(), 12.7 * scale, 1e-9);
    };
    expectLines(2, kPi / 2, { 100, 50 });
    // What exists is changed along, and as it would have been made anew.
    hatch.setPatternScale(5);
    hatch.setPatternAngle(0.3);
    hatch.setOriginPoint({ -7, 0 });
    expectLines(5, 0.3, { -7, 0 });
    const auto changed = hatch.data().lines;
    hatch.setPattern(KcDbHatch::kPreDefined, QStringLiteral("BRICK"));
    hatch.evaluateHatch();
    for (size_t i = 0; i < changed.size(); ++i) {
        EXPECT_NEAR(hatch.data().lines[i].base.distanceTo(changed[i].base), 0, 1e-9);
        EXPECT_NEAR((hatch.data().lines[i].offset - changed[i].offset).length(), 0, 1e-9);
    }
}

TEST_F(HatchTest, PatternsThatCannotBe)
{
    KcDbHatch hatch;
    EXPECT_EQ(hatch.setPattern(7, QStringLiteral("NET")), Kcad::eInvalidInput);
    EXPECT_EQ(hatch.setPattern(1, QString()), Kcad::eInvalidInput);
    EXPECT_EQ(hatch.setPatternScale(0), Kcad::eInvalidInput);
    EXPECT_EQ(hatch.setPatternScale(std::nan("")), Kcad::eInvalidInput);
    EXPECT_EQ(hatch.setPatternAngle(HUGE_VAL), Kcad::eInvalidInput);
    ASSERT_EQ(hatch.setPattern(2, QStringLiteral("NOWHERE")), Kcad::eOk);
    EXPECT_EQ(hatch.evaluateHatch(), Kcad::eKeyNotFound);
    EXPECT_TRUE(hatch.drawnLines().empty());
    // A pattern that a drawing brought along can be turned though no file has it.
    hatch.data().lines = { { 0.0, {}, { 0, 3 }, {} } };
    EXPECT_EQ(hatch.setPatternAngle(kPi / 2), Kcad::eOk);
    EXPECT_NEAR(hatch.drawnLines()[0].offset.x, -3, 1e-12);
    ASSERT_EQ(hatch.setPattern(1, QStringLiteral("solid")), Kcad::eOk);
    EXPECT_TRUE(hatch.isSolidFill());
    EXPECT_EQ(hatch.evaluateHatch(), Kcad::eOk);
}

TEST_F(HatchTest, LoopsFromCurvesOfEveryKind)
{
    auto circle = std::make_unique<KcDbCircle>(KcGePoint3d{ 0, 0, 0 }, 2.0);
    auto ellipse = std::make_unique<KcDbEllipse>();
    ellipse->data().majorAxis = { 4, 0, 0 };
    ellipse->data().radiusRatio = 0.5;
    auto arc = std::make_unique<KcDbArc>();
    arc->data().radius = 3;
    arc->data().endAngle = kPi;
    // Seen from below: its X axis points the other way.
    auto below = std::make_unique<KcDbPolyline>();
    below->data().normal = { 0, 0, -1 };
    below->addVertex({ -1, 0 }, 1);
    below->addVertex({ -3, 0 }, 1);
    below->setClosed(true);
    auto repeated = std::make_unique<KcDbPolyline>();
    for (const KcGePoint2d p : { KcGePoint2d{ 0, 0 }, KcGePoint2d{ 4, 0 }, KcGePoint2d{ 4, 4 }, KcGePoint2d{ 0, 0 } })
        repeated->addVertex(p);
    const struct {
        const char* name;
        std::vector<KcDbObjectId> ids;
        double area;
    } cases[] = {
        { "circle", { add(std::move(circle)) }, 4 * kPi },
        { "ellipse", { add(std::move(ellipse)) }, 8 * kPi },
        { "arc and chord", { add(std::move(arc)), addLine(3, 0, -3, 0) }, 4.5 * kPi },
        { "polyline from below", { add(std::move(below)) }, kPi },
        { "ends on its start", { add(std::move(repeated)) }, 8 },
        { "four lines", { addLine(0, 0, 1, 0), addLine(1, 1, 1, 0), addLine(1, 1, 0, 1), addLine(0, 0, 0, 1) }, 1 },
    };
    for (const auto& c : cases) {
        KcDbHatch hatch;
        ASSERT_EQ(hatch.appendLoop(1, c.ids), Kcad::eOk) << c.name;
        EXPECT_NEAR(hatch.getArea().value_or(0), c.area, 1e-9) << c.name;
        EXPECT_TRUE(hatch.getAssocObjIds().empty()) << c.name;
    }
    // From below, the circle of the polyline stands about (2, 0).
    KcDbHatch mirrored;
    mirrored.appendLoop(1, cases[3].ids);
    EXPECT_NEAR(mirrored.geomExtents().min.x, 1, 1e-9);
    KcDbHatch open;
    EXPECT_EQ(open.appendLoop(1, { addLine(0, 0, 1, 0) }), Kcad::eInvalidInput);
    EXPECT_EQ(open.appendLoop(1, { m_database.modelSpace() }), Kcad::eNotThatKindOfClass);
    EXPECT_EQ(open.appendLoop(1, std::vector<KcGePoint2d>{ { 0, 0 }, { 1, 0 } }), Kcad::eInvalidInput);
    EXPECT_EQ(open.numLoops(), 0u);
}

TEST_F(HatchTest, FollowsItsBoundaryAndUndoTakesBoth)
{
    const KcDbObjectId outer = addSquare(0, 0, 10), island = addSquare(2, 2, 3);
    const KcDbObjectId hatch = hatchAlong({ { outer }, { island } });
    EXPECT_NEAR(areaOf(hatch), 91, 1e-9);
    {
        const UndoStep step(m_database);
        KcDbWrite<KcDbPolyline> polyline(island);
        polyline->data().vertices[2].y = 8; // a trapezium of 3 × (3 + 6) / 2
    }
    EXPECT_NEAR(areaOf(hatch), 100 - 13.5, 1e-9);
    m_database.undo().undo();
    EXPECT_NEAR(areaOf(hatch), 91, 1e-9);
    m_database.undo().redo();
    EXPECT_NEAR(areaOf(hatch), 100 - 13.5, 1e-9);
    m_database.undo().undo();

    {
        const UndoStep step(m_database);
        KcDbWrite<KcDbEntity>(island)->erase();
    }
    EXPECT_NEAR(areaOf(hatch), 91, 1e-9); // stays, and follows the other curve only
    EXPECT_EQ(KcDbRead<KcDbHatch>(hatch)->getAssocObjIds(), std::vector<KcDbObjectId>{ outer });
    m_database.undo().undo();
    EXPECT_EQ(KcDbRead<KcDbHatch>(hatch)->getAssocObjIds().size(), 2u);

    KcDbWrite<KcDbHatch>(hatch)->setAssociative(false);
    move(outer, { 50, 0, 0 });
    EXPECT_NEAR(leftOf(hatch), 0, 1e-9);
    EXPECT_TRUE(KcDbRead<KcDbEntity>(outer)->reactors().empty());
}

// Moved together, hatch and boundary stay together, whichever comes first; so do loops of several curves.
TEST_F(HatchTest, MovedWithItsBoundaryItMovesOnce)
{
    for (const bool hatchFirst : { true, false }) {
        const std::vector<KcDbObjectId> sides{ addLine(0, 0, 4, 0), addLine(4, 0, 4, 4), addLine(4, 4, 0, 4),
                                               addLine(0, 4, 0, 0) };
        const KcDbObjectId hatch = hatchAlong({ sides });
        {
            const UndoStep step(m_database);
            if (hatchFirst)
                move(hatch, { 7, 0, 0 });
            for (const KcDbObjectId side : sides)
                move(side, { 7, 0, 0 });
            if (!hatchFirst)
                move(hatch, { 7, 0, 0 });
        }
        EXPECT_NEAR(leftOf(hatch), 7, 1e-9) << hatchFirst;
        EXPECT_NEAR(areaOf(hatch), 16, 1e-9) << hatchFirst;
        EXPECT_NEAR(KcDbRead<KcDbHatch>(hatch)->data().lines[0].base.x, 7, 1e-9) << hatchFirst;
        m_database.undo().undo();
        EXPECT_NEAR(leftOf(hatch), 0, 1e-9) << hatchFirst;
    }
}
