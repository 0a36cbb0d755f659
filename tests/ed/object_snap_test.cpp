// Snapping to points of the drawing, and measuring, layers, views and purging by hand.

#include "ed/session.h"

#include "db/draw_order.h"
#include "db/polyline.h"
#include "db/text.h"
#include "dxf/drawing_file.h"
#include "ed/commands/grip_drag.h"
#include "ed/draw_order.h"
#include "ed/grips.h"
#include "ed/input.h"
#include "ed/object_snap.h"
#include "ed/system_variables.h"

#include <gtest/gtest.h>

using ed_test::Session;

TEST(ObjectSnap, DrawsTheCursorToTheRightPoint)
{
    Session session;
    session.addLine(0, 0, 100, 0);
    session.addLine(50, -20, 50, 80);
    session.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 200, 0, 0 }, 50.0));
    auto point = std::make_unique<KcDbPoint>();
    point->data().position = { 300, 300, 0 };
    session.add(std::move(point));
    // A block whose line ends at (1,1), placed at (500,0), twice as large and turned by a quarter.
    const KcDbObjectId block = session.addBlock("B");
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(
        std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 10, 10, 0 }));
    auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 500, 0, 0 }, block);
    reference->setScaleFactors({ 2, 2, 2 });
    reference->setRotation(kPi / 2);
    session.add(std::move(reference));

    const double root = 50 / std::sqrt(2.0);
    struct Row {
        const char* name;
        KcGePoint3d cursor;
        int modes;
        std::optional<KcGePoint3d> base;
        KcEdSnapMode mode;
        KcGePoint3d point;
    };
    for (const Row& row : {
             Row{ "end", { 98, 2, 0 }, kcedSnapAll, {}, kcedSnapEnd, { 100, 0, 0 } },
             Row{ "middle", { 51, 31, 0 }, kcedSnapMiddle, {}, kcedSnapMiddle, { 50, 30, 0 } },
             Row{
                 "intersection", { 52, 2, 0 }, kcedSnapIntersection, {}, kcedSnapIntersection, { 50, 0, 0 } },
             Row{ "quadrant", { 199, 49, 0 }, kcedSnapQuadrant, {}, kcedSnapQuadrant, { 200, 50, 0 } },
             Row{ "centre, from the circle",
                  { 200 + root, root, 0 },
                  kcedSnapCenter,
                  {},
                  kcedSnapCenter,
                  { 200, 0, 0 } },
             Row{ "centre, itself", { 201, 1, 0 }, kcedSnapCenter, {}, kcedSnapCenter, { 200, 0, 0 } },
             Row{ "node", { 302, 299, 0 }, kcedSnapNode, {}, kcedSnapNode, { 300, 300, 0 } },
             Row{ "insertion", { 501, 1, 0 }, kcedSnapInsertion, {}, kcedSnapInsertion, { 500, 0, 0 } },
             Row{ "end inside a block", { 481, 21, 0 }, kcedSnapEnd, {}, kcedSnapEnd, { 480, 20, 0 } },
             Row{ "foot of a perpendicular",
                  { 70, 1, 0 },
                  kcedSnapPerpendicular,
                  KcGePoint3d{ 20, 90, 0 },
                  kcedSnapPerpendicular,
                  { 20, 0, 0 } },
             Row{ "nearest comes last", { 30, 2, 0 }, kcedSnapAll, {}, kcedSnapNearest, { 30, 0, 0 } },
         }) {
        SCOPED_TRACE(row.name);
        const auto snap = kcedObjectSnap(session.database, { row.cursor, 4.0, row.modes, row.base });
        ASSERT_TRUE(snap);
        EXPECT_EQ(snap->mode, row.mode);
        EXPECT_TRUE(snap->point.isEqualTo(row.point)) << snap->point.x << ", " << snap->point.y;
    }
    // From (300,0), tangents of a circle of 50 about (200,0) touch where cos a = 50/100.
    const KcGePoint3d touch{ 225, 50 * std::sqrt(3.0) / 2, 0 };
    const auto tangent = kcedObjectSnap(
        session.database, { { 226, 44, 0 }, 4.0, kcedSnapTangent, KcGePoint3d{ 300, 0, 0 } });
    ASSERT_TRUE(tangent);
    EXPECT_TRUE(tangent->point.isEqualTo(touch));

    EXPECT_FALSE(kcedObjectSnap(session.database, { { 98, 20, 0 }, 4.0, kcedSnapAll, {} }));
    EXPECT_FALSE(
        kcedObjectSnap(session.database, { { 98, 2, 0 }, 4.0, kcedSnapAll | kcedSnapSuppressed, {} }));
    EXPECT_FALSE(kcedObjectSnap(session.database, { { 98, 2, 0 }, 4.0, 0, {} }));
    EXPECT_FALSE(kcedObjectSnap(session.database, { { NAN, 2, 0 }, 4.0, kcedSnapAll, {} }));
    // Hidden things draw nobody.
    session.run({ "LAYER", "OFF", "0", "" });
    EXPECT_FALSE(kcedObjectSnap(session.database, { { 98, 2, 0 }, 4.0, kcedSnapAll, {} }));
}

