// Asking which plants to count: their symbols, or the labels that name them.
#pragma once

#include "db/object_id.h"

#include <vector>

struct PlantSelection {
    enum class Mode { Symbols, Labels };
    Mode mode = Mode::Symbols;
    std::vector<KcDbObjectId> ids; ///< in the order of selecting; empty when the user cancelled
};

/// Asks for plant symbols; the user may switch to labels and back. What the counting cannot use is left out:
/// external references, what is neither symbol nor text.
PlantSelection selectPlants();
