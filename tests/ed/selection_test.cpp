// Selections by place and by filter, on real geometry.
#include "session.h"

#include "db/hatch.h"
#include "db/polyline.h"
#include "ed/system_variables.h"
#include "ed/view.h"

#include <gtest/gtest.h>

using ed_test::Session;

namespace {

// How many objects a line selects when nothing was selected before.
size_t selected(Session& s, const QString& line, const KcEdFilter& filter = {})
{
    KcEdSelectionSet set;
    s.run([&] { kcedSSGet({}, nullptr, nullptr, filter, set); }, { line, "" });
    return set.size();
}

size_t passing(Session& s, const KcEdFilter& filter)
{
    KcEdSelectionSet set;
    kcedSSGet("X", nullptr, nullptr, filter, set);
    return set.size();
}

std::unique_ptr<KcDbPolyline> polyline(std::initializer_list<KcGePoint2d> points, bool closed)
{
    auto p = std::make_unique<KcDbPolyline>();
    for (const KcGePoint2d q : points)
        p->addVertex(q);
    p->setClosed(closed);
    return p;
}

} // namespace

// Faults: a word alone that selects nothing or keeps removing, a cancelled corner that leaves half a
// selection.
TEST(Selection, AWordAloneAsksForItsPoints)
{
    Session s;
    const KcDbObjectId a = s.addLine(0, 0, 10, 0), b = s.addLine(0, 20, 10, 20), c = s.addLine(0, 40, 10, 40);
    KcEdSelectionSet set;
    KcEdStatus status = kcedNone;
    const auto select = [&] { status = kcedSSGet({}, nullptr, nullptr, {}, set); };
    EXPECT_EQ(
        s.run(
            select,
            { "window", "-1,-1", "@20,30", "f", "5,10", "5,30", "5,50", "", "r", "5,20", "a", "C", "-1,-1",
              "1,1", "" }),
        0)
        << qPrintable(s.errors);
    EXPECT_EQ(set.ids(), (std::vector<KcDbObjectId>{ a, c }));
    EXPECT_TRUE(s.printed.contains("Remove objects:"));
    s.run(select, { "ALL", "W", "1,1", "^C" });
    EXPECT_EQ(status, kcedCancel);
    // And before a command.
    s.run({ "WP", "-1,15", "20,15", "20,50", "-1,50", "" });
    EXPECT_EQ(s.document.pickFirst.ids(), (std::vector<KcDbObjectId>{ b, c }));
}

// A circle of radius 10 about 50,50: boxes alone would answer several of these wrongly.
TEST(Selection, ModesOnACircle)
{
    const struct {
        const char* name;
        const char* line;
        size_t count;
    } rows[] = {
        { "window around it", "W 39,39 61,61", 1 },
        { "window through it", "W 45,39 61,61", 0 },
        { "crossing through it", "C 45,39 46,61", 1 },
        { "crossing in the corner of its box", "C 40,40 42,42", 0 },
        { "crossing inside it", "C 49,49 51,51", 0 },
        { "crossing around it", "C 0,0 100,100", 1 },
        { "fence through it", "F 0,50 100,50", 1 },
        { "fence past it", "F 0,41 41,0", 0 },
        { "fence that bends around it", "F 39,30 39,61 61,61 61,30", 0 },
        { "window polygon around it", "WP 20,50 50,80 80,50 50,20", 1 },
        { "window polygon that cuts it", "WP 39,50 50,61 61,50 50,39", 0 },
        { "crossing polygon that cuts it", "CP 39,50 50,61 61,50 50,39", 1 },
        { "all", "ALL", 1 },
        { "last", "L", 1 },
    };
    for (const auto& row : rows) {
        Session s;
        s.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 50, 50, 0 }, 10.0));
        EXPECT_EQ(selected(s, row.line), row.count) << row.name;
    }
}

