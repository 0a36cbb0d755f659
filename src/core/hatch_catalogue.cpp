// Draws and rebuilds the boundaries of hatches.

#include "core/hatch_catalogue.h"

#include "core/draw.h"
#include "ed/documents.h"

bool RestoreHatchBoundary(KcDbObjectId hatch, std::vector<std::unique_ptr<KcDbEntity>>& curves)
{
    curves.clear();
    const KcDbRead<KcDbHatch> opened(hatch);
    if (!opened)
        return false;
    for (auto& curve : opened->boundaryCurves()) {
        curve->setPropertiesFrom(*opened);
        curves.push_back(std::move(curve));
    }
    return !curves.empty();
}

bool GetHatchBoundary(const std::vector<KcDbObjectId>& hatches, std::vector<KcDbObjectId>& ids)
{
    ids.clear();
    KcDbDatabase* const database = kcedCurrentDatabase();
    if (!database)
        return false;
    for (const KcDbObjectId id : hatches) {
        std::vector<std::unique_ptr<KcDbEntity>> curves;
        if (!RestoreHatchBoundary(id, curves))
            continue;
        for (auto& curve : curves) {
            const KcDbObjectId layer = curve->layerId();
            curve->setDatabaseDefaults(*database);
            curve->setLayer(layer);
            if (const KcDbObjectId drawn = AppendToModelSpace(std::move(curve)); !drawn.isNull())
                ids.push_back(drawn);
        }
    }
    return !ids.empty();
}
