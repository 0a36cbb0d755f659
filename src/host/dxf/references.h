// What an object of a drawing refers to, known and unknown values alike.
#pragma once

#include "db/object.h"

#include <QString>

#include <vector>

namespace dxf {

struct References {
    std::vector<KcDbObjectId> ids; ///< the owner left out
    /// Texts under the codes by which records are named: 2 and 3 blocks and dimension styles, 6 linetypes, 7
    /// text styles, 8 and 1003 layers. Not every one is a name.
    std::vector<std::pair<int, QString>> names;
};
/// As the object would be written now, and as its file holds it: what changed since is in both.
References referencesOf(const KcDbObject& object);

} // namespace dxf
