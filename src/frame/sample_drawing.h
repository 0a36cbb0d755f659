// The drawing that shows what the drawing settings do.
#pragma once

#include "db/database.h"
#include "frame/drawing_settings.h"

#include <memory>

/// The template drawing Data/DWG/DrawSet below the application root, its two labels written as the settings
/// say and in the current drawing's style of that name. Null when there is no template, or it cannot be read.
std::shared_ptr<KcDbDatabase> sampleDrawing(const DrawingSettings& settings);
