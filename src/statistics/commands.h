// The commands of this folder.
#pragma once

/// TREENUMTOTABLE: counts plants into a new tree quantity table.
void countPlantsIntoTable();
/// UPDATETREENUMTOTABLE: counts tree quantity tables of the drawing anew.
void updatePlantTables();
