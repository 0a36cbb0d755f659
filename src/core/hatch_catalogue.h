// Hatches of the drawing: their boundaries as curves.
#pragma once

#include "db/hatch.h"

/// Draws the boundaries of hatches into the model space of the current drawing: closed polylines or circles on
/// the hatch's layer, in the current colour and line type. `ids` gets them, hatch by hatch, larger outlines
/// first. False when nothing was drawn; ids of other entities are passed over.
bool GetHatchBoundary(const std::vector<KcDbObjectId>& hatches, std::vector<KcDbObjectId>& ids);

/// The boundary of a hatch as free-standing curves, which are in no drawing and have the hatch's properties: a
/// circle or a closed polyline for each outline, larger ones first. False when the id is no hatch or the hatch
/// has no outline.
bool RestoreHatchBoundary(KcDbObjectId hatch, std::vector<std::unique_ptr<KcDbEntity>>& curves);
