// Drawing and editing by hand: commands as they are typed, and what they leave in the drawing.

#include "ed/session.h"

#include "db/hatch.h"
#include "db/hatch_patterns.h"
#include "db/polyline.h"
#include "db/text.h"
#include "platform/app_root.h"

#include <gtest/gtest.h>

using ed_test::Session;

namespace {

std::vector<KcDbObjectId> everything(Session& session)
{
    return KcDbRead<KcDbBlockTableRecord>(session.database.modelSpace())->entityIds();
}

template <class T> std::vector<KcDbObjectId> all(Session& session)
{
    std::vector<KcDbObjectId> found = everything(session);
    std::erase_if(found, [](KcDbObjectId id) { return !KcDbRead<T>(id); });
    return found;
}

/// Length, signed area and box of the only curve: what tells it from any wrong one.
struct Measures {
    double length = 0.0, area = 0.0;
    KcGeExtents3d box;
};
Measures measuresOf(KcDbObjectId id)
{
    const KcDbRead<KcDbCurve> curve(id);
    const KcGeCurve3d geometry = curve->curve();
    return { geometry.length().value_or(-1), geometry.area().value_or(-1), geometry.extents() };
}

struct DrawCase {
    const char* name;
    QStringList lines;
    double length, area;
    double x1, y1, x2, y2; // of the box
};

} // namespace

TEST(HandCommands, DrawnCurvesHaveTheirMeasures)
{
    const double half = kPi * 10.0; // half the circumference of a circle of 10
    const std::vector<DrawCase> cases = {
        { "circle by radius", { "C", "5,5", "10" }, 2 * half, kPi * 100, -5, -5, 15, 15 },
        { "circle by diameter", { "CIRCLE", "0,0", "D", "20" }, 2 * half, kPi * 100, -10, -10, 10, 10 },
        { "circle on two points",
          { "CIRCLE", "2P", "-10,0", "10,0" },
          2 * half,
          kPi * 100,
          -10,
          -10,
          10,
          10 },
        { "circle through three",
          { "CIRCLE", "3P", "10,0", "0,10", "-10,0" },
          2 * half,
          kPi * 100,
          -10,
          -10,
          10,
          10 },
        { "arc through three", { "A", "10,0", "0,10", "-10,0" }, half, kPi * 50, -10, 0, 10, 10 },
        { "arc through three, clockwise",
          { "ARC", "-10,0", "0,10", "10,0" },
          half,
          kPi * 50,
          -10,
          0,
          10,
          10 },
        { "arc start centre end", { "ARC", "10,0", "C", "0,0", "-20,0" }, half, kPi * 50, -10, 0, 10, 10 },
        { "arc centre start angle",
          { "ARC", "C", "0,0", "10,0", "A", "180" },
          half,
          kPi * 50,
          -10,
          0,
          10,
          10 },
        { "arc start end radius",
          { "ARC", "10,0", "E", "-10,0", "R", "10" },
          half,
          kPi * 50,
          -10,
          0,
          10,
          10 },
        { "arc start end direction",
          { "ARC", "10,0", "E", "-10,0", "D", "90" },
          half,
          kPi * 50,
          -10,
          0,
          10,
          10 },
        // Two straight sides of 20 and two half circles of radius 10.
        { "polyline with arcs",
          { "PL", "0,0", "@20,0", "A", "@0,20", "L", "@-20,0", "A", "CL" },
          40 + 2 * half,
          400 + kPi * 100,
          -10,
          0,
          30,
          20 },
        { "polyline undone and closed",
          { "PLINE", "0,0", "30,0", "99,99", "U", "@0,40", "C" },
          120,
          600,
          0,
          0,
          30,
          40 },
        { "polyline by second point",
          { "PLINE", "10,0", "A", "S", "0,10", "-10,0", "" },
          half,
          kPi * 50,
          -10,
          0,
          10,
          10 },
    };
    for (const DrawCase& row : cases) {
        SCOPED_TRACE(row.name);
        Session session;
        EXPECT_EQ(session.run(row.lines), 0);
        ASSERT_EQ(everything(session).size(), 1u);
        const Measures found = measuresOf(everything(session)[0]);
        EXPECT_NEAR(found.length, row.length, 1e-9);
        EXPECT_NEAR(std::abs(found.area), row.area, 1e-9);
        EXPECT_NEAR(found.box.min.x, row.x1, 1e-9);
        EXPECT_NEAR(found.box.min.y, row.y1, 1e-9);
        EXPECT_NEAR(found.box.max.x, row.x2, 1e-9);
        EXPECT_NEAR(found.box.max.y, row.y2, 1e-9);
        session.run({ "U" });
        EXPECT_TRUE(everything(session).empty()); // one step, a polyline of many points too
    }
}