// Faults: the height of the plane's origin for points of what rises, which no plan shows; corners passed
// over.
TEST(ObjectSnap, PointsOfWhatRisesHaveTheirHeight)
{
    Session session;
    session.add(std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 10 }, KcGePoint3d{ 100, 0, 30 }));
    auto arc = std::make_unique<KcDbCircle>(KcGePoint3d{ 200, 0, 5 }, 50.0);
    ASSERT_EQ(
        arc->transformBy(KcGeMatrix3d::rotation(kPi / 3, KcGeVector3d::kXAxis, { 200, 0, 5 })), Kcad::eOk);
    session.add(std::move(arc));
    auto face = std::make_unique<KcDbFace>();
    face->data().corners[2] = { 300, 300, 7 };
    session.add(std::move(face));
    const struct {
        KcGePoint3d cursor;
        int modes;
        KcGePoint3d point;
    } rows[] = {
        { { 99, 1, 0 }, kcedSnapEnd, { 100, 0, 30 } },
        { { 51, 1, 0 }, kcedSnapMiddle, { 50, 0, 20 } },
        { { 25, 1, 0 }, kcedSnapNearest, { 25, 0, 15 } },
        { { 200, 25, 0 }, kcedSnapQuadrant | kcedSnapNearest, { 200, 25, 5 + 25 * std::sqrt(3.0) } },
        { { 201, 1, 0 }, kcedSnapCenter, { 200, 0, 5 } },
        { { 301, 300, 0 }, kcedSnapEnd, { 300, 300, 7 } },
    };
    for (const auto& row : rows) {
        const auto snap = kcedObjectSnap(session.database, { row.cursor, 4.0, row.modes, {} });
        ASSERT_TRUE(snap) << row.point.x;
        EXPECT_LT(snap->point.distanceTo(row.point), 1e-6) << snap->point.x << ", " << snap->point.z;
    }
}

// Faults: a word that counts for more than one point, that a command which only looks uses up, or that is
// forgotten where nothing lies; a distance without its direction.
TEST(ObjectSnap, WordsCountForTheNextPointOnly)
{
    Session session;
    kcedSetVar(QStringLiteral("OSMODE"), int64_t(0));
    kcedSetView(session.document, { { 50, 50 }, 200 });
    session.addLine(0, 0, 100, 0);
    session.addLine(100, 50, 100, 150);
    std::vector<KcGePoint3d> points;
    const int refusals = session.run(
        [&] {
            KcGePoint3d p;
            while (kcedGetPoint(points.empty() ? nullptr : &points.back(), QStringLiteral("\nPoint: "), p)
                   == kcedNormal)
                points.push_back(p);
        },
        { "endp", "99,1", "99,1", "mid", "'ZOOM", "0,0", "200,200", "50,50", "49,1", "per", "99,70", "<90",
          "20", "<180", "60,500", "7", "nonsense", "" });
    ASSERT_EQ(points.size(), 6u);
    EXPECT_TRUE(points[0].isEqualTo({ 100, 0, 0 }));
    EXPECT_TRUE(points[1].isEqualTo({ 99, 1, 0 }));
    EXPECT_TRUE(points[2].isEqualTo({ 50, 0, 0 }));
    EXPECT_TRUE(points[3].isEqualTo({ 100, 0, 0 })) << "on the line, lengthened";
    EXPECT_TRUE(points[4].isEqualTo({ 100, 20, 0 }));
    EXPECT_TRUE(points[5].isEqualTo({ 60, 20, 0 }));
    // "50,50" with the middle said, a number without a cursor, and nonsense.
    EXPECT_EQ(refusals, 3) << qPrintable(session.errors);
}

