// Bridging gaps: free ends go on along their own curve until they meet another free end or a curve.
#pragma once

#include "ge/region_net.h"

namespace kcge {

/// A node from which only one edge leads away, which ends there because its curve does.
struct RegionFreeEnd {
    uint32_t node = 0;
    uint32_t piece = 0;
    bool atEnd = false; ///< of the piece
    /// The piece goes on beyond the edge's other node: this end stands out over a curve that it crosses.
    bool crossesBefore = false;
    double edgeLength = 0.0; ///< from the last node to the end
};

/// The free ends of a net that is built and not pruned.
std::vector<RegionFreeEnd> freeEnds(const RegionNet& net);

/// Adds to the net's pieces what bridges gaps of up to `distance`, with their cuts, ready to `build` again. Returns the
/// new pieces as segments about the net's origin. An end that stands out over a curve by no more than the distance
/// stays as it is; two free ends that can meet on their ways do so before either goes to a curve behind that point;
/// what then is still free goes to the first curve on its way; last, free ends left over are joined straight when
/// nothing is between them.
std::vector<KcGeSegment2d> bridgeGaps(RegionNet& net, double distance);

} // namespace kcge