// The pick box reaches half its side from the cursor, and grows with the variable.
TEST(Selection, ThePickBoxDecidesWhatLiesAtAPoint)
{
    Session s;
    const KcDbObjectId circle = s.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 50, 50, 0 }, 10.0));
    const double box = kcedPickBoxSize();
    EXPECT_EQ(kcedEntityAt({ 60 + 0.45 * box, 50, 0 }), circle);
    EXPECT_TRUE(kcedEntityAt({ 60 + 0.55 * box, 50, 0 }).isNull());
    const KcEdScopedVariable wider("PICKBOX", int64_t(6));
    EXPECT_EQ(kcedEntityAt({ 60 + 0.55 * box, 50, 0 }), circle);
}

// Curves inside blocks are where the reference's transform puts them.
TEST(Selection, BlockReferencesByWhatTheyDraw)
{
    Session s;
    const KcDbObjectId block = s.addBlock("tree");
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(
        std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 10, 10, 0 }));
    auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 100, 100, 0 }, block);
    reference->setScaleFactors({ 2, 2, 2 });
    reference->setRotation(kPi / 2);
    s.add(std::move(reference)); // a line from 100,100 to 80,120
    EXPECT_EQ(selected(s, "C 89,109 91,111"), 1u);
    EXPECT_EQ(selected(s, "C 81,101 84,104"), 0u) << "inside the box, beside the line";
    EXPECT_EQ(selected(s, "W 79,99 101,121"), 1u);
}

// Picked closely, a large curve must not be missed for the chords that once stood for it: a thousand of them
// leave a circle of 1,000,000 by 5 units. Survey coordinates take nothing away.
TEST(Selection, LargeCurvesArePickedWhereTheyAre)
{
    for (const double far : { 0.0, 5e8 }) {
        SCOPED_TRACE(far);
        const KcGePoint3d center{ far, -far, 0 };
        const double radius = 1e6, angle = 1.2345678; // no multiple of a chord's
        const KcGeVector3d direction{ std::cos(angle), std::sin(angle), 0 };

        auto ellipse = std::make_unique<KcDbEllipse>();
        ellipse->data().center = center;
        ellipse->data().majorAxis = { radius, 0, 0 };
        ellipse->data().radiusRatio = 0.5;
        ellipse->data().endParam = kTwoPi;
        auto arc = std::make_unique<KcDbPolyline>();
        arc->addVertex({ center.x + radius, center.y }, 1.0);
        arc->addVertex({ center.x - radius, center.y });
        auto spline = std::make_unique<KcDbSpline>();
        spline->data().degree = 2;
        spline->data().knots = { 0, 0, 0, 1, 1, 1 };
        for (const KcGeVector3d p :
             { KcGeVector3d{ 0, 0, 0 }, { radius, 2 * radius, 0 }, { 2 * radius, 0, 0 } })
            spline->data().controlPoints.push_back(center + p);

        struct {
            const char* name;
            std::unique_ptr<KcDbEntity> entity;
            KcGePoint3d on;
            KcGeVector3d outwards;
        } rows[] = {
            { "circle", std::make_unique<KcDbCircle>(center, radius), center + direction * radius,
              direction },
            { "arc of a polyline", std::move(arc), center + direction * radius, direction },
            { "ellipse", std::move(ellipse),
              center + KcGeVector3d{ direction.x, 0.5 * direction.y, 0 } * radius,
              KcGeVector3d{ direction.x, 2 * direction.y, 0 }.normal() },
            // At t: (2t, 4t(1 - t)) times the size; its slope at 0.3 is 0.8.
            { "spline", std::move(spline), center + KcGeVector3d{ 0.6, 0.84, 0 } * radius,
              KcGeVector3d{ -0.8, 1, 0 }.normal() },
        };
        for (auto& row : rows) {
            SCOPED_TRACE(row.name);
            Session s;
            const KcDbObjectId id = s.add(std::move(row.entity));
            ASSERT_TRUE(kcedSetView(s.document, { row.on.plan(), 10.0 }));
            const double box = kcedPickBoxSize();
            ASSERT_LT(box, 1.0);
            EXPECT_EQ(kcedEntityAt(row.on), id);
            EXPECT_TRUE(kcedEntityAt(row.on + row.outwards * 2.0 * box).isNull());
            EXPECT_TRUE(kcedEntityAt(row.on - row.outwards * 2.0 * box).isNull());
            const auto window = [&](const char* mode, KcGePoint3d low, KcGePoint3d high) {
                const auto text = [](KcGePoint3d p) {
                    return QString::number(p.x, 'f', 6) + ',' + QString::number(p.y, 'f', 6);
                };
                return selected(s, QString(mode) + ' ' + text(low) + ' ' + text(high));
            };
            const KcGeVector3d nearby{ 0.1, 0.1, 0 };
            const KcGeVector3d corner{ 3 * radius, 3 * radius, 0 };
            EXPECT_EQ(window("W", center - corner, center + corner), 1u);
            EXPECT_EQ(window("C", row.on - nearby, row.on + nearby), 1u);
            EXPECT_EQ(window("W", row.on, row.on + corner), 0u);
        }
    }
}

