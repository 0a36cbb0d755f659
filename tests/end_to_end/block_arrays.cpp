// BLOCKARRAY through the program: rows on paths of every kind, judged by walking the same paths in small
// chords.
#include "support.h"

#include "core/block.h"
#include "db/curves.h"
#include "db/polyline.h"

using namespace end_to_end;

namespace {

// Walks a curve in chords between parameters, without the curve's own lengths.
class Walked {
public:
    explicit Walked(const KcDbCurve& curve)
    {
        double from = 0.0, to = 0.0;
        curve.getStartParam(from);
        curve.getEndParam(to);
        constexpr int kChords = 360360; // so that the vertices of polylines of up to 15 pieces are met
        m_points.resize(kChords + 1);
        m_along.resize(kChords + 1);
        const KcGeCurve3d shape = curve.curve();
        for (int i = 0; i <= kChords; ++i) {
            m_points[i] = *shape.pointAtParam(from + (to - from) * i / kChords);
            m_along[i] = i == 0 ? 0.0 : m_along[i - 1] + m_points[i].distanceTo(m_points[i - 1]);
        }
    }
    double length() const { return m_along.back(); }
    KcGePoint3d at(double distance) const
    {
        const auto next = std::lower_bound(m_along.begin() + 1, m_along.end() - 1, distance);
        const size_t i = size_t(next - m_along.begin());
        return m_points[i - 1]
            + (m_points[i] - m_points[i - 1]) * ((distance - m_along[i - 1]) / (m_along[i] - m_along[i - 1]));
    }
    /// Counter-clockwise from the X axis.
    double angleAt(double distance) const
    {
        const double h = length() * 1e-5;
        const KcGeVector3d chord = at(std::min(length(), distance + h)) - at(std::max(0.0, distance - h));
        return KcGeVector2d{ chord.x, chord.y }.angle();
    }

private:
    std::vector<KcGePoint3d> m_points;
    std::vector<double> m_along;
};

double turnBetween(double a, double b)
{
    return std::abs(std::remainder(a - b, kTwoPi));
}

// A drawing with three symbols (insertion point beside the centre, one turned, one mirrored and scaled; with
// attributes) and paths of every kind.
class BlockArrays : public EndToEnd {
protected:
    struct Named {
        QString symbols[3];
        QString line, arcs, spline, arc, square, old, nothing;
    } named;
    QString drawing = folder.filePath("paths.dxf");

