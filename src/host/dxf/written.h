// Which objects of a drawing stand in its file when it is saved.
#pragma once

#include "db/object.h"

namespace dxf {

/// False for erased objects, and for those that every drawing is given in memory and that nobody changed.
inline bool isWritten(const KcDbObjectStub& stub)
{
    return stub.object && !(stub.flags & KcDbObjectStub::kErased)
        && (!(stub.flags & KcDbObjectStub::kImplicit) || stub.object->sourcePlace().changed);
}

/// True for an object that was read again only to be compared with what it has become; it is in no drawing,
/// and what it refers to counts as it was, erased since or not.
inline bool isComparison(const KcDbObject& object)
{
    return object.objectId().isNull();
}

/// Whether a reference of `from` to `id` is written.
inline bool isWrittenReference(const KcDbObject& from, KcDbObjectId id)
{
    return isComparison(from) || !id.isValid() || isWritten(*id.stub());
}

} // namespace dxf
