// The faces of a net: outlines, areas, and which lies in which.
#pragma once

#include "ge/region_net.h"

namespace kcge {

class RegionFaces {
public:
    static constexpr uint32_t kNone = ~uint32_t(0);

    /// An outline, counter-clockwise, its parts in order: those from `first` to `first + count` of `halfEdges`.
    struct Region {
        uint32_t first = 0, count = 0;
        double area = 0.0; ///< of what the outline holds, islands included
        double length = 0.0;
        uint32_t parent = kNone; ///< the region directly around it
    };

    /// Traces the faces of a pruned net; edges with the same face on both sides are taken out of it.
    RegionFaces(RegionNet& net, RegionMonitor& monitor);

    const std::vector<Region>& regions() const { return m_regions; }
    /// Edge number times two, plus one when the edge is walked backwards.
    const std::vector<uint32_t>& halfEdges() const { return m_walk; }

private:
    struct Loop {
        uint32_t first, count;
        uint32_t face;
        double area, length;
    };
    KcGePoint2d sample(uint32_t halfEdge, double distance) const;
    bool isBefore(uint32_t a, uint32_t b, KcGePoint2d node) const;
    void linkAroundNodes();
    void traceLoops(RegionMonitor& monitor);
    void closeLoop(std::vector<uint32_t>& path, size_t from, uint32_t face);
    bool removeBridges();
    void findParents(RegionMonitor& monitor);
    uint32_t halfEdgeLeftOf(KcGePoint2d point, const ScatteredBoxes& tree, uint32_t component) const;
    double crossingLeftOf(KcGePoint2d point, const RegionEdge& edge, bool& downwards) const;
    void collectRegions();

    uint32_t origin(uint32_t h) const { return (h & 1) ? m_net.edges()[h / 2].end : m_net.edges()[h / 2].start; }

    RegionNet& m_net;
    std::vector<uint32_t> m_next; ///< by half-edge: the one that follows along the face to the left
    std::vector<uint32_t> m_walk;
    std::vector<uint32_t> m_loopOf; ///< by half-edge
    std::vector<Loop> m_loops;
    std::vector<uint32_t> m_insideOf; ///< by loop: the loop of the region directly around it
    std::vector<uint32_t> m_component; ///< by node
    std::vector<Region> m_regions;
};

} // namespace kcge