TEST(ObjectSnap, ModesAreSetByTheirNames)
{
    Session session;
    EXPECT_EQ(session.run({ "OSNAP", "endpoint, mid INTersection" }), 0);
    EXPECT_EQ(kcedVarInt("OSMODE", -1), kcedSnapEnd | kcedSnapMiddle | kcedSnapIntersection);
    session.run({ "-OSNAP", "gibberish", "" });
    EXPECT_TRUE(session.printed.contains("\"gibberish\" names no modes."));
    EXPECT_EQ(kcedVarInt("OSMODE", -1), kcedSnapEnd | kcedSnapMiddle | kcedSnapIntersection);
    session.run({ "SETVAR", "osmode", "0" });
    EXPECT_EQ(kcedVarInt("OSMODE", -1), 0);
}

TEST(DrawOrder, IsKeptWithItsDrawing)
{
    Session session;
    const KcDbObjectId a = session.addLine(0, 0, 1, 0), b = session.addLine(0, 0, 2, 0),
                       c = session.addLine(0, 0, 3, 0), d = session.addLine(0, 0, 4, 0);
    using Ids = std::vector<KcDbObjectId>;
    const auto order = [](const KcDbDatabase& drawing) {
        return kcdbInDrawingOrder(*KcDbRead<KcDbBlockTableRecord>(drawing.modelSpace()));
    };
    session.run([&] { EXPECT_EQ(kcedDrawOrderInherit(b, { d }, KcEdDrawOrder::JustBehind), Kcad::eOk); }, {});
    EXPECT_EQ(order(session.database), (Ids{ a, d, b, c }));
    session.run(
        [&] {
            EXPECT_EQ(kcedDrawOrderInherit(c, { a, b }, KcEdDrawOrder::JustInFront), Kcad::eOk);
        },
        {});
    EXPECT_EQ(order(session.database), (Ids{ d, c, a, b }));
    const KcDbObjectId e = session.addLine(0, 0, 5, 0); // what is new lies on top
    EXPECT_EQ(order(session.database).back(), e);

    std::string bytes;
    ASSERT_TRUE(dxf::saveDrawing(session.database, bytes).ok);
    KcDbDatabase again(KcDbDatabase::Content::kEmpty);
    ASSERT_TRUE(dxf::readDrawing(bytes, again).ok);
    std::vector<KcDbHandle> handles;
    for (const KcDbObjectId id : order(again))
        handles.push_back(id.handle());
    EXPECT_EQ(handles, (std::vector{ d.handle(), c.handle(), a.handle(), b.handle(), e.handle() }));

    session.run({ "U", "U" });
    EXPECT_EQ(order(session.database), (Ids{ a, b, c, d, e }));
    const KcDbObjectId block = session.addBlock("B");
    const KcDbObjectId inside
        = KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::make_unique<KcDbPoint>());
    EXPECT_EQ(kcedDrawOrderInherit(a, { inside }, KcEdDrawOrder::JustBehind), Kcad::eInvalidInput);
}

