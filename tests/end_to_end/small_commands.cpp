// VDHELP and VDLABOUT through the program.
#include "support.h"

using namespace end_to_end;

namespace {

class SmallCommands : public EndToEnd { };

} // namespace

TEST_F(SmallCommands, HelpIsFoundBelowTheRoot)
{
    Outcome outcome = play(plan, { "VDHELP" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("/root/Sys/VdHelp.chm is missing")) << outcome.out;

    QFile help(folder.filePath("root/Sys/VdHelp.chm"));
    ASSERT_TRUE(help.open(QIODevice::WriteOnly));
    help.close();
    outcome = play(plan, { "VDHELP" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("Help: " + help.fileName())) << outcome.out;
    EXPECT_TRUE(bytes(result) == bytes(plan));
}

TEST_F(SmallCommands, AboutNamesProductAndVersion)
{
    const Outcome outcome = play(plan, { "VDLABOUT" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains(QRegularExpression("Verdelis .*\n当前版本：20\\d{6}\n"))) << outcome.out;
    EXPECT_TRUE(bytes(result) == bytes(plan));
}

TEST_F(SmallCommands, TheProgramListsThem)
{
    const Outcome outcome = program({ "commands" });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.contains(QRegularExpression("VDL_MAIN\n  VDHELP  +open the help file\n")));
}
