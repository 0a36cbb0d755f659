// Which face lies directly in which: what hangs together shares the face around it, and a look to the left from its
// leftmost point finds that.

#include "ge/region_faces.h"

#include <numeric>

namespace kcge {

namespace {

/// Sets that grow together.
class Unions {
public:
    explicit Unions(size_t count)
        : m_parent(count)
    {
        std::iota(m_parent.begin(), m_parent.end(), 0u);
    }
    uint32_t find(uint32_t i)
    {
        while (m_parent[i] != i)
            i = m_parent[i] = m_parent[m_parent[i]];
        return i;
    }
    void unite(uint32_t a, uint32_t b)
    {
        a = find(a);
        b = find(b);
        m_parent[std::max(a, b)] = std::min(a, b);
    }

private:
    std::vector<uint32_t> m_parent;
};

} // namespace

/// How far left of the point the edge is crossed; infinite when it is not.
double RegionFaces::crossingLeftOf(KcGePoint2d point, const RegionEdge& edge, bool& downwards) const
{
    const RegionPieces& pieces = m_net.pieces();
    const RegionPiece& piece = pieces[edge.piece];
    // Stretches that rise or fall steadily, from node to node, so that none is passed by at a node.
    struct Stop {
        double t, y;
    };
    Stop stops[4] = { { edge.from, m_net.nodes()[edge.start].y } };
    size_t count = 1;
    if (piece.kind == RegionPiece::Kind::Arc) {
        const double first = piece.startAngle + edge.from * piece.sweep;
        const double last = piece.startAngle + edge.to * piece.sweep;
        for (double turn = std::ceil((first - kPi / 2.0) / kPi); count < 3; turn += 1.0) {
            const double angle = kPi / 2.0 + turn * kPi;
            if (angle >= last)
                break;
            const double t = (angle - piece.startAngle) / piece.sweep;
            stops[count++] = { t, pieces.at(piece, t).y };
        }
    }
    stops[count++] = { edge.to, m_net.nodes()[edge.end].y };
    double best = std::numeric_limits<double>::infinity();
    for (size_t i = 0; i + 1 < count; ++i) {
        if ((stops[i].y > point.y) == (stops[i + 1].y > point.y))
            continue;
        double low = stops[i].t, high = stops[i + 1].t, x = 0.0;
        const bool falls = stops[i].y > point.y;
        if (piece.kind == RegionPiece::Kind::Line) {
            const KcGePoint2d a = m_net.nodes()[edge.start], b = m_net.nodes()[edge.end];
            x = a.x + (b.x - a.x) * (point.y - a.y) / (b.y - a.y);
        } else if (piece.kind == RegionPiece::Kind::Arc) {
            const double up = point.y - piece.center.y;
            const double across = std::sqrt(std::max(0.0, (piece.radius - up) * (piece.radius + up)));
            // Counter-clockwise arcs rise on the right of their centre.
            x = piece.center.x + (falls ? -across : across);
        } else {
            constexpr int kHalvings = 60;
            for (int k = 0; k < kHalvings; ++k) {
                const double middle = (low + high) / 2.0;
                ((pieces.at(piece, middle).y > point.y) == falls ? low : high) = middle;
            }
            x = pieces.at(piece, low).x;
        }
        if (x <= point.x && point.x - x < best) {
            best = point.x - x;
            downwards = falls;
        }
    }
    return best;
}

/// The half-edge whose left side is seen from the point, looking to the left over everything but one component.
uint32_t RegionFaces::halfEdgeLeftOf(KcGePoint2d point, const ScatteredBoxes& tree, uint32_t component) const
{
    uint32_t found = kNone;
    double best = std::numeric_limits<double>::infinity();
    tree.leftOf(point, best, [&](uint32_t e, double& nearest) {
        const RegionEdge& edge = m_net.edges()[e];
        if (m_component[edge.start] == component)
            return;
        bool downwards = false;
        const double distance = crossingLeftOf(point, edge, downwards);
        if (distance < nearest) {
            nearest = distance;
            found = downwards ? 2 * e : 2 * e + 1;
        }
    });
    return found;
}

void RegionFaces::findParents(RegionMonitor& monitor)
{
    const std::vector<RegionEdge>& edges = m_net.edges();
    const RegionPieces& pieces = m_net.pieces();
    m_insideOf.assign(m_loops.size(), kNone);

    // The outline of each face; a face without one is what is outside of a component.
    uint32_t faces = 0;
    for (const Loop& loop : m_loops)
        faces = std::max(faces, loop.face + 1);
    std::vector<uint32_t> outlineOf(faces, kNone);
    for (uint32_t i = 0; i < m_loops.size(); ++i)
        if (m_loops[i].area > 0.0)
            outlineOf[m_loops[i].face] = i;

    Unions nodes(m_net.nodes().size());
    Unions clusters(m_loops.size()); // outlines that share edges: they all lie in the same region
    for (uint32_t e = 0; e < edges.size(); ++e) {
        nodes.unite(edges[e].start, edges[e].end);
        const uint32_t left = m_loopOf[2 * e], right = m_loopOf[2 * e + 1];
        if (m_loops[left].area > 0.0 && m_loops[right].area > 0.0)
            clusters.unite(left, right);
    }
    m_component.resize(m_net.nodes().size());
    for (uint32_t n = 0; n < m_component.size(); ++n)
        m_component[n] = nodes.find(n);

    // The leftmost point of each component, by the node that stands for it.
    struct Probe {
        uint32_t component;
        KcGePoint2d point;
    };
    std::vector<uint32_t> probeOf(m_component.size(), kNone);
    std::vector<Probe> probes;
    for (const RegionEdge& edge : edges) {
        const uint32_t component = m_component[edge.start];
        if (probeOf[component] == kNone) {
            probeOf[component] = uint32_t(probes.size());
            probes.push_back({ component, m_net.nodes()[edge.start] });
        }
        KcGePoint2d& leftmost = probes[probeOf[component]].point;
        const RegionPiece& piece = pieces[edge.piece];
        for (const uint32_t n : { edge.start, edge.end })
            if (m_net.nodes()[n].x < leftmost.x)
                leftmost = m_net.nodes()[n];
        if (piece.kind == RegionPiece::Kind::Arc && piece.center.x - piece.radius < leftmost.x
            && pieces.extents(piece, edge.from, edge.to).min.x < leftmost.x)
            leftmost = { piece.center.x - piece.radius, piece.center.y };
    }
    // From left to right: what is around a component begins left of it.
    std::sort(probes.begin(), probes.end(), [](const Probe& a, const Probe& b) { return a.point.x < b.point.x; });
    std::vector<uint32_t> around(m_component.size(), kNone); // by component
    if (probes.size() > 1) {
        const ScatteredBoxes tree(edges.size(), [&](uint32_t e) {
            KcGeExtents2d box = pieces.extents(pieces[edges[e].piece], edges[e].from, edges[e].to);
            box.addPoint(m_net.nodes()[edges[e].start]);
            box.addPoint(m_net.nodes()[edges[e].end]);
            return box;
        });
        for (size_t i = 0; i < probes.size(); ++i) {
            if (!monitor.goesOn(i, probes.size()))
                return;
            const KcGePoint2d eye = probes[i].point + KcGeVector2d{ 0.0, m_net.tolerances().aside() };
            const uint32_t h = halfEdgeLeftOf(eye, tree, probes[i].component);
            if (h == kNone)
                continue;
            const uint32_t outline = outlineOf[m_loops[m_loopOf[h]].face];
            around[probes[i].component] = outline != kNone ? outline : around[m_component[edges[h / 2].start]];
        }
    }

    // The loop around a cluster, seen from outside, belongs to the face that the cluster lies in.
    std::vector<uint32_t> aroundCluster(m_loops.size(), kNone);
    for (const Loop& loop : m_loops) {
        if (loop.area > 0.0)
            continue;
        const uint32_t h = m_walk[loop.first];
        const uint32_t cluster = clusters.find(m_loopOf[h ^ 1]);
        const uint32_t outline = outlineOf[loop.face];
        aroundCluster[cluster] = outline != kNone ? outline : around[m_component[origin(h)]];
    }
    for (uint32_t i = 0; i < m_loops.size(); ++i)
        if (m_loops[i].area > 0.0)
            m_insideOf[i] = aroundCluster[clusters.find(i)];
}

} // namespace kcge
