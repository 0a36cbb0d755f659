// HATCH and WIPEOUT as they are typed.

#include "ed/session.h"

#include "db/hatch.h"
#include "db/hatch_patterns.h"
#include "db/polyline.h"
#include "db/wipeout.h"
#include "platform/app_root.h"

#include <gtest/gtest.h>

using ed_test::Session;

namespace {

struct Patterns {
    Patterns()
    {
        platform::setAppRoot(QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis"));
        KcDbHatchPatterns::instance().reread();
    }
    ~Patterns() { platform::setAppRoot({}); }
};

template <class T> std::vector<KcDbObjectId> all(Session& session)
{
    std::vector<KcDbObjectId> found;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(session.database.modelSpace()))
        if (KcDbRead<T>(id))
            found.push_back(id);
    return found;
}

} // namespace

TEST(HatchCommand, FillsOutlinesAndFollowsThemInOneStep)
{
    const Patterns patterns;
    Session session;
    // A triangle of three lines, and a circle inside it.
    session.addLine(0, 0, 20, 0);
    const KcDbObjectId side = session.addLine(20, 0, 0, 20);
    session.addLine(0, 20, 0, 0);
    session.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 5, 5, 0 }, 2.0));
    EXPECT_EQ(session.run({ "HATCH", "NOSUCH", "net", "2", "30", "ALL", "" }), 0);
    EXPECT_TRUE(session.printed.contains(QStringLiteral("No pattern file defines NOSUCH.")));
    const auto hatches = all<KcDbHatch>(session);
    ASSERT_EQ(hatches.size(), 1u);
    {
        const KcDbRead<KcDbHatch> hatch(hatches[0]);
        EXPECT_NEAR(hatch->getArea().value_or(0), 200 - 4 * kPi, 1e-9);
        EXPECT_EQ(hatch->data().lines.size(), 2u);
        EXPECT_NEAR(hatch->data().lines[0].angle, kPi / 6, 1e-12);
        EXPECT_EQ(hatch->getAssocObjIds().size(), 4u);
        EXPECT_EQ(KcDbRead<KcDbEntity>(side)->reactors(), hatches);
    }
    // Moved together, all stay together; then one step back takes the hatch away.
    session.run({ "MOVE", "ALL", "", "100,0", "" });
    EXPECT_NEAR(KcDbRead<KcDbHatch>(hatches[0])->geomExtents().min.x, 100, 1e-9);
    EXPECT_NEAR(KcDbRead<KcDbHatch>(hatches[0])->getArea().value_or(0), 200 - 4 * kPi, 1e-9);
    session.run({ "U", "U" });
    EXPECT_TRUE(all<KcDbHatch>(session).empty());
    EXPECT_TRUE(KcDbRead<KcDbEntity>(side)->reactors().empty());

    // Defaults are remembered; a cancel leaves nothing behind, not even these.
    session.printed.clear();
    session.run({ "HATCH", "BRICK", "9", "^C" });
    session.run({ "HATCH", "", "", "", "ALL", "" });
    EXPECT_TRUE(session.printed.contains(QStringLiteral("<NET>")));
    EXPECT_EQ(KcDbRead<KcDbHatch>(all<KcDbHatch>(session).at(0))->patternScale(), 2.0);
}

TEST(HatchCommand, WhatDoesNotCloseIsTold)
{
    const Patterns patterns;
    Session session;
    session.addLine(0, 0, 20, 0);
    session.addLine(20, 0, 0, 20);
    session.run({ "HATCH", "SOLID", "1", "0", "ALL", "" });
    EXPECT_TRUE(session.printed.contains(QStringLiteral("2 curves do not close an outline")));
    EXPECT_TRUE(session.printed.contains(QStringLiteral("Nothing selected encloses an area.")));
    EXPECT_TRUE(all<KcDbHatch>(session).empty());
}

TEST(WipeoutCommand, PointsPolylinesAndFrames)
{
    Session session;
    EXPECT_EQ(session.run({ "WIPEOUT", "0,0", "10,0", "10,5", "" }), 0);
    auto polyline = std::make_unique<KcDbPolyline>();
    for (const KcGePoint2d p : { KcGePoint2d{ 50, 0 }, KcGePoint2d{ 60, 0 }, KcGePoint2d{ 60, 8 } })
        polyline->addVertex(p);
    polyline->setClosed(true);
    const KcDbObjectId bed = session.add(std::move(polyline));
    EXPECT_EQ(session.run({ "WIPEOUT", "P", Session::handle(bed) }), 0);
    const auto wipeouts = all<KcDbWipeout>(session);
    ASSERT_EQ(wipeouts.size(), 2u);
    EXPECT_EQ(KcDbRead<KcDbWipeout>(wipeouts[0])->outline().size(), 3u);
    EXPECT_NEAR(KcDbRead<KcDbWipeout>(wipeouts[1])->geomExtents().max.y, 8, 1e-9);

    EXPECT_TRUE(kcedCommand({ "_WIPEOUT", "F", "OFF" }).isEmpty());
    EXPECT_EQ(kcdbWipeoutFrame(session.database), 0);
    EXPECT_EQ(session.run({ "WIPEOUT", "F", "ON" }), 0);
    EXPECT_EQ(kcdbWipeoutFrame(session.database), 1);

    session.run({ "WIPEOUT", "0,0", "10,0", "^C" });
    session.run({ "WIPEOUT", "0,0", "10,0", "" });
    EXPECT_EQ(all<KcDbWipeout>(session).size(), 2u);
    EXPECT_TRUE(session.printed.contains(QStringLiteral("at least three points")));
}
