// DIMCIRCLES: labels a tree array with its name, the number of trees and their spacing.

#include "core/application.h"
#include "core/block.h"
#include "core/coordinates.h"
#include "core/jigs/leader_jig.h"
#include "core/labels.h"
#include "core/linked_label.h"
#include "core/prompts.h"
#include "core/tags.h"
#include "db/curves.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/selection.h"
#include "frame/name_prompts.h"
#include "frame/settings.h"
#include "planting/commands.h"
#include "planting/spacing_text.h"

namespace {

struct LabelledArray {
    KcDbObjectId reference;
    QString layer;
    int trees = 0;
    double spacing = 0.0; ///< of the first two trees as the reference shows them; 0 for a single one
};

// The first block reference around a point, user coordinates: the window grows until it leaves the view.
KcDbObjectId referenceAround(KcGePoint3d point)
{
    const double step = GetPickBoxWcs();
    KcGePoint3d centre;
    double height = 0.0;
    GetSystemVariable(QStringLiteral("VIEWCTR"), centre);
    GetSystemVariable(QStringLiteral("VIEWSIZE"), height);
    const KcEdFilter references = kcutBuildList(0, "INSERT");
    for (double reach = step; step > 0.0; reach += step) {
        const KcGePoint3d low = point - KcGeVector3d{ reach, reach, 0.0 },
                          high = point + KcGeVector3d{ reach, reach, 0.0 };
        KcEdSelectionSet found;
        kcedSSGet({}, &low, &high, references, found);
        for (const KcDbObjectId id : found.ids())
            if (CBlock().Initialize(id))
                return id;
        if (low.y < centre.y - height / 2.0 || high.y > centre.y + height / 2.0)
            break;
    }
    return {};
}

// The array that a reference shows under a point, world coordinates; empty when it is none.
std::optional<LabelledArray> treeArrayOf(KcDbObjectId id, KcGePoint3d point)
{
    CBlock block;
    std::vector<KcDbObjectId> members;
    KcGePoint3d low, high;
    if (!block.Initialize(id) || !block.GetObjectIdArray(members) || !block.GetBoundaryBox(low, high))
        return std::nullopt;
    if (point.x < low.x || point.x > high.x || point.y < low.y || point.y > high.y)
        return std::nullopt;
    LabelledArray array{ id, block.GetLayer(), 0, 0.0 };
    const KcGeMatrix3d placed = KcDbRead<KcDbBlockReference>(id)->blockTransform();
    KcGePoint3d first;
    for (const KcDbObjectId member : members) {
        const KcDbRead<KcDbCircle> circle(member);
        if (!circle)
            return std::nullopt;
        if (array.trees == 0)
            first = placed * circle->center();
        else if (array.trees == 1)
            array.spacing = first.distanceTo(placed * circle->center());
        ++array.trees;
    }
    return array.trees > 0 ? std::optional(array) : std::nullopt;
}

// Asks for an array until there is one; Enter switches between the two forms of the label.
std::optional<LabelledArray> askArray(KcGePoint3d& point, bool& withNumber)
{
    for (;;) {
        const QString other = withNumber ? QStringLiteral("标注名称") : QStringLiteral("名称和数量");
        const QString prompt = QStringLiteral("\n请选择树阵或 [%1(空格)]: ").arg(other);
        KcGePoint3d picked;
        const KcEdStatus status = kcedGetPoint(nullptr, prompt, picked);
        if (status == kcedNone) {
            withNumber = !withNumber;
            continue;
        }
        if (status != kcedNormal)
            return std::nullopt;
        const KcDbObjectId reference = referenceAround(picked);
        if (reference.isNull()) {
            kcedPrint(QStringLiteral("\n不是树阵。"));
            continue;
        }
        point = SetUcsPointToWcs(picked);
        if (const std::optional<LabelledArray> array = treeArrayOf(reference, point))
            return array;
        kcedPrint(QStringLiteral("\n不是树阵。\n请选择树阵或 [%1]: ").arg(other));
    }
}

} // namespace

void labelTreeArray()
{
    KcGePoint3d point;
    bool withNumber = true;
    const std::optional<LabelledArray> array = askArray(point, withNumber);
    if (!array)
        return;
    int style = 0;
    GetVerdelis(QStringLiteral("iDimStyle"), style);
    std::vector<KcGePoint3d> path;
    if (!MLeaderJig().CreateLeader(point, path))
        return;
    QString label = askTreeArrayName();
    if (label.isEmpty())
        return;
    const KcApDocLock lock;
    if (!lock)
        return kcedSay(QStringLiteral("图形当前不能修改，未标注树阵。"));

    if (withNumber) {
        QString number = QString::number(array->trees);
        SetDimStyle(number, style);
        label += number;
    }
    QString spacing;
    if (array->trees > 1
        && productSettings().flag(QStringLiteral("DRAWING SETTINGS"), QStringLiteral("bDimType"), false))
        spacing = spacingText(array->spacing);
    Dimensions(
        { point }, path, label, { array->reference }, spacing, tags::kind::treeLabel, {}, array->layer, {});
}