    void SetUp() override
    {
        KcDbDatabase database;
        const auto addBlock = [&](const QString& name) {
            auto block = std::make_unique<KcDbBlockTableRecord>();
            block->initName(name);
            return KcDbWrite<KcDbSymbolTable>(database.blockTable())->add(std::move(block));
        };
        const auto append = [&](KcDbObjectId block, std::unique_ptr<KcDbEntity> entity) {
            entity->setLayer(database.currentLayer());
            return KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::move(entity));
        };
        const auto add = [&](std::unique_ptr<KcDbEntity> entity) {
            return append(database.modelSpace(), std::move(entity));
        };
        const KcDbObjectId tree = addBlock("树"), empty = addBlock("空");
        append(tree, std::make_unique<KcDbCircle>(KcGePoint3d{ 300, 100, 0 }, 500.0));
        append(tree, std::make_unique<KcDbLine>(KcGePoint3d{ 300, 100, 0 }, KcGePoint3d{ 800, 100, 0 }));
        for (int i = 0; i < 3; ++i) {
            auto made = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 3000.0 * i, -5000, 0 }, tree);
            made->setRotation(0.5 * i);
            made->setScaleFactors(i == 2 ? KcGeVector3d{ -1.5, 1.5, 1.5 } : KcGeVector3d{ 1, 1, 1 });
            const KcDbObjectId id = add(std::move(made));
            auto attribute = std::make_unique<KcDbAttribute>();
            attribute->data().text = QString::number(i);
            attribute->data().position
                = { 3000.0 * i + 2000.0, -5000, 0 }; // far off: it must not shift the box
            attribute->data().height = 100.0;
            attribute->attribute().tag = "NAME";
            KcDbWrite<KcDbBlockReference>(id)->appendAttribute(std::move(attribute));
            named.symbols[i] = handle(id);
        }
        named.nothing = handle(add(std::make_unique<KcDbBlockReference>(KcGePoint3d(), empty)));
        named.line
            = handle(add(std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 27000, 0, 0 })));
        auto arcs = std::make_unique<KcDbPolyline>();
        arcs->addVertex({ 0, 10000 }, 0.5);
        arcs->addVertex({ 10000, 10000 }, -0.4);
        arcs->addVertex({ 20000, 10000 });
        arcs->addVertex({ 30000, 15000 });
        named.arcs = handle(add(std::move(arcs)));
        auto spline = std::make_unique<KcDbSpline>();
        spline->data().knots = { 0, 0, 0, 0, 1, 2, 2, 2, 2 };
        spline->data().controlPoints = {
            { 0, 30000, 0 }, { 8000, 40000, 0 }, { 15000, 26000, 0 }, { 24000, 36000, 0 }, { 30000, 33000, 0 }
        };
        named.spline = handle(add(std::move(spline)));
        auto arc = std::make_unique<KcDbArc>();
        arc->setCenter({ 15000, 50000, 0 });
        arc->setRadius(8000);
        arc->setStartAngle(0.3);
        arc->setEndAngle(3.5);
        named.arc = handle(add(std::move(arc)));
        auto square = std::make_unique<KcDbPolyline>();
        for (const KcGePoint2d corner :
             { KcGePoint2d{ 0, 70000 }, { 10000, 70000 }, { 10000, 80000 }, { 0, 80000 } })
            square->addVertex(corner);
        square->setClosed(true);
        named.square = handle(add(std::move(square)));
        const KcDbObjectId old = add(std::make_unique<KcDb2dPolyline>());
        for (const KcGePoint3d corner :
             { KcGePoint3d{ 0, 90000, 0 }, { 9000, 95000, 0 }, { 20000, 90000, 0 } }) {
            auto vertex = std::make_unique<KcDbVertex>();
            vertex->data().position = corner;
            vertex->setLayer(database.currentLayer());
            const KcDbObjectId id = database.addObject(std::move(vertex), old);
            KcDbWrite<KcDb2dPolyline>(old)->data().vertices.push_back(id);
        }
        auto end = std::make_unique<KcDbSequenceEnd>();
        end->setLayer(database.currentLayer());
        const KcDbObjectId endId = database.addObject(std::move(end), old);
        KcDbWrite<KcDb2dPolyline>(old)->data().sequenceEnd = endId;
        named.old = handle(old);
        ASSERT_TRUE(dxf::saveDrawing(database, drawing).ok);
    }

    // The curve as it stands in the drawing, or its parallel at a signed distance, left positive.
    Walked walked(const QString& name, double left = 0.0) const
    {
        const auto database = open(drawing);
        const KcDbRead<KcDbCurve> curve(database->findHandle(name.mid(1)));
        if (left == 0.0) // exact: asked for the curve itself
            return Walked(*curve);
        KcDbCurve::Curves parallels;
        const bool isLine = curve->isKindOf(KcDbLine::desc());
        EXPECT_EQ(curve->getOffsetCurves(isLine ? left : -left, parallels), Kcad::eOk);
        return Walked(*parallels.at(0));
    }
    QString allSymbols() const { return named.symbols[0] + ' ' + named.symbols[1] + ' ' + named.symbols[2]; }
    QString setting(const QString& key) const
    {
        for (const QByteArray& line : bytes(folder.filePath("root/Sys/VERDELIS.INI")).split('\n'))
            if (line.startsWith(key.toUtf8() + '='))
                return QString::fromUtf8(line.mid(key.size() + 1)).trimmed();
        return "missing";
    }

    struct Copy {
        KcGePoint3d centre;
        double rotation = 0.0;
        QString name; ///< of the symbol it was made from, by its attribute
        KcGePoint3d attribute; ///< where that stands, from the insertion point
    };
    // What the last play added, in its order.
    std::vector<Copy> copies() const
    {
        const auto before = entities<KcDbBlockReference>(*open(drawing)).size();
        const auto database = open(result);
        std::vector<Copy> made;
        const std::vector<KcDbObjectId> all = entities<KcDbBlockReference>(*database);
        for (size_t i = before; i < all.size(); ++i) {
            CBlock block;
            Copy copy;
            EXPECT_TRUE(block.Initialize(all[i]) && block.GetCenterPointBoundaryBox(copy.centre));
            copy.rotation = block.GetRotation();
            EXPECT_TRUE(block.GetAttributeValue("NAME", copy.name));
            KcDbObjectId id;
            KcGePoint3d position;
            EXPECT_TRUE(block.GetAttribute("NAME", id) && block.GetPosition(position));
            copy.attribute = KcGePoint3d() + (KcDbRead<KcDbAttribute>(id)->data().position - position);
            made.push_back(copy);
        }
        return made;
    }
    std::vector<Copy> array(const QStringList& answers)
    {
        const Outcome outcome = play(drawing, QStringList{ "BLOCKARRAY" } + answers);
        EXPECT_EQ(outcome.status, 0) << outcome.err << outcome.out;
        EXPECT_FALSE(outcome.out.contains("*Cancel*")) << outcome.out;
        return copies();
    }
    static void
    expectAt(const std::vector<Copy>& made, const Walked& path, double from, double step, size_t count)
    {
        ASSERT_EQ(made.size(), count);
        for (size_t i = 0; i < count; ++i)
            EXPECT_LT(made[i].centre.distanceTo(path.at(from + step * double(i))), 1e-6) << "copy " << i;
    }
};

} // namespace