TEST(HandCommands, LinesCloseUndoAndFollowTheCoordinateSystem)
{
    Session session;
    session.addLayer("绿化");
    session.run({ "CLAYER", "绿化", "UCS", "100,200", "UCS", "Z", "90" });
    EXPECT_EQ(session.run({ "LINE", "0,0", "10,0", "99,99", "U", "@0,10", "C" }), 0);
    const auto lines = all<KcDbLine>(session);
    ASSERT_EQ(lines.size(), 3u);
    const KcDbRead<KcDbLine> second(lines[1]);
    EXPECT_EQ(second->layer(), "绿化");
    // (10,0) and (10,10) of a system at (100,200) turned by a quarter.
    EXPECT_TRUE(second->data().start.isEqualTo({ 100, 210, 0 }));
    EXPECT_TRUE(second->data().end.isEqualTo({ 90, 210, 0 }));
    session.run({ "UCS", "P", "UCS", "P" });
    EXPECT_EQ(session.database.ucsToWorld(), KcGeMatrix3d());
    session.printed.clear();
    session.run({ "UCS", "P" });
    EXPECT_TRUE(session.printed.contains("no coordinate system before"));
}

TEST(HandCommands, TextsStandWhereTheirJustificationSays)
{
    Session session;
    EXPECT_EQ(session.run({ "T", "J", "MC", "50,80", "6", "90", "乔木", "灌木", "" }), 0);
    const auto texts = all<KcDbText>(session);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_TRUE(KcDbRead<KcDbText>(texts[0])->anchor().isEqualTo({ 50, 80, 0 }));
    EXPECT_TRUE(KcDbRead<KcDbText>(texts[1])->anchor().isEqualTo({ 60, 80, 0 })); // 5/3 of the height on
    const KcGePoint3d center = KcDbRead<KcDbText>(texts[0])->geomExtents().center();
    EXPECT_NEAR(center.x, 50, 1.5);
    EXPECT_NEAR(center.y, 80, 1.5);
    EXPECT_EQ(session.run({ "MTEXT", "200,100", "J", "TC", "H", "4", "260,60", "one", "two", "" }), 0);
    const KcDbRead<KcDbMText> text(all<KcDbMText>(session).at(0));
    EXPECT_EQ(text->plainText(), "one\ntwo");
    EXPECT_TRUE(text->data().location.isEqualTo({ 230, 100, 0 }));
    EXPECT_EQ(text->data().width, 60);
}

