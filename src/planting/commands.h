// The commands of this folder.
#pragma once

/// CLOUDLINE: draws a cloud outline.
void drawCloudLine();
