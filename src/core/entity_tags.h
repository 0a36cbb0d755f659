// Tags: small named texts by which the product knows its own objects. A tag is extended data of an
// application of its own, named like the tag, so that every program that shows extended data shows it.
#pragma once

#include "db/object.h"

/// The text of a tag; empty when the object has none.
QString entityTag(const KcDbObject& object, const QString& name);
QString entityTag(KcDbObjectId object, const QString& name);

/// Sets a tag, or takes it away when the value is empty. The object must be open for writing, and in a
/// drawing unless `database` says for which one it is meant. A text longer than one value of extended data
/// can be is kept in several.
void setEntityTag(
    KcDbObject& object, const QString& name, const QString& value, KcDbDatabase* database = nullptr);
