// UPDATETREENUMTOTABLE: counts the tree quantity tables of the drawing anew from a selection of plants.

#include "statistics/commands.h"

#include "core/entity_tags.h"
#include "core/prompts.h"
#include "core/tags.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "frame/module.h"
#include "statistics/tree_table.h"

namespace {

bool isTreeTable(KcDbObjectId id)
{
    return entityTag(id, tags::entityType) == tags::kind::treeTable;
}

bool isContinuationPage(KcDbObjectId table)
{
    return entityTag(table, tags::page).toInt() >= 2;
}

} // namespace

void updatePlantTables()
{
    const PlantSelection plants = selectPlants();
    if (plants.ids.empty())
        return;
    std::vector<KcDbObjectId> tables;
    bool all = false;
    if (!GetSelectionAcceptEmpty(
            tables, kcutBuildList(0, "ACAD_TABLE"), localised(QStringLiteral("SELECTTABLEORALL")), all))
        return;
    if (all)
        GetEntitiesOfType(QStringLiteral("AcDbTable"), tables);

    const TableSettings settings = readTableSettings();
    bool metPages = false;
    bool stopped = false;
    int updated = 0;
    for (const KcDbObjectId id : tables) {
        if (!isTreeTable(id))
            continue;
        if (isContinuationPage(id)) {
            metPages = true;
            continue;
        }
        const KcApDocLock lock;
        if (!lock)
            return kcedSay(QStringLiteral("图形当前不能修改，统计表未更新。"));
        DList<CTreeData> records;
        if (const KcDbRead<KcDbTable> table(id); !table)
            continue;
        else if (!recountTreeTable(*table, plants, records)) {
            stopped = true;
            break;
        }
        const KcDbWrite<KcDbTable> table(id);
        updateTreeTable(*table, records, settings);
        table->recomputeTableBlock();
        ++updated;
    }
    if (metPages)
        kcedPrint(QStringLiteral("\n请注意已分页的表格无法进行更新"));
    if (stopped)
        return kcedSay(QStringLiteral("已停止，已更新%1个乔灌数量统计表，其余未更新。").arg(updated));
    kcedSay(
        updated > 0 ? QStringLiteral("已更新%1个乔灌数量统计表。").arg(updated)
                    : QStringLiteral("没有可更新的乔灌数量统计表。"));
}
