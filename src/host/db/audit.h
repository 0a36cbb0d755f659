// Checks of a whole drawing beyond what reading it reports.
#pragma once

#include "db/database.h"

#include <functional>

/// Looks through all objects for what a drawing must not hold, repairs in memory what can be repaired without
/// loss, and gives what it found, in the order of the objects. The numbers: 201 undefined layer, 202
/// undefined line type, 203 undefined block, 204 a block that contains itself, 205 an owner that does not
/// exist, 207 undefined text style, 208 a hatch loop that is empty or open, 209
/// a size that is not allowed.
std::vector<KcDbFinding> kcdbAudit(KcDbDatabase& database, const std::function<void(int)>& progress = {});
