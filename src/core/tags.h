// The tags by which the product knows its own objects in a drawing: names, and the values that mean
// something.
#pragma once

#include <QString>

namespace tags {

/// What kind of product object it is; one of the values of `kind`.
inline const QString entityType = QStringLiteral("SFEntityType");
/// Of tree labels: the label type with which it was made, a number.
inline const QString labelType = QStringLiteral("SFDIMTYPE");
/// Of statistics tables: page number; from 2 on a continuation page, which is never recounted.
inline const QString page = QStringLiteral("PAGE");
/// Of statistics tables: rows a page and the way of paging, kept by the table editor.
inline const QString itemsPerPage = QStringLiteral("ITEMSPERPAGE");
inline const QString pagingType = QStringLiteral("PAGINGTYPE");
/// Of statistics tables: how serial numbers run, kept by the table editor.
inline const QString serialNumber = QStringLiteral("SERIALNUMBER");
/// Of plant symbols: "0" tree, "1" shrub.
inline const QString treeType = QStringLiteral("树型");
/// Of plant symbols: "0" evergreen, "1" deciduous.
inline const QString leafCategory = QStringLiteral("类别");
/// Of hatches: name of the area type.
inline const QString areaName = QStringLiteral("AreaName");
/// Of closed polylines: the area without its unit.
inline const QString areaProperty = QStringLiteral("AREAPROPERTY");
/// Of what blocks hold: colour index before it was shown in grey.
inline const QString colourBeforeGray = QStringLiteral("sBlockToGrayColor");

/// Values of `entityType`.
namespace kind {
inline const QString treeTable = QStringLiteral("3");
inline const QString areaTable = QStringLiteral("4");
inline const QString hatchAreaTable = QStringLiteral("5");
inline const QString treeLabel = QStringLiteral("6"); ///< and its leader
inline const QString areaLabel = QStringLiteral("7");
inline const QString textUnderLabel = QStringLiteral("8");
inline const QString zoneLine = QStringLiteral("9");
} // namespace kind

/// Records in the extension dictionaries of zone lines and labels.
inline const QString insideCurvesRecord = QStringLiteral("XR-InsideCurves");
inline const QString linkRecord = QStringLiteral("VdlReactor");

} // namespace tags
