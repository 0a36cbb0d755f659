// TREENUMTOTABLE: counts the plants of a selection into a tree quantity table.

#include "statistics/commands.h"

#include "core/draw.h"
#include "core/entity.h"
#include "core/prompts.h"
#include "core/tags.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "frame/module.h"
#include "statistics/plant_count.h"
#include "statistics/tree_table.h"

void countPlantsIntoTable()
{
    const PlantSelection plants = selectPlants();
    if (plants.ids.empty())
        return;
    KcGePoint3d position;
    if (!GetPoint(position, localised(QStringLiteral("PICKTHEPOSITION"))))
        return;

    const KcApDocLock lock;
    if (!lock)
        return kcedSay(QStringLiteral("图形当前不能修改，未生成统计表。"));
    DList<CTreeData> records;
    if (!countPlants(plants, records))
        return kcedSay(QStringLiteral("已停止，未生成统计表。"));
    TableSettings settings = readTableSettings();
    if (!createTable(settings, treeTableName))
        return;

    const int counted = records.count();
    fillTreeTable(*settings.table, records, settings.rowHeight);
    settings.table->setPosition(position);
    settings.table->setDirection(KcGeVector3d::kXAxis);
    const KcDbObjectId table = AppendToModelSpace(std::move(settings.table), true);
    if (counted == 0)
        return kcedSay(QStringLiteral("所选对象中没有可统计的植物，统计表只有表头。"));
    CEntity::SetXData(table, tags::entityType, tags::kind::treeTable);
    kcedSay(QStringLiteral("已统计%1种植物。").arg(counted));
}