TEST(Grips, GoWhereTheyAreDragged)
{
    Session session;
    session.run({ "LINE",   "0,0",   "10,0", "",      "C",     "100,0", "10",     "A", "210,0",
                  "200,10", "190,0", "PL",   "300,0", "320,0", "A",     "320,20", "",  "UCS",
                  "5,5",    "TEXT",  "0,0",  "2",     "0",     "a",     "" });
    const auto ids = KcDbRead<KcDbBlockTableRecord>(session.database.modelSpace())->entityIds();
    struct Row {
        const char* name;
        size_t entity;
        KcGePoint3d from, to;
        KcGePoint3d alsoThere; ///< another grip, as it is then
    };
    const double leftEnd = 185.0;
    for (const Row& row : {
             Row{ "end of a line", 0, { 10, 0, 0 }, { 20, 20, 0 }, { 10, 10, 0 } },
             Row{ "quadrant of a circle", 1, { 90, 0, 0 }, { 60, 0, 0 }, { 100, 40, 0 } },
             Row{ "centre of a circle", 1, { 100, 0, 0 }, { 101, 1, 0 }, { 101, 41, 0 } },
             Row{ "end of an arc", 2, { 190, 0, 0 }, { leftEnd, 0, 0 }, { 210, 0, 0 } },
             Row{ "vertex of a polyline", 3, { 300, 0, 0 }, { 300, 10, 0 }, { 310, 5, 0 } },
             Row{ "middle of a polyline's arc", 3, { 330, 10, 0 }, { 325, 10, 0 }, { 320, 20, 0 } },
             Row{ "start of a text", 4, { 5, 5, 0 }, { 7, 7, 0 }, { 7, 7, 0 } },
         }) {
        SCOPED_TRACE(row.name);
        KcDbWrite<KcDbEntity> entity(ids.at(row.entity));
        const auto has = [&](KcGePoint3d wanted) {
            const auto points = kcedGripPoints(*entity);
            return std::find_if(
                       points.begin(), points.end(), [&](KcGePoint3d p) { return p.isEqualTo(wanted); })
                - points.begin();
        };
        const size_t index = size_t(has(row.from));
        EXPECT_EQ(kcedMoveGrip(*entity, index, row.to), Kcad::eOk);
        const size_t count = kcedGripPoints(*entity).size();
        EXPECT_LT(size_t(has(row.to)), count);
        EXPECT_LT(size_t(has(row.alsoThere)), count);
        EXPECT_EQ(kcedMoveGrip(*entity, count, row.to), Kcad::eInvalidInput);
        EXPECT_EQ(kcedMoveGrip(*entity, 0, { NAN, 0, 0 }), Kcad::eInvalidInput);
    }
}

// Fault: a preview that moves the vertices of an old polyline in the drawing itself, so that a cancelled drag
// has moved it.
TEST(Grips, DragsTouchNothingBeforeTheyEnd)
{
    Session session;
    const KcDbObjectId id = session.add(std::make_unique<KcDb2dPolyline>());
    for (const double x : { 0.0, 10.0 }) {
        auto vertex = std::make_unique<KcDbVertex>();
        vertex->data().position = { x, 0, 0 };
        const KcDbObjectId owned = session.database.addObject(std::move(vertex), id);
        KcDbWrite<KcDb2dPolyline>(id)->data().vertices.push_back(owned);
    }
    const auto end = [&] { return KcDbRead<KcDb2dPolyline>(id)->drawnVertices().back().position; };
    const QString handle = Session::handle(id);
    session.run({ "MOVE", handle, "", "0,0", "~5,5", "~9,9", "^C" });
    EXPECT_TRUE(end().isEqualTo({ 10, 0, 0 }));
    const auto drag = [&](const QStringList& answers) {
        session.run([&] { kcedDragGrips(session.document, { { id, 1 } }, { 10, 0, 0 }); }, answers);
    };
    drag({ "~5,5", "~9,9", "^C" });
    EXPECT_TRUE(end().isEqualTo({ 10, 0, 0 }));
    drag({ "~5,5", "@0,3" });
    EXPECT_TRUE(end().isEqualTo({ 10, 3, 0 }));
    session.run({ "U" });
    EXPECT_TRUE(end().isEqualTo({ 10, 0, 0 }));
    // A radius counts from the centre.
    const KcDbObjectId circle = session.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 50, 50, 0 }, 10.0));
    session.run([&] { kcedDragGrips(session.document, { { circle, 1 } }, { 60, 50, 0 }); }, { "@0,4" });
    EXPECT_NEAR(KcDbRead<KcDbCircle>(circle)->radius(), 4, 1e-9);
}

