// System variables: where they live, what they refuse, and that scopes restore them.
#include "session.h"

#include "db/header.h"
#include "ed/status_bar.h"
#include "ed/system_variables.h"

#include <gtest/gtest.h>

using ed_test::Session;

TEST(Variables, ByNameOnTheCommandLine)
{
    Session s;
    EXPECT_EQ(s.run({ "ltscale", "2.5", "LTSCALE", "", "LTSCALE", "-1", "0.5" }), 1);
    EXPECT_EQ(kcedVarReal("LTSCALE", 0), 0.5);
    EXPECT_TRUE(s.printed.contains("Enter new value for LTSCALE <2.5>")) << qPrintable(s.printed);
    EXPECT_EQ(s.run({ "HANDSEED" }), 0) << "a variable that is read only takes no line";
}

// Variables of the drawing are undone with it; those of the session are not.
TEST(Variables, OfTheDrawingAreUndone)
{
    Session s;
    s.addLayer("trees");
    s.run({ "CLAYER", "TREES", "PICKBOX", "9", "U" });
    EXPECT_EQ(kcedVarText("CLAYER"), "0");
    EXPECT_EQ(kcedVarInt("PICKBOX", 0), 9);
    kcedSetVar("PICKBOX", int64_t(3));
    s.run({ "WIPEOUTFRAME", "2" });
    EXPECT_EQ(kcedVarInt("WIPEOUTFRAME", 0), 2);
    s.run({ "U" });
    EXPECT_EQ(kcedVarInt("WIPEOUTFRAME", 0), 1);
}

TEST(Variables, RefuseWhatTheyCannotBe)
{
    Session s;
    const struct {
        const char* name;
        KcEdVarValue value;
        bool taken;
    } rows[] = {
        { "CLAYER", QString("no such layer"), false },
        { "CLAYER", QString("0"), true },
        { "CLAYER", int64_t(0), false },
        { "CMDECHO", int64_t(2), false },
        { "OSMODE", 4.0, true },
        { "OSMODE", 4.5, false },
        { "VIEWSIZE", 1.0, false },
        { "CECOLOR", QString("bylayer"), true },
        { "CECOLOR", QString("257"), false },
        { "CTAB", QString("no such layout"), false },
        { "WIPEOUTFRAME", int64_t(3), false },
        { "NOSUCH", int64_t(1), false },
    };
    for (const auto& row : rows)
        EXPECT_EQ(kcedSetVar(row.name, row.value).isEmpty(), row.taken) << row.name;
    kcedSetVar("OSMODE", int64_t(0));
}

TEST(Variables, ScopesRestoreOnEveryExit)
{
    Session s;
    try {
        const KcEdScopedVariable quiet("CMDECHO", int64_t(0));
        EXPECT_EQ(kcedVarInt("CMDECHO", 7), 0);
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(kcedVarInt("CMDECHO", 7), 1);
}

TEST(StatusBar, ShowsEachPercentOnce)
{
    struct Sink : KcEdProgressSink {
        void show(const QString&, int percent) override { shown.push_back(percent); }
        void clear() override { shown.push_back(-1); }
        std::vector<int> shown;
    } sink;
    KcEdProgressSink* before = kcedSetProgressSink(&sink);
    {
        KcEdProgress progress("counting", 2000);
        for (int i = 0; i <= 2000; ++i)
            progress.setPosition(i);
        progress.setPosition(99999);
    }
    kcedSetStatusBarProgressMeterPos(5);
    kcedSetProgressSink(before);
    ASSERT_EQ(sink.shown.size(), 102u);
    EXPECT_EQ(sink.shown.front(), 0);
    EXPECT_EQ(sink.shown[100], 100);
    EXPECT_EQ(sink.shown.back(), -1);
}
