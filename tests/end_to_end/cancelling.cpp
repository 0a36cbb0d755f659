// Cancelling costs nothing: every command is cancelled at each of its prompts in turn, and the drawing, the
// settings and the system variables must be what they were.
#include "support.h"

#include "ed/command_stack.h"
#include "ed/host_commands.h"
#include "frame/command_table.h"

using namespace end_to_end;

namespace {

// Answers that lead through every prompt of a command, to its end.
struct Walk {
    QString command;
    QStringList answers;
    QStringList preparation; ///< what must be in the drawing first
};

const std::vector<Walk>& walks()
{
    static const std::vector<Walk> rows = {
        // The host's.
        { "-BOUNDARY", { "5000,5000", "" } },
        { "ARC", { "0,0", "C", "10,0", "A", "90" } },
        { "AREA", { "0,0", "10,0", "10,10", "" } },
        { "CIRCLE", { "0,0", "D", "100" } },
        { "DIST", { "0,0", "10,0" } },
        { "EXPLODE", { "C 0,0 20000,20000", "" } },
        { "INSERT", { "?", "" } },
        { "LAYER", { "N", "NEW", "C", "1", "NEW", "P", "N", "NEW", "" } },
        { "LINE", { "0,0", "10,0", "10,10", "C" } },
        { "MIRROR", { "C 0,0 20000,20000", "", "0,0", "0,10", "Y" } },
        { "MTEXT", { "0,0", "H", "5", "100,-100", "one", "" } },
        { "NEW", {} },
        { "OFFSET", { "5", "" } },
        { "OPEN", { "no such drawing.dxf" } },
        { "OSNAP", { "" } },
        { "PAN", { "0,0", "0,0" } },
        { "PLINE", { "0,0", "10,0", "A", "10,10", "CL" } },
        { "PLOT", { QDir::temp().filePath("verdelis-cancelled-plot.png"), "Extents", "Fit", "Fit" } },
        { "PURGE", { "Blocks" } },
        { "QUIT", {} },
        { "ROTATE", { "C 0,0 20000,20000", "", "0,0", "R", "0", "90" } },
        { "SAVE", {} },
        { "SAVEAS", { "/no such folder/a.dxf" } },
        { "SCALE", { "C 0,0 20000,20000", "", "0,0", "2" } },
        { "SCRIPT", { "no such script.scr" } },
        { "SETVAR", { "?" } },
        { "TEXT", { "0,0", "5", "0", "one", "" } },
        { "UCS", { "3", "0,0", "10,0", "0,10" } },
        { "ZOOM", { "C", "0,0", "1000" } },
        { "COPY", { "C 0,0 20000,20000", "", "0,0", "100,100" } },
        { "ERASE", { "C 0,0 20000,20000", "" } },
        { "HATCH", { "SOLID", "1", "0", "C 0,0 20000,20000", "" } },
        { "LIST", { "C 0,0 20000,20000", "" } },
        { "MOVE", { "C 0,0 20000,20000", "", "0,0", "100,100" } },
        { "REDO", {} },
        { "REGEN", {} },
        { "REGENALL", {} },
        { "U", {} },
        { "UNDO", {} },
        { "WIPEOUT", { "0,0", "1000,0", "1000,500", "" } },
        // The product's.
        { "VDHELP", {} },
        { "VDLABOUT", { "!ok" } },
        { "DRAWINGSETTING",
          { "!set dTextHeight 9", "!check bTextBackFill on", "!set dDrawingScale 0", "!ok" } },
        { "CLOUDLINE", { "0,0", "30000,0", "30000,20000", "u", "0,20000", "" } },
        { "BLOCKARRAY", { "#412", "500", "71000,50000", "D", "D", "3000", "", "#591 #598", "", "0,0" } },
        { "CIRCLES", { "#40F" } },
        { "FOREST", { "#40F" } },
        { "DIMCIRCLES",
          { "", "", "70000,40000", "@30000,30000", "@10000,0", "", "NAME" },
          { "ERASE", "ALL", "", "CLOUDLINE", "40000,20000", "100000,20000", "100000,60000", "40000,60000", "",
            "CIRCLES", "70000,20000" } },
        { "TREENUMTOTABLE", { "D", "B", "ALL", "", "0,0" } },
        { "UPDATETREENUMTOTABLE", { "D", "B", "ALL", "", "ALL", "" } },
    };
    return rows;
}

// What a command is meant to keep when it is cancelled behind its first `behind` answers.
struct Kept {
    QString command;
    int behind;
    const char* reason;
};

const std::vector<Kept>& keptOnPurpose()
{
    static const std::vector<Kept> rows = {
        { "LAYER", 2, "each option is a round" }, { "LAYER", 3, "each option is a round" },
        { "LAYER", 4, "each option is a round" }, { "LAYER", 5, "each option is a round" },
        { "LAYER", 6, "each option is a round" }, { "LAYER", 7, "each option is a round" },
        { "LAYER", 8, "each option is a round" }, { "LINE", 2, "each line is a round" },
        { "LINE", 3, "each line is a round" },    { "PLINE", 2, "each point is a round" },
        { "PLINE", 3, "each point is a round" },  { "PLINE", 4, "each point is a round" },
        { "TEXT", 4, "each row is a round" },
    };
    return rows;
}

const Kept* keptBy(const QString& command, int behind)
{
    for (const Kept& row : keptOnPurpose())
        if (row.command == command && row.behind == behind)
            return &row;
    return nullptr;
}

class Cancelling : public EndToEnd {
protected:
    // Every file of the settings, and what the system variables say.
    QByteArray settings() const
    {
        QByteArray all;
        const QDir sys(folder.filePath("root/Sys"));
        for (const QString& name : sys.entryList(QDir::Files, QDir::Name))
            all += name.toUtf8() + '\n' + bytes(sys.filePath(name));
        return all;
    }
    static QStringList askVariables()
    {
        QStringList lines;
        for (const char* name :
             { "CMDECHO", "OSMODE", "PICKBOX", "VIEWCTR", "VIEWSIZE", "CLAYER", "TILEMODE", "CTAB" })
            lines << name << "";
        return lines;
    }
    // What stands behind the line that separates a command from the questions after it.
    static QString variables(const Outcome& outcome)
    {
        const qsizetype at = outcome.out.lastIndexOf("Command: REGEN\n");
        return at < 0 ? "no answer: " + outcome.out : outcome.out.mid(at);
    }
    Outcome playAndAsk(const QStringList& lines, const QString& drawing)
    {
        return play(drawing, lines + QStringList{ "REGEN" } + askVariables());
    }
    QString drawingFor(const Walk& walk)
    {
        return walk.preparation.isEmpty() ? plan : prepared(plan, walk.preparation);
    }
};

} // namespace