// Faults: a mode that takes the grip's entity alone, copies that take the original along or several steps.
TEST(Grips, EnterGoesOnToMovingTurningScalingAndMirroring)
{
    const struct {
        const char* name;
        QStringList answers;
        std::vector<KcGePoint3d> ends; ///< of all lines then
    } rows[] = {
        { "stretch", { "20,0" }, { { 20, 0, 0 }, { 0, 10, 0 } } },
        { "move", { "", "20,0" }, { { 20, 0, 0 }, { 10, 10, 0 } } },
        { "rotate", { "", "", "90" }, { { 10, 0, 0 }, { 0, -10, 0 } } },
        { "scale", { "", "", "", "2" }, { { 10, 0, 0 }, { -10, 20, 0 } } },
        { "mirror", { "", "", "", "", "@0,5" }, { { 10, 0, 0 }, { 20, 10, 0 } } },
        { "round to stretching", { "", "", "", "", "", "20,0" }, { { 20, 0, 0 }, { 0, 10, 0 } } },
        { "another base", { "", "b", "0,0", "5,5" }, { { 15, 5, 0 }, { 5, 15, 0 } } },
        { "copies", { "c", "20,0", "30,0", "" }, { { 10, 0, 0 }, { 0, 10, 0 }, { 20, 0, 0 }, { 30, 0, 0 } } },
        { "nothing", { "", "c", "" }, { { 10, 0, 0 }, { 0, 10, 0 } } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Session session;
        const KcDbObjectId held = session.addLine(0, 0, 10, 0), other = session.addLine(0, 0, 0, 10);
        const auto drag = [&] {
            session.document.pickFirst = KcEdSelectionSet({ held, other });
            kcedDragGrips(session.document, { { held, 2 } }, { 10, 0, 0 });
        };
        EXPECT_EQ(session.run(drag, row.answers), 0) << qPrintable(session.errors);
        const auto ends = [&] {
            std::vector<KcGePoint3d> found;
            for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(session.database.modelSpace()))
                found.push_back(KcDbRead<KcDbLine>(id)->data().end);
            return found;
        };
        const std::vector<KcGePoint3d> after = ends();
        ASSERT_EQ(after.size(), row.ends.size());
        for (size_t i = 0; i < after.size(); ++i)
            EXPECT_TRUE(after[i].isEqualTo(row.ends[i])) << i << ": " << after[i].x << ", " << after[i].y;
        session.run({ "U" });
        EXPECT_EQ(ends().size(), 2u);
        EXPECT_TRUE(ends()[0].isEqualTo({ 10, 0, 0 }));
    }
}

TEST(HandCommands, LayersAreMadeAndChangedByNames)
{
    Session session;
    EXPECT_EQ(
        session.run({ "-LAYER", "N", "A1,A2,B", "M",    "乔木", "C", "red", "A*", "F", "A1,乔木", "LO", "*",
                      "U",      "B", "LW",      "0.31", "B",    "P", "N",   "A2", "S", "A1",      "" }),
        0);
    const auto layer = [&](const char* name) {
        return kcdbFindRecord(session.database.layerTable(), QString::fromUtf8(name));
    };
    EXPECT_TRUE(session.printed.contains("The current layer 乔木 is not frozen."));
    EXPECT_TRUE(session.printed.contains("A frozen layer cannot be the current one."));
    const KcDbRead<KcDbLayerTableRecord> a1(layer("A1")), a2(layer("A2")), b(layer("B"));
    EXPECT_EQ(a1->colorIndex(), 1);
    EXPECT_TRUE(a1->isFrozen() && !a2->isFrozen());
    EXPECT_TRUE(a1->isLocked() && !b->isLocked());
    EXPECT_EQ(b->data().lineWeight, 30); // the nearest that a file can hold
    EXPECT_FALSE(a2->data().plottable);
    EXPECT_EQ(session.database.currentLayer(), layer("乔木"));
    session.printed.clear();
    session.run({ "LAYER", "N", "a<b", "C", "300", "" });
    EXPECT_TRUE(session.printed.contains("A name cannot hold <."));
    EXPECT_TRUE(session.printed.contains("\"300\" is no colour."));
}

