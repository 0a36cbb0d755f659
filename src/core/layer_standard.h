// Layer standards: which layer, colour and line type stands for which keyword, as the layer standard document
// (Sys/VDLLayerStd.xml) has them.
#pragma once

#include <QString>

#include <optional>
#include <vector>

struct SLayerDesc {
    QString keyword;
    QString layer;
    int16_t color = 7; ///< index colour
    QString lineType;
    QString note;
};

struct CLayerStd {
    QString name;
    std::vector<SLayerDesc> layers;

    /// Null when the standard has no such keyword (exact).
    const SLayerDesc* find(const QString& keyword) const;
};

/// All standards of the document in its order; none without the document. A damaged one is named through the
/// diagnostics and gives none.
std::vector<CLayerStd> loadLayerStandards();
