// Plotting from the command line.
#pragma once

#include "gi/paint/plot.h"

/// Plots with a progress meter, by which the user may also stop it, and prints a line for each kind of thing
/// that was left out. The error of the result is not printed.
KcGiPlotResult kcedPlot(KcDbDatabase& database, KcGiPlotRequest request);

/// PLOT: asks for file, area, paper and scale, and writes the plot.
void kcedPlotCommand();