TEST(HandCommands, ViewsAreShownAndComeBack)
{
    Session session;
    session.addLine(0, 0, 200, 100);
    kcedSetView(session.document, { { 1000, 1000 }, 10 });
    session.run({ "Z", "0,0", "100,50" });
    EXPECT_EQ(kcedView(session.document).center, (KcGePoint2d{ 50, 25 }));
    const double height = kcedView(session.document).height;
    session.run({ "ZOOM", "0.5x", "PAN", "0,0", "10,20" });
    EXPECT_DOUBLE_EQ(kcedView(session.document).height, height * 2);
    EXPECT_EQ(kcedView(session.document).center, (KcGePoint2d{ 40, 5 }));
    session.run({ "Z", "P", "Z", "P", "Z", "P" });
    EXPECT_EQ(kcedView(session.document).center, (KcGePoint2d{ 1000, 1000 }));
    session.run({ "Z", "C", "7,8", "33", "Z", "gibberish", "^C" });
    EXPECT_EQ(kcedView(session.document), (KcEdView{ { 7, 8 }, 33 }));
    // While another command asks; its relative point counts from its own last one.
    session.run({ "LINE", "5,5", "'ZOOM", "E", "@1,0", "" });
    const auto ids = KcDbRead<KcDbBlockTableRecord>(session.database.modelSpace())->entityIds();
    EXPECT_TRUE(KcDbRead<KcDbLine>(ids.back())->data().end.isEqualTo({ 6, 5, 0 }));
}

TEST(HandCommands, AreasAddUp)
{
    Session session;
    session.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 50, 50, 0 }, 10.0));
    session.run({ "AREA", "0,0", "10,0", "10,10", "0,10", "" });
    EXPECT_TRUE(session.printed.contains("Area = 100.0000, Perimeter = 40.0000"));
    session.run({ "AA", "A", "0,0", "100,0", "100,100", "0,100", "", "S", "O", "60,50", "", "" });
    EXPECT_TRUE(session.printed.contains("Total area = 9685.8407")) << qPrintable(session.printed);
    session.run({ "DI", "1,1", "4,5" });
    EXPECT_TRUE(session.printed.contains("Distance = 5.0000"));
}

TEST(HandCommands, PurgingLeavesWhatIsUsed)
{
    Session session;
    const KcDbObjectId inner = session.addBlock("INNER"), outer = session.addBlock("OUTER"),
                       used = session.addBlock("USED");
    KcDbRead<KcDbBlockTableRecord>(outer)->appendEntity(
        std::make_unique<KcDbBlockReference>(KcGePoint3d{}, inner));
    session.addLayer("IN_BLOCK");
    session.addLayer("CURRENT");
    session.addLayer("SPARE");
    auto line = std::make_unique<KcDbLine>(KcGePoint3d{}, KcGePoint3d{ 1, 0, 0 });
    line->setLayer(kcdbFindRecord(session.database.layerTable(), "IN_BLOCK"));
    KcDbRead<KcDbBlockTableRecord>(used)->appendEntity(std::move(line));
    session.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{}, used));
    session.run({ "CLAYER", "CURRENT", "PU", "" });
    EXPECT_TRUE(session.printed.contains("2 blocks purged")) << qPrintable(session.printed);
    EXPECT_TRUE(session.printed.contains("1 layers purged"));
    EXPECT_TRUE(kcdbFindRecord(session.database.blockTable(), "INNER").isNull());
    EXPECT_FALSE(kcdbFindRecord(session.database.blockTable(), "USED").isNull());
    EXPECT_FALSE(kcdbFindRecord(session.database.layerTable(), "IN_BLOCK").isNull());
    EXPECT_TRUE(kcdbFindRecord(session.database.layerTable(), "SPARE").isNull());
    session.run({ "U" });
    EXPECT_FALSE(kcdbFindRecord(session.database.blockTable(), "INNER").isNull());
    EXPECT_FALSE(kcdbFindRecord(session.database.layerTable(), "SPARE").isNull());
}
