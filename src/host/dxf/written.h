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

} // namespace dxf
