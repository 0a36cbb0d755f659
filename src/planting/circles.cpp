// CIRCLES: fills a cloud outline with a regular tree array.

#include "core/draw.h"
#include "core/long_work.h"
#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "planting/commands.h"
#include "planting/tree_array.h"

void drawTreeArray()
{
    const std::optional<CloudOutline> outline = askCloudOutline();
    if (!outline)
        return;
    const std::optional<TreeArray> array = treeArrayIn(*outline);
    if (!array)
        return kcedSay(QStringLiteral("云线的前两段弧不能确定株距，或树阵过密，未生成树阵。"));
    const KcApDocLock lock;
    if (!lock)
        return kcedSay(QStringLiteral("图形当前不能修改，未生成树阵。"));

    std::vector<KcDbObjectId> circles;
    constexpr size_t kWithoutMeter = 2000;
    LongWork meter(
        QStringLiteral("正在绘制%1株树"), array->boundary.size() + array->inside.size(), kWithoutMeter);
    for (const auto* trees : { &array->boundary, &array->inside })
        for (const KcGePoint2d tree : *trees) {
            circles.push_back(NewCircle({ tree.x, tree.y, outline->elevation }, array->radius));
            if (meter.advance())
                continue;
            kcedTakeBackRound();
            return kcedSay(QStringLiteral("已停止，未生成树阵。"));
        }
    constexpr size_t kFewestArcs = 3;
    if (array->boundary.size() < kFewestArcs)
        return kcedSay(QStringLiteral("云线的弧少于三段，只绘制了各弧的圆心。"));
    const KcGePoint2d base = array->boundary.front();
    groupOnLayer(circles, { base.x, base.y, outline->elevation }, QStringLiteral("维德-规则树阵"));
    kcedSay(QStringLiteral("树阵共%1株，株距%2。").arg(circles.size()).arg(array->spacing, 0, 'f', 0));
}