TEST_F(BlockArrays, KeepAFixedSpacingOnPathsOfEveryKind)
{
    const struct {
        const char* what;
        QString path;
        bool asksForOffset;
        bool fromEnd;
        const char* start;
    } rows[] = {
        { "line", named.line, true, false, "1,1" },
        { "line, half-way between its ends", named.line, true, false, "13500,-700" },
        { "line, from its end", named.line, true, true, "14000,0" },
        { "polyline with arcs", named.arcs, true, false, "0,0" },
        { "polyline with arcs, from its end", named.arcs, true, true, "30000,9000" },
        { "spline", named.spline, true, false, "0,0" },
        { "arc", named.arc, false, false, "22000,52000" },
        { "old polyline, from its end", named.old, false, true, "20000,90000" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        QStringList answers{ row.path };
        if (row.asksForOffset)
            answers << "0";
        const auto made = array(answers + QStringList{ "2700", named.symbols[0], "", row.start });
        const Walked path = walked(row.path);
        const double length = path.length();
        expectAt(
            made, path, row.fromEnd ? length : 0.0, row.fromEnd ? -2700.0 : 2700.0,
            size_t(length / 2700.0 + 1e-9) + 1);
    }
}

TEST_F(BlockArrays, StandOnTheParallelOfTheSideThatWasPicked)
{
    const struct {
        QString path;
        double left;
        const char* side;
    } rows[] = {
        { named.line, 1000, "5000,20" },     { named.line, -1000, "5000,-9000" },
        { named.arcs, 1200, "25000,15000" }, { named.arcs, -1200, "25000,9000" },
        { named.spline, 700, "6000,50000" }, { named.spline, -700, "6000,20000" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.path + " " + row.side));
        const auto made = array(
            { row.path, QString::number(std::abs(row.left)), row.side, "D", "7", named.symbols[1], "" });
        const Walked path = walked(row.path, row.left);
        expectAt(made, path, 0.0, path.length() / 6.0, 7);
        // Every centre is as far from the curve as was asked for, or further at a corner, on the side of the
        // pick.
        const auto database = open(drawing);
        const KcDbRead<KcDbCurve> curve(database->findHandle(row.path.mid(1)));
        for (const Copy& copy : made) {
            KcGePoint3d nearest;
            KcGeVector3d tangent;
            ASSERT_EQ(curve->getClosestPointTo(copy.centre, nearest), Kcad::eOk);
            ASSERT_EQ(curve->getFirstDeriv(nearest, tangent), Kcad::eOk);
            EXPECT_GT(copy.centre.distanceTo(nearest), std::abs(row.left) - 0.1);
            EXPECT_GT(tangent.crossProduct(copy.centre - nearest).z * row.left, 0.0);
        }
        EXPECT_EQ(setting("dBlockArrayOffsetDistance").toDouble(), std::abs(row.left));
        ASSERT_TRUE(QDir(folder.filePath("root")).removeRecursively()); // answers as shipped for the next row
    }
}

