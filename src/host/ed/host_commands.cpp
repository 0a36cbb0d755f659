// The table of the host's commands.

#include "ed/host_commands.h"

#include "ed/command_stack.h"
#include "ed/commands/commands.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/hatch_commands.h"
#include "ed/plot_command.h"

namespace {

constexpr int kPick = KcEdCommand::kUsePickFirst;
constexpr int kLooks = KcEdCommand::kTransparent;
constexpr int kNoStep = KcEdCommand::kNoUndoStep;

void undo()
{
    const QString name = kcedCurrentDatabase()->undo().undo();
    kcedSay(name.isEmpty() ? QStringLiteral("Nothing to undo") : name);
}

void redo()
{
    const QString name = kcedCurrentDatabase()->undo().redo();
    kcedSay(name.isEmpty() ? QStringLiteral("Nothing to redo") : name);
}

struct Row {
    const char* name;
    const char* aliases; ///< separated by blanks
    int flags;
    void (*handler)();
    const char* purpose;
};

constexpr Row kRows[] = {
    { "-BOUNDARY", "BO BOUNDARY", 0, hand::boundary, "closed polylines around points" },
    { "ARC", "A", 0, hand::arc, "draw an arc" },
    { "AREA", "AA", kLooks, hand::area, "measure areas" },
    { "CIRCLE", "C", 0, hand::circle, "draw a circle" },
    { "COPY", "CO CP", kPick, hand::copy, "copy objects by a displacement" },
    { "DIST", "DI", kLooks, hand::distance, "measure a distance" },
    { "ERASE", "E", kPick, hand::erase, "erase objects" },
    { "EXPLODE", "X", kPick, hand::explode, "take blocks, polylines and texts apart" },
    { "HATCH", "H -HATCH", kPick, kcedHatch, "fill closed outlines with a pattern" },
    { "INSERT", "I -INSERT", 0, hand::insert, "place a block" },
    { "LAYER", "LA -LAYER", 0, hand::layers, "make layers and change them" },
    { "LINE", "L", 0, hand::line, "draw lines" },
    { "LIST", "LI", kPick, hand::list, "print the values of objects" },
    { "MIRROR", "MI", kPick, hand::mirror, "mirror objects" },
    { "MOVE", "M", kPick, hand::move, "move objects by a displacement" },
    { "MTEXT", "MT -MTEXT", 0, hand::multilineText, "write a text of several lines" },
    { "NEW", "", kNoStep, hand::newDrawing, "begin an empty drawing" },
    { "OFFSET", "O", 0, hand::offset, "draw parallels" },
    { "OPEN", "", kNoStep, hand::openDrawing, "open a drawing" },
    { "OSNAP", "OS -OSNAP", kLooks, hand::objectSnapModes, "choose object snaps" },
    { "PAN", "P -PAN", kLooks, hand::pan, "move the view" },
    { "PLINE", "PL", 0, hand::polyline, "draw a polyline of lines and arcs" },
    { "PLOT", "PRINT", kNoStep, kcedPlotCommand, "write the drawing, or a part of it, to a PDF, PNG or SVG file" },
    { "PURGE", "PU -PURGE", 0, hand::purge, "take away definitions that nothing uses" },
    { "QUIT", "EXIT", kNoStep, hand::quit, "end the program" },
    { "REDO", "", kNoStep, redo, "bring back what was undone last" },
    { "REGEN", "RE", 0, hand::regenerate, "draw the drawing anew" },
    { "REGENALL", "REA", 0, hand::regenerate, "draw all views anew" },
    { "ROTATE", "RO", kPick, hand::rotate, "turn objects" },
    { "SAVE", "QSAVE", kNoStep, hand::saveDrawing, "save the drawing" },
    { "SAVEAS", "", kNoStep, hand::saveDrawingAs, "save the drawing under a name" },
    { "SCALE", "SC", kPick, hand::scale, "make objects larger or smaller" },
    { "SCRIPT", "SCR", kNoStep, hand::script, "run the lines of a file" },
    { "SETVAR", "SET", kLooks, hand::variable, "show and set system variables" },
    { "TEXT", "T DT DTEXT", 0, hand::text, "write single lines of text" },
    { "U", "", kNoStep, undo, "take back the last command" },
    { "UCS", "", 0, hand::coordinateSystem, "set the user coordinate system" },
    { "UNDO", "", kNoStep, undo, "take back the last command" },
    { "WIPEOUT", "", kPick, kcedWipeout, "mask an area, or show and hide the frames of masks" },
    { "ZOOM", "Z", kLooks, hand::zoom, "show another part of the drawing" },
};

} // namespace

void kcedRegisterHostCommands()
{
    static const QString group = QStringLiteral("KCAD");
    KcEdCommandStack& stack = kcedCommandStack();
    for (const auto& command : stack.commands())
        if (command->group == group)
            return;
    for (const Row& row : kRows) {
        const QString name = QString::fromLatin1(row.name);
        stack.addCommand(group, name, name, row.flags, row.handler);
        stack.setPurpose(group, name, QString::fromLatin1(row.purpose));
        for (const QString& alias : QString::fromLatin1(row.aliases).split(u' ', Qt::SkipEmptyParts))
            stack.addAlias(alias, name);
    }
}

QString kcedCommand(const QStringList& texts)
{
    if (texts.isEmpty())
        return {};
    const KcEdCommand* command = kcedCommandStack().lookup(texts.first());
    if (!command)
        return QStringLiteral("Unknown command \"%1\".").arg(texts.first());
    KcEdListSource answers(texts.mid(1));
    const KcEdSourceScope scope(answers);
    if (!kcedCommandStack().run(*command))
        return QStringLiteral("%1 failed.").arg(command->globalName);
    return answers.refusal();
}
