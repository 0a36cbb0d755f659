// The commands of this folder.
#pragma once

/// BLOCKARRAY: places copies of plant symbols along a path.
void arrayBlocks();
/// CLOUDLINE: draws a cloud outline.
void drawCloudLine();
/// CIRCLES: fills a cloud outline with a regular tree array.
void drawTreeArray();
/// FOREST: draws the edge of a coniferous forest along a cloud outline.
void drawForest();
/// DIMCIRCLES: labels a tree array with its name, the number of trees and their spacing.
void labelTreeArray();
