// Layers and line types by name, making those that are missing. A null database is the current drawing;
// without one, ids are null and the rest is false.
#pragma once

#include "db/object_id.h"

#include <QStringList>

/// The layer for a keyword of the drawing's layer standard (then its layer, colour and line type), or of that
/// plain name. A missing one is made: plain ones with colour 7 and the line type Continuous; one that is
/// there stays as it is. Null for a name that a layer cannot have.
KcDbObjectId InitStdLayer(const QString& name, KcDbDatabase* database = nullptr);
/// The layer name of a keyword of the current drawing's standard; the keyword itself when the standard does
/// not know it. `what` is always 1.
QString LayerKey2Name(const QString& keyword, int what = 1);

/// The line type of that name, loaded from Sys/gb.lin (metric drawings) or Sys/acad.lin, then from the other
/// one, when the drawing lacks it. Null when neither file has it, and for one with shapes or texts, which is
/// said through the diagnostics.
KcDbObjectId InitLineType(const QString& name, KcDbDatabase* database = nullptr);

/// Names in table order, those of external references included. The second argument is always 0.
bool GetLayers(QStringList& names, int reserved = 0, KcDbDatabase* database = nullptr);
bool GetCurrentLayer(QString& name, KcDbDatabase* database = nullptr);
/// Layers that are off or frozen.
bool GetLayerNameIsOff(QStringList& names, KcDbDatabase* database = nullptr);
/// False, leaving the value alone, when there is no such layer.
bool GetLayerColor(const QString& name, int& colorIndex, KcDbDatabase* database = nullptr);
bool GetLayerLineType(const QString& name, QString& lineType, KcDbDatabase* database = nullptr);

/// Makes a layer with an index colour and the line type Continuous. One that is there is turned on and
/// thawed; its colour stays what the user made it. Null for a name that a layer cannot have.
KcDbObjectId CreateLayer(const QString& name, int color, KcDbDatabase* database = nullptr);
/// Turns layers on or off; the number that the drawing has.
int SetLayers(const QStringList& names, bool on, KcDbDatabase* database = nullptr);
/// Puts an entity on a layer of its drawing. False when either cannot be opened.
bool SetEntityLayer(KcDbObjectId entity, KcDbObjectId layer);