// Arcs are ellipses where a block is scaled unevenly.
TEST(Selection, CurvesInBlocksAreStretchedWithThem)
{
    Session s;
    const KcDbObjectId block = s.addBlock("bed");
    auto ring = std::make_unique<KcDbPolyline>();
    ring->addVertex({ -10, 0 }, 1.0);
    ring->addVertex({ 10, 0 }, 1.0);
    ring->setClosed(true);
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::move(ring));
    auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 100, 100, 0 }, block);
    reference->setScaleFactors({ 2, 1, 1 });
    s.add(std::move(reference)); // an ellipse of 20 by 10
    EXPECT_EQ(selected(s, "C 119.9,99 120.1,101"), 1u);
    EXPECT_EQ(selected(s, "C 114.1,106.9 114.2,107.2"), 1u) << "at 45 degrees";
    EXPECT_EQ(selected(s, "C 115,108 119,109"), 0u) << "in the box, off the curve";
}

// A block that contains itself must not send the program round for ever.
TEST(Selection, ABlockThatContainsItself)
{
    Session s;
    const KcDbObjectId block = s.addBlock("loop");
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(
        std::make_unique<KcDbBlockReference>(KcGePoint3d{ 1, 1, 0 }, block));
    KcEdPickGeometry geometry(0.1);
    const KcDbObjectId id = s.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, block));
    EXPECT_TRUE(geometry.pieces(*KcDbRead<KcDbEntity>(id)).empty());
}

// A symbol that lies on a hatch is what a pick means, though the hatch was drawn later.
TEST(Selection, APickPrefersLinesToFilledInsides)
{
    Session s;
    const KcDbObjectId line = s.addLine(40, 50, 60, 50);
    auto hatch = std::make_unique<KcDbHatch>();
    hatch->data().solid = true;
    KcDbHatch::Loop loop;
    loop.type = 3;
    for (const KcGePoint2d p : { KcGePoint2d{ 0, 0 }, { 100, 0 }, { 100, 100 }, { 0, 100 } })
        loop.vertices.push_back({ p.x, p.y });
    hatch->data().loops.push_back(loop);
    const KcDbObjectId area = s.add(std::move(hatch));
    EXPECT_EQ(kcedEntityAt({ 50, 50, 0 }), line);
    EXPECT_EQ(kcedEntityAt({ 50, 20, 0 }), area);
    EXPECT_TRUE(kcedEntityAt({ 150, 20, 0 }).isNull());
    EXPECT_EQ(kcedEntityAt({ 50, 50, 0 }, kcutBuildList(0, "HATCH")), area);
    const KcGePoint3d middle{ 50, 50, 0 };
    KcEdSelectionSet set;
    EXPECT_EQ(kcedSSGet({}, &middle, nullptr, kcutBuildList(0, "HATCH"), set), kcedNormal);
    EXPECT_EQ(set.ids(), std::vector{ area });
}