TEST(HandCommands, TurningScalingAndMirroringKeepOrCopy)
{
    Session session;
    const KcDbObjectId line = session.addLine(10, 0, 20, 0);
    session.run({ "RO", "L", "", "0,0", "R", "0", "90" });
    EXPECT_TRUE(KcDbRead<KcDbLine>(line)->data().end.isEqualTo({ 0, 20, 0 }));
    session.run({ "SC", "ALL", "", "0,0", "C", "R", "20", "10" });
    ASSERT_EQ(everything(session).size(), 2u);
    EXPECT_TRUE(KcDbRead<KcDbLine>(everything(session)[1])->data().end.isEqualTo({ 0, 10, 0 }));

    auto text = std::make_unique<KcDbText>();
    text->data().position = { 10, 10, 0 };
    text->data().height = 5;
    text->data().text = "AB";
    const KcDbObjectId id = session.add(std::move(text));
    const KcGeExtents3d box = KcDbRead<KcDbText>(id)->geomExtents();
    session.run({ "MI", "#" + QString::number(id.handle(), 16), "", "0,0", "0,1", "Y" });
    const auto texts = all<KcDbText>(session);
    ASSERT_EQ(texts.size(), 1u); // the source is gone
    const KcDbRead<KcDbText> mirrored(texts[0]);
    EXPECT_EQ(mirrored->data().generation, 0); // still readable
    EXPECT_NEAR(mirrored->geomExtents().min.x, -box.max.x, 1e-6);
    EXPECT_NEAR(mirrored->geomExtents().max.x, -box.min.x, 1e-6);
    session.run({ "MIRRTEXT", "1", "MI", "L", "", "0,0", "0,1", "N" });
    EXPECT_NE(KcDbRead<KcDbText>(all<KcDbText>(session)[1])->data().generation, 0);
}

TEST(HandCommands, LockedLayersAreToldAndLeftAlone)
{
    Session session;
    const KcDbObjectId layer = session.addLayer("LOCKED");
    KcDbWrite<KcDbLayerTableRecord>(layer)->setIsLocked(true);
    const KcDbObjectId line = session.addLine(0, 0, 10, 0, "LOCKED");
    for (const QStringList& lines :
         { QStringList{ "RO", "0,0", "", "0,0", "90" }, QStringList{ "SC", "0,0", "", "0,0", "3" },
           QStringList{ "E", "0,0", "" }, QStringList{ "MI", "0,0", "", "0,0", "0,1", "Y" },
           QStringList{ "X", "0,0", "" } }) {
        session.printed.clear();
        session.run(lines);
        EXPECT_TRUE(session.printed.contains("1 on a locked layer")) << qPrintable(lines[0]);
        EXPECT_EQ(everything(session), std::vector{ line });
        EXPECT_TRUE(KcDbRead<KcDbLine>(line)->data().end.isEqualTo({ 10, 0, 0 }));
    }
}

TEST(HandCommands, ParallelsLieOnTheSideThatWasPointedAt)
{
    struct Row {
        const char* name;
        QStringList curve;
        QString pick;
        QString side;
        double length;
    };
    for (const Row& row : {
             Row{ "line, left", { "LINE", "0,0", "10,0", "" }, "5,0", "5,9", 10 },
             Row{ "circle, inwards", { "C", "0,0", "10" }, "10,0", "1,1", 2 * kPi * 8 },
             Row{ "circle, outwards", { "C", "0,0", "10" }, "10,0", "30,0", 2 * kPi * 12 },
             Row{ "rectangle, inwards", { "PL", "0,0", "20,0", "20,10", "0,10", "C" }, "10,0", "10,1", 44 },
             Row{ "rectangle, beyond a corner",
                  { "PL", "0,0", "20,0", "20,10", "0,10", "C" },
                  "10,0",
                  "22,13",
                  76 },
         }) {
        SCOPED_TRACE(row.name);
        Session session;
        session.run(row.curve + QStringList{ "O", "2", row.pick, row.side, "" });
        ASSERT_EQ(everything(session).size(), 2u);
        EXPECT_NEAR(measuresOf(everything(session)[1]).length, row.length, 1e-6);
    }
    Session session;
    session.addLine(0, 0, 10, 0);
    session.run({ "O", "T", "5,0", "20,-7", "" });
    EXPECT_TRUE(KcDbRead<KcDbLine>(everything(session).at(1))->data().start.isEqualTo({ 0, -7, 0 }));
    session.run({ "O", "3", "5,0", "M", "0,1", "0,1", "", "" });
    EXPECT_TRUE(KcDbRead<KcDbLine>(everything(session).at(3))->data().start.isEqualTo({ 0, 6, 0 }));
}

