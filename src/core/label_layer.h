// On which layer a label lies.
#pragma once

#include "db/object_id.h"

#include <QString>

#include <vector>

/// The layer of labels with a value of the tag SFEntityType: for tree labels ("6") the plant's layer name
/// followed by
/// "-标注", or the drawing's tree label layer where the settings say so (bTreeDimLayer); for area labels
/// ("7") "维德-地被标注", or the drawing's area label layer (bAreaDimLayer). Empty for other labels, which
/// stay where they are. A setting whose layer was never chosen counts as off. A null database is the current
/// drawing.
QString labelLayer(const QString& tag, const QString& plantLayer, KcDbDatabase* database = nullptr);

/// Moves labels to their layer, which is made when it is missing. False when one could not be moved.
bool putLabelsOnLayer(
    const std::vector<KcDbObjectId>& labels, const QString& tag, const QString& plantLayer,
    KcDbDatabase* database = nullptr);
