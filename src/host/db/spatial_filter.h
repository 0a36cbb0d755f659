// Outlines to which block references are cut.
#pragma once

#include "gi/sink/path.h"

#include <optional>

class KcDbBlockReference;

/// The outline inside which a reference shows its definition, in the coordinates of the definition; nothing
/// for one that is not cut or whose cut is switched off. Where the outside was meant, the outline goes round
/// both, so that the even-odd rule holds.
std::optional<KcGiPath> kcdbClipOf(const KcDbBlockReference& reference);