TEST(HandCommands, BlocksArePlacedWithTheirAttributesAndTakenApart)
{
    Session session;
    const KcDbObjectId block = session.addBlock("TREE");
    {
        const KcDbRead<KcDbBlockTableRecord> record(block);
        auto circle = std::make_unique<KcDbCircle>(KcGePoint3d{ 0, 0, 0 }, 1.0);
        circle->setLayer(session.database.currentLayer());
        circle->setColorIndex(KcCmColor::kByBlock);
        record->appendEntity(std::move(circle));
        auto definition = std::make_unique<KcDbAttributeDefinition>();
        definition->data().height = 1.0;
        definition->data().position = { 2, 0, 0 };
        definition->data().text = "oak";
        definition->attribute().tag = "NAME";
        definition->attribute().prompt = "Species";
        record->appendEntity(std::move(definition));
    }
    session.addLayer("TREES");
    session.run({ "CLAYER", "TREES", "CECOLOR", "3" });
    EXPECT_EQ(session.run({ "I", "nothing", "tree", "100,0", "2", "", "90", "香樟" }), 0);
    EXPECT_TRUE(session.printed.contains("has no block \"nothing\""));
    EXPECT_TRUE(session.printed.contains("Species <oak>"));
    const auto references = all<KcDbBlockReference>(session);
    ASSERT_EQ(references.size(), 1u);
    {
        const KcDbRead<KcDbBlockReference> reference(references[0]);
        EXPECT_EQ(reference->attributeValue("name"), "香樟");
        EXPECT_NEAR(KcDbRead<KcDbAttribute>(reference->attributes()[0])->data().position.y, 4, 1e-9);
    }
    EXPECT_EQ(session.run({ "EXPLODE", "ALL", "" }), 0);
    ASSERT_EQ(everything(session).size(), 2u);
    const KcDbRead<KcDbCircle> circle(everything(session)[0]);
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->radius(), 2);
    EXPECT_TRUE(circle->center().isEqualTo({ 100, 0, 0 }));
    EXPECT_EQ(circle->layer(), "TREES"); // layer "0" of a block is the reference's
    EXPECT_EQ(circle->colorIndex(), 3);
    EXPECT_EQ(KcDbRead<KcDbText>(all<KcDbText>(session).at(0))->textString(), "香樟");
    session.run({ "U" });
    EXPECT_EQ(everything(session), references);
}

// Uneven scales make ellipses of circles; what cannot be taken apart stays whole and is named.
TEST(HandCommands, WhatCannotBeExplodedStays)
{
    Session session;
    const KcDbObjectId block = session.addBlock("FLAT");
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::make_unique<KcDbCircle>(KcGePoint3d{}, 1.0));
    session.run({ "INSERT", "FLAT", "0,0", "4", "2", "" });
    session.addLine(50, 0, 60, 0);
    session.printed.clear();
    session.run({ "X", "ALL", "" });
    EXPECT_TRUE(session.printed.contains("1 cannot be exploded: a line")) << qPrintable(session.printed);
    const auto ellipses = all<KcDbEllipse>(session);
    ASSERT_EQ(ellipses.size(), 1u);
    EXPECT_NEAR(std::abs(measuresOf(ellipses[0]).area), kPi * 8, 1e-6);
    EXPECT_EQ(all<KcDbLine>(session).size(), 1u);

    session.run({ "E", "ALL", "", "PL", "0,0", "10,0", "A", "@0,10", "", "X", "ALL", "" });
    EXPECT_EQ(all<KcDbLine>(session).size(), 1u);
    EXPECT_EQ(all<KcDbArc>(session).size(), 1u);
    session.run(
        { "E", "ALL", "", "MTEXT", "0,0", "H", "3", "100,-50", "first", "second", "", "X", "ALL", "" });
    ASSERT_EQ(all<KcDbText>(session).size(), 2u);
    EXPECT_EQ(KcDbRead<KcDbText>(all<KcDbText>(session)[1])->textString(), "second");
}

