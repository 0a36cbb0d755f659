// CLOUDLINE through the program.
#include "support.h"

#include "db/polyline.h"

using namespace end_to_end;

namespace {

class CloudLines : public EndToEnd { };

} // namespace

TEST_F(CloudLines, AreDrawnIntoTheDrawing)
{
    const auto before = entities<KcDbPolyline>(*open(plan)).size();
    const Outcome outcome = play(
        plan,
        { "CLOUDLINE", "0,0", "30000,0", "30000,-20000", "u", "30000,20000", "~15000,30000", "0,20000", "" });
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const auto drawing = open(result);
    const auto outlines = entities<KcDbPolyline>(*drawing);
    ASSERT_EQ(outlines.size(), before + 1);
    const KcDbRead<KcDbPolyline> outline(outlines.back());
    EXPECT_TRUE(outline->isClosed());
    EXPECT_EQ(outline->numVerts(), 20u); // 100000 around, arcs of 5000
    EXPECT_GT(outline->area(), 30000.0 * 20000.0);
    EXPECT_EQ(program({ "audit", result }).out, program({ "audit", plan }).out);
}

TEST_F(CloudLines, LeaveNothingWhenTheyAreCancelled)
{
    const std::vector<QStringList> rows = {
        { "CLOUDLINE" },
        { "CLOUDLINE", "" },
        { "CLOUDLINE", "0,0", "9000,0", "9000,9000", "^C" },
        { "CLOUDLINE", "0,0", "9000,0", "", "^C" },
        { "CLOUDLINE", "0,0", "9000,0", "1e20,1e20", "" },
    };
    for (const QStringList& lines : rows) {
        EXPECT_EQ(play(plan, lines).status, 0);
        EXPECT_TRUE(bytes(result) == bytes(plan)) << lines.join(" | ");
    }
}