TEST_F(Cancelling, EveryCommandIsWalkedThrough)
{
    kcedRegisterHostCommands();
    QStringList names;
    for (const auto& command : kcedCommandStack().commands())
        names += command->globalName;
    for (const CommandRow& row : commandTable())
        names += QString::fromUtf16(row.name);
    for (const QString& name : names)
        EXPECT_TRUE(std::any_of(
            walks().begin(), walks().end(), [&](const Walk& walk) { return walk.command == name; }))
            << name << " has no row in the table of this file";
}

TEST_F(Cancelling, CostsNothingAtAnyPrompt)
{
    for (const Walk& walk : walks()) {
        const QString drawing = drawingFor(walk);
        const QString before = variables(playAndAsk({}, drawing));
        const QByteArray stored = settings();
        ASSERT_TRUE(before.contains("CLAYER")) << before;
        ASSERT_FALSE(stored.isEmpty());
        for (int behind = 0; behind < walk.answers.size(); ++behind) {
            SCOPED_TRACE(
                walk.command.toStdString() + " cancelled behind " + std::to_string(behind) + " answers");
            // A dialog is cancelled by its own line, a prompt by Escape; a prompt's answer never begins so.
            const bool inDialog = walk.answers[behind].startsWith('!');
            const Outcome outcome = playAndAsk(
                QStringList{ walk.command } + walk.answers.mid(0, behind)
                    + QStringList{ inDialog ? "!cancel" : "^C" },
                drawing);
            EXPECT_EQ(outcome.status, 0) << outcome.err;
            EXPECT_EQ(variables(outcome), before);
            EXPECT_TRUE(settings() == stored);
            if (!keptBy(walk.command, behind))
                EXPECT_TRUE(bytes(result) == bytes(drawing));
        }
    }
}

// A walk that ends early would cancel at fewer prompts than there are: each must lead to the command's end.
TEST_F(Cancelling, TheWalksAreComplete)
{
    for (const Walk& walk : walks()) {
        SCOPED_TRACE(walk.command.toStdString());
        const Outcome outcome = play(
            drawingFor(walk), QStringList{ walk.command } + walk.answers + QStringList{ "OSMODE", "" });
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_FALSE(outcome.out.contains("*Cancel*")) << outcome.out;
        EXPECT_EQ(outcome.err, "");
    }
}
