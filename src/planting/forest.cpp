// FOREST: draws the edge of a coniferous forest along a cloud outline.

#include "core/draw.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "planting/commands.h"
#include "planting/forest_edge.h"

void drawForest()
{
    const std::optional<CloudOutline> outline = askCloudOutline();
    if (!outline)
        return;
    std::vector<KcGePoint3d> points;
    for (const KcGePoint2d corner : forestEdge(*outline))
        points.push_back({ corner.x, corner.y, outline->elevation });
    if (points.empty())
        return kcedSay(QStringLiteral("云线的弧太短或太多，未生成针叶林。"));
    const KcApDocLock lock;
    if (!lock)
        return kcedSay(QStringLiteral("图形当前不能修改，未生成针叶林。"));
    groupOnLayer({ DrawPolyline(points) }, points.front(), QStringLiteral("维德-针叶林"));
}
