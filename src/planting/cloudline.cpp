// CLOUDLINE: draws a cloud outline, corner by corner.

#include "core/jigs/cloud_line_jig.h"
#include "planting/commands.h"

void drawCloudLine()
{
    constexpr double chord = 5000.0;
    CCloudLineJig(chord).CreateCloudLine();
}
