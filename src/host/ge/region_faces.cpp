// Tracing faces: the order of edges around nodes, loops, areas.

#include "ge/region_faces.h"

namespace kcge {

namespace {

/// Grows with the direction, counter-clockwise from the X axis, in [0, 4): cheaper than an angle.
double pseudoAngle(KcGeVector2d v)
{
    const double sum = std::abs(v.x) + std::abs(v.y);
    if (!(sum > 0.0))
        return 0.0;
    const double p = v.x / sum;
    return v.y < 0.0 ? 3.0 + p : 1.0 - p;
}

// Directions nearer than this, as pseudo-angles, are looked at again further from the node: nodes stand up to their
// tolerance beside the curves, which is a thirtieth of the distance at which directions are sampled.
constexpr double kDoubtful = 0.2;
// Each further look is this many times as far.
constexpr double kFurther = 4.0;

} // namespace

RegionFaces::RegionFaces(RegionNet& net, RegionMonitor& monitor)
    : m_net(net)
{
    linkAroundNodes();
    traceLoops(monitor);
    if (!monitor.stopped() && removeBridges()) {
        linkAroundNodes();
        traceLoops(monitor);
    }
    m_next = {}; // every step with large tables of its own begins with what earlier ones gave back
    if (!monitor.stopped())
        findParents(monitor);
    if (!monitor.stopped())
        collectRegions();
}

KcGePoint2d RegionFaces::sample(uint32_t h, double distance) const
{
    const RegionEdge& edge = m_net.edges()[h / 2];
    const RegionPieces& pieces = m_net.pieces();
    const RegionPiece& piece = pieces[edge.piece];
    if (piece.kind == RegionPiece::Kind::Line)
        return m_net.nodes()[origin(h ^ 1)];
    const double from = (h & 1) ? edge.to : edge.from, to = (h & 1) ? edge.from : edge.to;
    return pieces.at(piece, pieces.paramAtDistance(piece, from, to, distance));
}

/// Whether a is passed before b when turning counter-clockwise, for edges that leave in nearly the same direction.
bool RegionFaces::isBefore(uint32_t a, uint32_t b, KcGePoint2d node) const
{
    const KcGeRegionTolerances& tolerances = m_net.tolerances();
    const double farthest = std::min(
        m_net.nodes()[origin(a ^ 1)].distanceTo(node), m_net.nodes()[origin(b ^ 1)].distanceTo(node));
    // Where two edges never part by much the widest place tells: at their far ends they may meet again.
    double widest = 0.0;
    for (double distance = tolerances.direction();; distance *= kFurther) {
        const double d = std::min(distance, std::max(farthest, tolerances.direction()));
        const KcGeVector2d va = (sample(a, d) - node).normal(), vb = (sample(b, d) - node).normal();
        const double apart = va.crossProduct(vb) * d;
        if (std::abs(apart) > std::abs(widest))
            widest = apart;
        if (std::abs(widest) > tolerances.sameDirection() || d < distance)
            return widest > 0.0;
    }
}

void RegionFaces::linkAroundNodes()
{
    const std::vector<RegionEdge>& edges = m_net.edges();
    const RegionIncidence at(m_net.nodes().size(), edges);
    m_next.assign(edges.size() * 2, kNone);
    struct Out {
        double angle;
        uint32_t halfEdge;
    };
    std::vector<Out> out;
    for (uint32_t n = 0; n < m_net.nodes().size(); ++n) {
        out.clear();
        for (uint32_t i = at.first[n]; i < at.first[n + 1]; ++i) {
            const uint32_t e = at.edges[i];
            out.push_back({ 0.0, edges[e].start == n ? 2 * e : 2 * e + 1 });
        }
        const size_t count = out.size();
        if (count > 2) {
            const KcGePoint2d node = m_net.nodes()[n];
            for (Out& o : out)
                o.angle = pseudoAngle(sample(o.halfEdge, m_net.tolerances().direction()) - node);
            std::sort(out.begin(), out.end(), [](const Out& a, const Out& b) { return a.angle < b.angle; });
            // Begin behind the widest gap, so that no doubtful neighbours stand at the two ends of the list.
            size_t widest = 0;
            double gap = out.front().angle + 4.0 - out.back().angle;
            for (size_t i = 1; i < count; ++i)
                if (out[i].angle - out[i - 1].angle > gap) {
                    gap = out[i].angle - out[i - 1].angle;
                    widest = i;
                }
            for (size_t i = 0; i < widest; ++i)
                out[i].angle += 4.0;
            std::rotate(out.begin(), out.begin() + long(widest), out.end());
            for (size_t i = 1; i < count; ++i)
                for (size_t k = i; k > 0 && out[k].angle - out[k - 1].angle < kDoubtful
                     && isBefore(out[k].halfEdge, out[k - 1].halfEdge, node);
                     --k)
                    std::swap(out[k], out[k - 1]);
        }
        for (size_t i = 0; i < count; ++i)
            m_next[out[i].halfEdge ^ 1] = out[(i + count - 1) % count].halfEdge;
    }
}

/// Takes the end of a path, from an index on, as a loop of its own.
void RegionFaces::closeLoop(std::vector<uint32_t>& path, size_t from, uint32_t face)
{
    Loop loop{ uint32_t(m_walk.size()), uint32_t(path.size() - from), face, 0.0, 0.0 };
    const RegionPieces& pieces = m_net.pieces();
    const KcGePoint2d about = m_net.nodes()[origin(path[from])];
    for (size_t i = from; i < path.size(); ++i) {
        const uint32_t h = path[i];
        const RegionEdge& edge = m_net.edges()[h / 2];
        const RegionPiece& piece = pieces[edge.piece];
        // The chord goes from node to node, so that the outline closes; the rest is the curve's own.
        const KcGeVector2d a = m_net.nodes()[edge.start] - about, b = m_net.nodes()[edge.end] - about;
        double area = a.crossProduct(b) / 2.0;
        if (piece.kind != RegionPiece::Kind::Line)
            area += pieces.areaAbout(piece, edge.from, edge.to, pieces.at(piece, edge.from));
        loop.area += (h & 1) ? -area : area;
        loop.length += pieces.length(piece, edge.from, edge.to);
        m_walk.push_back(h);
        m_loopOf[h] = uint32_t(m_loops.size());
    }
    m_loops.push_back(loop);
    path.resize(from);
}

void RegionFaces::traceLoops(RegionMonitor& monitor)
{
    m_loops.clear();
    m_walk.clear();
    m_walk.reserve(m_next.size());
    m_loopOf.assign(m_next.size(), kNone);
    std::vector<uint32_t> placeInPath(m_net.nodes().size(), kNone);
    std::vector<uint32_t> path;
    uint32_t face = 0;
    std::vector<char> walked(m_next.size());
    for (uint32_t first = 0; first < m_next.size(); ++first) {
        if (!monitor.goesOn(first, m_next.size()))
            return;
        if (walked[first])
            continue;
        // A face that touches itself at a node is cut there: its outline, and the outlines of what stands in it.
        path.clear();
        uint32_t h = first;
        do {
            walked[h] = 1;
            const uint32_t n = origin(h);
            if (placeInPath[n] != kNone) {
                const size_t from = placeInPath[n];
                for (size_t i = from; i < path.size(); ++i)
                    placeInPath[origin(path[i])] = kNone;
                closeLoop(path, from, face);
            }
            placeInPath[n] = uint32_t(path.size());
            path.push_back(h);
            h = m_next[h];
        } while (h != first);
        for (const uint32_t p : path)
            placeInPath[origin(p)] = kNone;
        closeLoop(path, 0, face++);
    }
}

bool RegionFaces::removeBridges()
{
    std::vector<char> gone(m_net.edges().size());
    bool any = false;
    for (uint32_t e = 0; e < gone.size(); ++e)
        if (m_loops[m_loopOf[2 * e]].face == m_loops[m_loopOf[2 * e + 1]].face)
            any = gone[e] = 1;
    if (any)
        m_net.removeEdges(gone);
    return any;
}

void RegionFaces::collectRegions()
{
    const double narrow = m_net.tolerances().sliver() / 2.0;
    std::vector<uint32_t> regionOf(m_loops.size(), kNone);
    const auto isRegion = [&](uint32_t loop) { return m_loops[loop].area > narrow * m_loops[loop].length; };
    for (uint32_t i = 0; i < m_loops.size(); ++i)
        if (isRegion(i)) {
            regionOf[i] = uint32_t(m_regions.size());
            m_regions.push_back({ m_loops[i].first, m_loops[i].count, m_loops[i].area, m_loops[i].length, kNone });
        }
    for (uint32_t i = 0; i < m_loops.size(); ++i) {
        if (regionOf[i] == kNone)
            continue;
        // What lies in a sliver lies in what is around the sliver.
        constexpr int kMostSlivers = 64;
        uint32_t around = m_insideOf[i];
        for (int k = 0; k < kMostSlivers && around != kNone && regionOf[around] == kNone; ++k)
            around = m_insideOf[around];
        if (around != kNone && regionOf[around] == kNone)
            around = kNone;
        m_regions[regionOf[i]].parent = around == kNone ? kNone : regionOf[around];
    }
    m_loopOf = {};
    m_loops = {};
    m_insideOf = {};
    m_component = {};
}

} // namespace kcge
