// The net of nodes and edges that loose pieces form: cut where they meet, ends brought together, copies dropped.
#pragma once

#include "ge/region_pieces.h"
#include "ge/region_tree.h"

#include <functional>

namespace kcge {

/// Tells how far a long search is, and hears whether to go on.
class RegionMonitor {
public:
    explicit RegionMonitor(std::function<bool(double)> progress = {})
        : m_progress(std::move(progress))
    {
    }
    /// The part of the whole, in [0, 1], that the next steps cover.
    void stage(double from, double to) { m_from = from, m_to = to; }
    /// Tells of `done` out of `all`, now and then; false when the search is to stop.
    bool goesOn(size_t done, size_t all)
    {
        constexpr size_t kSeldom = 4095;
        if (m_progress && (done & kSeldom) == 0 && !m_stopped)
            m_stopped = !m_progress(m_from + (m_to - m_from) * double(done) / double(std::max<size_t>(all, 1)));
        return !m_stopped;
    }
    bool stopped() const { return m_stopped; }

private:
    std::function<bool(double)> m_progress;
    double m_from = 0.0, m_to = 1.0;
    bool m_stopped = false;
};

/// Points that are one when they are nearer than a distance. Numbers are given in the order of coming.
class RegionNodes {
public:
    RegionNodes(double distance, size_t expected);
    uint32_t find(KcGePoint2d point);
    /// Gives the points away: nothing can be found any more.
    std::vector<KcGePoint2d> takePoints() { return std::move(m_points); }

private:
    static constexpr uint32_t kNone = ~uint32_t(0);
    uint32_t& bucket(int64_t x, int64_t y);
    void grow();

    double m_distance, m_cell;
    std::vector<KcGePoint2d> m_points;
    std::vector<uint32_t> m_buckets, m_next;
};

struct RegionEdge {
    uint32_t start, end; ///< nodes
    uint32_t piece;
    double from, to; ///< parameters, ascending
};

/// Per node the edges that begin or end there: those of node n stand from `first[n]` to `first[n + 1]`.
struct RegionIncidence {
    std::vector<uint32_t> first, edges;
    RegionIncidence(size_t nodes, const std::vector<RegionEdge>& edges);
};

class RegionNet {
public:
    RegionNet(RegionPieces& pieces, const KcGeRegionTolerances& tolerances)
        : m_pieces(pieces)
        , m_tolerances(tolerances)
    {
    }

    /// Puts the pieces into an order in which neighbours in the plane are near in memory, and finds where they meet.
    void findCuts(RegionMonitor& monitor);
    /// Finds where the pieces behind the first `known` meet the others and each other.
    void findCutsOfNew(size_t known);
    void addCut(uint32_t piece, double t) { m_cuts.push_back({ piece, t }); }
    /// Makes nodes and edges of the pieces and cuts known by now.
    void build();
    /// Calls `visit` with parameters in ascending order, first 0 and last 1, at which a piece is cut.
    std::vector<std::vector<double>> cutsByPiece() const;

    /// Removes edges that lead nowhere, and what then leads nowhere, and gives their room back.
    void prune();
    void removeEdges(const std::vector<char>& gone);

    const RegionPieces& pieces() const { return m_pieces; }
    RegionPieces& pieces() { return m_pieces; }
    const std::vector<KcGePoint2d>& nodes() const { return m_nodes; }
    const std::vector<RegionEdge>& edges() const { return m_edges; }
    std::vector<uint32_t> degrees() const;
    const KcGeRegionTolerances& tolerances() const { return m_tolerances; }
    /// The boxes of the pieces, by number, as `findCuts` saw them.
    template <class Visit> void piecesNear(const KcGeExtents2d& box, Visit visit) const
    {
        m_tree.overlapping(box, [&](uint32_t entry) { visit(m_pieceOfEntry[entry]); });
    }
    /// The nearest piece that `passes(piece)`; its distance, infinite when there is none.
    template <class Passes> double distanceToNearest(KcGePoint2d point, Passes passes) const
    {
        double best = std::numeric_limits<double>::infinity();
        m_tree.nearest(point, best, [&](uint32_t entry, double& nearest) {
            if (!passes(m_pieceOfEntry[entry]))
                return;
            double distance = 0.0;
            m_pieces.closest(m_pieces[m_pieceOfEntry[entry]], point, distance);
            nearest = std::min(nearest, distance);
        });
        return best;
    }
    /// Gives up what only cutting needs.
    void forgetCuts();

private:
    struct Cut {
        uint32_t piece;
        double t;
    };
    void makeTree();
    KcGeExtents2d boxOfEntry(size_t entry) const;
    void cutPair(uint32_t a, uint32_t b);
    void sortCuts();
    bool splitAtNodesBeside(const RegionIncidence& at);
    bool passesBeside(const RegionEdge& edge, uint32_t node, double& t) const;
    void dropCopies(const RegionIncidence& at);
    bool areCopies(const RegionEdge& a, const RegionEdge& b) const;

    RegionPieces& m_pieces;
    KcGeRegionTolerances m_tolerances;
    ScatteredBoxes m_tree;
    std::vector<uint32_t> m_pieceOfEntry;
    std::vector<Cut> m_cuts;
    std::vector<KcGePoint2d> m_nodes;
    std::vector<RegionEdge> m_edges;
    std::vector<RegionPieces::Common> m_common; ///< of the pair at hand
};

} // namespace kcge
