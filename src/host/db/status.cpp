// Texts of the result codes.

#include "db/status.h"

QString Kcad::errorStatusText(ErrorStatus status)
{
    switch (status) {
    case eOk:
        return QStringLiteral("done");
    case eInvalidInput:
        return QStringLiteral("the value is not allowed");
    case eNullObjectId:
        return QStringLiteral("there is no object");
    case eNotInDatabase:
        return QStringLiteral("the object is in no drawing");
    case eWasErased:
        return QStringLiteral("the object was erased");
    case eNotThatKindOfClass:
        return QStringLiteral("the object is of another kind");
    case eKeyNotFound:
        return QStringLiteral("there is no entry of that name");
    case eDuplicateKey:
        return QStringLiteral("there is an entry of that name already");
    case eNullExtents:
        return QStringLiteral("the object has no extents");
    case eCannotScaleNonUniformly:
        return QStringLiteral("the object cannot be scaled unevenly");
    case eNotApplicable:
        return QStringLiteral("the operation does not apply to the object");
    case eLockViolation:
        return QStringLiteral("the drawing is locked");
    case eSelfReference:
        return QStringLiteral("the object would contain itself");
    case eWrongDatabase:
        return QStringLiteral("the object belongs to another drawing");
    case eDegenerateGeometry:
        return QStringLiteral("the object has no usable shape");
    }
    return QStringLiteral("unknown error");
}