TEST_F(BlockArrays, TakeTurnsAndTurnWithThePath)
{
    const auto made = array({ named.arcs, "0", "D", "7", "", allSymbols(), "" });
    const Walked path = walked(named.arcs);
    ASSERT_EQ(made.size(), 7u);
    for (size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(made[i].name, QString::number(i % 3));
        const double distance = path.length() * double(i) / 6.0;
        EXPECT_LT(turnBetween(made[i].rotation, path.angleAt(distance)), 1e-3) << i;
        // Its attribute went along: as far from the insertion point as the original's, turned with the copy.
        const KcGeVector3d offset = made[i].attribute - KcGePoint3d();
        EXPECT_NEAR(offset.length(), 2000.0, 1e-6);
        EXPECT_LT(
            turnBetween(KcGeVector2d{ offset.x, offset.y }.angle(), made[i].rotation - 0.5 * double(i % 3)),
            1e-6);
    }
    EXPECT_EQ(setting("bBlockArrayIsRotate"), "1");
    EXPECT_EQ(setting("nBlockArrayDivide"), "7");
    EXPECT_NEAR(setting("dBlockArrayDistance").toDouble(), path.length() / 6.0, 1e-3);
}

TEST_F(BlockArrays, OfAClosedPathEndWhereItCameRound)
{
    expectAt(array({ named.square, "0", "D", "9", named.symbols[2], "" }), walked(named.square), 0, 5000, 8);
    // Of 4000 there are ten steps to the start again.
    expectAt(
        array({ named.square, "0", "D", "4000", named.symbols[2], "", "0,0" }), walked(named.square), 0, 4000,
        10);
}

TEST_F(BlockArrays, OfOnePositionStandAtTheStart)
{
    expectAt(array({ named.line, "0", "D", "1", allSymbols(), "" }), walked(named.line), 0, 0, 1);
    EXPECT_EQ(setting("dBlockArrayDistance").toDouble(), 4500.0); // no step came out of it
    EXPECT_EQ(setting("nBlockArrayDivide"), "1");
}

TEST_F(BlockArrays, PassOverSymbolsThatDrawNothing)
{
    const auto made = array({ named.line, "0", "D", "4", named.nothing + ' ' + named.symbols[1], "" });
    expectAt(made, walked(named.line), 0, 9000, 4);
    const Outcome none = play(drawing, { "BLOCKARRAY", named.line, "0", "4", named.nothing, "" });
    EXPECT_TRUE(none.out.contains("所选图块无法读取")) << none.out;
    EXPECT_TRUE(bytes(result) == bytes(drawing));
}

TEST_F(BlockArrays, SayWhyThereIsNoParallel)
{
    const Outcome outcome = play(drawing, { "BLOCKARRAY", named.square, "6000", "5000,75000" });
    EXPECT_TRUE(outcome.out.contains("偏移失败,无法获得曲线!")) << outcome.out;
    EXPECT_TRUE(bytes(result) == bytes(drawing));
    EXPECT_EQ(setting("dBlockArrayOffsetDistance").toDouble(), 0.0);
}

TEST_F(BlockArrays, RefuseMoreThanAnyoneWants)
{
    const Outcome outcome
        = play(drawing, { "BLOCKARRAY", named.line, "0", "0.001", "9000", named.symbols[0], "", "0,0" });
    EXPECT_TRUE(outcome.out.contains("阵列个数超过")) << outcome.out;
    EXPECT_EQ(copies().size(), 4u);
}

TEST_F(BlockArrays, AreOneStepForUndo)
{
    EXPECT_EQ(play(drawing, { "BLOCKARRAY", named.arc, "500", named.symbols[0], "", "0,0", "U" }).status, 0);
    EXPECT_TRUE(bytes(result) == bytes(drawing));
}

TEST_F(BlockArrays, OnTheKerbOfARealPlan)
{
    const auto before = referencesByName(*open(plan));
    EXPECT_EQ(play(plan, { "BLOCKARRAY", "#40C", "0", "1500", "#591", "", "72000,34000" }).status, 0);
    const auto database = open(result);
    const KcDbRead<KcDbCurve> bed(database->findHandle(QStringLiteral("40C")));
    const Walked path(*bed);
    auto after = referencesByName(*database);
    EXPECT_EQ(after["悬铃木"] - before.at("悬铃木"), int(path.length() / 1500.0) + 1);
    EXPECT_EQ(program({ "audit", result }).out, program({ "audit", plan }).out);
}