TEST(HandCommands, RegionsAroundPointsHaveTheirIslands)
{
    Session session;
    // A rectangle of lines cut by one more, with two triangles that share a side in its left part.
    session.addLine(0, 0, 100, 0);
    session.addLine(100, 0, 100, 50);
    session.addLine(100, 50, 0, 50);
    session.addLine(0, 50, 0, 0);
    session.addLine(60, -10, 60, 60);
    session.run({ "PL", "20,20", "30,20", "30,30", "20,30", "C", "LINE", "20,20", "30,30", "" });
    const size_t before = everything(session).size();
    EXPECT_EQ(session.run({ "-BOUNDARY", "5,5", "" }), 0);
    auto made = everything(session);
    made.erase(made.begin(), made.begin() + std::ptrdiff_t(before));
    ASSERT_EQ(made.size(), 2u);
    EXPECT_NEAR(std::abs(measuresOf(made[0]).area), 60 * 50, 1e-6);
    EXPECT_NEAR(std::abs(measuresOf(made[1]).area), 100, 1e-6); // the two triangles as one
    session.run({ "U" });
    EXPECT_EQ(everything(session).size(), before);

    platform::setAppRoot(QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis"));
    KcDbHatchPatterns::instance().reread();
    EXPECT_EQ(session.run({ "HATCH", "SOLID", "1", "0", "I", "5,5", "500,500", "" }), 0);
    ASSERT_EQ(all<KcDbHatch>(session).size(), 1u);
    platform::setAppRoot({});
    EXPECT_NEAR(KcDbRead<KcDbHatch>(all<KcDbHatch>(session)[0])->getArea().value_or(0), 2900, 1e-6);
    session.run({ "U" });

    session.printed.clear();
    EXPECT_EQ(session.run({ "BO", "500,500", "" }), 0);
    EXPECT_TRUE(session.printed.contains("Nothing encloses that point."));
    EXPECT_EQ(session.run({ "BO", "80,10", "^C" }), 0);
    EXPECT_EQ(everything(session).size(), before);
}

// A command that a companion runs at every move must neither eat handles nor leave its search behind.
TEST(HandCommands, BoundariesRunInsideCommandsAndAreUndoneWithThem)
{
    Session session;
    session.run({ "C", "0,0", "10", "C", "0,0", "3" });
    session.run(
        [] {
            EXPECT_EQ(kcedCommand("_-BOUNDARY", "5,0", ""), "");
            EXPECT_EQ(kcedCommand("_ZOOM", "E"), "");
            EXPECT_EQ(kcedCommand("_LINE", "0,0", "1,1", ""), "");
        },
        {});
    EXPECT_EQ(everything(session).size(), 5u);
    const KcDbHandle handles = session.database.nextHandle();
    session.run({ "U" });
    EXPECT_EQ(everything(session).size(), 2u);
    EXPECT_LE(handles, session.database.nextHandle());
    session.printed.clear();
    session.run([] { kcedCommand("OPEN", "x.dxf"); }, {});
    EXPECT_TRUE(session.printed.contains("OPEN cannot be used inside another command."));
}

// Faults: the systems of a drawing that was closed, or one that was gone back from, come again.
TEST(HandCommands, GoesBackThroughTheCoordinateSystemsOfItsDrawing)
{
    {
        Session other;
        other.run({ "UCS", "50,50", "", "UCS", "1,1", "" });
    }
    Session session;
    session.run({ "UCS", "P" });
    EXPECT_TRUE(session.database.ucsToWorld() == KcGeMatrix3d());
    session.printed.clear();
    QStringList lines;
    for (int i = 0; i < 10; ++i)
        lines << "UCS" << "1,0" << "";
    session.run(lines);
    for (int x = 9; x >= 0; --x) {
        session.run({ "UCS", "P" });
        EXPECT_NEAR((session.database.ucsToWorld() * KcGePoint3d()).x, x, 1e-9) << session.printed.toStdString();
    }
}
