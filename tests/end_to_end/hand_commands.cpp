// A drawing made by hand from an empty one, saved, opened again, and plotted by other programs' reading;
// commands that change the drawing itself.
#include "support.h"

#include "db/hatch.h"

using namespace end_to_end;

namespace {

class HandDrawing : public EndToEnd { };

} // namespace

TEST_F(HandDrawing, IsSavedAndOpenedAgain)
{
    const QString first = folder.filePath("first.dxf");
    Outcome outcome = play(
        plan, { "NEW",     "LAYER", "M",      "道路", "C",     "2",        "",          "",       "PLINE",
                "0,0",     "100,0", "100,50", "0,50", "C",     "CIRCLE",   "50,25",     "10",     "OFFSET",
                "5",       "60,25", "70,25",  "",     "HATCH", "SOLID",    "1",         "0",      "ALL",
                "",        "TEXT",  "10,60",  "5",    "0",     "中心广场", "",          "MTEXT",  "0,100",
                "60,80",   "one",   "two",    "",     "ARC",   "0,0",      "5,5",       "10,0",   "ROTATE",
                "L",       "",      "0,0",    "90",   "SCALE", "L",        "",          "0,0",    "2",
                "MIRROR",  "L",     "",       "0,0",  "0,1",   "N",        "-BOUNDARY", "2,2",    "",
                "WIPEOUT", "1,1",   "5,1",    "5,5",  "",      "SAVEAS",   first,       "INSERT", "?",
                "^C",      "NEW",   "OPEN",   first,  "LIST",  "ALL",      "" });
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("Saved " + first));
    EXPECT_TRUE(outcome.out.contains("Opened " + first));
    const auto drawing = open(result);
    EXPECT_EQ(entities<KcDbPolyline>(*drawing).size(), 2u); // with the one between the arc and the edge
    ASSERT_EQ(entities<KcDbHatch>(*drawing).size(), 1u);
    // The ring between the circles of 10 and 15 is left out.
    EXPECT_NEAR(*KcDbRead<KcDbHatch>(entities<KcDbHatch>(*drawing)[0])->getArea(), 5000 - 125 * kPi, 1e-6);
    for (const KcDbObjectId id : entities<KcDbEntity>(*drawing))
        EXPECT_EQ(KcDbRead<KcDbEntity>(id)->layer(), "道路");
}

TEST_F(HandDrawing, UnsavedChangesAreAskedForAndNothingIsLost)
{
    Outcome outcome = play(plan, { "LINE", "0,0", "10,0", "", "NEW", "!cancel", "ERASE", "ALL", "", "U" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(entities<KcDbLine>(*open(result)).size(), entities<KcDbLine>(*open(plan)).size() + 1);

    outcome = play(plan, { "OPEN", folder.filePath("missing.dxf"), "ERASE", "L", "", "U" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("missing.dxf")) << outcome.out;
    EXPECT_EQ(entities<KcDbEntity>(*open(result)).size(), entities<KcDbEntity>(*open(plan)).size());

    outcome = play(plan, { "LINE", "0,0", "10,0", "", "QUIT", "!no", "NOT READ ANY MORE" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(HandDrawing, ScriptsAndSettingsRunByTheirNames)
{
    const QString path = folder.filePath("more lines.scr");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("LINE\n0,0\n7,0\n\nUCS\nZ\n90\n");
    file.close();
    const QString own = folder.filePath("own.dxf");
    ASSERT_TRUE(QFile::copy(plan, own));
    const Outcome outcome
        = play(own, { "SCRIPT", path,      "LINE", "0,0",   "1,0",      "",     "SETVAR", "LUPREC", "2",
                      "DIST",   "0,0",     "0,3",  "AREA",  "0,0",      "1,0",  "1,1",    "",       "PURGE",
                      "",       "EXPLODE", "L",    "",      "COPY",     "L",    "",       "0,0",    "1,1",
                      "MOVE",   "L",       "",     "0,0",   "1,1",      "ZOOM", "E",      "PAN",    "0,0",
                      "1,1",    "OSNAP",   "END",  "REGEN", "REGENALL", "UNDO", "REDO",   "SAVE" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("Distance = 3.00")) << outcome.out;
    EXPECT_TRUE(outcome.out.contains("Saved " + own)) << outcome.out;
    EXPECT_TRUE(bytes(own) == bytes(result));
}
