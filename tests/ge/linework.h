// Reading the linework that make_linework.py writes, and its truth; matching regions to it.
#pragma once

#include "ge/region_search.h"

#include <map>
#include <string>
#include <vector>

namespace linework {

/// Segments of a .crv file: one curve a line, polylines taken apart. Empty when it cannot be read.
std::vector<KcGeSegment2d> readLinework(const std::string& path);

/// A zone as it was drawn.
struct TrueZone {
    double gross = 0.0; ///< area of the outline
    size_t islands = 0;
    KcGePoint2d center; ///< of gravity
};
std::vector<TrueZone> readTruth(const std::string& path);

struct Score {
    size_t zones = 0;
    size_t right = 0; ///< with the true area, centre and number of islands
    size_t extra = 0; ///< regions that are no zone
    double worstArea = 0.0; ///< largest difference among the right ones
    std::vector<TrueZone> missed; ///< zones that no region has the area and centre of
    std::vector<size_t> surplus; ///< the regions that are no zone
};
/// Matches regions to zones, each once.
Score compare(const KcGeRegionSearch& found, const std::vector<TrueZone>& truth, double areaTolerance);

/// Centre of gravity of an outline.
KcGePoint2d centroid(const std::vector<KcGeSegment2d>& outline, double area);

} // namespace linework
