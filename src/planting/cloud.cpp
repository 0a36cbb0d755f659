// What the commands that plant cloud outlines share.

#include "planting/cloud.h"

#include "core/block.h"
#include "core/layers.h"
#include "core/polyline.h"
#include "core/prompts.h"
#include "core/selection.h"
#include "ed/console.h"
#include "frame/module.h"

std::vector<KcGeCircArc2d> CloudOutline::arcs(bool withClosing) const
{
    std::vector<KcGeCircArc2d> found;
    for (size_t i = 0; i + (withClosing ? 0 : 1) < segments.size(); ++i)
        if (const KcGeCircArc2d* arc = segments[i].asArc())
            found.push_back(*arc);
    return found;
}

std::optional<CloudOutline> cloudOutlineOf(KcDbObjectId id)
{
    CPolyline polyline;
    const KcDbRead<KcDbPolyline> light(id);
    if (!light || !polyline.Initialize(id) || !polyline.GetClosed() || polyline.IsOnlyLines())
        return std::nullopt;
    const KcGeVector3d normal = light->data().normal.normal();
    if (!normal.isEqualTo(KcGeVector3d::kZAxis) && !normal.isEqualTo(-KcGeVector3d::kZAxis))
        return std::nullopt;
    // Of an outline that was turned over, right and left are exchanged.
    const double side = normal.z < 0.0 ? -1.0 : 1.0;
    CloudOutline outline;
    outline.elevation = light->worldPointAt(0).z;
    const size_t count = light->numVerts();
    for (size_t i = 0; i < count; ++i)
        outline.segments.push_back(KcGeSegment2d::bulge(
            light->worldPointAt(i).plan(), light->worldPointAt((i + 1) % count).plan(),
            side * light->getBulgeAt(i)));
    return outline.arcs(true).empty() ? std::nullopt : std::optional(outline);
}

std::optional<CloudOutline> askCloudOutline()
{
    KcDbObjectId picked;
    if (!GetEntity(picked, localised(QStringLiteral("SELECTTHECLOUD")), true) || picked.isNull())
        return std::nullopt;
    std::optional<CloudOutline> outline = cloudOutlineOf(picked);
    if (!outline)
        kcedPrint(localised(QStringLiteral("ONLYCLOUDVALID")));
    return outline;
}

KcDbObjectId
groupOnLayer(const std::vector<KcDbObjectId>& entities, KcGePoint3d base, const QString& layerKey)
{
    for (const KcDbObjectId id : entities)
        if (const KcDbWrite<KcDbEntity> entity(id); entity) {
            entity->setLayer(QStringLiteral("0"));
            entity->setColorIndex(KcCmColor::kByLayer);
            entity->setLinetypeId({});
        }
    const KcDbObjectId group = CSs(entities).CreateBlock(QStringLiteral("*U"));
    CBlock block;
    if (!block.Initialize(group))
        return {};
    block.ChangeOrigin(base);
    InitStdLayer(layerKey);
    block.SetLayer(LayerKey2Name(layerKey, 1));
    if (const KcDbWrite<KcDbEntity> reference(group); reference) {
        reference->setColorIndex(KcCmColor::kByLayer);
        reference->setLinetypeId({});
    }
    return group;
}
