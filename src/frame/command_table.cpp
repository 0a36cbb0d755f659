// The one place that sees the commands of every folder. A command joins the table when it exists.

#include "frame/command_table.h"

#include "core/commands.h"
#include "ed/command_stack.h"
#include "frame/commands.h"
#include "planting/commands.h"
#include "statistics/commands.h"

#include <vector>

namespace {

constexpr CommandRow table[] = {
    { u"VDHELP", openHelp, 2, "open the help file" },
    { u"DRAWINGSETTING", editDrawingSettings, 2,
      "drawing scale, text height, units, dimension style and layer switches" },
    { u"BLOCKARRAY", arrayBlocks, 2, "place plant symbols along a path" },
    { u"TREENUMTOTABLE", countPlantsIntoTable, 2,
      "count plant symbols or labels into a tree quantity table" },
    { u"UPDATETREENUMTOTABLE", updatePlantTables, 2, "count existing tree quantity tables anew" },
    { u"CLOUDLINE", drawCloudLine, 2, "draw a cloud outline" },
    { u"CIRCLES", drawTreeArray, 2, "fill a cloud with a regular tree array" },
    { u"FOREST", drawForest, 2, "draw the edge of a coniferous forest along a cloud" },
    { u"DIMCIRCLES", labelTreeArray, 2, "label a tree array" },
    { u"VDLABOUT", showAbout, 2, "say which product and version this is" },
};

} // namespace

std::span<const CommandRow> commandTable()
{
    return table;
}

void registerCommands()
{
    std::vector<ArxCommandTable> rows;
    for (const CommandRow& row : table)
        rows.push_back({ row.name, row.handler, row.flags });
    AddCommand(commandGroup, rows.data(), int(rows.size()), 0);
    for (const CommandRow& row : table)
        kcedCommandStack().setPurpose(
            commandGroup, QString::fromUtf16(row.name), QString::fromUtf8(row.purpose));
}
