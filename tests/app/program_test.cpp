// The program as a user calls it: exit statuses, where messages go, and that a failed run leaves no file
// behind.
#include "app/support.h"

using app_test::Outcome;
using app_test::Program;

TEST_F(Program, ExitStatuses)
{
    const QString out = folder.filePath("out.dxf");
    const QString script = write("good.scr", "LIST\nL\n\n");
    const QString badScript = write("latin1.scr", "; caf\xe9\n");
    const QString noDrawing = write("text.dxf", "this is no drawing\n");
    const struct {
        const char* name;
        QStringList arguments;
        int status;
        const char* says; ///< on standard error
        bool written;
    } rows[] = {
        { "a script", { "run", plan, "-s", script, "-o", out }, 0, "", true },
        { "the end of the script cancels", { "run", plan, "-c", "ERASE", "-o", out }, 0, "", true },
        { "an unknown command",
          { "run", plan, "-c", "U", "-c", "NOSUCH", "-o", out },
          2,
          "-c, line 2: \"NOSUCH\"",
          true },
        { "a missing drawing", { "run", folder.filePath("none.dxf"), "-o", out }, 1, "none.dxf", false },
        { "a file that is no drawing", { "run", noDrawing, "-o", out }, 1, "text.dxf", false },
        { "a missing script",
          { "run", plan, "-s", folder.filePath("none.scr"), "-o", out },
          1,
          "none.scr",
          false },
        { "a script in another encoding", { "run", plan, "-s", badScript, "-o", out }, 1, "UTF-8", false },
        { "a folder that is not there",
          { "run", plan, "-o", folder.filePath("no/out.dxf") },
          1,
          "there is no folder",
          false },
        { "a folder as the result", { "run", plan, "-o", folder.path() }, 1, "it is a folder", false },
        { "no drawing", { "run" }, 2, "one drawing", false },
        { "an unknown option", { "run", plan, "--fast" }, 2, "--fast", false },
        { "an option without value", { "run", plan, "-s" }, 2, "-s lacks its value", false },
        { "an unknown entity", { "dump", plan, "FFFFFF" }, 2, "no entity FFFFFF", false },
        { "an unknown sub-command option", { "audit", plan, "-x" }, 2, "-x", false },
        { "a plot of another kind", { "plot", plan, "x.doc" }, 2, ".png, .pdf or .svg", false },
        { "a plot of no window", { "plot", plan, "x.png", "--window", "1,2,3" }, 2, "--window", false },
        { "a plot on no paper", { "plot", plan, "x.pdf", "--paper", "A99" }, 2, "A99", false },
        { "a plot of no layout",
          { "plot", plan, folder.filePath("x.pdf"), "--layout", "Attic" },
          1,
          "\"Attic\"",
          false },
        { "neither a sub-command nor a drawing", { "frobnicate" }, 2, "frobnicate", false },
        { "the window without a display", { plan }, 2, "no display", false },
    };
    for (const auto& row : rows) {
        QFile::remove(out);
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.status, row.status) << row.name << ": " << qPrintable(outcome.err);
        EXPECT_TRUE(outcome.err.contains(row.says)) << row.name << ": " << qPrintable(outcome.err);
        EXPECT_EQ(QFile::exists(out), row.written) << row.name;
    }
}

// A drawing that was erased from and saved lacks what was erased, and nothing else.
TEST_F(Program, ErasesAndSaves)
{
    const QString out = folder.filePath("out.dxf");
    const qsizetype before = run({ "dump", plan }).out.count('\n');
    const qsizetype hatches = run({ "dump", plan, "--type", "HATCH" }).out.count('\n');
    ASSERT_GT(hatches, 0);
    const QString handle
        = run({ "dump", plan, "--type", "HATCH" }).out.section("\"handle\":\"", 1).section('"', 0, 0);
    ASSERT_EQ(run({ "run", plan, "-c", "ERASE", "-c", '#' + handle, "-c", "", "-o", out }).status, 0);
    EXPECT_EQ(run({ "dump", out }).out.count('\n'), before - 1);
    EXPECT_EQ(run({ "dump", out, "--type", "HATCH" }).out.count('\n'), hatches - 1);
    EXPECT_EQ(run({ "dump", out, handle }).status, 2);
}

TEST_F(Program, TheShellAsksOnTheTerminal)
{
    const Outcome outcome = run({ "shell", plan }, "LTSCALE\n\nNOSUCH\nERASE\n");
    EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.err);
    EXPECT_TRUE(outcome.out.contains("Enter new value for LTSCALE"));
    EXPECT_TRUE(outcome.out.contains("Unknown command \"NOSUCH\"."));
    EXPECT_TRUE(outcome.out.contains("*Cancel*"));
}

TEST_F(Program, ListsItsCommands)
{
    const Outcome outcome = run({ "commands" });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.contains("ERASE"));
    EXPECT_TRUE(outcome.out.contains("erase objects"));
}
