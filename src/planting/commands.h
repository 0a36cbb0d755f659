// The commands of this folder.
#pragma once

/// BLOCKARRAY: places copies of plant symbols along a path.
void arrayBlocks();
/// CLOUDLINE: draws a cloud outline.
void drawCloudLine();
