// Result codes of operations on the drawing database, and their texts for the user.
#pragma once

#include <QString>

namespace Kcad {

enum ErrorStatus {
    eOk,
    eInvalidInput,
    eNullObjectId,
    eNotInDatabase,
    eWasErased,
    eNotThatKindOfClass,
    eKeyNotFound,
    eDuplicateKey,
    eNullExtents,
    eCannotScaleNonUniformly,
    eNotApplicable,
    eLockViolation,
    eSelfReference,
    eWrongDatabase,
    eDegenerateGeometry,
};

/// One plain phrase for a status, such as "the object was erased".
QString errorStatusText(ErrorStatus status);

} // namespace Kcad
