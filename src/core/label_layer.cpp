// The layer rule of labels, applied wherever labels are made or updated.

#include "core/label_layer.h"

#include "core/application.h"
#include "core/drawing_config.h"
#include "core/layers.h"
#include "core/tags.h"

QString labelLayer(const QString& tag, const QString& plantLayer, KcDbDatabase* database)
{
    QString chosen;
    if (tag == tags::kind::treeLabel) {
        if (GetVerdelis(QStringLiteral("bTreeDimLayer")) != 0 && GetTreeDimLayer(chosen, database)
            && !chosen.isEmpty())
            return chosen;
        return plantLayer + QStringLiteral("-标注");
    }
    if (tag == tags::kind::areaLabel) {
        if (GetVerdelis(QStringLiteral("bAreaDimLayer")) != 0 && GetAreaDimLayer(chosen, database)
            && !chosen.isEmpty())
            return chosen;
        return QStringLiteral("维德-地被标注");
    }
    return {};
}

bool putLabelsOnLayer(
    const std::vector<KcDbObjectId>& labels, const QString& tag, const QString& plantLayer,
    KcDbDatabase* database)
{
    const QString name = labelLayer(tag, plantLayer, database);
    if (name.isEmpty())
        return true;
    const KcDbObjectId layer = InitStdLayer(name, database);
    bool done = !layer.isNull();
    for (const KcDbObjectId label : labels)
        done = SetEntityLayer(label, layer) && done;
    return done;
}