TEST(Selection, LinesAddUpInOrderWithoutDoubles)
{
    Session s;
    const KcDbObjectId a = s.addLine(0, 0, 1, 1), b = s.addLine(5, 5, 6, 6), c = s.addLine(8, 8, 9, 9);
    KcEdSelectionSet set;
    s.run(
        [&] { kcedSSGet({}, nullptr, nullptr, {}, set); },
        { Session::handle(c), "ALL", "R W 4,4 7,7", Session::handle(b) + ' ' + Session::handle(a), "" });
    EXPECT_EQ(set.ids(), std::vector<KcDbObjectId>({ c, a, b }));
    s.run([&] { kcedSSGet({}, nullptr, nullptr, {}, set); }, { "P", "" });
    EXPECT_EQ(set.size(), 3u) << "the previous selection";
}

// What the eye does not see is not caught by a window; ALL leaves out what is protected.
TEST(Selection, LayersThatAreOffFrozenOrLocked)
{
    const struct {
        const char* name;
        bool off, frozen, locked;
        size_t all, window;
    } rows[] = {
        { "plain", false, false, false, 1, 1 },
        { "off", true, false, false, 1, 0 },
        { "frozen", false, true, false, 0, 0 },
        { "locked", false, false, true, 0, 1 },
    };
    for (const auto& row : rows) {
        Session s;
        KcDbWrite<KcDbLayerTableRecord> layer(s.addLayer("beds"));
        layer->setIsOff(row.off);
        layer->setIsFrozen(row.frozen);
        layer->setIsLocked(row.locked);
        layer.close();
        s.addLine(0, 0, 1, 1, "beds");
        EXPECT_EQ(selected(s, "ALL"), row.all) << row.name;
        EXPECT_EQ(selected(s, "W -1,-1 2,2"), row.window) << row.name;
    }
}

TEST(Selection, HandlesThatNameNothingAreRefused)
{
    Session s;
    const KcDbObjectId line = s.addLine(0, 0, 1, 1);
    KcDbObjectId picked;
    KcGePoint3d point;
    const int refusals = s.run(
        [&] { kcedEntSel("\nSelect: ", picked, point); },
        { "#FFFFF", Session::handle(s.database.layerTable()), "500,500", Session::handle(line) + "@3,4" });
    EXPECT_EQ(refusals, 3);
    EXPECT_EQ(picked, line);
    EXPECT_EQ(point.y, 4);
}

TEST(Selection, PointsAreInTheUserCoordinateSystem)
{
    Session s;
    s.addLine(100, 100, 101, 100);
    s.run({ "UCSORG", "100,100", "UCSXDIR", "0,1", "UCSYDIR", "-1,0" });
    // The line runs from 0,0 to 0,-1 of the turned system.
    EXPECT_EQ(selected(s, "W -0.5,0.5 0.5,-1.5"), 1u);
    EXPECT_EQ(selected(s, "W 99,99 102,102"), 0u);
}

