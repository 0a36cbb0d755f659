// Text and dimension styles of a drawing. A null database is the current drawing.
#pragma once

#include "db/object_id.h"

#include <QStringList>

/// Names in table order, styles without a name (shape files) left out. False when there is none.
bool GetTextStyles(QStringList& names, KcDbDatabase* database = nullptr);
/// False for a name that the drawing does not have.
bool GetTextStyleId(const QString& name, KcDbObjectId& id, KcDbDatabase* database = nullptr);
bool GetDimStyles(QStringList& names, KcDbDatabase* database = nullptr);
/// The drawing's current dimension style.
bool GetCurrentDimSytle(QString& name, KcDbDatabase* database = nullptr);
