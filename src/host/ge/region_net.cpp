// Cutting pieces where they meet; nodes; copies; dead ends.

#include "ge/region_net.h"

#include <limits>

namespace kcge {

namespace {

// Pieces whose boxes are wider and higher than this many times the median go into the tree in several boxes.
constexpr double kLongPiece = 16.0;
constexpr int kMostBoxesOfPiece = 1024;
// Of edges that pass by nodes each is split once a round; more than two or three rounds are rare.
constexpr int kMostRounds = 16;

} // namespace

// Nodes.

RegionNodes::RegionNodes(double distance, size_t expected)
    : m_distance(distance)
    , m_cell(64.0 * distance) // so that most points look into one cell only
{
    size_t size = 1024;
    while (size < expected)
        size *= 2;
    m_buckets.assign(size, kNone);
    m_points.reserve(expected);
    m_next.reserve(expected);
}

uint32_t& RegionNodes::bucket(int64_t x, int64_t y)
{
    uint64_t h = uint64_t(x) * 0x9e3779b97f4a7c15ull ^ uint64_t(y) * 0xc2b2ae3d27d4eb4full;
    h ^= h >> 29;
    h *= 0xbf58476d1ce4e5b9ull; // multipliers of common integer mixers
    return m_buckets[(h >> 20) & (m_buckets.size() - 1)];
}

void RegionNodes::grow()
{
    m_buckets.assign(m_buckets.size() * 2, kNone);
    for (uint32_t i = 0; i < m_points.size(); ++i) {
        uint32_t& head
            = bucket(int64_t(std::floor(m_points[i].x / m_cell)), int64_t(std::floor(m_points[i].y / m_cell)));
        m_next[i] = head;
        head = i;
    }
}

uint32_t RegionNodes::find(KcGePoint2d p)
{
    const auto cellOf = [&](double v) { return int64_t(std::floor(v / m_cell)); };
    const int64_t x0 = cellOf(p.x - m_distance), x1 = cellOf(p.x + m_distance);
    const int64_t y0 = cellOf(p.y - m_distance), y1 = cellOf(p.y + m_distance);
    uint32_t best = kNone;
    double bestSquare = m_distance * m_distance;
    for (int64_t x = x0; x <= x1; ++x)
        for (int64_t y = y0; y <= y1; ++y)
            for (uint32_t i = bucket(x, y); i != kNone; i = m_next[i]) {
                const KcGeVector2d off = m_points[i] - p;
                const double square = off.dotProduct(off);
                if (square <= bestSquare && (best == kNone || square < bestSquare || i < best)) {
                    best = i;
                    bestSquare = square;
                }
            }
    if (best != kNone)
        return best;
    if (m_points.size() >= m_buckets.size())
        grow();
    uint32_t& head = bucket(cellOf(p.x), cellOf(p.y));
    m_points.push_back(p);
    m_next.push_back(head);
    head = uint32_t(m_points.size() - 1);
    return head;
}

RegionIncidence::RegionIncidence(size_t nodes, const std::vector<RegionEdge>& all)
    : first(nodes + 1)
    , edges(all.size() * 2)
{
    for (const RegionEdge& edge : all) {
        ++first[edge.start + 1];
        ++first[edge.end + 1];
    }
    for (size_t n = 0; n < nodes; ++n)
        first[n + 1] += first[n];
    std::vector<uint32_t> fill(first.begin(), first.end() - 1);
    for (uint32_t i = 0; i < all.size(); ++i) {
        edges[fill[all[i].start]++] = i;
        edges[fill[all[i].end]++] = i;
    }
}

// Cuts.

void RegionNet::makeTree()
{
    std::vector<double> sides;
    const size_t step = m_pieces.size() / 10000 + 1; // a sample is enough for a median
    for (size_t i = 0; i < m_pieces.size(); i += step) {
        const KcGeExtents2d box = m_pieces.extents(m_pieces[i]);
        sides.push_back(std::max(box.max.x - box.min.x, box.max.y - box.min.y));
    }
    double longSide = 0.0;
    if (!sides.empty()) {
        std::nth_element(sides.begin(), sides.begin() + long(sides.size() / 2), sides.end());
        longSide = kLongPiece * sides[sides.size() / 2];
    }
    m_pieceOfEntry.clear();
    m_pieceOfEntry.reserve(m_pieces.size());
    for (uint32_t i = 0; i < m_pieces.size(); ++i) {
        const KcGeExtents2d box = m_pieces.extents(m_pieces[i]);
        const double side = std::min(box.max.x - box.min.x, box.max.y - box.min.y);
        const int count
            = side > longSide ? int(std::min(side / longSide + 1.0, double(kMostBoxesOfPiece))) : 1;
        m_pieceOfEntry.insert(m_pieceOfEntry.end(), size_t(count), i);
    }
    m_tree = ScatteredBoxes(m_pieceOfEntry.size(), [&](uint32_t entry) { return boxOfEntry(entry); });
}

/// A long piece has several entries in a row, which share it among themselves.
KcGeExtents2d RegionNet::boxOfEntry(size_t entry) const
{
    const uint32_t piece = m_pieceOfEntry[entry];
    size_t begin = entry, end = entry + 1;
    while (begin > 0 && m_pieceOfEntry[begin - 1] == piece)
        --begin;
    while (end < m_pieceOfEntry.size() && m_pieceOfEntry[end] == piece)
        ++end;
    const double count = double(end - begin), index = double(entry - begin);
    return m_pieces.extents(m_pieces[piece], index / count, (index + 1.0) / count);
}

void RegionNet::forgetCuts()
{
    m_cuts = {};
    m_tree = ScatteredBoxes();
    m_pieceOfEntry = {};
}

void RegionNet::cutPair(uint32_t a, uint32_t b)
{
    m_common.clear();
    m_pieces.common(m_pieces[a], m_pieces[b], m_pieces, m_common);
    for (const RegionPieces::Common& c : m_common) {
        if (c.first > 0.0 && c.first < 1.0)
            m_cuts.push_back({ a, c.first });
        if (c.second > 0.0 && c.second < 1.0)
            m_cuts.push_back({ b, c.second });
    }
}

void RegionNet::findCuts(RegionMonitor& monitor)
{
    m_pieces.sortAlongCurve();
    makeTree();
    const double reach = m_tolerances.onCurve;
    std::vector<uint32_t> metBy(m_pieces.size(), ~uint32_t(0));
    for (size_t entry = 0; entry < m_pieceOfEntry.size(); ++entry) {
        if (!monitor.goesOn(entry, m_pieceOfEntry.size()))
            return;
        const uint32_t a = m_pieceOfEntry[entry];
        KcGeExtents2d box = boxOfEntry(entry);
        box.min = box.min - KcGeVector2d{ reach, reach };
        box.max = box.max + KcGeVector2d{ reach, reach };
        piecesNear(box, [&](uint32_t b) {
            if (b <= a || metBy[b] == a)
                return;
            metBy[b] = a;
            cutPair(a, b);
        });
    }
}

void RegionNet::findCutsOfNew(size_t known)
{
    std::vector<KcGeExtents2d> boxes;
    const double reach = m_tolerances.onCurve;
    for (size_t i = known; i < m_pieces.size(); ++i) {
        boxes.push_back(m_pieces.extents(m_pieces[i]));
        boxes.back().min = boxes.back().min - KcGeVector2d{ reach, reach };
        boxes.back().max = boxes.back().max + KcGeVector2d{ reach, reach };
    }
    const ScatteredBoxes added(boxes);
    for (size_t i = known; i < m_pieces.size(); ++i) {
        std::vector<uint32_t> met;
        piecesNear(boxes[i - known], [&](uint32_t b) { met.push_back(b); });
        added.overlapping(boxes[i - known], [&](uint32_t b) {
            if (b + known > i)
                met.push_back(uint32_t(b + known));
        });
        std::sort(met.begin(), met.end());
        met.erase(std::unique(met.begin(), met.end()), met.end());
        for (const uint32_t b : met)
            cutPair(uint32_t(i), b);
    }
}

void RegionNet::sortCuts()
{
    // By piece in one pass, then the few of each piece among themselves.
    std::vector<uint32_t> first(m_pieces.size() + 1);
    for (const Cut& cut : m_cuts)
        ++first[cut.piece + 1];
    for (size_t i = 0; i < m_pieces.size(); ++i)
        first[i + 1] += first[i];
    std::vector<Cut> sorted(m_cuts.size());
    std::vector<uint32_t> fill(first.begin(), first.end() - 1);
    for (const Cut& cut : m_cuts)
        sorted[fill[cut.piece]++] = cut;
    for (size_t i = 0; i < m_pieces.size(); ++i)
        std::sort(sorted.begin() + first[i], sorted.begin() + first[i + 1],
            [](const Cut& a, const Cut& b) { return a.t < b.t; });
    m_cuts = std::move(sorted);
}

void RegionNet::build()
{
    sortCuts();
    RegionNodes nodes(m_tolerances.node(), m_pieces.size() * 5 / 4);
    m_edges.clear();
    m_edges.reserve(m_pieces.size() + m_cuts.size());
    size_t next = 0;
    for (uint32_t i = 0; i < m_pieces.size(); ++i) {
        const RegionPiece& piece = m_pieces[i];
        uint32_t node = nodes.find(piece.start);
        double from = 0.0;
        const size_t firstEdge = m_edges.size();
        for (bool atEnd = false; !atEnd;) {
            atEnd = next == m_cuts.size() || m_cuts[next].piece != i;
            const double t = atEnd ? 1.0 : m_cuts[next++].t;
            const uint32_t reached = nodes.find(m_pieces.at(piece, t));
            if (reached != node) {
                m_edges.push_back({ node, reached, i, from, t });
                node = reached;
                from = t;
            } else if (from > 0.0 && !atEnd) {
                from = t;
            } else if (atEnd && m_edges.size() > firstEdge) {
                m_edges.back().to = 1.0;
            }
        }
    }
    m_nodes = nodes.takePoints();
    for (int round = 0; round < kMostRounds; ++round) {
        const RegionIncidence at(m_nodes.size(), m_edges);
        if (splitAtNodesBeside(at))
            continue;
        dropCopies(at);
        return;
    }
    dropCopies(RegionIncidence(m_nodes.size(), m_edges));
}

/// Whether an edge runs so near by a node between its ends that it goes through it, and where.
bool RegionNet::passesBeside(const RegionEdge& edge, uint32_t node, double& t) const
{
    const RegionPiece& piece = m_pieces[edge.piece];
    const KcGePoint2d point = m_nodes[node];
    const double reach = m_tolerances.node();
    // What is cheap first: most pairs of edges part at once.
    if (piece.kind == RegionPiece::Kind::Line) {
        const KcGeVector2d along = m_nodes[edge.end] - m_nodes[edge.start], to = point - m_nodes[edge.start];
        const double off = along.crossProduct(to), square = along.dotProduct(along);
        if (!(off * off <= reach * reach * square) || to.dotProduct(along) <= 0.0 || to.dotProduct(along) >= square)
            return false;
    } else if (piece.kind == RegionPiece::Kind::Arc) {
        if (!(std::abs(point.distanceTo(piece.center) - piece.radius) <= reach))
            return false;
    } else {
        const KcGeExtents2d box = m_pieces.extents(piece, edge.from, edge.to);
        if (point.x < box.min.x - reach || point.x > box.max.x + reach || point.y < box.min.y - reach
            || point.y > box.max.y + reach)
            return false;
    }
    double distance = 0.0;
    t = m_pieces.closest(piece, point, distance);
    return distance <= reach && t > edge.from && t < edge.to;
}

/// Nodes stand a little beside the curves: of two edges that leave a node side by side the longer one may pass by the
/// far node of the other one on its wrong side, and the net would not be plane. It goes through that node instead, and
/// what then lies double is dropped with the copies. One split an edge; false when there was none.
bool RegionNet::splitAtNodesBeside(const RegionIncidence& at)
{
    const size_t known = m_edges.size();
    std::vector<RegionEdge> added;
    std::vector<char> split(known);
    for (uint32_t n = 0; n < m_nodes.size(); ++n) {
        if (at.first[n + 1] - at.first[n] < 2)
            continue;
        for (uint32_t i = at.first[n]; i < at.first[n + 1]; ++i)
            for (uint32_t k = at.first[n]; k < at.first[n + 1]; ++k) {
                const uint32_t shorter = at.edges[i], longer = at.edges[k];
                if (shorter == longer || split[shorter] || split[longer])
                    continue;
                RegionEdge& edge = m_edges[longer];
                const uint32_t far = m_edges[shorter].start == n ? m_edges[shorter].end : m_edges[shorter].start;
                double t = 0.0;
                if (far == edge.start || far == edge.end || !passesBeside(edge, far, t))
                    continue;
                added.push_back({ far, edge.end, edge.piece, t, edge.to });
                edge.end = far;
                edge.to = t;
                split[longer] = 1;
            }
    }
    m_edges.insert(m_edges.end(), added.begin(), added.end());
    return !added.empty();
}

bool RegionNet::areCopies(const RegionEdge& a, const RegionEdge& b) const
{
    if (!((a.start == b.start && a.end == b.end) || (a.start == b.end && a.end == b.start)))
        return false;
    const RegionPiece& p = m_pieces[a.piece];
    const RegionPiece& q = m_pieces[b.piece];
    if (p.kind == RegionPiece::Kind::Line && q.kind == RegionPiece::Kind::Line)
        return true; // both are the line between the two nodes
    double distance = 0.0;
    m_pieces.closest(q, m_pieces.at(p, (a.from + a.to) / 2.0), distance);
    return distance <= m_tolerances.sameEdge();
}

void RegionNet::dropCopies(const RegionIncidence& at)
{
    std::vector<char> gone(m_edges.size());
    for (uint32_t n = 0; n < m_nodes.size(); ++n)
        for (uint32_t i = at.first[n]; i < at.first[n + 1]; ++i) {
            const uint32_t first = at.edges[i];
            if (gone[first])
                continue;
            for (uint32_t k = i + 1; k < at.first[n + 1]; ++k) {
                const uint32_t second = at.edges[k];
                if (second == first || gone[second] || !areCopies(m_edges[first], m_edges[second]))
                    continue;
                // The curve that came first stays.
                const bool keepsFirst
                    = m_pieces[m_edges[first].piece].source <= m_pieces[m_edges[second].piece].source;
                gone[keepsFirst ? second : first] = 1;
                if (!keepsFirst)
                    break;
            }
        }
    removeEdges(gone);
}

void RegionNet::removeEdges(const std::vector<char>& gone)
{
    size_t kept = 0;
    for (size_t i = 0; i < m_edges.size(); ++i)
        if (!gone[i])
            m_edges[kept++] = m_edges[i];
    m_edges.resize(kept);
}

std::vector<uint32_t> RegionNet::degrees() const
{
    std::vector<uint32_t> degrees(m_nodes.size());
    for (const RegionEdge& edge : m_edges) {
        ++degrees[edge.start];
        ++degrees[edge.end];
    }
    return degrees;
}

void RegionNet::prune()
{
    std::vector<uint32_t> degree = degrees();
    const RegionIncidence at(m_nodes.size(), m_edges);
    std::vector<char> gone(m_edges.size());
    std::vector<uint32_t> ends;
    for (uint32_t n = 0; n < degree.size(); ++n)
        if (degree[n] == 1)
            ends.push_back(n);
    while (!ends.empty()) {
        const uint32_t n = ends.back();
        ends.pop_back();
        if (degree[n] != 1)
            continue;
        for (uint32_t i = at.first[n]; i < at.first[n + 1]; ++i) {
            const uint32_t e = at.edges[i];
            if (gone[e])
                continue;
            gone[e] = 1;
            const uint32_t other = m_edges[e].start == n ? m_edges[e].end : m_edges[e].start;
            --degree[n];
            if (--degree[other] == 1)
                ends.push_back(other);
            break;
        }
    }
    removeEdges(gone);
    m_edges.shrink_to_fit();
}

std::vector<std::vector<double>> RegionNet::cutsByPiece() const
{
    std::vector<std::vector<double>> result(m_pieces.size());
    for (const Cut& cut : m_cuts)
        result[cut.piece].push_back(cut.t);
    for (std::vector<double>& params : result)
        std::sort(params.begin(), params.end());
    return result;
}

} // namespace kcge
