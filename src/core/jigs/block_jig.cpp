// One symbol: drag, click, append.

#include "core/jigs/block_jig.h"

#include "core/coordinates.h"
#include "core/draw.h"
#include "core/layers.h"
#include "ed/console.h"
#include "ed/documents.h"

std::unique_ptr<KcDbBlockReference> symbolCentredAt(KcDbObjectId definition, double scale, KcGePoint3d centre)
{
    if (!(scale > 0.0) || !std::isfinite(scale))
        return nullptr;
    auto symbol = std::make_unique<KcDbBlockReference>(KcGePoint3d(), definition);
    symbol->setScaleFactors({ scale, scale, scale });
    symbol->setRotation(SetUcsAngle2Wcs(0.0));
    const KcGeExtents3d box = symbol->extentsWithoutAttributes();
    if (box.isEmpty())
        return nullptr;
    const KcGePoint3d middle = box.center();
    symbol->setPosition({ centre.x - middle.x, centre.y - middle.y, centre.z });
    return symbol;
}

CBlockJig::Result CBlockJig::DoIt(KcDbObjectId definition)
{
    KcEdDrag drag;
    drag.prompt = QStringLiteral("\n请指定插入点: ");
    drag.preview = [&](KcGePoint3d cursor) {
        KcEdPreview preview;
        if (auto symbol = symbolCentredAt(definition, m_scale, SetUcsPointToWcs(cursor)))
            preview.push_back(std::move(symbol));
        return preview;
    };
    const KcEdDragged answer = kcedDrag(drag);
    if (answer.status == KcEdDragged::Status::Restart)
        return Result::Restart;
    if (answer.status != KcEdDragged::Status::Normal)
        return Result::Cancel;
    auto symbol = symbolCentredAt(definition, m_scale, SetUcsPointToWcs(answer.point));
    if (!symbol) {
        kcedSay(QStringLiteral("请先选择图块."));
        return Result::Restart;
    }
    const KcApDocLock lock;
    if (!lock)
        return Result::Cancel;
    m_placed = AppendToModelSpace(std::move(symbol));
    if (!m_layer.isEmpty())
        SetEntityLayer(m_placed, InitStdLayer(m_layer));
    return Result::Placed;
}