TEST(Filter, EachCode)
{
    Session s;
    s.addLayer("L-ZoneLines");
    const KcDbObjectId block = s.addBlock("T-01");
    const KcDbObjectId tree = s.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 1, 2, 0 }, block));
    const KcDbObjectId line = s.addLine(0, 0, 1, 1, "L-ZoneLines");
    const KcDbObjectId circle = s.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 5, 5, 0 }, 7.0));
    auto closed = polyline({ { 0, 0 }, { 1, 0 }, { 1, 1 } }, true);
    closed->data().flags |= 128;
    s.add(std::move(closed));
    s.add(polyline({ { 0, 0 }, { 1, 0 } }, false));
    KcDbWrite<KcDbEntity>(line)->setColorIndex(2);
    KcDbWrite<KcDbEntity>(circle)->addPersistentReactor(tree);
    KcDbWrite<KcDbEntity>(tree)->setXData("SFEntityType", { { 1000, QStringLiteral("6") } });
    KcDbWrite<KcDbEntity>(circle)->setXData("PAGE", { { 1000, QStringLiteral("6") } });

    const struct {
        const char* name;
        KcEdFilter filter;
        size_t count;
    } rows[] = {
        { "nothing", {}, 5 },
        { "type", kcutBuildList(0, "INSERT"), 1 },
        { "types", kcutBuildList(0, "line,CIRCLE"), 2 },
        { "type by wild card", kcutBuildList(0, "*LINE"), 3 },
        { "every other type", kcutBuildList(0, "~*LINE"), 2 },
        { "block name", kcutBuildList(2, "T-##"), 1 },
        { "block name too short", kcutBuildList(2, "T-#"), 0 },
        { "escaped wild card", kcutBuildList(2, "T`-0[12]"), 1 },
        { "set without", kcutBuildList(2, "T-0[~2-9]"), 1 },
        { "layer", kcutBuildList(8, "l-zonelines"), 1 },
        { "colour", kcutBuildList(62, 2), 1 },
        { "colour by layer", kcutBuildList(62, 256), 4 },
        { "line type by layer", kcutBuildList(6, "BYLAYER"), 5 },
        { "closed whatever the other flags", kcutBuildList(0, "LWPOLYLINE,POLYLINE", 70, 1), 1 },
        { "open", kcutBuildList(0, "LWPOLYLINE", 70, 0), 1 },
        { "model space", kcutBuildList(67, 0), 5 },
        { "paper space", kcutBuildList(67, 1), 0 },
        { "reactors", kcutBuildList(102, "{ACAD_REACTORS"), 1 },
        { "xdata application", kcutBuildList(-3, "", 1001, "SFEntityType"), 1 },
        { "xdata application in the head", kcutBuildList(-3, "SFEntityType"), 1 },
        { "xdata value", kcutBuildList(-3, "", 1001, "SFEntityType", 1000, "6"), 1 },
        { "another xdata value", kcutBuildList(1001, "SFEntityType", 1000, "7"), 0 },
        { "value of either application", kcutBuildList(1001, "SFEntityType,PAGE", 1000, "6"), 2 },
        { "radius above", kcutBuildList(-4, ">", 40, 6.5), 1 },
        { "radius not above", kcutBuildList(-4, ">", 40, 7.0), 0 },
        { "point left and above", kcutBuildList(-4, "<,>=,*", 10, KcGePoint3d{ 2, 2, 0 }), 1 },
        { "not equal", kcutBuildList(-4, "<>", 62, 256), 1 },
        { "bits", kcutBuildList(-4, "&", 70, 128), 1 },
        { "or", kcutBuildList(-4, "<OR", 0, "LINE", 0, "CIRCLE", -4, "OR>"), 2 },
        { "nested",
          kcutBuildList(
              -4, "<or", 0, "INSERT", -4, "<and", 0, "CIRCLE", -4, "<", 40, 1.0, -4, "and>", -4, "or>"),
          1 },
        { "not", kcutBuildList(-4, "<NOT", 0, "LWPOLYLINE", -4, "NOT>"), 3 },
        { "xor", kcutBuildList(-4, "<XOR", 0, "*LINE", 70, 1, -4, "XOR>"), 2 },
        { "operator left open", kcutBuildList(-4, "<OR", 0, "LINE"), 0 },
        { "unknown operator", kcutBuildList(-4, "<NAND", 0, "LINE", -4, "NAND>"), 0 },
    };
    for (const auto& row : rows)
        EXPECT_EQ(passing(s, row.filter), row.count) << row.name;
}

TEST(Filter, OnlyWhatPassesIsSelected)
{
    Session s;
    s.addLine(0, 0, 1, 1);
    s.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 5, 5, 0 }, 1.0));
    EXPECT_EQ(selected(s, "ALL", kcutBuildList(0, "CIRCLE")), 1u);
    const KcGePoint3d low{ -1, -1, 0 }, high{ 2, 2, 0 };
    KcEdSelectionSet set;
    EXPECT_EQ(kcedSSGet("", &low, &high, {}, set), kcedNormal) << "two corners without a mode: crossing";
    EXPECT_EQ(set.size(), 1u);
    EXPECT_EQ(kcedSSGet("", &low, &high, kcutBuildList(0, "CIRCLE"), set), kcedNone);
    EXPECT_EQ(kcedSSGet("F", &low, &high, {}, set), kcedNormal);
}
